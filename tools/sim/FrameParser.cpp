#include <algorithm>

#include "../../OS/OS_ByteOrder.h"
#include "FrameParser.h"

namespace sim {
namespace {
// Larger than anything the host sends; a longer length is a broken frame.
const uint32_t kMaxPayload = 16u << 20;

Request MakeRequest(const uint8_t* payload, size_t size)
{
    Request request;
    request.payload.assign(payload, payload + size);
    if (size >= 2)
        request.tag = static_cast<uint16_t>(OS_ReadLittleEndian16(payload));
    if (size >= 6) {
        size_t len = std::min<size_t>(OS_ReadLittleEndian32(payload + 2), size - 6);
        request.value.assign(payload + 6, payload + 6 + len);
    }
    return request;
}
}  // namespace

std::vector<Request> FrameParser::Feed(const uint8_t* data, size_t len)
{
    m_buffer.insert(m_buffer.end(), data, data + len);
    std::vector<Request> found;
    size_t at = 0;
    while (at < m_buffer.size()) {
        if (m_buffer[at] != m_marker) {
            // Skip to the next marker; the run of junk counts as one bad frame.
            auto next = std::find(m_buffer.begin() + static_cast<long>(at), m_buffer.end(), m_marker);
            at = static_cast<size_t>(next - m_buffer.begin());
            ++m_badFrames;
            continue;
        }
        size_t left = m_buffer.size() - at;
        if (left < 5)
            break;
        uint32_t size = OS_ReadBigEndian32(&m_buffer[at + 1]);
        if (size > kMaxPayload) {
            ++m_badFrames;
            ++at;
            continue;
        }
        size_t total = size_t(size) + 9;
        if (left < total)
            break;
        const uint8_t* frame = &m_buffer[at];
        if (OS_ReadBigEndian32(frame + 5 + size) != ModuleSimulator::Crc(frame, 5 + size))
            ++m_badFrames;
        else
            found.push_back(MakeRequest(frame + 5, size));
        at += total;
    }
    m_buffer.erase(m_buffer.begin(), m_buffer.begin() + static_cast<long>(at));
    return found;
}
}  // namespace sim
