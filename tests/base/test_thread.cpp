#include <pthread.h>
#include <time.h>

#include <chrono>

#include <gtest/gtest.h>

#include "FunctionThread.h"
#include "OS/OS_Semaphore.h"
#include "OS/OS_Time.h"

namespace {

const int kWaitMs = 10000;

TEST(Thread, RunsRoutineOnANewThreadAndJoinWaitsForIt)
{
    pthread_t body = pthread_self();
    bool sawItself = false;
    FunctionThread* self = nullptr;
    FunctionThread thread([&] {
        body = pthread_self();
        sawItself = self->IsCurrentThread();
    });
    self = &thread;
    EXPECT_FALSE(thread.IsCurrentThread());
    ASSERT_EQ(thread.Run(), 0);
    OS_Thread::Join(&thread);
    EXPECT_FALSE(pthread_equal(body, pthread_self()));
    EXPECT_TRUE(sawItself);
}

TEST(Thread, JoinReturnsAtOnceForAThreadNeverStarted)
{
    bool ran = false;
    FunctionThread thread([&ran] { ran = true; });
    OS_Thread::Join(&thread);
    OS_Thread::Join(nullptr);
    EXPECT_FALSE(ran);
    // The object is still fresh and can be started afterwards.
    ASSERT_EQ(thread.Run(), 0);
    OS_Thread::Join(&thread);
    EXPECT_TRUE(ran);
}

class ParkedThread : public OS_Thread {
public:
    ParkedThread(OS_Semaphore* started, OS_Semaphore* release, pthread_t* id)
        : m_started(started), m_release(release), m_id(id) {}
    int Routine() override
    {
        // Copies what it needs first: the object is destroyed while this runs.
        OS_Semaphore* release = m_release;
        *m_id = pthread_self();
        m_started->Post();
        release->Wait(kWaitMs);
        return 0;
    }

private:
    OS_Semaphore* m_started;
    OS_Semaphore* m_release;
    pthread_t* m_id;
};

TEST(Thread, DestroyingARunningThreadNeitherJoinsNorDetachesIt)
{
    OS_Semaphore started;
    OS_Semaphore release;
    ASSERT_EQ(started.Init(0), 0);
    ASSERT_EQ(release.Init(0), 0);
    pthread_t id;
    {
        ParkedThread thread(&started, &release, &id);
        ASSERT_EQ(thread.Run(), 0);
        ASSERT_EQ(started.Wait(kWaitMs), 0);
        // Leaving the scope must not wait for the parked thread.
    }
    release.Post();
    // Still joinable: the destructor did not detach it.
    EXPECT_EQ(pthread_join(id, nullptr), 0);
}

TEST(Thread, MSleepSleepsAtLeastItsTime)
{
    auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(OS_Thread::MSleep(30), 0);
    auto slept = std::chrono::steady_clock::now() - start;
    EXPECT_GE(std::chrono::duration_cast<std::chrono::milliseconds>(slept).count(), 30);
    EXPECT_EQ(OS_Thread::MSleep(0), 0);
    EXPECT_EQ(OS_Thread::Sleep(0), 0u);
}

TEST(Time, LocalTimeFollowsTheWallClock)
{
    struct timespec before;
    struct timespec after;
    OS_TimeVal stamp;
    clock_gettime(CLOCK_REALTIME, &before);
    ASSERT_EQ(OS_Time::GetLocalTime(&stamp), 0);
    clock_gettime(CLOCK_REALTIME, &after);
    uint64_t stampUs = static_cast<uint64_t>(stamp.tv_sec) * 1000000u + stamp.tv_usec;
    // The stamp keeps only the low 32 bits of the seconds.
    uint64_t beforeUs = static_cast<uint64_t>(static_cast<uint32_t>(before.tv_sec)) * 1000000u +
                        static_cast<uint64_t>(before.tv_nsec / 1000);
    uint64_t afterUs = static_cast<uint64_t>(static_cast<uint32_t>(after.tv_sec)) * 1000000u +
                       static_cast<uint64_t>(after.tv_nsec / 1000);
    EXPECT_LT(stamp.tv_usec, 1000000u);
    EXPECT_LE(beforeUs, stampUs);
    EXPECT_LE(stampUs, afterUs);
}

}  // namespace
