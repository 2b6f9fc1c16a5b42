#include "MjpegClip.h"

#include <stdlib.h>

#include <fstream>
#include <stdexcept>

extern "C" {
#include <libavcodec/avcodec.h>
}

namespace {
void Require(bool condition, const char* what)
{
    if (!condition)
        throw std::runtime_error(what);
}

uint8_t Clamp(double v) { return static_cast<uint8_t>(v < 0 ? 0 : v > 255 ? 255 : v + 0.5); }

// Full-range YCbCr of the bars, the way the JPEG encoder takes them.
void PaintBars(AVFrame* yuv, const std::vector<Rgb>& bars)
{
    for (int plane = 0; plane < 3; ++plane) {
        const int shift = plane ? 1 : 0;
        for (int y = 0; y < yuv->height >> shift; ++y) {
            for (int x = 0; x < yuv->width >> shift; ++x) {
                const Rgb& c = bars[static_cast<size_t>(x << shift) * bars.size() / yuv->width];
                const double v[3] = {0.299 * c.r + 0.587 * c.g + 0.114 * c.b,
                                     128 - 0.168736 * c.r - 0.331264 * c.g + 0.5 * c.b,
                                     128 + 0.5 * c.r - 0.418688 * c.g - 0.081312 * c.b};
                yuv->data[plane][y * yuv->linesize[plane] + x] = Clamp(v[plane]);
            }
        }
    }
}
}  // namespace

Bytes EncodeBars(int width, int height, const std::vector<Rgb>& bars)
{
    const AVCodec* codec = avcodec_find_encoder(AV_CODEC_ID_MJPEG);
    Require(codec, "no MJPEG encoder");
    AVCodecContext* ctx = avcodec_alloc_context3(codec);
    ctx->width = width;
    ctx->height = height;
    ctx->pix_fmt = AV_PIX_FMT_YUVJ420P;
    ctx->time_base = AVRational{1, 30};
    // Bit-exact output carries no encoder comment segment of its own.
    ctx->flags |= AV_CODEC_FLAG_BITEXACT | AV_CODEC_FLAG_QSCALE;
    ctx->global_quality = FF_QP2LAMBDA * 2;
    AVFrame* frame = av_frame_alloc();
    AVPacket* packet = av_packet_alloc();
    frame->width = width;
    frame->height = height;
    frame->format = AV_PIX_FMT_YUVJ420P;
    frame->quality = ctx->global_quality;
    Require(avcodec_open2(ctx, codec, nullptr) == 0 && av_frame_get_buffer(frame, 0) == 0, "encoder set-up");
    PaintBars(frame, bars);
    Require(avcodec_send_frame(ctx, frame) == 0 && avcodec_receive_packet(ctx, packet) == 0, "encoding");
    Bytes jpeg(packet->data, packet->data + packet->size);
    av_packet_free(&packet);
    av_frame_free(&frame);
    avcodec_free_context(&ctx);
    return jpeg;
}

Bytes WithSegment(Bytes jpeg, uint8_t marker, const std::string& data)
{
    const size_t length = data.size() + 2;
    Require(length <= 0xFFFF, "segment too long");
    Bytes segment = {0xFF, marker, static_cast<uint8_t>(length >> 8), static_cast<uint8_t>(length)};
    segment.insert(segment.end(), data.begin(), data.end());
    jpeg.insert(jpeg.begin() + 2, segment.begin(), segment.end());
    return jpeg;
}

Bytes Concat(const std::vector<Bytes>& parts)
{
    Bytes all;
    for (const Bytes& part : parts)
        all.insert(all.end(), part.begin(), part.end());
    return all;
}

void WriteFileBytes(const std::string& path, const Bytes& bytes)
{
    std::ofstream(path, std::ios::binary).write(reinterpret_cast<const char*>(bytes.data()), long(bytes.size()));
}

bool PixelNear(const std::vector<char>& bgra, int width, int x, int y, Rgb colour, int tolerance)
{
    const uint8_t* p = reinterpret_cast<const uint8_t*>(bgra.data()) + (static_cast<size_t>(y) * width + x) * 4;
    return abs(p[0] - colour.b) <= tolerance && abs(p[1] - colour.g) <= tolerance &&
           abs(p[2] - colour.r) <= tolerance && p[3] == 255;
}
