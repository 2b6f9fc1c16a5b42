#include "PlaybackPacer.h"

#include <errno.h>

#include "Deadline.h"

namespace {
const long long kNsPerSecond = 1000000000LL;
}  // namespace

PlaybackPacer::PlaybackPacer() : m_nIntervalNs(0), m_nNextNs(0) {}

void PlaybackPacer::Start(int framesPerSecond)
{
    m_nIntervalNs = framesPerSecond > 0 ? kNsPerSecond / framesPerSecond : 0;
    m_nNextNs = MonotonicNs();
}

void PlaybackPacer::WaitNextSlot()
{
    long long now = MonotonicNs();
    if (now > m_nNextNs + m_nIntervalNs) {
        m_nNextNs = now + m_nIntervalNs;
        return;
    }
    struct timespec slot;
    slot.tv_sec = static_cast<time_t>(m_nNextNs / kNsPerSecond);
    slot.tv_nsec = static_cast<long>(m_nNextNs % kNsPerSecond);
    while (clock_nanosleep(CLOCK_MONOTONIC, TIMER_ABSTIME, &slot, nullptr) == EINTR) {
    }
    m_nNextNs += m_nIntervalNs;
}
