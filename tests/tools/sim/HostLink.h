#pragma once
// The host's end of the simulator's pseudo-terminal for tests of the module
// model: sends requests and collects the module's frames, reports included.

#include <fcntl.h>
#include <poll.h>
#include <termios.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <deque>
#include <optional>
#include <string>
#include <utility>

#include "FrameParser.h"

namespace sim::test {

class HostLink {
public:
    explicit HostLink(const std::string& ptyPath) : m_fd(::open(ptyPath.c_str(), O_RDWR | O_NOCTTY | O_NONBLOCK)) {
        termios tio{};
        if (m_fd >= 0 && tcgetattr(m_fd, &tio) == 0) {
            cfmakeraw(&tio);
            tcsetattr(m_fd, TCSANOW, &tio);
        }
    }
    ~HostLink() {
        if (m_fd >= 0) ::close(m_fd);
    }

    bool IsOpen() const { return m_fd >= 0; }
    void Send(uint16_t tag, const Bytes& value) {
        const Bytes frame = ModuleSimulator::EncodeFrame(0x1A, ModuleSimulator::EncodeTLV(tag, value));
        for (size_t done = 0; m_fd >= 0 && done < frame.size();) {
            const ssize_t n = ::write(m_fd, frame.data() + done, frame.size() - done);
            pollfd p{m_fd, POLLOUT, 0};
            if (n > 0) done += size_t(n);
            else if (::poll(&p, 1, 1000) <= 0) return;
        }
    }
    // The value of the next record with this tag; other records wait their turn.
    std::optional<Bytes> WaitFor(uint16_t tag, int timeoutMs = 5000) {
        std::optional<Record> record = Take([tag](const Record& r) { return r.first == tag; }, timeoutMs);
        return record ? std::optional<Bytes>(std::move(record->second)) : std::nullopt;
    }
    // The next record of any tag, in the order the module sent them.
    std::optional<std::pair<uint16_t, Bytes>> Next(int timeoutMs = 5000) {
        return Take([](const Record&) { return true; }, timeoutMs);
    }
    std::optional<Bytes> Ask(uint16_t tag, const Bytes& value, int timeoutMs = 5000) {
        Send(tag, value);
        return WaitFor(tag, timeoutMs);
    }

private:
    using Record = std::pair<uint16_t, Bytes>;

    template <class Match>
    std::optional<Record> Take(Match match, int timeoutMs) {
        const auto deadline = std::chrono::steady_clock::now() + std::chrono::milliseconds(timeoutMs);
        for (;;) {
            const auto it = std::find_if(m_records.begin(), m_records.end(), match);
            if (it != m_records.end()) {
                Record record = std::move(*it);
                m_records.erase(it);
                return record;
            }
            const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(deadline - std::chrono::steady_clock::now());
            pollfd p{m_fd, POLLIN, 0};
            uint8_t buffer[65536];
            if (left.count() <= 0) return std::nullopt;
            const ssize_t n = ::poll(&p, 1, int(left.count())) > 0 ? ::read(m_fd, buffer, sizeof buffer) : 0;
            for (Request& frame : m_parser.Feed(buffer, size_t(std::max<ssize_t>(n, 0))))
                m_records.emplace_back(frame.tag, std::move(frame.value));
        }
    }
    int m_fd;
    FrameParser m_parser{0xA1};  // the module's frames
    std::deque<Record> m_records;
};

}  // namespace sim::test
