#include "ReportText.h"

#include <cstdio>

namespace sim {
namespace {

std::string BoxFields(const FaceBox& b) {
    return "\"x\":" + std::to_string(b.x) + ",\"y\":" + std::to_string(b.y) + ",\"w\":" + std::to_string(b.w) +
           ",\"h\":" + std::to_string(b.h);
}

std::string Head(const char* type, uint64_t seq) {
    return std::string("{\"type\":\"") + type + "\",\"seq\":" + std::to_string(seq);
}

}  // namespace

std::string JsonQuote(const std::string& text) {
    std::string out = "\"";
    for (unsigned char c : text) {
        if (c == '"' || c == '\\') {
            out += '\\';
            out += char(c);
        } else if (c < 0x20) {
            char escaped[8];
            std::snprintf(escaped, sizeof escaped, "\\u%04x", c);
            out += escaped;
        } else {
            out += char(c);
        }
    }
    return out + "\"";
}

std::string TrackReportText(uint64_t seq, uint32_t trackId, const FaceBox* face) {
    std::string faces = face ? "{\"trackId\":" + std::to_string(trackId) + "," + BoxFields(*face) + "}" : "";
    return Head("track", seq) + ",\"faces\":[" + faces + "]}";
}

std::string RecognitionReportText(uint64_t seq, const RecognitionResult& r) {
    char score[16];
    std::snprintf(score, sizeof score, "%d.%02d", r.scorePercent / 100, r.scorePercent % 100);
    return Head("recognition", seq) + ",\"trackId\":" + std::to_string(r.trackId) + ",\"mode\":\"" +
           (r.oneToOne ? "1:1" : "1:N") + "\",\"id\":" + JsonQuote(r.id) + ",\"score\":" + score +
           ",\"live\":" + (r.live ? "1" : "0") + ",\"match\":" + (r.id.empty() ? "0" : "1") + "}";
}

std::string QrReportText(uint64_t seq, const std::string& text) {
    return Head("qrcode", seq) + ",\"text\":" + JsonQuote(text) + "}";
}

std::string FeatureReportText(uint64_t seq, uint32_t trackId, const std::string& feature) {
    return Head("feature", seq) + ",\"trackId\":" + std::to_string(trackId) + ",\"feature\":" + JsonQuote(feature) +
           "}";
}

Bytes ImageReportValue(uint64_t seq, uint32_t trackId, int width, int height, const Bytes& jpeg) {
    std::string header = Head("image", seq) + ",\"trackId\":" + std::to_string(trackId) +
                         ",\"width\":" + std::to_string(width) + ",\"height\":" + std::to_string(height) +
                         ",\"jpegLength\":" + std::to_string(jpeg.size()) + "}";
    Bytes value(header.begin(), header.end());
    value.push_back(0);
    value.insert(value.end(), jpeg.begin(), jpeg.end());
    return value;
}

std::string FrameSideText(uint64_t frame, int64_t timestampMs, const FaceBox* face, const std::string& id) {
    std::string faces = face ? "{" + BoxFields(*face) + ",\"id\":" + JsonQuote(id) + "}" : "";
    return "{\"frame\":" + std::to_string(frame) + ",\"ts\":" + std::to_string(timestampMs) + ",\"faces\":[" +
           faces + "]}";
}

}  // namespace sim
