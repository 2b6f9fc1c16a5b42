#include "MjpegClip.h"

#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include <stdexcept>

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavutil/frame.h>
#include <libswscale/swscale.h>
}

namespace {
void Require(bool condition, const char* what)
{
    if (!condition)
        throw std::runtime_error(what);
}

// Paints the bars in RGB and lets swscale make the encoder's YUV picture.
void PaintBars(AVFrame* yuv, const std::vector<Rgb>& bars)
{
    const int width = yuv->width;
    const int height = yuv->height;
    std::vector<uint8_t> rgb(static_cast<size_t>(width) * height * 3);
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            const Rgb& c = bars[static_cast<size_t>(x) * bars.size() / width];
            uint8_t* p = &rgb[(static_cast<size_t>(y) * width + x) * 3];
            p[0] = c.r;
            p[1] = c.g;
            p[2] = c.b;
        }
    }
    SwsContext* sws = sws_getContext(width, height, AV_PIX_FMT_RGB24, width, height,
                                     AV_PIX_FMT_YUVJ420P, SWS_BICUBIC, nullptr, nullptr, nullptr);
    Require(sws, "sws_getContext");
    const uint8_t* src[1] = {rgb.data()};
    int srcStride[1] = {width * 3};
    sws_scale(sws, src, srcStride, 0, height, yuv->data, yuv->linesize);
    sws_freeContext(sws);
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
    Require(avcodec_open2(ctx, codec, nullptr) == 0, "avcodec_open2");
    AVFrame* frame = av_frame_alloc();
    frame->width = width;
    frame->height = height;
    frame->format = AV_PIX_FMT_YUVJ420P;
    frame->quality = ctx->global_quality;
    Require(av_frame_get_buffer(frame, 0) == 0, "av_frame_get_buffer");
    PaintBars(frame, bars);
    AVPacket* packet = av_packet_alloc();
    Require(avcodec_send_frame(ctx, frame) == 0, "avcodec_send_frame");
    Require(avcodec_receive_packet(ctx, packet) == 0, "avcodec_receive_packet");
    Bytes jpeg(packet->data, packet->data + packet->size);
    av_packet_free(&packet);
    av_frame_free(&frame);
    avcodec_free_context(&ctx);
    return jpeg;
}

Bytes EncodeSolid(int width, int height, Rgb colour) { return EncodeBars(width, height, {colour}); }

Bytes WithSegment(Bytes jpeg, uint8_t marker, const std::string& data)
{
    const size_t length = data.size() + 2;
    Require(length <= 0xFFFF, "segment too long");
    Bytes segment = {0xFF, marker, static_cast<uint8_t>(length >> 8), static_cast<uint8_t>(length)};
    segment.insert(segment.end(), data.begin(), data.end());
    jpeg.insert(jpeg.begin() + 2, segment.begin(), segment.end());
    return jpeg;
}

Bytes WithTrailer(Bytes jpeg, const std::string& text)
{
    jpeg.insert(jpeg.end(), text.begin(), text.end());
    return jpeg;
}

Bytes Truncated(const Bytes& jpeg)
{
    for (size_t i = 0; i + 1 < jpeg.size(); ++i) {
        if (jpeg[i] == 0xFF && jpeg[i + 1] == 0xDA)
            return Bytes(jpeg.begin(), jpeg.begin() + static_cast<long>(i) + 24);
    }
    throw std::runtime_error("no start of scan");
}

Bytes Garbage(size_t size)
{
    Bytes bytes = {0xFF, 0xD8, 0xFF, 0xE0, 0x00, 0x10};
    uint32_t state = 12345;
    while (bytes.size() < size) {
        state = state * 1103515245u + 12345u;
        // No 0xFF: the noise must not look like a marker to the stream's parser.
        bytes.push_back(static_cast<uint8_t>((state >> 16) % 0xFF));
    }
    return bytes;
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
    FILE* file = fopen(path.c_str(), "wb");
    Require(file, "fopen");
    size_t written = fwrite(bytes.data(), 1, bytes.size(), file);
    fclose(file);
    Require(written == bytes.size(), "fwrite");
}

bool PixelNear(const std::vector<char>& bgra, int width, int x, int y, Rgb colour, int tolerance)
{
    const uint8_t* p = reinterpret_cast<const uint8_t*>(bgra.data()) + (static_cast<size_t>(y) * width + x) * 4;
    return abs(p[0] - colour.b) <= tolerance && abs(p[1] - colour.g) <= tolerance &&
           abs(p[2] - colour.r) <= tolerance && p[3] == 255;
}
