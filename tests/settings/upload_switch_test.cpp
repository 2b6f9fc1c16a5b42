// The switches of the module's own reports: recognition information, face
// information in frames and QR codes.
#include <functional>

#include "SettingsDevice.h"

namespace {
const uint16_t kAiInfoTag = 0x0018;
const uint16_t kFaceInfoTag = 0x0019;
const uint16_t kQrTag = 0x0022;

// One of the four upload switches, the request it sends and its record's inputs.
struct UploadSwitchCase {
    const char* function;
    uint16_t tag;
    std::function<int(void*)> call;
    sim::Bytes payload;
    const char* inputs;
};

const UploadSwitchCase kUploadSwitches[] = {
    {"OpenAutoUploadAiInfo", kAiInfoTag, [](void* d) { return OpenAutoUploadAiInfo(d, 4, 7); }, {0x04, 0x07},
     " nUploadMode : 4 nImageMode : 7"},
    {"CloseAutoUploadAiInfo", kAiInfoTag, [](void* d) { return CloseAutoUploadAiInfo(d); }, {0x01}, ""},
    {"OpenAutoUploadFaceInfoInFrame", kFaceInfoTag, [](void* d) { return OpenAutoUploadFaceInfoInFrame(d); },
     {0x00}, ""},
    {"CloseAutoUploadFaceInfoInFrame", kFaceInfoTag, [](void* d) { return CloseAutoUploadFaceInfoInFrame(d); },
     {0x01}, ""},
};

const char* const kUploadModeText =
    "nUploadMode != 0x00 && nUploadMode != 0x02 && nUploadMode != 0x03 && nUploadMode != 0x04";
const char* const kImageModeText = "nImageMode < 0 || nImageMode > 7";
}  // namespace

using UploadSwitches = SettingsDevice;

TEST_F(UploadSwitches, EachSwitchSendsItsDirectionByte)
{
    for (const UploadSwitchCase& c : kUploadSwitches) {
        SCOPED_TRACE(c.function);
        Answer(c.tag, {0x09});
        EXPECT_EQ(9, c.call(dev));
        EXPECT_EQ(c.payload, LastRequest(c.tag));
        EXPECT_EQ(Body(c.inputs, "", 9), LastRecord(c.function));
    }
}

TEST_F(UploadSwitches, AnswersAreTestedTwiceForTheirLength)
{
    for (const UploadSwitchCase& c : kUploadSwitches) {
        SCOPED_TRACE(c.function);
        Answer(c.tag, {});
        EXPECT_EQ(-8, c.call(dev));
        EXPECT_EQ(Failure("tlvMessage.nLength  == 0", c.inputs, "", -8), LastRecord(c.function));
        Answer(c.tag, {0x00, 0x00});
        EXPECT_EQ(-8, c.call(dev));
        EXPECT_EQ(Failure("tlvMessage.nLength != 1", c.inputs, "", -8), LastRecord(c.function));
    }
}

TEST_F(UploadSwitches, UploadModeOneAndImageModesAboveSevenAreRefused)
{
    const std::pair<char, char> refused[] = {{1, 0}, {5, 0}, {-1, 0}, {0, 8}, {0, -1}, {4, -128}};
    for (const std::pair<char, char>& modes : refused) {
        SCOPED_TRACE(std::to_string(modes.first) + ", " + std::to_string(modes.second));
        EXPECT_EQ(-4, OpenAutoUploadAiInfo(dev, modes.first, modes.second));
        bool badUpload = modes.first != 0 && modes.first != 4;
        EXPECT_EQ(Refusal(badUpload ? kUploadModeText : kImageModeText), LastRecord("OpenAutoUploadAiInfo"));
    }
    EXPECT_EQ(0u, SentCount(kAiInfoTag));
}

TEST_F(UploadSwitches, QrCodeSwitchTakesAnyInterval)
{
    Answer(kQrTag, {0x00});
    EXPECT_EQ(0, SetQRCodeSwitch(dev, 1, 255));
    EXPECT_EQ((sim::Bytes{0x01, 0xFF}), LastRequest(kQrTag));
    EXPECT_EQ(Body(" isOpen : 1 interval : 255", "", 0), LastRecord("SetQRCodeSwitch"));
    EXPECT_EQ(-4, SetQRCodeSwitch(dev, 2, 10));
    EXPECT_EQ(Failure("isOpen != 0 && isOpen != 1", " isOpen : 2", "", -4), LastRecord("SetQRCodeSwitch"));
    EXPECT_EQ(1u, SentCount(kQrTag));
}

TEST_F(UploadSwitches, QrCodeSwitchTestsItsAnswerOnce)
{
    Answer(kQrTag, {});
    EXPECT_EQ(-8, SetQRCodeSwitch(dev, 0, 3));
    EXPECT_EQ(Failure("tlvMessage.nLength != 1", " isOpen : 0 interval : 3", "", -8), LastRecord("SetQRCodeSwitch"));
    Answer(kQrTag, {0x00, 0x00});
    EXPECT_EQ(-8, SetQRCodeSwitch(dev, 0, 3));
    EXPECT_EQ(Failure("tlvMessage.nLength != 1", " isOpen : 0 interval : 3", "", -8), LastRecord("SetQRCodeSwitch"));
}

using UploadSwitchesOfTheModule = ModelDevice;

TEST_F(UploadSwitchesOfTheModule, TheModuleFollowsTheSwitches)
{
    ASSERT_EQ(0, OpenAutoUploadAiInfo(dev, 3, 5));
    sim::ReportSwitches reports = model.Settings().reports;
    EXPECT_TRUE(reports.uploadOpen);
    EXPECT_EQ(3, reports.uploadMode);
    EXPECT_EQ(5, reports.imageMode);
    ASSERT_EQ(0, CloseAutoUploadAiInfo(dev));
    EXPECT_FALSE(model.Settings().reports.uploadOpen);

    ASSERT_EQ(0, CloseAutoUploadFaceInfoInFrame(dev));
    EXPECT_FALSE(model.Settings().reports.faceInfoInFrame);
    ASSERT_EQ(0, OpenAutoUploadFaceInfoInFrame(dev));
    EXPECT_TRUE(model.Settings().reports.faceInfoInFrame);

    ASSERT_EQ(0, SetQRCodeSwitch(dev, 1, 7));
    reports = model.Settings().reports;
    EXPECT_TRUE(reports.qrOpen);
    EXPECT_EQ(7, reports.qrInterval);
}
