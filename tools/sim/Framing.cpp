// The simulator's own framing and CRC, kept apart from the library's.
#include "ModuleSimulator.h"

#include "../../OS/OS_ByteOrder.h"

namespace sim {
namespace {
void AppendBigEndian32(Bytes& out, uint32_t v)
{
    out.resize(out.size() + 4);
    OS_WriteOrdered(&out[out.size() - 4], v, 4, true);
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
    Bytes record(6);
    record.reserve(value.size() + 6);
    OS_WriteOrdered(&record[0], tag, 2, false);
    OS_WriteOrdered(&record[2], static_cast<uint32_t>(value.size()), 4, false);
    record.insert(record.end(), value.begin(), value.end());
    return record;
}
}  // namespace sim
