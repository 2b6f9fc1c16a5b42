// Unnamed, process-private POSIX semaphore with a millisecond timed wait.
#ifndef OS_SEMAPHORE_H
#define OS_SEMAPHORE_H

#include <semaphore.h>
#include <time.h>

class OS_Semaphore {
public:
    OS_Semaphore();
    ~OS_Semaphore();
    OS_Semaphore(const OS_Semaphore&) = delete;
    OS_Semaphore& operator=(const OS_Semaphore&) = delete;

    int Init(int value);
    int Wait();
    // Waits until the wall clock passes now + ms; 0 when the count was taken.
    int Wait(int ms);
    // Takes the count without blocking; 0 when it was positive.
    int TryWait();
    void Post();

    // Absolute deadline for a wait of ms milliseconds from the clock reading
    // (sec, usec); computed in 64 bits so that no sum can overflow.
    static struct timespec Deadline(long long sec, long long usec, int ms);

private:
    sem_t* m_hSemaphore;
};

#endif
