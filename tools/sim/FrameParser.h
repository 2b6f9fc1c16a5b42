// Cuts a byte stream into frames: marker, length u32 BE, payload, CRC u32 BE.
// The simulator reads the host's frames (0x1A) with it; tests read the
// module's (0xA1). Refused frames are counted, not delivered.
#ifndef SIM_FRAME_PARSER_H
#define SIM_FRAME_PARSER_H

#include <vector>

#include "ModuleSimulator.h"

namespace sim {
class FrameParser {
public:
    explicit FrameParser(uint8_t marker = 0x1A) : m_marker(marker) {}
    // Appends bytes and returns every complete, valid frame found.
    std::vector<Request> Feed(const uint8_t* data, size_t len);
    size_t BadFrames() const { return m_badFrames; }

private:
    uint8_t m_marker;
    Bytes m_buffer;
    size_t m_badFrames = 0;
};
}  // namespace sim

#endif
