// Reports handed over from the library's listener thread to the main thread.
// The callbacks only copy and queue (they must not block the listener); a
// SignalWatch's pipe wakes the main thread, for reports and for signals alike.
#ifndef AICAM_REPORTQUEUE_H
#define AICAM_REPORTQUEUE_H

#include <string>
#include <vector>

struct Report {
    const char* kind;     // "recognition", "track", "image", "feature", "qrcode"
    std::string bytes;    // as the module sent them
};

class ReportQueue {
public:
    // Registers the callbacks of the kinds named in `kinds` on dev; a
    // SignalWatch must live while reports are awaited.
    void Start(void* dev, const std::vector<std::string>& kinds);
    // Waits up to timeoutMs (-1: no limit) for reports or a signal; moves the
    // queued reports to `out`. False once SIGINT or SIGTERM has arrived.
    bool Wait(int timeoutMs, std::vector<Report>& out);

    static const std::vector<std::string>& Kinds();
};

#endif
