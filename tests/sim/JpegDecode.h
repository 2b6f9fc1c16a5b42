#pragma once
// Decodes a JPEG with FFmpeg's MJPEG decoder, to check what the module sends.

#include "WireFormat.h"

namespace sim::test {

struct DecodedSize {
    int width = 0;
    int height = 0;
};

// False when FFmpeg cannot decode the bytes.
bool DecodeJpeg(const Bytes& jpeg, DecodedSize& size);

}  // namespace sim::test
