// A point in monotonic time that one thread sets and any other may test, so
// that an open in progress can be bounded from inside FFmpeg's callbacks.
#ifndef AICAMERA_DEADLINE_H
#define AICAMERA_DEADLINE_H

#include <atomic>

long long MonotonicNs();

class Deadline {
public:
    Deadline() : m_nAtNs(0) {}
    void Set(int milliseconds) { m_nAtNs = MonotonicNs() + milliseconds * 1000000LL; }
    void Clear() { m_nAtNs = 0; }
    bool IsSet() const { return m_nAtNs != 0; }
    bool Passed() const
    {
        long long at = m_nAtNs;
        return at != 0 && MonotonicNs() >= at;
    }

private:
    std::atomic<long long> m_nAtNs;
};

#endif
