// Lets a standard condition variable wait on an OS_Mutex.
#ifndef AICAMERA_LOCKABLEMUTEX_H
#define AICAMERA_LOCKABLEMUTEX_H

#include "../../OS/OS_Mutex.h"

class LockableMutex {
public:
    explicit LockableMutex(OS_Mutex& mutex) : m_mutex(mutex) {}
    void lock() { m_mutex.Lock(); }
    void unlock() { m_mutex.Unlock(); }

private:
    OS_Mutex& m_mutex;
};

#endif
