// Semaphores, mutexes and threads, through the real system calls.
#include <limits.h>
#include <pthread.h>

#include <chrono>
#include <thread>

#include <gtest/gtest.h>

#include "OS/OS_Mutex.h"
#include "OS/OS_Semaphore.h"
#include "OS/OS_Thread.h"

namespace {

const int kWaitMs = 10000;

TEST(SemaphoreDeadline, CarriesAndNeverWraps)
{
    const struct { long long sec, usec; int ms; long long wantSec; long wantNsec; } rows[] = {
        {12, 600000, 1500, 14, 100000000},  // 500 ms + 600000 us carries a second
        {12, 100000, 1500, 13, 600000000},
        {12, 999999, 0, 12, 999999000},
        {1700000000, 999999, 15000, 1700000015, 999999000},  // the library's longest time-out
        {1700000000, 999999, INT_MAX, 1700000000LL + 2147483 + 1, 646999000},
        {4102444800LL, 500000, 600000, 4102445400LL, 500000000},  // past 2038
    };
    for (const auto& r : rows) {
        SCOPED_TRACE(testing::Message() << r.sec << "." << r.usec << " + " << r.ms << " ms");
        struct timespec ts = OS_Semaphore::Deadline(r.sec, r.usec, r.ms);
        EXPECT_EQ(static_cast<long long>(ts.tv_sec), r.wantSec);
        EXPECT_EQ(ts.tv_nsec, r.wantNsec);
    }
}

TEST(Semaphore, CountsAreTakenOnceEachAndATimedWaitEndsOnTimeOrOnAPost)
{
    OS_Semaphore sem;
    ASSERT_EQ(sem.Init(2), 0);
    EXPECT_EQ(sem.TryWait(), 0);
    EXPECT_EQ(sem.Wait(), 0);
    EXPECT_EQ(sem.Wait(0), -1);
    sem.Post();
    sem.Post();
    EXPECT_EQ(sem.Wait(0), 0);
    EXPECT_EQ(sem.Wait(10), 0);
    auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(sem.Wait(200), -1);
    // The deadline is taken in whole microseconds, hence the millisecond of slack.
    EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(199));
    std::thread poster([&sem] { sem.Post(); });
    EXPECT_EQ(sem.Wait(kWaitMs), 0);
    poster.join();
}

TEST(InitNeverRan, SemaphoreAndMutexRefuseEverything)
{
    OS_Semaphore sem;
    EXPECT_EQ(sem.Wait(), -1);
    EXPECT_EQ(sem.Wait(0), -1);
    EXPECT_EQ(sem.Wait(50), -1);
    sem.Post();
    EXPECT_EQ(sem.TryWait(), -1);
    OS_Mutex mutex;
    EXPECT_EQ(mutex.Lock(), -1);
    EXPECT_EQ(mutex.TryLock(), -1);
    EXPECT_FALSE(mutex.TryAcquire());
    mutex.Unlock();
}

TEST(Mutex, InitTwiceWorksAndTryLockReportsZeroWhetherOrNotItGotTheLock)
{
    OS_Mutex mutex;
    ASSERT_EQ(mutex.Init(), 0);
    ASSERT_EQ(mutex.Init(), 0);
    EXPECT_EQ(mutex.TryLock(), 0);
    EXPECT_FALSE(mutex.TryAcquire());  // taken by this thread
    mutex.Unlock();
    OS_Semaphore locked, release;
    ASSERT_EQ(locked.Init(0), 0);
    ASSERT_EQ(release.Init(0), 0);
    std::thread holder([&] {
        mutex.Lock();
        locked.Post();
        release.Wait(kWaitMs);
        mutex.Unlock();
    });
    EXPECT_EQ(locked.Wait(kWaitMs), 0);
    EXPECT_EQ(mutex.TryLock(), 0);
    EXPECT_FALSE(mutex.TryAcquire());
    release.Post();
    holder.join();
    EXPECT_TRUE(mutex.TryAcquire());
    mutex.Unlock();
}

// Its state lives outside the object, which may die while the routine runs.
OS_Semaphore *g_started, *g_release;
pthread_t g_routineId;

class ParkingThread : public OS_Thread {
    int Routine() override
    {
        g_routineId = pthread_self();
        g_started->Post();
        g_release->Wait(kWaitMs);
        return 0;
    }
};

TEST(Thread, JoinWaitsForTheRoutineButDestroyingARunningThreadNeitherJoinsNorDetachesIt)
{
    OS_Semaphore started, release;
    ASSERT_EQ(started.Init(0), 0);
    ASSERT_EQ(release.Init(1), 0);
    g_started = &started;
    g_release = &release;
    ParkingThread joined;
    OS_Thread::Join(&joined);  // never started: returns at once
    OS_Thread::Join(nullptr);
    ASSERT_EQ(joined.Run(), 0);
    OS_Thread::Join(&joined);
    EXPECT_EQ(started.Wait(0), 0);  // the routine ran before Join returned
    EXPECT_FALSE(pthread_equal(g_routineId, pthread_self()));
    {
        ParkingThread destroyed;
        ASSERT_EQ(destroyed.Run(), 0);
        ASSERT_EQ(started.Wait(kWaitMs), 0);
    }
    release.Post();
    EXPECT_EQ(pthread_join(g_routineId, nullptr), 0);  // still joinable
}

}  // namespace
