// Counters of the serial link since it was last started. Bumped on the
// listener thread and by requests, read by any thread: relaxed atomics, so
// that counting costs the receive path nothing it would notice.
#ifndef AICAMERA_LINKSTATISTICS_H
#define AICAMERA_LINKSTATISTICS_H

#include <stdint.h>

#include <atomic>

// The five kinds of report the module sends on its own.
enum ReportKind { REPORT_RECO, REPORT_TRACK, REPORT_IMAGE, REPORT_FEATURE, REPORT_QRCODE, REPORT_KINDS };

struct LinkCounters {
    typedef std::atomic<uint64_t> Counter;
    Counter framesSent{0};
    Counter bytesSent{0};
    Counter framesReceived{0};
    Counter bytesReceived{0};
    Counter checksumErrors{0};
    Counter resyncs{0};
    Counter requestsTimedOut{0};
    Counter lateAnswers{0};
    Counter imageAcks{0};
    Counter reports[REPORT_KINDS] = {};

    static void Add(Counter& counter, uint64_t count = 1) { counter.fetch_add(count, std::memory_order_relaxed); }
    static uint64_t Read(const Counter& counter) { return counter.load(std::memory_order_relaxed); }
    void Reset();
};

#endif
