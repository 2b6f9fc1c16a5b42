// Real MJPEG pictures made with libavcodec's encoder, for the capture tests.
#ifndef TESTS_VIDEO_MJPEGCLIP_H
#define TESTS_VIDEO_MJPEGCLIP_H

#include <stdint.h>

#include <string>
#include <vector>

typedef std::vector<uint8_t> Bytes;

struct Rgb {
    uint8_t r, g, b;
};

const Rgb kRed = {220, 30, 30};
const Rgb kGreen = {30, 200, 40};
const Rgb kBlue = {20, 40, 210};
const Rgb kWhite = {235, 235, 235};

// One JPEG of equal vertical bars, left to right, without a comment segment.
Bytes EncodeBars(int width, int height, const std::vector<Rgb>& bars);
Bytes EncodeSolid(int width, int height, Rgb colour);

// Inserts a segment with the given marker (0xFE comment, 0xE0..0xEF
// application) right after the start-of-image marker.
Bytes WithSegment(Bytes jpeg, uint8_t marker, const std::string& data);
Bytes WithTrailer(Bytes jpeg, const std::string& text);
// The picture cut a few bytes into its entropy-coded data.
Bytes Truncated(const Bytes& jpeg);
// A start-of-image marker and a short application segment, then noise.
Bytes Garbage(size_t size);

Bytes Concat(const std::vector<Bytes>& parts);
void WriteFileBytes(const std::string& path, const Bytes& bytes);

// Whether the BGRA pixel at (x, y) of a picture `width` wide is within
// `tolerance` of the colour in every channel, with an opaque alpha.
bool PixelNear(const std::vector<char>& bgra, int width, int x, int y, Rgb colour, int tolerance = 10);

#endif
