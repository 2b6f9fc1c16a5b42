// Thin wrapper over a heap-allocated POSIX mutex; null until Init succeeds.
#ifndef OS_MUTEX_H
#define OS_MUTEX_H

#include <pthread.h>

class OS_Mutex {
public:
    OS_Mutex();
    ~OS_Mutex();
    OS_Mutex(const OS_Mutex&) = delete;
    OS_Mutex& operator=(const OS_Mutex&) = delete;

    int Init();
    int Lock();
    // Only a failing system call counts: a mutex held elsewhere still yields 0.
    int TryLock();
    // Unlike TryLock, tells whether this thread now holds the mutex.
    bool TryAcquire();
    void Unlock();

private:
    void Destroy();
    pthread_mutex_t* m_pMutex;
};

#endif
