// Reboot in its five modes, reset, the engineering mode and recovery.
#include "SettingsDevice.h"

namespace {
const uint16_t kRebootTag = 0x1004;
const uint16_t kRecoveryTag = 0x1005;
}  // namespace

using Maintenance = SettingsDevice;

TEST_F(Maintenance, ResetAndEngineeringModeAreTheEndsOfReboot)
{
    Answer(kRebootTag, {0x00});
    EXPECT_EQ(0, Reboot(dev, 4));
    const sim::Bytes rebootFour = LastRequest(kRebootTag);
    EXPECT_EQ(0, SetUmodeToEngin(dev));
    EXPECT_EQ((sim::Bytes{0x04}), rebootFour);
    EXPECT_EQ(rebootFour, LastRequest(kRebootTag));
    EXPECT_EQ(Body(" nMode : 4", "", 0), LastRecord("Reboot"));
    EXPECT_EQ(Body("", "", 0), LastRecord("SetUmodeToEngin"));

    EXPECT_EQ(0, Reboot(dev, 0));
    const sim::Bytes rebootZero = LastRequest(kRebootTag);
    EXPECT_EQ(0, Reset(dev));
    EXPECT_EQ((sim::Bytes{0x00}), rebootZero);
    EXPECT_EQ(rebootZero, LastRequest(kRebootTag));
    EXPECT_EQ(Body("", "", 0), LastRecord("Reset"));
}

TEST_F(Maintenance, RebootRefusesModesOutsideZeroToFour)
{
    for (int mode : {5, -1}) {
        EXPECT_EQ(-4, Reboot(dev, mode)) << mode;
        EXPECT_EQ(Refusal("nMode < 0x00 || nMode > 0x04"), LastRecord("Reboot"));
    }
    EXPECT_EQ(0u, SentCount(kRebootTag));
}

TEST_F(Maintenance, TheModulesStatusIsTheResult)
{
    Answer(kRebootTag, {0xC8});
    EXPECT_EQ(200, Reboot(dev, 2));
    EXPECT_EQ((sim::Bytes{0x02}), LastRequest(kRebootTag));
    EXPECT_EQ(200, Reset(dev));
    Answer(kRebootTag, {0x00, 0x00});
    EXPECT_EQ(-8, SetUmodeToEngin(dev));
    EXPECT_EQ(Failure("tlvMessage.nLength != 1", "", "", -8), LastRecord("SetUmodeToEngin"));
}

TEST_F(Maintenance, RecoveryTakesModeZeroOrOne)
{
    Answer(kRecoveryTag, {0x00});
    EXPECT_EQ(0, Recovery(dev, 1));
    EXPECT_EQ((sim::Bytes{0x01}), LastRequest(kRecoveryTag));
    EXPECT_EQ(Body(" nMode : 1", "", 0), LastRecord("Recovery"));
    for (int mode : {2, -1}) {
        EXPECT_EQ(-4, Recovery(dev, mode)) << mode;
        EXPECT_EQ(Refusal("nMode != 0x00 && nMode != 0x01"), LastRecord("Recovery"));
    }
    EXPECT_EQ(1u, SentCount(kRecoveryTag));
}

using MaintenanceOfTheModule = ModelDevice;

TEST_F(MaintenanceOfTheModule, TheModuleRestartsInTheModeAsked)
{
    EXPECT_EQ(0, Reboot(dev, 3));
    EXPECT_EQ(0, SetUmodeToEngin(dev));
    EXPECT_TRUE(model.Settings().engineeringMode);
    EXPECT_EQ(0, Reset(dev));
    EXPECT_FALSE(model.Settings().engineeringMode);
    EXPECT_EQ(0, Recovery(dev, 0));
    const std::vector<std::pair<uint16_t, uint8_t>> expected = {
        {kRebootTag, 3}, {kRebootTag, 4}, {kRebootTag, 0}, {kRecoveryTag, 0}};
    EXPECT_EQ(expected, model.Restarts());
}

TEST_F(MaintenanceOfTheModule, AResetRestoresTheFactorySettings)
{
    ASSERT_EQ(0, SetRecognizeCount(dev, 9, 9));
    ASSERT_EQ(0, Reset(dev));
    unsigned char rec = 0, living = 0;
    ASSERT_EQ(0, GetRecognizeCount(dev, &rec, &living));
    EXPECT_EQ(sim::ModuleSettings().recognition.recognizeCount, rec);
    EXPECT_EQ(sim::ModuleSettings().recognition.livingCount, living);
}

TEST(NullHandle, EveryGroupRefusesANullHandle)
{
    unsigned char byte = 0;
    unsigned int value = 0;
    char text[8];
    EXPECT_EQ(-1, SetRecognizeCount(nullptr, 1, 1));
    EXPECT_EQ(-1, GetTemplateUpdate(nullptr, &byte));
    EXPECT_EQ(-1, GetDevSn(nullptr, 0, text, sizeof text));
    EXPECT_EQ(-1, Reboot(nullptr, 0));
    EXPECT_EQ(-1, ApplyUpgrade(nullptr, "a", 1));
    EXPECT_EQ(-1, GetFrameRate(nullptr, &value));
    EXPECT_EQ(-1, SetResolution(nullptr, 1));
    EXPECT_EQ(-1, CloseAutoUploadAiInfo(nullptr));
    EXPECT_EQ(-1, SetQRCodeSwitch(nullptr, 1, 1));
}
