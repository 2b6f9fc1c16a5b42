#include <limits.h>

#include <chrono>

#include <gtest/gtest.h>

#include "FunctionThread.h"
#include "OS/OS_Semaphore.h"

namespace {

void ExpectDeadline(long long sec, long long usec, int ms, long long wantSec, long wantNsec)
{
    struct timespec ts = OS_Semaphore::Deadline(sec, usec, ms);
    EXPECT_EQ(static_cast<long long>(ts.tv_sec), wantSec) << sec << "." << usec << " + " << ms;
    EXPECT_EQ(ts.tv_nsec, wantNsec) << sec << "." << usec << " + " << ms;
}

TEST(SemaphoreDeadline, CarriesOneSecondWhenNanosecondsPassASecond)
{
    // 12.600000 s + 1500 ms: 500 ms + 600000 us makes 1.1 s of nanoseconds.
    ExpectDeadline(12, 600000, 1500, 14, 100000000);
}

TEST(SemaphoreDeadline, NoCarryBelowASecond)
{
    ExpectDeadline(12, 100000, 1500, 13, 600000000);
    ExpectDeadline(12, 0, 0, 12, 0);
    ExpectDeadline(12, 999999, 0, 12, 999999000);
}

TEST(SemaphoreDeadline, LongestLibraryTimeoutAtTheEndOfASecond)
{
    ExpectDeadline(1700000000, 999999, 15000, 1700000015, 999999000);
    ExpectDeadline(1700000000, 999999, 14999, 1700000015, 998999000);
}

TEST(SemaphoreDeadline, LargeTimeoutsDoNotWrap)
{
    // 647 ms + 999999 us carries one second on top of 2147483 s.
    ExpectDeadline(1700000000, 999999, INT_MAX, 1700000000LL + 2147483 + 1, 646999000);
    // Seconds past 2038 stay exact.
    ExpectDeadline(4102444800LL, 500000, 600000, 4102445400LL, 500000000);
}

TEST(Semaphore, InitialCountIsTakenOnceEach)
{
    OS_Semaphore sem;
    ASSERT_EQ(sem.Init(2), 0);
    EXPECT_EQ(sem.TryWait(), 0);
    EXPECT_EQ(sem.Wait(), 0);
    EXPECT_EQ(sem.TryWait(), -1);
}

TEST(Semaphore, WaitZeroTakesAPositiveCountAtOnce)
{
    OS_Semaphore sem;
    ASSERT_EQ(sem.Init(1), 0);
    EXPECT_EQ(sem.Wait(0), 0);
    EXPECT_EQ(sem.Wait(0), -1);
}

TEST(Semaphore, TimedWaitWithoutCountFailsAfterItsTime)
{
    OS_Semaphore sem;
    ASSERT_EQ(sem.Init(0), 0);
    auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(sem.Wait(200), -1);
    auto waited = std::chrono::steady_clock::now() - start;
    // The deadline is taken in whole microseconds, hence the millisecond of slack.
    EXPECT_GE(std::chrono::duration_cast<std::chrono::milliseconds>(waited).count(), 199);
}

TEST(Semaphore, PostFromAnotherThreadEndsATimedWait)
{
    OS_Semaphore sem;
    ASSERT_EQ(sem.Init(0), 0);
    FunctionThread poster([&sem] { sem.Post(); });
    ASSERT_EQ(poster.Run(), 0);
    EXPECT_EQ(sem.Wait(10000), 0);
    EXPECT_EQ(sem.Wait(0), -1);
}

TEST(Semaphore, PostedCountsAccumulate)
{
    OS_Semaphore sem;
    ASSERT_EQ(sem.Init(0), 0);
    sem.Post();
    sem.Post();
    EXPECT_EQ(sem.Wait(0), 0);
    EXPECT_EQ(sem.Wait(10), 0);
    EXPECT_EQ(sem.Wait(0), -1);
}

TEST(Semaphore, UninitialisedObjectFailsEveryWaitAndIgnoresPost)
{
    OS_Semaphore sem;
    EXPECT_EQ(sem.Wait(), -1);
    EXPECT_EQ(sem.Wait(0), -1);
    EXPECT_EQ(sem.Wait(50), -1);
    EXPECT_EQ(sem.TryWait(), -1);
    sem.Post();
    EXPECT_EQ(sem.TryWait(), -1);
}

}  // namespace
