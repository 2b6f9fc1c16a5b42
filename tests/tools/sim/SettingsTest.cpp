// Settings with their ranges, the reversed operation bytes, and the silence after a reboot.
#include "ModelFixture.h"

namespace sim::test {
namespace {

struct RangeCase {
    uint16_t tag;
    Bytes rejected;
    Bytes accepted;
    Bytes query;      // empty: the setting has no query
    Bytes answer;     // the query's answer after `accepted`
};

TEST_F(SimModelTest, SettingsRejectValuesOutOfRangeAndKeepAcceptedOnes) {
    const std::vector<RangeCase> cases = {
        {proto::kTagRecognizeCount, {1, 11, 5}, {1, 10, 10}, {0}, {0, 10, 10}},
        {proto::kTagTemplateUpdate, {1, 2}, {1, 1}, {0}, {0, 1}},
        {proto::kTagIrLight, {0, 201, 0}, {0, 200, 120}, {1}, {0, 200, 120}},
        {proto::kTagIrLight, {0, 0, 121}, {0, 10, 5}, {1}, {0, 10, 5}},
        {proto::kTagScreenDirection, {1, 5}, {1, 4}, {0}, {0, 4}},
        {proto::kTagScreenDirection, {1, 0}, {1, 2}, {0}, {0, 2}},
        {proto::kTagFrameRate, {1, 26}, {1, 10}, {0}, {0, 10, 0, 0, 0}},
        {proto::kTagFrameRate, {1, 9}, {1, 25}, {0}, {0, 25, 0, 0, 0}},
        {proto::kTagNoFlicker, {1, 1, 2, 1}, {1, 1, 1, 0}, {0, 1}, {0, 1, 0}},
        {proto::kTagCameraStream, {1, 2}, {1, 1}, {2, 1}, {0, 0}},
        {proto::kTagRotateAngle, {4}, {3}, {}, {}},
        {proto::kTagResolution, {5}, {4}, {}, {}},
        {proto::kTagUvcSwitch, {0xFF}, {0}, {}, {}},
        {proto::kTagAutoUpload, {1 + 4, 0}, {4, 7}, {}, {}},
        {proto::kTagAutoUpload, {0, 8}, {0, 0}, {}, {}},
        {proto::kTagQrSwitch, {2, 10}, {1, 255}, {}, {}},
    };
    for (const RangeCase& c : cases) {
        SCOPED_TRACE(testing::Message() << "tag 0x" << std::hex << c.tag);
        EXPECT_EQ(StatusOf(c.tag, c.rejected), proto::kInvalidParam);
        if (!c.query.empty()) {
            std::optional<Bytes> unchanged = host->Ask(c.tag, c.query);
            ASSERT_TRUE(unchanged);
            EXPECT_NE(*unchanged, c.answer);
        }
        EXPECT_EQ(StatusOf(c.tag, c.accepted), proto::kOk);
        EXPECT_TRUE(c.query.empty() || host->Ask(c.tag, c.query) == c.answer);
    }
    const ModuleSettings s = model.Settings();   // the settings without a query
    EXPECT_TRUE(s.camera.resolution == 4 && s.camera.rotateAngle == 3 && s.reports.uploadMode == 0);
    EXPECT_TRUE(s.reports.qrOpen && s.reports.qrInterval == 255);
}

TEST_F(SimModelTest, ConfigurationUsesZeroToSetAndOneToGet) {
    EXPECT_EQ(StatusOf(proto::kTagRecConfig, {0, 0, 'a', 'b', 'c'}), proto::kOk);
    EXPECT_EQ(host->Ask(proto::kTagRecConfig, {1, 0}), (Bytes{0, 'a', 'b', 'c'}));
    EXPECT_EQ(StatusOf(proto::kTagRecConfig, {1, 1}), proto::kInvalidParam);
}

TEST_F(SimModelTest, RebootAnswersThenStaysSilentForItsMoment) {
    model.SetRebootQuietMs(60000);
    ASSERT_EQ(StatusOf(proto::kTagStartOneToMany, {0, 0}), proto::kOk);
    EXPECT_EQ(StatusOf(proto::kTagReboot, {5}), proto::kInvalidParam);
    ASSERT_EQ(StatusOf(proto::kTagReboot, {4}), proto::kOk);
    EXPECT_TRUE(model.IsQuiet() && model.Settings().engineeringMode);
    EXPECT_EQ(model.Recognition().run, RecognitionRun::Idle);
    EXPECT_EQ(model.Restarts(), (std::vector<std::pair<uint16_t, uint8_t>>{{proto::kTagReboot, 4}}));
    host->Send(proto::kTagPing, {'a', 'b', 'c'});
    ASSERT_TRUE(simulator.WaitForRequests(4, 5000));
    EXPECT_FALSE(host->WaitFor(proto::kTagPing, 200));   // the request arrived; no answer comes
}

TEST_F(SimModelTest, IdentityAnswersCarryTheirHeads) {
    const std::string serial = model.Identity().serialNumber;   // after 4 bytes, the first its length
    Bytes sn = {uint8_t(serial.size()), 0, 0, 0};
    PutText(sn, serial);
    EXPECT_EQ(host->Ask(proto::kTagSerialNumber, {0}), sn);
    model.SetTemperature(42);
    EXPECT_EQ(host->Ask(proto::kTagTemperature, {}), (Bytes{42, 0, 0, 0}));
    EXPECT_EQ(host->Ask(proto::kTagSensorModel, {}).value_or(Bytes{}).size(), 5u);
    EXPECT_EQ(StatusOf(0x7777, {}), proto::kUnknownCommand);
}

}  // namespace
}  // namespace sim::test
