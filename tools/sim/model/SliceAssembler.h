#pragma once
// Puts an image (or a package) back together from pieces sent by position.
// Pieces may come in any order and may overlap; the result is complete when
// every byte up to the total length has arrived.

#include <cstdint>
#include <map>
#include <string>

#include "WireFormat.h"

namespace sim {

// The set of byte ranges received so far.
class Coverage {
public:
    void Clear() { m_ranges.clear(); }
    void Add(size_t begin, size_t end);
    bool CoversUpTo(size_t end) const;   // [0, end) received
    size_t FirstGap() const;             // first byte not received

private:
    std::map<size_t, size_t> m_ranges;   // begin -> end, disjoint and not touching
};

class SliceAssembler {
public:
    explicit SliceAssembler(size_t maxTotal) : m_maxTotal(maxTotal) {}

    // Returns a proto::Status. A slice at position 0, or one with another key or
    // total length, starts a new image. On the last slice the image must be whole.
    uint8_t Add(const std::string& key, uint32_t total, uint32_t position, const Bytes& data, bool last);
    // The image completed by the last Add, handed over once.
    Bytes TakeComplete();

private:
    void Reset();

    size_t m_maxTotal;
    std::string m_key;
    Bytes m_image;
    Coverage m_coverage;
    Bytes m_complete;
};

}  // namespace sim
