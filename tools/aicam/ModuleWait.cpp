#include "ModuleWait.h"

#include <stdio.h>
#include <time.h>

#include <atomic>

#include "MonotonicClock.h"
#include "ProgressBar.h"
#include "ResultText.h"
#include "Session.h"
#include "ai_camera.h"
#include "ai_camera_ext.h"

namespace {
const char kPingText[] = "aicam";
const long long kRetryMs = 250;
// A module on USB drops its link a moment after it accepts the restart; one
// answering before that would be the old run. Pings start after the drop, or
// after this long when the link stays (a module behind a pseudo-terminal).
const long long kDropWaitMs = 1000;

void OnLinkState(int state, void* user)
{
    auto& lost = *static_cast<std::atomic<bool>*>(user);
    if (state == AI_CAMERA_LINK_LOST)
        lost = true;
    else if (state == AI_CAMERA_LINK_UP)
        lost = false;
}

void SleepMs(long long ms)
{
    struct timespec pause = {static_cast<time_t>(ms / 1000), static_cast<long>(ms % 1000) * 1000000L};
    nanosleep(&pause, nullptr);
}
}  // namespace

int WaitUntilAnswering(Session& session, long seconds, const std::string& command)
{
    ProgressBar notes(stderr, 0, session.Options().quiet);
    notes.Note("waiting up to " + std::to_string(seconds) + " s for the module to answer again");
    std::atomic<bool> lost(false);
    void* dev = session.Dev();
    RegisterLinkStateCb(dev, OnLinkState, &lost);
    const long long start = MonotonicMs();
    const long long deadline = start + seconds * 1000;
    while (!lost && MonotonicMs() - start < kDropWaitMs && MonotonicMs() < deadline)
        SleepMs(kRetryMs / 5);
    int result = -6;
    for (;;) {
        const long long tried = MonotonicMs();
        if (!lost || (result = session.Reconnect()) == 0) {
            result = Ping(dev, kPingText, sizeof kPingText - 1);
            if (result == 0)
                break;
        }
        if (MonotonicMs() >= deadline)
            break;
        // Failures that come at once (the node is not back yet) are tried again
        // a little later, not in a tight loop.
        if (MonotonicMs() - tried < kRetryMs)
            SleepMs(kRetryMs);
    }
    RegisterLinkStateCb(dev, nullptr, nullptr);
    if (result != 0)
        return Fail(command, result,
                    "the module did not answer within " + std::to_string(seconds) + " s: " + ResultText(result));
    char done[64];
    snprintf(done, sizeof done, "the module answered after %.1f s", (MonotonicMs() - start) / 1e3);
    notes.Note(done);
    return 0;
}
