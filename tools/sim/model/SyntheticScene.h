#pragma once
// What the module's camera "sees": one face moving slowly across the picture.
// The same motion feeds the track reports and the simulator's video frames.

#include <cstdint>
#include <vector>

namespace sim {

struct FaceBox {
    int x = 0, y = 0, w = 0, h = 0;
};

// A full-range YUV 4:2:0 picture, the input of the JPEG encoder.
struct Picture {
    Picture(int width, int height);
    int width, height;
    std::vector<uint8_t> y, u, v;   // u and v at half resolution (rounded up)
    int ChromaWidth() const { return (width + 1) / 2; }
    int ChromaHeight() const { return (height + 1) / 2; }
};

FaceBox FaceBoxAt(int64_t elapsedMs, int width, int height);
// Background that drifts with `frame`, and, when `face` is given, the face in its box.
void DrawScene(Picture& picture, uint64_t frame, const FaceBox* face);

}  // namespace sim
