// The report stream: image reports wait for the host's acknowledgement.
#include <algorithm>

#include "JpegDecode.h"
#include "ModelFixture.h"

namespace sim::test {
namespace {

std::string AsText(const Bytes& b) { return std::string(b.begin(), b.end()); }

class SimReportsTest : public SimModelTest {
protected:
    void StartWithUpload(uint8_t uploadMode, uint8_t imageMode) {
        ASSERT_EQ(StatusOf(proto::kTagAutoUpload, {uploadMode, imageMode}), proto::kOk);
        ASSERT_EQ(StatusOf(proto::kTagAddFace, WithId32({0}, "alice")), proto::kOk);
        ASSERT_EQ(StatusOf(proto::kTagStartOneToMany, {1, 0}), proto::kOk);
    }
};

TEST_F(SimReportsTest, NextImageReportWaitsForTheAcknowledgement) {
    StartWithUpload(proto::kUploadImages, 2);
    model.EmitRound();
    std::optional<Bytes> image = host->WaitFor(proto::kTagImageReport);
    ASSERT_TRUE(image);
    ASSERT_TRUE(host->WaitFor(proto::kTagTrackReport));
    std::optional<Bytes> reco = host->WaitFor(proto::kTagRecoReport);
    ASSERT_TRUE(reco);
    EXPECT_NE(AsText(*reco).find("\"id\":\"alice\""), std::string::npos) << AsText(*reco);
    EXPECT_NE(AsText(*reco).find("\"live\":1"), std::string::npos);

    // Header text, a zero byte, then a JPEG of the size the header states (16 + 8 * 2).
    const size_t headerEnd = size_t(std::find(image->begin(), image->end(), uint8_t(0)) - image->begin());
    ASSERT_LT(headerEnd, image->size());
    const std::string header(image->begin(), image->begin() + long(headerEnd));
    EXPECT_NE(header.find("\"width\":32"), std::string::npos) << header;
    const Bytes jpeg(image->begin() + long(headerEnd) + 1, image->end());
    EXPECT_NE(header.find("\"jpegLength\":" + std::to_string(jpeg.size()) + "}"), std::string::npos);
    DecodedSize size;
    ASSERT_TRUE(DecodeJpeg(jpeg, size));
    EXPECT_EQ(size.width, 32);
    EXPECT_EQ(size.height, 32);

    model.EmitRound();
    ASSERT_TRUE(host->WaitFor(proto::kTagRecoReport));   // the rest of the round still comes
    ReportCounters c = model.Counters();
    EXPECT_EQ(c.image, 1u);
    EXPECT_EQ(c.imagesWithheld, 1u);
    EXPECT_TRUE(c.awaitingImageAck);

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
    EXPECT_EQ(c.track + c.recognition + c.feature + c.image, 0u);
    EXPECT_EQ(c.qr, 2u);
    std::optional<Bytes> qr = host->WaitFor(proto::kTagQrReport);
    ASSERT_TRUE(qr);
    EXPECT_NE(AsText(*qr).find("\"type\":\"qrcode\""), std::string::npos);

    ASSERT_EQ(StatusOf(proto::kTagResume, {}), proto::kOk);
    model.EmitRound();
    std::optional<Bytes> feature = host->WaitFor(proto::kTagFeatureReport);
    ASSERT_TRUE(feature);
    EXPECT_NE(AsText(*feature).find(model.Face("alice")->feature), std::string::npos);
}

TEST_F(SimReportsTest, ClosingTheUploadLeavesOnlyTrackReports) {
    StartWithUpload(proto::kUploadEverything, 0);
    ASSERT_EQ(StatusOf(proto::kTagAutoUpload, {proto::kUploadClose}), proto::kOk);
    model.EmitRound();
    ASSERT_TRUE(host->WaitFor(proto::kTagTrackReport));
    ReportCounters c = model.Counters();
    EXPECT_EQ(c.track, 1u);
    EXPECT_EQ(c.recognition + c.feature + c.image, 0u);
}

TEST_F(SimReportsTest, ReportThreadSendsRoundsAtItsInterval) {
    StartWithUpload(proto::kUploadResults, 0);
    model.SetReportInterval(20);
    EXPECT_TRUE(model.WaitForCounters([](const ReportCounters& k) { return k.recognition >= 3; }, 5000));
    model.SetReportInterval(0);
    for (int i = 0; i < 3; ++i) ASSERT_TRUE(host->WaitFor(proto::kTagRecoReport));
}

}  // namespace
}  // namespace sim::test
