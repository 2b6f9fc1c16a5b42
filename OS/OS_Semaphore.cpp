#include "OS_Semaphore.h"

#include <sys/time.h>

#include <new>

OS_Semaphore::OS_Semaphore() : m_hSemaphore(nullptr) {}

OS_Semaphore::~OS_Semaphore()
{
    if (m_hSemaphore) {
        sem_destroy(m_hSemaphore);
        delete m_hSemaphore;
        m_hSemaphore = nullptr;
    }
}

int OS_Semaphore::Init(int value)
{
    // A second Init replaces the handle without destroying the first semaphore;
    // a failed one leaves the handle null.
    m_hSemaphore = new (std::nothrow) sem_t;
    if (!m_hSemaphore)
        return -1;
    if (sem_init(m_hSemaphore, 0, static_cast<unsigned int>(value)) != 0) {
        delete m_hSemaphore;
        m_hSemaphore = nullptr;
        return -1;
    }
    return 0;
}

int OS_Semaphore::Wait()
{
    if (!m_hSemaphore)
        return -1;
    return sem_wait(m_hSemaphore) == 0 ? 0 : -1;
}

struct timespec OS_Semaphore::Deadline(long long sec, long long usec, int ms)
{
    // Same carry as the classic 32-bit formula, only wide enough not to wrap.
    // A negative ms is left as the arithmetic gives it: a past deadline, or a
    // negative nanosecond field that the wait rejects.
    long long ns = static_cast<long long>(ms % 1000) * 1000000LL + usec * 1000LL;
    struct timespec ts;
    ts.tv_sec = static_cast<time_t>(sec + ms / 1000 + ns / 1000000000LL);
    ts.tv_nsec = static_cast<long>(ns % 1000000000LL);
    return ts;
}

int OS_Semaphore::Wait(int ms)
{
    if (!m_hSemaphore)
        return -1;
    struct timeval now;
    gettimeofday(&now, nullptr);
    struct timespec deadline = Deadline(now.tv_sec, now.tv_usec, ms);
    return sem_timedwait(m_hSemaphore, &deadline) == 0 ? 0 : -1;
}

int OS_Semaphore::TryWait()
{
    if (!m_hSemaphore)
        return -1;
    return sem_trywait(m_hSemaphore) == 0 ? 0 : -1;
}

void OS_Semaphore::Post()
{
    if (m_hSemaphore)
        sem_post(m_hSemaphore);
}
