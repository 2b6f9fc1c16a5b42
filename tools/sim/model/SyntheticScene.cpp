#include "SyntheticScene.h"

#include <algorithm>
#include <cmath>

namespace sim {
namespace {

struct Yuv {
    uint8_t y, u, v;
};

const Yuv kSkin{170, 110, 155};
const Yuv kFeatureDark{40, 128, 128};
const Yuv kBoxGreen{150, 60, 50};

void PutPixel(Picture& p, int x, int y, Yuv c) {
    if (x < 0 || y < 0 || x >= p.width || y >= p.height) return;
    p.y[size_t(y) * size_t(p.width) + size_t(x)] = c.y;
    size_t ci = size_t(y / 2) * size_t(p.ChromaWidth()) + size_t(x / 2);
    p.u[ci] = c.u;
    p.v[ci] = c.v;
}

// Filled ellipse centred at (cx, cy) with radii rx, ry.
void FillEllipse(Picture& p, int cx, int cy, int rx, int ry, Yuv c) {
    if (rx <= 0 || ry <= 0) return;
    for (int dy = -ry; dy <= ry; ++dy)
        for (int dx = -rx; dx <= rx; ++dx)
            if (double(dx) * dx / (double(rx) * rx) + double(dy) * dy / (double(ry) * ry) <= 1.0)
                PutPixel(p, cx + dx, cy + dy, c);
}

void DrawBoxOutline(Picture& p, const FaceBox& b, Yuv c) {
    const int t = std::max(1, std::min(b.w, b.h) / 40);
    for (int x = b.x; x < b.x + b.w; ++x)
        for (int k = 0; k < t; ++k) {
            PutPixel(p, x, b.y + k, c);
            PutPixel(p, x, b.y + b.h - 1 - k, c);
        }
    for (int y = b.y; y < b.y + b.h; ++y)
        for (int k = 0; k < t; ++k) {
            PutPixel(p, b.x + k, y, c);
            PutPixel(p, b.x + b.w - 1 - k, y, c);
        }
}

void DrawFace(Picture& p, const FaceBox& b) {
    const int cx = b.x + b.w / 2, cy = b.y + b.h / 2;
    FillEllipse(p, cx, cy, b.w * 2 / 5, b.h * 12 / 25, kSkin);
    FillEllipse(p, cx - b.w / 6, cy - b.h / 8, b.w / 16, b.h / 20, kFeatureDark);
    FillEllipse(p, cx + b.w / 6, cy - b.h / 8, b.w / 16, b.h / 20, kFeatureDark);
    FillEllipse(p, cx, cy + b.h / 5, b.w / 6, b.h / 30, kFeatureDark);
    DrawBoxOutline(p, b, kBoxGreen);
}

}  // namespace

Picture::Picture(int w, int h)
    : width(w), height(h), y(size_t(w) * size_t(h)), u(size_t(ChromaWidth()) * size_t(ChromaHeight())),
      v(u.size()) {}

FaceBox FaceBoxAt(int64_t elapsedMs, int width, int height) {
    FaceBox b;
    b.w = std::max(8, std::min(width, height) / 3);
    b.h = b.w * 5 / 4;
    const double t = double(elapsedMs) / 1000.0;
    const int cx = width / 2 + int(double(width - b.w) / 2.0 * 0.8 * std::sin(t * 0.9));
    const int cy = height / 2 + int(double(std::max(0, height - b.h)) / 2.0 * 0.6 * std::sin(t * 1.3));
    b.x = std::clamp(cx - b.w / 2, 0, std::max(0, width - b.w));
    b.y = std::clamp(cy - b.h / 2, 0, std::max(0, height - b.h));
    return b;
}

void DrawScene(Picture& p, uint64_t frame, const FaceBox* face) {
    for (int row = 0; row < p.height; ++row)
        for (int col = 0; col < p.width; ++col)
            p.y[size_t(row) * size_t(p.width) + size_t(col)] = uint8_t(60 + ((uint64_t(col + row) + frame * 2) % 64));
    std::fill(p.u.begin(), p.u.end(), uint8_t(120));
    std::fill(p.v.begin(), p.v.end(), uint8_t(132));
    if (face) DrawFace(p, *face);
}

}  // namespace sim
