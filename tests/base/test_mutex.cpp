#include <gtest/gtest.h>

#include "FunctionThread.h"
#include "OS/OS_Mutex.h"
#include "OS/OS_Semaphore.h"

namespace {

const int kWaitMs = 10000;

// Holds the mutex on another thread until released, so that the calling
// thread sees it taken.
class HeldElsewhere {
public:
    explicit HeldElsewhere(OS_Mutex* mutex)
        : m_holder([this, mutex] {
              mutex->Lock();
              m_locked.Post();
              m_release.Wait(kWaitMs);
              mutex->Unlock();
          })
    {
        m_locked.Init(0);
        m_release.Init(0);
    }
    bool Start() { return m_holder.Run() == 0 && m_locked.Wait(kWaitMs) == 0; }
    void Release()
    {
        m_release.Post();
        OS_Thread::Join(&m_holder);
    }

private:
    OS_Semaphore m_locked;
    OS_Semaphore m_release;
    FunctionThread m_holder;
};

TEST(Mutex, UninitialisedObjectFailsLocksAndIgnoresUnlock)
{
    OS_Mutex mutex;
    EXPECT_EQ(mutex.Lock(), -1);
    EXPECT_EQ(mutex.TryLock(), -1);
    EXPECT_FALSE(mutex.TryAcquire());
    mutex.Unlock();
    EXPECT_EQ(mutex.Lock(), -1);
}

TEST(Mutex, InitTwiceLeavesOneWorkingMutex)
{
    OS_Mutex mutex;
    ASSERT_EQ(mutex.Init(), 0);
    ASSERT_EQ(mutex.Init(), 0);
    EXPECT_EQ(mutex.Lock(), 0);
    mutex.Unlock();
    EXPECT_TRUE(mutex.TryAcquire());
    mutex.Unlock();
}

TEST(Mutex, TryLockReportsZeroEvenWhenAnotherThreadHoldsIt)
{
    OS_Mutex mutex;
    ASSERT_EQ(mutex.Init(), 0);
    HeldElsewhere holder(&mutex);
    ASSERT_TRUE(holder.Start());
    EXPECT_EQ(mutex.TryLock(), 0);
    EXPECT_FALSE(mutex.TryAcquire());
    holder.Release();
    EXPECT_TRUE(mutex.TryAcquire());
    mutex.Unlock();
}

TEST(Mutex, TryLockOnAFreeMutexTakesIt)
{
    OS_Mutex mutex;
    ASSERT_EQ(mutex.Init(), 0);
    EXPECT_EQ(mutex.TryLock(), 0);
    // Now held by this thread, so a second attempt cannot get it.
    EXPECT_FALSE(mutex.TryAcquire());
    mutex.Unlock();
}

TEST(Mutex, LockSerialisesThreads)
{
    OS_Mutex mutex;
    ASSERT_EQ(mutex.Init(), 0);
    const int kRounds = 20000;
    long counter = 0;
    auto add = [&] {
        for (int i = 0; i < kRounds; ++i) {
            mutex.Lock();
            long seen = counter;
            counter = seen + 1;
            mutex.Unlock();
        }
    };
    FunctionThread first(add);
    FunctionThread second(add);
    ASSERT_EQ(first.Run(), 0);
    ASSERT_EQ(second.Run(), 0);
    OS_Thread::Join(&first);
    OS_Thread::Join(&second);
    EXPECT_EQ(counter, 2L * kRounds);
}

}  // namespace
