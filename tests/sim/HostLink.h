#pragma once
// The host's end of the simulator's pseudo-terminal for tests of the module
// model: sends requests and collects the module's frames, reports included.

#include <cstdint>
#include <deque>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "WireFormat.h"

namespace sim::test {

class HostLink {
public:
    explicit HostLink(const std::string& ptyPath);
    ~HostLink();
    HostLink(const HostLink&) = delete;
    HostLink& operator=(const HostLink&) = delete;

    bool IsOpen() const { return m_fd >= 0; }
    void Send(uint16_t tag, const Bytes& value);
    // The value of the next record with this tag; other records wait their turn.
    std::optional<Bytes> WaitFor(uint16_t tag, int timeoutMs = 5000);
    std::optional<Bytes> Ask(uint16_t tag, const Bytes& value, int timeoutMs = 5000);
    size_t BadFrames() const { return m_badFrames; }

private:
    bool ReadSome(int timeoutMs);
    void CutFrames();

    int m_fd = -1;
    Bytes m_input;
    std::deque<std::pair<uint16_t, Bytes>> m_records;
    size_t m_badFrames = 0;
};

}  // namespace sim::test
