// Real MJPEG pictures made with libavcodec's encoder, for the capture tests.
#ifndef TESTS_VIDEO_MJPEGCLIP_H
#define TESTS_VIDEO_MJPEGCLIP_H

#include <stdint.h>

#include <chrono>
#include <functional>
#include <string>
#include <thread>
#include <vector>

typedef std::vector<uint8_t> Bytes;

struct Rgb {
    uint8_t r, g, b;
};

const Rgb kRed = {220, 30, 30};
const Rgb kGreen = {30, 200, 40};
const Rgb kBlue = {20, 40, 210};

// One JPEG of equal vertical bars, left to right, without a comment segment.
Bytes EncodeBars(int width, int height, const std::vector<Rgb>& bars);
inline Bytes EncodeSolid(int width, int height, Rgb colour) { return EncodeBars(width, height, {colour}); }

// Inserts a segment with the given marker (0xFE comment, 0xE0..0xEF
// application) right after the start-of-image marker.
Bytes WithSegment(Bytes jpeg, uint8_t marker, const std::string& data);
inline Bytes WithTrailer(Bytes jpeg, const std::string& text)
{
    jpeg.insert(jpeg.end(), text.begin(), text.end());
    return jpeg;
}

Bytes Concat(const std::vector<Bytes>& parts);
void WriteFileBytes(const std::string& path, const Bytes& bytes);

// Whether the BGRA pixel at (x, y) of a picture `width` wide is within
// `tolerance` of the colour in every channel, with an opaque alpha.
bool PixelNear(const std::vector<char>& bgra, int width, int x, int y, Rgb colour, int tolerance = 10);

// Calls get until it gives something other than -11 (no new picture) or 20 s pass.
inline int PollFrame(const std::function<int()>& get)
{
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(20);
    int result = get();
    while (result == -11 && std::chrono::steady_clock::now() < end) {
        std::this_thread::sleep_for(std::chrono::milliseconds(1));  // polling, as an application does
        result = get();
    }
    return result;
}

#endif
