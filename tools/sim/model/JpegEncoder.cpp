#include "JpegEncoder.h"

#include <algorithm>

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavutil/frame.h>
}

namespace sim {

JpegEncoder::~JpegEncoder() { Close(); }

void JpegEncoder::Close() {
    avcodec_free_context(&m_context);
    av_frame_free(&m_frame);
    av_packet_free(&m_packet);
}

bool JpegEncoder::Open(int width, int height) {
    Close();
    const AVCodec* codec = avcodec_find_encoder(AV_CODEC_ID_MJPEG);
    if (!codec) return false;
    m_context = avcodec_alloc_context3(codec);
    m_frame = av_frame_alloc();
    m_packet = av_packet_alloc();
    if (!m_context || !m_frame || !m_packet) return false;
    m_context->width = width;
    m_context->height = height;
    m_context->pix_fmt = AV_PIX_FMT_YUV420P;
    m_context->color_range = AVCOL_RANGE_JPEG;
    m_context->time_base = AVRational{1, 25};
    m_context->flags |= AV_CODEC_FLAG_QSCALE;
    if (avcodec_open2(m_context, codec, nullptr) < 0) {
        Close();
        return false;
    }
    return true;
}

bool JpegEncoder::Encode(const Picture& picture, Bytes& jpeg) {
    if (picture.width <= 0 || picture.height <= 0) return false;
    if (!m_context || m_context->width != picture.width || m_context->height != picture.height) {
        if (!Open(picture.width, picture.height)) return false;
    }
    // The encoder only reads the planes, so the frame borrows them.
    m_frame->format = AV_PIX_FMT_YUV420P;
    m_frame->width = picture.width;
    m_frame->height = picture.height;
    m_frame->color_range = AVCOL_RANGE_JPEG;
    m_frame->quality = FF_QP2LAMBDA * m_quality;
    m_frame->data[0] = const_cast<uint8_t*>(picture.y.data());
    m_frame->data[1] = const_cast<uint8_t*>(picture.u.data());
    m_frame->data[2] = const_cast<uint8_t*>(picture.v.data());
    m_frame->linesize[0] = picture.width;
    m_frame->linesize[1] = picture.ChromaWidth();
    m_frame->linesize[2] = picture.ChromaWidth();
    bool ok = avcodec_send_frame(m_context, m_frame) >= 0 && avcodec_receive_packet(m_context, m_packet) >= 0;
    if (ok) jpeg.assign(m_packet->data, m_packet->data + m_packet->size);
    av_packet_unref(m_packet);
    for (auto& plane : m_frame->data) plane = nullptr;
    return ok;
}

Bytes InsertJpegComment(const Bytes& jpeg, const std::string& text) {
    if (jpeg.size() < 2 || jpeg[0] != 0xFF || jpeg[1] != 0xD8) return jpeg;
    const size_t length = std::min<size_t>(text.size(), 0xFFFF - 2);
    Bytes out{0xFF, 0xD8, 0xFF, 0xFE, uint8_t((length + 2) >> 8), uint8_t((length + 2) & 0xFF)};
    out.insert(out.end(), text.begin(), text.begin() + long(length));
    out.insert(out.end(), jpeg.begin() + 2, jpeg.end());
    return out;
}

}  // namespace sim
