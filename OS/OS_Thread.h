// Base of every worker thread: Run starts a thread whose body is Routine().
#ifndef OS_THREAD_H
#define OS_THREAD_H

#include <pthread.h>

class OS_Thread {
public:
    OS_Thread();
    virtual ~OS_Thread();
    OS_Thread(const OS_Thread&) = delete;
    OS_Thread& operator=(const OS_Thread&) = delete;

    virtual int Run();
    virtual int Routine() = 0;

    // Waits for the thread to end; returns at once when it was never started.
    static void Join(OS_Thread* thread);
    static int MSleep(unsigned int ms);
    static unsigned int Sleep(unsigned int s);


protected:
    pthread_t* m_pThread;

private:
    static void* Entry(void* arg);
};

#endif
