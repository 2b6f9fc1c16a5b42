#include "OS_Mutex.h"

#include <new>

OS_Mutex::OS_Mutex() : m_pMutex(nullptr) {}

OS_Mutex::~OS_Mutex() { Destroy(); }

void OS_Mutex::Destroy()
{
    if (m_pMutex) {
        pthread_mutex_destroy(m_pMutex);
        delete m_pMutex;
        m_pMutex = nullptr;
    }
}

int OS_Mutex::Init()
{
    Destroy();
    m_pMutex = new (std::nothrow) pthread_mutex_t;
    if (!m_pMutex)
        return -1;
    if (pthread_mutex_init(m_pMutex, nullptr) != 0) {
        delete m_pMutex;
        m_pMutex = nullptr;
        return -1;
    }
    return 0;
}

int OS_Mutex::Lock()
{
    if (!m_pMutex)
        return -1;
    // pthread reports errors as positive codes; only a negative one is a failure here.
    if (pthread_mutex_lock(m_pMutex) < 0)
        return -1;
    return 0;
}

int OS_Mutex::TryLock()
{
    if (!m_pMutex)
        return -1;
    if (pthread_mutex_trylock(m_pMutex) < 0)
        return -1;
    return 0;
}

bool OS_Mutex::TryAcquire()
{
    return m_pMutex && pthread_mutex_trylock(m_pMutex) == 0;
}

void OS_Mutex::Unlock()
{
    if (m_pMutex)
        pthread_mutex_unlock(m_pMutex);
}
