#include "OS_Thread.h"

#include <time.h>
#include <unistd.h>

#include <new>

OS_Thread::OS_Thread() : m_pThread(nullptr) {}

// Frees only the handle: ending the thread is the derived class's business.
OS_Thread::~OS_Thread() { delete m_pThread; }

int OS_Thread::Routine() { return 0; }

void* OS_Thread::Entry(void* arg)
{
    static_cast<OS_Thread*>(arg)->Routine();
    return nullptr;
}

int OS_Thread::Run()
{
    m_pThread = new (std::nothrow) pthread_t;
    if (!m_pThread)
        return -1;
    if (pthread_create(m_pThread, nullptr, &OS_Thread::Entry, this) != 0) {
        delete m_pThread;
        m_pThread = nullptr;
        return -1;
    }
    return 0;
}

void OS_Thread::Join(OS_Thread* thread)
{
    if (!thread || !thread->m_pThread)
        return;
    pthread_join(*thread->m_pThread, nullptr);
    // A joined thread cannot be joined again; forget its handle.
    delete thread->m_pThread;
    thread->m_pThread = nullptr;
}


int OS_Thread::MSleep(unsigned int ms)
{
    struct timespec ts;
    ts.tv_sec = ms / 1000;
    ts.tv_nsec = static_cast<long>(ms % 1000) * 1000000L;
    return nanosleep(&ts, nullptr);
}

unsigned int OS_Thread::Sleep(unsigned int s) { return sleep(s); }
