#include "LinkStatistics.h"

#include <initializer_list>

void LinkCounters::Reset()
{
    for (Counter* counter : {&framesSent, &bytesSent, &framesReceived, &bytesReceived, &checksumErrors, &resyncs,
                             &requestsTimedOut, &lateAnswers, &imageAcks})
        counter->store(0, std::memory_order_relaxed);
    for (Counter& counter : reports)
        counter.store(0, std::memory_order_relaxed);
}
