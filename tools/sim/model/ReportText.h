#pragma once
// The JSON texts of the module's reports and of its frame side text
// (layouts in ModuleProtocol.h).

#include <cstdint>
#include <string>

#include "SyntheticScene.h"
#include "WireFormat.h"

namespace sim {

struct RecognitionResult {
    uint32_t trackId = 0;
    bool oneToOne = false;
    std::string id;      // empty when nothing matched
    int scorePercent = 0;
    bool live = false;
};

std::string JsonQuote(const std::string& text);
std::string TrackReportText(uint64_t seq, uint32_t trackId, const FaceBox* face);
std::string RecognitionReportText(uint64_t seq, const RecognitionResult& result);
std::string QrReportText(uint64_t seq, const std::string& text);
std::string FeatureReportText(uint64_t seq, uint32_t trackId, const std::string& feature);
// Header, one zero byte, then the JPEG.
Bytes ImageReportValue(uint64_t seq, uint32_t trackId, int width, int height, const Bytes& jpeg);
std::string FrameSideText(uint64_t frame, int64_t timestampMs, const FaceBox* face, const std::string& id);

}  // namespace sim
