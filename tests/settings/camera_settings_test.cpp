// Camera and sensor settings: sub-command bytes, range checks on char values,
// answer layouts, through the exported functions.
#include <limits.h>

#include <functional>

#include "SettingsDevice.h"

namespace {
const uint16_t kUvcTag = 0x2003;
const uint16_t kStreamTag = 0x2004;
const uint16_t kRgbIrTag = 0x2005;
const uint16_t kIrLightTag = 0x2006;
const uint16_t kFrameRateTag = 0x2007;
const uint16_t kResolutionTag = 0x2008;
const uint16_t kDirectionTag = 0x2009;
const uint16_t kRotateTag = 0x200A;
const uint16_t kFlickerTag = 0x200B;
const uint16_t kThresholdTag = 0x200C;
const uint16_t kFormatTag = 0x200E;
const uint16_t kCameraTags[] = {kUvcTag,       kStreamTag,    kRgbIrTag,  kIrLightTag,   kFrameRateTag, kResolutionTag,
                                kDirectionTag, kRotateTag,    kFlickerTag, kThresholdTag, kFormatTag};

// A setter, the request it must send and the inputs its record lists.
struct SetterCase {
    const char* function;
    uint16_t tag;
    std::function<int(void*)> call;
    sim::Bytes payload;
    const char* inputs;
};

// A call refused for one argument, and the condition its record names.
struct RefusalCase {
    const char* function;
    std::function<int(void*)> call;
    const char* error;
    const char* output;
};

const char* const kModeText = "nMode != 0x00 && nMode != 0x01";
const char* const kCameraIdText = "nCameraId != 0x00 && nCameraId != 0x01";
const char* const kFrameRateText = "nFrameRate < 10 || nFrameRate > 25";
}  // namespace

using CameraSettings = SettingsDevice;

TEST_F(CameraSettings, SettersSendTheirSubCommandAndValues)
{
    const SetterCase cases[] = {
        {"SetUvcSwitch", kUvcTag, [](void* d) { return SetUvcSwitch(d, 1); }, {0x01}, " nMode : 1"},
        {"SetCameraStream", kStreamTag, [](void* d) { return SetCameraStream(d, 1, 0); }, {0x01, 0x00},
         " isCloseCamera : 1 nCameraType : 0"},
        {"SwitchCamRgbIr", kRgbIrTag, [](void* d) { return SwitchCamRgbIr(d, 1); }, {0x01}, " nMode : 1"},
        {"SetStreamFormat", kFormatTag, [](void* d) { return SetStreamFormat(d, 0); }, {0x00}, " nMode : 0"},
        {"SetDeviceNoFlickerHz", kFlickerTag, [](void* d) { return SetDeviceNoFlickerHz(d, 1, 0, 1); },
         {0x01, 0x01, 0x00, 0x01}, " nCameraId : 1  nHz : 0 isEnable : 1"},
        {"SetRotateAngle", kRotateTag, [](void* d) { return SetRotateAngle(d, 3); }, {0x03}, " nMode : 3"},
        {"SetScreenDirection", kDirectionTag, [](void* d) { return SetScreenDirection(d, 4); }, {0x01, 0x04},
         " nMode : 4"},
        {"SetFrameRate", kFrameRateTag, [](void* d) { return SetFrameRate(d, 25); }, {0x01, 0x19},
         " nFrameRate : 25"},
        {"SetIRlight", kIrLightTag, [](void* d) { return SetIRlight(d, 10, 5); }, {0x00, 0x0A, 0x05},
         " nLuminance : 10 nCloseTime : 5"},
        {"SetIRlight", kIrLightTag, [](void* d) { return SetIRlight(d, 200, 120); }, {0x00, 0xC8, 0x78},
         " nLuminance : 200 nCloseTime : 120"},
    };
    for (const SetterCase& c : cases) {
        SCOPED_TRACE(c.function);
        Answer(c.tag, {0x06});
        EXPECT_EQ(6, c.call(dev));
        EXPECT_EQ(c.payload, LastRequest(c.tag));
        EXPECT_EQ(Body(c.inputs, "", 6), LastRecord(c.function));
    }
}

TEST_F(CameraSettings, OutOfRangeValuesAreRefusedWithoutSending)
{
    unsigned char byte = 0;
    const RefusalCase cases[] = {
        {"SetUvcSwitch", [](void* d) { return SetUvcSwitch(d, 2); }, kModeText, ""},
        {"SwitchCamRgbIr", [](void* d) { return SwitchCamRgbIr(d, 2); }, kModeText, ""},
        {"SetStreamFormat", [](void* d) { return SetStreamFormat(d, -1); }, kModeText, ""},
        {"SetCameraStream", [](void* d) { return SetCameraStream(d, 2, 0); },
         "isCloseCamera != 0x00 && isCloseCamera != 0x01", ""},
        {"SetCameraStream", [](void* d) { return SetCameraStream(d, 0, -1); },
         "nCameraType != 0x00 && nCameraType != 0x01", ""},
        {"GetCameraStream", [&byte](void* d) { return GetCameraStream(d, -1, &byte); },
         "nCameraType != 0x00 && nCameraType != 0x01", " invalid output"},
        {"GetDeviceNoFlickerHz", [&byte](void* d) { return GetDeviceNoFlickerHz(d, 2, &byte, &byte); },
         kCameraIdText, " invalid output"},
        {"SetDeviceNoFlickerHz", [](void* d) { return SetDeviceNoFlickerHz(d, -1, 0, 0); }, kCameraIdText, ""},
        {"SetDeviceNoFlickerHz", [](void* d) { return SetDeviceNoFlickerHz(d, 0, 2, 0); },
         "nHz != 0x00 && nHz != 0x01", ""},
        {"SetDeviceNoFlickerHz", [](void* d) { return SetDeviceNoFlickerHz(d, 0, 0, -1); },
         "isEnable != 0x00 && isEnable != 0x01", ""},
        {"SetRotateAngle", [](void* d) { return SetRotateAngle(d, 4); }, "nMode < 0x00 || nMode > 0x03", ""},
        {"SetRotateAngle", [](void* d) { return SetRotateAngle(d, -1); }, "nMode < 0x00 || nMode > 0x03", ""},
        {"SetScreenDirection", [](void* d) { return SetScreenDirection(d, 0); }, "nMode < 0x01 || nMode > 0x04", ""},
        {"SetScreenDirection", [](void* d) { return SetScreenDirection(d, 5); }, "nMode < 0x01 || nMode > 0x04", ""},
        {"SetScreenDirection", [](void* d) { return SetScreenDirection(d, -1); }, "nMode < 0x01 || nMode > 0x04", ""},
        {"SetResolution", [](void* d) { return SetResolution(d, 5); }, "nMode < 0x00 || nMode > 0x04", ""},
        {"SetResolution", [](void* d) { return SetResolution(d, -1); }, "nMode < 0x00 || nMode > 0x04", ""},
        {"SetFrameRate", [](void* d) { return SetFrameRate(d, 9); }, kFrameRateText, ""},
        {"SetFrameRate", [](void* d) { return SetFrameRate(d, 26); }, kFrameRateText, ""},
        {"SetFrameRate", [](void* d) { return SetFrameRate(d, -1); }, kFrameRateText, ""},
        {"SetFrameRate", [](void* d) { return SetFrameRate(d, 25 + 256); }, kFrameRateText, ""},
        {"SetIRlight", [](void* d) { return SetIRlight(d, 201, 0); }, "nLuminance > 200", ""},
        {"SetIRlight", [](void* d) { return SetIRlight(d, 0, 121); }, "nCloseTime > 120", ""},
    };
    for (const RefusalCase& c : cases) {
        SCOPED_TRACE(std::string(c.function) + ": " + c.error);
        EXPECT_EQ(-4, c.call(dev));
        EXPECT_EQ(Refusal(c.error, c.output), LastRecord(c.function));
    }
    for (uint16_t tag : kCameraTags)
        EXPECT_EQ(0u, SentCount(tag)) << "tag " << tag;
}

TEST_F(CameraSettings, FrameRateRangeHoldsForTheLowestInteger)
{
    EXPECT_EQ(-4, SetFrameRate(dev, INT_MIN));
    EXPECT_EQ(Refusal(kFrameRateText), LastRecord("SetFrameRate"));
    EXPECT_EQ(-4, SetFrameRate(dev, INT_MIN + 5));
    EXPECT_EQ(0u, SentCount(kFrameRateTag));
}

TEST_F(CameraSettings, GetFrameRateReadsFourBytesAfterTheStatus)
{
    Answer(kFrameRateTag, {0x00, 0x19, 0x00, 0x00, 0x00});
    unsigned int rate = 0;
    EXPECT_EQ(0, GetFrameRate(dev, &rate));
    EXPECT_EQ((sim::Bytes{0x00}), LastRequest(kFrameRateTag));
    EXPECT_EQ(25u, rate);
    EXPECT_EQ(Body("", " pFrameRate : 25", 0), LastRecord("GetFrameRate"));
    Answer(kFrameRateTag, {0x00, 0x19, 0x00, 0x00});
    rate = 3;
    EXPECT_EQ(-8, GetFrameRate(dev, &rate));
    EXPECT_EQ(3u, rate);
    EXPECT_EQ(Failure("tlvMessage.nLength != 5", "", " invalid output", -8), LastRecord("GetFrameRate"));
}

TEST_F(CameraSettings, GetIRlightReadsWithSubCommandOne)
{
    Answer(kIrLightTag, {0x01, 0x64, 0x1E});
    unsigned char luminance = 0, closeTime = 0;
    EXPECT_EQ(1, GetIRlight(dev, &luminance, &closeTime));
    EXPECT_EQ((sim::Bytes{0x01}), LastRequest(kIrLightTag));
    EXPECT_EQ(100, luminance);
    EXPECT_EQ(30, closeTime);
    EXPECT_EQ(Body("", " pLuminance : 100 pCloseTime : 30", 1), LastRecord("GetIRlight"));
}

TEST_F(CameraSettings, GetCameraStreamReadsWithSubCommandTwo)
{
    Answer(kStreamTag, {0x00, 0x01});
    unsigned char isOpen = 0;
    EXPECT_EQ(0, GetCameraStream(dev, 1, &isOpen));
    EXPECT_EQ((sim::Bytes{0x02, 0x01}), LastRequest(kStreamTag));
    EXPECT_EQ(1, isOpen);
    EXPECT_EQ(Body(" nCameraType : 1", " isOpenCamera : 1", 0), LastRecord("GetCameraStream"));
}

TEST_F(CameraSettings, GettersOfOneTagReadWithSubCommandZero)
{
    Answer(kFlickerTag, {0x00, 0x01, 0x00});
    unsigned char hz = 9, enable = 9;
    EXPECT_EQ(0, GetDeviceNoFlickerHz(dev, 1, &hz, &enable));
    EXPECT_EQ((sim::Bytes{0x00, 0x01}), LastRequest(kFlickerTag));
    EXPECT_EQ(1, hz);
    EXPECT_EQ(0, enable);
    EXPECT_EQ(Body(" nCameraId : 1", " pHz : 1 isEnable : 0", 0), LastRecord("GetDeviceNoFlickerHz"));

    Answer(kDirectionTag, {0x00, 0x03});
    unsigned char direction = 0;
    EXPECT_EQ(0, GetScreenDirection(dev, &direction));
    EXPECT_EQ((sim::Bytes{0x00}), LastRequest(kDirectionTag));
    EXPECT_EQ(3, direction);
    EXPECT_EQ(Body("", " pMode : 3", 0), LastRecord("GetScreenDirection"));
}

TEST_F(CameraSettings, GetLuminousSensitivityThresholdSendsNoPayload)
{
    Answer(kThresholdTag, {0x04, 0x78, 0x01, 0x00, 0x00});
    unsigned int threshold = 0;
    EXPECT_EQ(4, GetLuminousSensitivityThreshold(dev, &threshold));
    EXPECT_TRUE(LastRequest(kThresholdTag).empty());
    EXPECT_EQ(0x178u, threshold);
    EXPECT_EQ(Body("", " nThreshold : 376", 4), LastRecord("GetLuminousSensitivityThreshold"));
}

TEST_F(CameraSettings, SomeSettersTakeLongerAnswers)
{
    Answer(kFlickerTag, {0x00, 0x55});
    EXPECT_EQ(0, SetDeviceNoFlickerHz(dev, 0, 1, 1));
    Answer(kFrameRateTag, {0x02, 0x55});
    EXPECT_EQ(2, SetFrameRate(dev, 10));
    Answer(kFlickerTag, {});
    EXPECT_EQ(-8, SetDeviceNoFlickerHz(dev, 0, 1, 1));
    EXPECT_EQ(Failure("tlvMessage.nLength < 1", " nCameraId : 0  nHz : 1 isEnable : 1", "", -8),
              LastRecord("SetDeviceNoFlickerHz"));
    Answer(kRotateTag, {0x00, 0x55});
    EXPECT_EQ(-8, SetRotateAngle(dev, 1));
    EXPECT_EQ(Failure("tlvMessage.nLength != 1", " nMode : 1", "", -8), LastRecord("SetRotateAngle"));
}

TEST_F(CameraSettings, TwoGettersRecordTheSendFailureWithoutTheComparison)
{
    ASSERT_EQ(0, DisconnectSerial(dev));
    unsigned int value = 0;
    unsigned char hz = 0, enable = 0;
    const std::string withoutTest = "m_pCommandManager->Execute(&syncCommand)";
    EXPECT_EQ(-6, GetLuminousSensitivityThreshold(dev, &value));
    EXPECT_EQ(Failure(withoutTest, "", " invalid output", -6), LastRecord("GetLuminousSensitivityThreshold"));
    EXPECT_EQ(-6, GetDeviceNoFlickerHz(dev, 0, &hz, &enable));
    EXPECT_EQ(Failure(withoutTest, " nCameraId : 0", " invalid output", -6), LastRecord("GetDeviceNoFlickerHz"));
    EXPECT_EQ(-6, GetFrameRate(dev, &value));
    EXPECT_EQ(Failure(withoutTest + " != 0", "", " invalid output", -6), LastRecord("GetFrameRate"));
    EXPECT_EQ(-6, SetFrameRate(dev, 20));
    EXPECT_EQ(Failure(withoutTest + " != 0", " nFrameRate : 20", "", -6), LastRecord("SetFrameRate"));
}

using CameraSettingsOfTheModule = ModelDevice;

TEST_F(CameraSettingsOfTheModule, WhatIsSetIsReadBack)
{
    ASSERT_EQ(0, SetScreenDirection(dev, 3));
    unsigned char direction = 0;
    ASSERT_EQ(0, GetScreenDirection(dev, &direction));
    EXPECT_EQ(3, direction);

    ASSERT_EQ(0, SetFrameRate(dev, 15));
    unsigned int rate = 0;
    ASSERT_EQ(0, GetFrameRate(dev, &rate));
    EXPECT_EQ(15u, rate);

    ASSERT_EQ(0, SetIRlight(dev, 150, 60));
    unsigned char luminance = 0, closeTime = 0;
    ASSERT_EQ(0, GetIRlight(dev, &luminance, &closeTime));
    EXPECT_EQ(150, luminance);
    EXPECT_EQ(60, closeTime);

    ASSERT_EQ(0, SetCameraStream(dev, 1, 1));
    unsigned char isOpen = 9;
    ASSERT_EQ(0, GetCameraStream(dev, 1, &isOpen));
    EXPECT_EQ(0, isOpen);

    ASSERT_EQ(0, SetDeviceNoFlickerHz(dev, 0, 1, 0));
    unsigned char hz = 0, enable = 9;
    ASSERT_EQ(0, GetDeviceNoFlickerHz(dev, 0, &hz, &enable));
    EXPECT_EQ(1, hz);
    EXPECT_EQ(0, enable);

    ASSERT_EQ(0, SetUvcSwitch(dev, 0));
    ASSERT_EQ(0, SwitchCamRgbIr(dev, 1));
    ASSERT_EQ(0, SetStreamFormat(dev, 1));
    ASSERT_EQ(0, SetRotateAngle(dev, 2));
    const sim::CameraSettings camera = model.Settings().camera;
    EXPECT_EQ(0, camera.uvcOn);
    EXPECT_EQ(1, camera.rgbIr);
    EXPECT_EQ(1, camera.streamFormat);
    EXPECT_EQ(2, camera.rotateAngle);
    unsigned int threshold = 0;
    EXPECT_EQ(0, GetLuminousSensitivityThreshold(dev, &threshold));
    EXPECT_EQ(camera.luminousThreshold, threshold);
}
