// The commands against the module model: what is set is read back, and the
// module restarts as asked.
#include <string.h>

#include "SettingsDevice.h"

using TheModule = ModelDevice;

TEST_F(TheModule, WhatIsSetIsReadBack)
{
    const char config[] = "{\"threshold\":0.91}";
    const std::tuple<Call, Call, std::string> rows[] = {
        {Invoke(SetRecConfig, config, strlen(config), 0),
         InBuffer(32, [](void* d, char* t) { return GetRecConfig(d, t, 32, 0); }), config + std::string(14, '\0')},
        {Invoke(SetRecognizeCount, 7, 2), Outputs(GetRecognizeCount), "7 2"},
        {Invoke(SetTemplateUpdate, 1), Outputs(GetTemplateUpdate), "1"},
        {Invoke(SetScreenDirection, 3), Outputs(GetScreenDirection), "3"},
        {Invoke(SetFrameRate, 15), Outputs(GetFrameRate), "15"},
        {Invoke(SetIRlight, 150, 60), Outputs(GetIRlight), "150 60"},
        {Invoke(SetCameraStream, 1, 1), Outputs(GetCameraStream, 1), "0"},
        {Invoke(SetDeviceNoFlickerHz, 0, 1, 0), Outputs(GetDeviceNoFlickerHz, 0), "1 0"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(std::get<2>(row));
        std::string seen;
        EXPECT_EQ(0, std::get<0>(row)(dev, seen));
        EXPECT_EQ(0, std::get<1>(row)(dev, seen));
        EXPECT_EQ(std::get<2>(row), seen);
    }
    EXPECT_EQ(config, model.Settings().recognition.config);
}

TEST_F(TheModule, RestartsInTheModeAskedAndResetRestoresTheFactorySettings)
{
    ASSERT_EQ(0, SetRecognizeCount(dev, 9, 9));
    EXPECT_EQ(0, Reboot(dev, 3));
    EXPECT_EQ(0, SetUmodeToEngin(dev));
    EXPECT_EQ(0, Reset(dev));
    EXPECT_EQ(0, Recovery(dev, 0));
    const std::vector<std::pair<uint16_t, uint8_t>> expected = {{0x1004, 3}, {0x1004, 4}, {0x1004, 0}, {0x1005, 0}};
    EXPECT_EQ(expected, model.Restarts());
    std::string seen;
    EXPECT_EQ(0, Outputs(GetRecognizeCount)(dev, seen));
    const sim::RecognitionSettings factory;
    EXPECT_EQ(std::to_string(factory.recognizeCount) + " " + std::to_string(factory.livingCount), seen);
}
