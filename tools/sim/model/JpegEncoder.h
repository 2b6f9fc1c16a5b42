#pragma once
// Pictures to JPEG through libavcodec's MJPEG encoder, and the comment segment
// in which the module carries a frame's side text.

#include <string>

#include "SyntheticScene.h"
#include "WireFormat.h"

struct AVCodecContext;
struct AVFrame;
struct AVPacket;

namespace sim {

class JpegEncoder {
public:
    explicit JpegEncoder(int quality = 5) : m_quality(quality) {}
    ~JpegEncoder();
    JpegEncoder(const JpegEncoder&) = delete;
    JpegEncoder& operator=(const JpegEncoder&) = delete;

    // False when the encoder cannot be opened or refuses the picture.
    bool Encode(const Picture& picture, Bytes& jpeg);

private:
    bool Open(int width, int height);
    void Close();

    int m_quality;   // MJPEG quantiser scale, 2 (best) to 31
    AVCodecContext* m_context = nullptr;
    AVFrame* m_frame = nullptr;
    AVPacket* m_packet = nullptr;
};

// The JPEG with a comment segment (FF FE) holding `text` right after its start marker.
// Texts longer than a segment can hold are cut.
Bytes InsertJpegComment(const Bytes& jpeg, const std::string& text);

}  // namespace sim
