// Reports handed over from the library's listener thread to the main thread.
// The callbacks only copy and queue (they must not block the listener); a
// pipe wakes the main thread, and the SIGINT handler writes to the same pipe.
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
    // Opens the wake pipe, installs the SIGINT handler and registers the
    // callbacks of the kinds named in `kinds` on dev. False when the pipe fails.
    bool Start(void* dev, const std::vector<std::string>& kinds);
    // Restores SIGINT; reports that still arrive are queued and never read.
    void Stop();
    // Waits up to timeoutMs (-1: no limit) for reports or an interrupt; moves
    // the queued reports to `out`. False once SIGINT has arrived.
    bool Wait(int timeoutMs, std::vector<Report>& out);

    static const std::vector<std::string>& Kinds();
};

#endif
