#include "JpegDecode.h"

#include <cstring>

extern "C" {
#include <libavcodec/avcodec.h>
}

namespace sim::test {

bool DecodeJpeg(const Bytes& jpeg, DecodedSize& size) {
    const AVCodec* codec = avcodec_find_decoder(AV_CODEC_ID_MJPEG);
    AVCodecContext* context = codec ? avcodec_alloc_context3(codec) : nullptr;
    AVPacket* packet = av_packet_alloc();
    AVFrame* frame = av_frame_alloc();
    bool ok = context && packet && frame && avcodec_open2(context, codec, nullptr) >= 0 &&
              av_new_packet(packet, int(jpeg.size())) >= 0;
    if (ok) {
        std::memcpy(packet->data, jpeg.data(), jpeg.size());
        ok = avcodec_send_packet(context, packet) >= 0 && avcodec_receive_frame(context, frame) >= 0;
    }
    if (ok) size = DecodedSize{frame->width, frame->height};
    av_frame_free(&frame);
    av_packet_free(&packet);
    avcodec_free_context(&context);
    return ok;
}

}  // namespace sim::test
