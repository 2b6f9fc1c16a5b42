// The simulator's own framing and CRC, kept apart from the library's.
#include "ModuleSimulator.h"

namespace sim {
namespace {
void AppendBigEndian32(Bytes& out, uint32_t v)
{
    for (int shift = 24; shift >= 0; shift -= 8)
        out.push_back(static_cast<uint8_t>(v >> shift));
}
}  // namespace

uint32_t ModuleSimulator::Crc(const uint8_t* data, size_t len)
{
    // Bit by bit on purpose: no table shared in spirit with the host's code.
    uint32_t reg = 0xFFFFFFFFu;
    for (size_t i = 0; i < len; ++i) {
        reg ^= data[i];
        for (int bit = 0; bit < 8; ++bit) {
            uint32_t mask = 0u - (reg & 1u);
            reg = (reg >> 1) ^ (0xEDB88320u & mask);
        }
    }
    return reg;
}

Bytes ModuleSimulator::EncodeFrame(uint8_t marker, const Bytes& payload)
{
    Bytes frame;
    frame.reserve(payload.size() + 9);
    frame.push_back(marker);
    AppendBigEndian32(frame, static_cast<uint32_t>(payload.size()));
    frame.insert(frame.end(), payload.begin(), payload.end());
    AppendBigEndian32(frame, Crc(frame.data(), frame.size()));
    return frame;
}

Bytes ModuleSimulator::EncodeTLV(uint16_t tag, const Bytes& value)
{
    Bytes record;
    record.reserve(value.size() + 6);
    record.push_back(static_cast<uint8_t>(tag & 0xFF));
    record.push_back(static_cast<uint8_t>(tag >> 8));
    uint32_t len = static_cast<uint32_t>(value.size());
    for (int i = 0; i < 4; ++i)
        record.push_back(static_cast<uint8_t>(len >> (8 * i)));
    record.insert(record.end(), value.begin(), value.end());
    return record;
}
}  // namespace sim
