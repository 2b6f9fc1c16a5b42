#include "RandomInput.h"

#include "ModuleSimulator.h"

Bytes RandomInput::Noise(size_t maxLength)
{
    Bytes bytes(Below(static_cast<uint32_t>(maxLength) + 1));
    for (uint8_t& byte : bytes)
        byte = static_cast<uint8_t>(m_random());
    return bytes;
}

Bytes RandomInput::Records(uint16_t tag, size_t maxValue)
{
    Bytes payload;
    for (uint32_t count = 1 + Below(3); count > 0; --count) {
        Bytes value = Noise(maxValue);
        uint32_t claimed = static_cast<uint32_t>(value.size());
        switch (Below(4)) {
        case 0: claimed += 1 + Below(16); break;   // runs past the payload
        case 1: claimed = 0xFFFFFFFFu - Below(16); break;
        default: break;
        }
        Bytes record = sim::ModuleSimulator::EncodeTLV(tag, value);
        record[2] = static_cast<uint8_t>(claimed);
        record[3] = static_cast<uint8_t>(claimed >> 8);
        record[4] = static_cast<uint8_t>(claimed >> 16);
        record[5] = static_cast<uint8_t>(claimed >> 24);
        payload.insert(payload.end(), record.begin(), record.end());
        tag = static_cast<uint16_t>(m_random());
    }
    return payload;
}

Bytes RandomInput::Frame(const Bytes& payload) { return sim::ModuleSimulator::EncodeFrame(0xA1, payload); }

Bytes RandomInput::Mutate(Bytes input)
{
    if (input.empty())
        return Noise(16);
    switch (Below(3)) {
    case 0:
        for (uint32_t n = 1 + Below(4); n > 0; --n)
            input[Below(static_cast<uint32_t>(input.size()))] ^= static_cast<uint8_t>(1 + Below(255));
        break;
    case 1: input.resize(Below(static_cast<uint32_t>(input.size()))); break;
    default: input.insert(input.end(), input.begin(), input.begin() + Below(static_cast<uint32_t>(input.size())));
    }
    return input;
}
