// The report stream: image reports wait for the host's acknowledgement, and
// a pause ends the reports of the recognition it pauses.
#include <algorithm>
#include <atomic>
#include <thread>

extern "C" {
#include <libavcodec/avcodec.h>
}

#include "ModelFixture.h"

namespace sim::test {
namespace {

std::string AsText(const std::optional<Bytes>& b) { return b ? std::string(b->begin(), b->end()) : "(none)"; }

// The picture's width and height as FFmpeg's MJPEG decoder sees them; 0 x 0 when it cannot decode.
std::pair<int, int> DecodedSize(const Bytes& jpeg) {
    const AVCodec* codec = avcodec_find_decoder(AV_CODEC_ID_MJPEG);
    AVCodecContext* context = avcodec_alloc_context3(codec);
    AVPacket* packet = av_packet_alloc();
    AVFrame* frame = av_frame_alloc();
    std::pair<int, int> size{0, 0};
    if (avcodec_open2(context, codec, nullptr) >= 0 && av_new_packet(packet, int(jpeg.size())) >= 0) {
        std::copy(jpeg.begin(), jpeg.end(), packet->data);
        if (avcodec_send_packet(context, packet) >= 0 && avcodec_receive_frame(context, frame) >= 0)
            size = {frame->width, frame->height};
    }
    av_frame_free(&frame);
    av_packet_free(&packet);
    avcodec_free_context(&context);
    return size;
}

class SimReportsTest : public SimModelTest {
protected:
    void StartWithUpload(uint8_t uploadMode, uint8_t imageMode) {
        ASSERT_EQ(StatusOf(proto::kTagAutoUpload, {uploadMode, imageMode}), proto::kOk);
        ASSERT_EQ(StatusOf(proto::kTagAddFace, WithId32({0}, "alice")), proto::kOk);
        ASSERT_EQ(StatusOf(proto::kTagStartOneToMany, {1, 0}), proto::kOk);
    }

    // Sends a request and reads the module's records in order up to its
    // answer; returns the track and recognition reports met on the way, or -1
    // when no answer came.
    int ReportsBeforeAnswer(uint16_t tag, const Bytes& value) {
        host->Send(tag, value);
        int reports = 0;
        while (std::optional<std::pair<uint16_t, Bytes>> record = host->Next()) {
            if (record->first == tag) return reports;
            reports += record->first == proto::kTagTrackReport || record->first == proto::kTagRecoReport;
        }
        return -1;
    }
};

TEST_F(SimReportsTest, NextImageReportWaitsForTheAcknowledgement) {
    StartWithUpload(proto::kUploadImages, 2);
    model.EmitRound();
    std::optional<Bytes> image = host->WaitFor(proto::kTagImageReport);
    ASSERT_TRUE(image && host->WaitFor(proto::kTagTrackReport));
    const std::string reco = AsText(host->WaitFor(proto::kTagRecoReport));
    EXPECT_NE(reco.find("\"id\":\"alice\""), std::string::npos) << reco;
    EXPECT_NE(reco.find("\"live\":1"), std::string::npos) << reco;

    // Header text, a zero byte, then a JPEG of the size the header states (16 + 8 * 2).
    const auto headerEnd = std::find(image->begin(), image->end(), uint8_t(0));
    ASSERT_NE(headerEnd, image->end());
    const std::string header(image->begin(), headerEnd);
    const Bytes jpeg(headerEnd + 1, image->end());
    EXPECT_NE(header.find("\"width\":32"), std::string::npos) << header;
    EXPECT_NE(header.find("\"jpegLength\":" + std::to_string(jpeg.size()) + "}"), std::string::npos) << header;
    EXPECT_EQ(DecodedSize(jpeg), std::make_pair(32, 32));

    model.EmitRound();
    ASSERT_TRUE(host->WaitFor(proto::kTagRecoReport));   // the rest of the round still comes
    ReportCounters c = model.Counters();
    EXPECT_TRUE(c.image == 1u && c.imagesWithheld == 1u && c.awaitingImageAck);
    host->Send(proto::kTagImageReport, {});
    ASSERT_TRUE(model.WaitForCounters([](const ReportCounters& k) { return k.imageAcks == 1; }, 5000));
    model.EmitRound();
    ASSERT_TRUE(host->WaitFor(proto::kTagImageReport));
    EXPECT_EQ(model.Counters().image, 2u);
}

TEST_F(SimReportsTest, NothingIsReportedWhilePausedAndQrReportsFollowTheirInterval) {
    StartWithUpload(proto::kUploadFeatures, 0);
    ASSERT_EQ(StatusOf(proto::kTagPause, {}), proto::kOk);
    ASSERT_EQ(StatusOf(proto::kTagQueryRecognition, {0}), proto::kRecognitionPaused);
    ASSERT_EQ(StatusOf(proto::kTagQrSwitch, {1, 3}), proto::kOk);
    for (int i = 0; i < 6; ++i) model.EmitRound();
    ReportCounters c = model.Counters();
    EXPECT_TRUE(c.track + c.recognition + c.feature + c.image == 0u && c.qr == 2u);
    EXPECT_NE(AsText(host->WaitFor(proto::kTagQrReport)).find("\"type\":\"qrcode\""), std::string::npos);

    ASSERT_EQ(StatusOf(proto::kTagResume, {}), proto::kOk);
    model.EmitRound();
    EXPECT_NE(AsText(host->WaitFor(proto::kTagFeatureReport)).find(model.Face("alice")->feature), std::string::npos);
}

// Rounds are sent back to back while the host pauses and resumes: a round
// that was under way when the pause came must be on the link before the
// pause's answer, never after it.
TEST_F(SimReportsTest, NoReportFollowsTheAnswerToAPause) {
    StartWithUpload(proto::kUploadResults, 0);
    std::atomic<bool> stop{false};
    std::thread rounds([&] {
        while (!stop) model.EmitRound();
    });
    bool answered = true;
    int late = 0;   // reports between the pause's answer and the next answer
    for (int cycle = 0; cycle < 30 && answered && late == 0; ++cycle) {
        // Reports may come before the answer to a resume: they are not counted.
        // The pause goes once a round of the resumed recognition has come.
        answered = ReportsBeforeAnswer(proto::kTagResume, {}) >= 0 && host->WaitFor(proto::kTagTrackReport) &&
                   ReportsBeforeAnswer(proto::kTagPause, {}) >= 0;
        late = ReportsBeforeAnswer(proto::kTagQueryRecognition, {0});
    }
    stop = true;
    rounds.join();
    EXPECT_TRUE(answered) << "a request went unanswered, or a resumed recognition sent no round";
    EXPECT_EQ(late, 0) << "reports of a paused recognition reached the host";
    EXPECT_EQ(ReportsBeforeAnswer(proto::kTagQueryRecognition, {0}), 0);
}

TEST_F(SimReportsTest, ClosedUploadLeavesTrackReportsAndTheThreadSendsRoundsAtItsInterval) {
    StartWithUpload(proto::kUploadEverything, 0);
    ASSERT_EQ(StatusOf(proto::kTagAutoUpload, {proto::kUploadClose}), proto::kOk);
    model.EmitRound();
    ASSERT_TRUE(host->WaitFor(proto::kTagTrackReport));
    ReportCounters c = model.Counters();
    EXPECT_TRUE(c.track == 1u && c.recognition + c.feature + c.image == 0u);

    ASSERT_EQ(StatusOf(proto::kTagAutoUpload, {proto::kUploadResults, 0}), proto::kOk);
    model.SetReportInterval(20);
    EXPECT_TRUE(model.WaitForCounters([](const ReportCounters& k) { return k.recognition >= 3; }, 5000));
    model.SetReportInterval(0);
    for (int i = 0; i < 3; ++i) ASSERT_TRUE(host->WaitFor(proto::kTagRecoReport));
}

}  // namespace
}  // namespace sim::test
