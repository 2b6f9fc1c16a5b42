// Fixed-seed inputs for the fuzz drivers: random bytes, and frames that pass the
// checks a random input would fail (marker, length, checksum) with random records.
#ifndef FUZZ_RANDOM_INPUT_H
#define FUZZ_RANDOM_INPUT_H

#include <stdint.h>

#include <random>
#include <vector>

using Bytes = std::vector<uint8_t>;

class RandomInput {
public:
    explicit RandomInput(uint32_t seed) : m_random(seed) {}

    uint32_t Below(uint32_t bound) { return bound ? m_random() % bound : 0; }
    Bytes Noise(size_t maxLength);
    // TLV records whose lengths are sometimes true, sometimes wild.
    Bytes Records(uint16_t tag, size_t maxValue);
    // A module frame around a payload, with a correct checksum.
    static Bytes Frame(const Bytes& payload);
    // A few bytes of `input` changed, cut or repeated.
    Bytes Mutate(Bytes input);

private:
    std::mt19937 m_random;
};

#endif
