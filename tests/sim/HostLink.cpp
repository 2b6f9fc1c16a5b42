#include "HostLink.h"

#include <fcntl.h>
#include <poll.h>
#include <termios.h>
#include <unistd.h>

#include <chrono>

#include "ModuleSimulator.h"

namespace sim::test {
namespace {

uint32_t BigEndian32(const uint8_t* p) {
    return uint32_t(p[0]) << 24 | uint32_t(p[1]) << 16 | uint32_t(p[2]) << 8 | uint32_t(p[3]);
}

uint32_t LittleEndian32(const uint8_t* p) {
    return uint32_t(p[0]) | uint32_t(p[1]) << 8 | uint32_t(p[2]) << 16 | uint32_t(p[3]) << 24;
}

constexpr size_t kFrameHead = 5, kCrcBytes = 4, kTlvHead = 6;

}  // namespace

HostLink::HostLink(const std::string& ptyPath) {
    m_fd = ::open(ptyPath.c_str(), O_RDWR | O_NOCTTY | O_NONBLOCK);
    if (m_fd < 0) return;
    termios tio{};
    if (tcgetattr(m_fd, &tio) == 0) {
        cfmakeraw(&tio);
        tcsetattr(m_fd, TCSANOW, &tio);
    }
}

HostLink::~HostLink() {
    if (m_fd >= 0) ::close(m_fd);
}

void HostLink::Send(uint16_t tag, const Bytes& value) {
    const Bytes frame = ModuleSimulator::EncodeFrame(0x1A, ModuleSimulator::EncodeTLV(tag, value));
    size_t done = 0;
    while (m_fd >= 0 && done < frame.size()) {
        ssize_t n = ::write(m_fd, frame.data() + done, frame.size() - done);
        if (n > 0) {
            done += size_t(n);
        } else {
            pollfd p{m_fd, POLLOUT, 0};
            if (::poll(&p, 1, 1000) <= 0) return;
        }
    }
}

bool HostLink::ReadSome(int timeoutMs) {
    pollfd p{m_fd, POLLIN, 0};
    if (::poll(&p, 1, timeoutMs) <= 0) return false;
    uint8_t buffer[65536];
    ssize_t n = ::read(m_fd, buffer, sizeof buffer);
    if (n <= 0) return false;
    m_input.insert(m_input.end(), buffer, buffer + n);
    CutFrames();
    return true;
}

void HostLink::CutFrames() {
    for (;;) {
        size_t start = 0;
        while (start < m_input.size() && m_input[start] != 0xA1) ++start;
        m_input.erase(m_input.begin(), m_input.begin() + long(start));
        if (m_input.size() < kFrameHead) return;
        const size_t length = BigEndian32(&m_input[1]);
        if (m_input.size() < kFrameHead + length + kCrcBytes) return;
        const uint32_t crc = BigEndian32(&m_input[kFrameHead + length]);
        if (crc != ModuleSimulator::Crc(m_input.data(), kFrameHead + length) || length < kTlvHead) {
            ++m_badFrames;
            m_input.erase(m_input.begin());
            continue;
        }
        const uint8_t* payload = &m_input[kFrameHead];
        const uint16_t tag = uint16_t(payload[0] | payload[1] << 8);
        const size_t valueLength = LittleEndian32(payload + 2);
        if (valueLength <= length - kTlvHead)
            m_records.emplace_back(tag, Bytes(payload + kTlvHead, payload + kTlvHead + valueLength));
        else
            ++m_badFrames;
        m_input.erase(m_input.begin(), m_input.begin() + long(kFrameHead + length + kCrcBytes));
    }
}

std::optional<Bytes> HostLink::WaitFor(uint16_t tag, int timeoutMs) {
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::milliseconds(timeoutMs);
    for (;;) {
        for (auto it = m_records.begin(); it != m_records.end(); ++it) {
            if (it->first != tag) continue;
            Bytes value = std::move(it->second);
            m_records.erase(it);
            return value;
        }
        const auto left =
            std::chrono::duration_cast<std::chrono::milliseconds>(deadline - std::chrono::steady_clock::now()).count();
        if (left <= 0) return std::nullopt;
        ReadSome(int(left));
    }
}

std::optional<Bytes> HostLink::Ask(uint16_t tag, const Bytes& value, int timeoutMs) {
    Send(tag, value);
    return WaitFor(tag, timeoutMs);
}

}  // namespace sim::test
