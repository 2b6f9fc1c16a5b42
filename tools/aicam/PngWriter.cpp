#include "PngWriter.h"

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavutil/frame.h>
}

#include "FileData.h"
#include "ResultText.h"

namespace {
// The PNG encoder takes RGB but not BGRA: the channels are reordered and the
// alpha, always opaque in camera pictures, is dropped.
bool FillRgb(AVFrame* frame, const unsigned char* bgra)
{
    if (av_frame_get_buffer(frame, 0) < 0)
        return false;
    for (int y = 0; y < frame->height; ++y) {
        const unsigned char* in = bgra + static_cast<size_t>(y) * frame->width * 4;
        unsigned char* out = frame->data[0] + static_cast<size_t>(y) * frame->linesize[0];
        for (int x = 0; x < frame->width; ++x, in += 4, out += 3) {
            out[0] = in[2];
            out[1] = in[1];
            out[2] = in[0];
        }
    }
    return true;
}

int Encode(AVCodecContext* context, AVFrame* frame, AVPacket* packet)
{
    if (avcodec_send_frame(context, frame) < 0 || avcodec_send_frame(context, nullptr) < 0)
        return -1;
    return avcodec_receive_packet(context, packet);
}
}  // namespace

int WritePng(const std::string& command, const std::string& path, const unsigned char* bgra, int width, int height)
{
    const AVCodec* codec = avcodec_find_encoder(AV_CODEC_ID_PNG);
    AVCodecContext* context = codec ? avcodec_alloc_context3(codec) : nullptr;
    AVFrame* frame = av_frame_alloc();
    AVPacket* packet = av_packet_alloc();
    int result = kEncoderFailed;
    if (context && frame && packet) {
        context->width = frame->width = width;
        context->height = frame->height = height;
        context->pix_fmt = AV_PIX_FMT_RGB24;
        frame->format = AV_PIX_FMT_RGB24;
        context->time_base = AVRational{1, 1};
        if (avcodec_open2(context, codec, nullptr) >= 0 && FillRgb(frame, bgra) &&
            Encode(context, frame, packet) >= 0)
            result = 0;
    }
    if (result == 0)
        result = WriteWholeFile(command, path, packet->data, static_cast<size_t>(packet->size));
    else
        Fail(command, result);
    av_packet_free(&packet);
    av_frame_free(&frame);
    avcodec_free_context(&context);
    return result;
}
