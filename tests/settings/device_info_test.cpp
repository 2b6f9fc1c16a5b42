// The echo test, version texts, serial number, model, temperature and sensor
// model queries, through the exported functions.
#include <string.h>

#include "SettingsDevice.h"

namespace {
const uint16_t kPingTag = 0x1000;
const uint16_t kVersionTag = 0x1003;
const uint16_t kSerialTag = 0x2001;
const uint16_t kModelTag = 0x2002;
const uint16_t kAppVersionTag = 0x200D;
const uint16_t kTemperatureTag = 0x200F;
const uint16_t kSensorTag = 0x2010;
const char* const kPingInputs = " pTestData : abc nTestDataLength : 3";
const char* const kExecuteWithoutTest = "m_pCommandManager->Execute(&syncCommand)";
}  // namespace

using DeviceInformation = SettingsDevice;

TEST_F(DeviceInformation, PingSucceedsOnlyOnAnExactEcho)
{
    Answer(kPingTag, BytesOf("abc"));
    EXPECT_EQ(0, Ping(dev, "abc", 3));
    EXPECT_EQ(BytesOf("abc"), LastRequest(kPingTag));

    Answer(kPingTag, BytesOf("abd"));
    EXPECT_EQ(-7, Ping(dev, "abc", 3));
    EXPECT_EQ(Failure("strncmp(reinterpret_cast<const char *>(tlvMessage.pValue) , "
                      "reinterpret_cast<const char *>(pTestData), nTestDataLength) != 0",
                      kPingInputs, "", -7),
              LastRecord("Ping"));

    Answer(kPingTag, BytesOf("abcd"));
    EXPECT_EQ(-8, Ping(dev, "abc", 3));
    EXPECT_EQ(Failure("tlvMessage.nLength != nTestDataLength", kPingInputs, "", -8), LastRecord("Ping"));
}

TEST_F(DeviceInformation, PingRefusesTextsNotOfTheirLengthWithoutSending)
{
    EXPECT_EQ(-4, Ping(dev, "abc", 2));
    EXPECT_EQ(Refusal("nTestDataLength != strlen(static_cast<char*>(const_cast<void*>(pTestData)))"),
              LastRecord("Ping"));
    EXPECT_EQ(-4, Ping(dev, nullptr, 3));
    EXPECT_EQ(Refusal("pTestData == nullptr"), LastRecord("Ping"));
    EXPECT_EQ(-4, Ping(dev, "", 0));
    EXPECT_EQ(Refusal("!strlen(static_cast<char*>(const_cast<void*>(pTestData)))"), LastRecord("Ping"));
    EXPECT_EQ(0u, SentCount(kPingTag));
}

TEST_F(DeviceInformation, GetDeviceVersionCopiesTheWholeAnswer)
{
    Answer(kVersionTag, BytesOf("FW 1.2"));
    char version[16];
    memset(version, 'Q', sizeof version);
    EXPECT_EQ(0, GetDeviceVersion(dev, version, sizeof version));
    EXPECT_TRUE(LastRequest(kVersionTag).empty());
    // The copy ends with the answer: nothing terminates it, and the record
    // shows the caller's buffer up to its end, never beyond.
    EXPECT_EQ(0, memcmp(version, "FW 1.2QQQQQQQQQQ", sizeof version));
    EXPECT_EQ(Body(" nLength : 16", " pVersion : FW 1.2QQQQQQQQQQ", 0), LastRecord("GetDeviceVersion"));
}

TEST_F(DeviceInformation, GetDeviceVersionEmptyAnswerFails)
{
    Answer(kVersionTag, {});
    char version[64];
    EXPECT_EQ(-8, GetDeviceVersion(dev, version, sizeof version));
    EXPECT_EQ(Failure("tlvMessage.nLength == 0", " nLength : 64", " invalid output", -8),
              LastRecord("GetDeviceVersion"));
    EXPECT_EQ(-4, GetDeviceVersion(dev, version, 0));
    EXPECT_EQ(Refusal("nLength == 0", " invalid output"), LastRecord("GetDeviceVersion"));
    EXPECT_EQ(-4, GetDeviceVersion(dev, nullptr, 64));
    EXPECT_EQ(Refusal("pVersion == nullptr", " invalid output"), LastRecord("GetDeviceVersion"));
}

TEST_F(DeviceInformation, GetDevModelAppVerIsAPlainText)
{
    Answer(kAppVersionTag, {'A', 'P', 'P', 0x00, 'x'});
    char version[8];
    memset(version, 'Q', sizeof version);
    EXPECT_EQ(0, GetDevModelAppVer(dev, version, sizeof version));
    EXPECT_EQ(0, memcmp(version, "APP\0\0QQQ", sizeof version));
    EXPECT_EQ(Body(" nModelVersionLength : 8", " pModelVersion : APP", 0), LastRecord("GetDevModelAppVer"));
    EXPECT_EQ(-4, GetDevModelAppVer(dev, version, 0));
    EXPECT_EQ(Refusal("nModelVersionLength == 0", " invalid output"), LastRecord("GetDevModelAppVer"));
}

TEST_F(DeviceInformation, GetDevSnSkipsTheHeadAndFillsASmallBufferWithoutTerminator)
{
    Answer(kSerialTag, HeadedText("SN123"));
    char serial[6];
    memset(serial, 'Q', sizeof serial);
    EXPECT_EQ(0, GetDevSn(dev, 1, serial, 3));
    EXPECT_EQ((sim::Bytes{0x01}), LastRequest(kSerialTag));
    EXPECT_EQ(0, memcmp(serial, "SN1QQQ", sizeof serial));
    EXPECT_EQ(Body(" nMode : 1 nDevsnLength : 3", " pDevSn : SN1", 0), LastRecord("GetDevSn"));
}

TEST_F(DeviceInformation, GetDevSnWantsMoreThanTheHead)
{
    Answer(kSerialTag, {0x05, 0x00, 0x00, 0x00});
    char serial[32];
    memset(serial, 'Q', sizeof serial);
    EXPECT_EQ(-8, GetDevSn(dev, 0, serial, sizeof serial));
    EXPECT_EQ('Q', serial[0]);
    EXPECT_EQ(Failure("tlvMessage.nLength  <= 4", " nMode : 0 nDevsnLength : 32", " invalid output", -8),
              LastRecord("GetDevSn"));
}

TEST_F(DeviceInformation, GetDevSnRefusesModesOtherThanZeroAndOne)
{
    char serial[32];
    EXPECT_EQ(-4, GetDevSn(dev, 2, serial, sizeof serial));
    EXPECT_EQ(Refusal("nMode != 0x00 && nMode != 0x01", " invalid output"), LastRecord("GetDevSn"));
    EXPECT_EQ(-4, GetDevSn(dev, -1, serial, sizeof serial));
    EXPECT_EQ(Refusal("nMode != 0x00 && nMode != 0x01", " invalid output"), LastRecord("GetDevSn"));
    EXPECT_EQ(-4, GetDevSn(dev, 0, nullptr, sizeof serial));
    EXPECT_EQ(Refusal("pDevSn == nullptr", " invalid output"), LastRecord("GetDevSn"));
    EXPECT_EQ(-4, GetDevSn(dev, 0, serial, 0));
    EXPECT_EQ(Refusal("nDevsnLength == 0", " invalid output"), LastRecord("GetDevSn"));
    EXPECT_EQ(0u, SentCount(kSerialTag));
}

TEST_F(DeviceInformation, GetDevModelSkipsTheHead)
{
    Answer(kModelTag, HeadedText("M1"));
    char model[8] = {};
    EXPECT_EQ(0, GetDevModel(dev, model, sizeof model));
    EXPECT_TRUE(LastRequest(kModelTag).empty());
    EXPECT_STREQ("M1", model);
    EXPECT_EQ(Body(" nDevModelLength : 8", " pDevModel : M1", 0), LastRecord("GetDevModel"));
    Answer(kModelTag, {0x00, 0x00, 0x00, 0x00});
    EXPECT_EQ(-8, GetDevModel(dev, model, sizeof model));
    EXPECT_EQ(Failure("tlvMessage.nLength  <= 4", " nDevModelLength : 8", " invalid output", -8),
              LastRecord("GetDevModel"));
}

TEST_F(DeviceInformation, GetCpuTemperatureReadsALittleEndianIntegerWithoutStatus)
{
    Answer(kTemperatureTag, {0x2A, 0x00, 0x00, 0x00});
    unsigned int temperature = 0;
    EXPECT_EQ(0, GetCpuTemperature(dev, &temperature));
    EXPECT_EQ(42u, temperature);
    EXPECT_EQ(Body("", " nTemperature : 42", 0), LastRecord("GetCpuTemperature"));
    Answer(kTemperatureTag, {0x2B, 0x01, 0x00, 0x00, 0x7F});
    EXPECT_EQ(0, GetCpuTemperature(dev, &temperature));
    EXPECT_EQ(0x12Bu, temperature);
    Answer(kTemperatureTag, {0x2A, 0x00, 0x00});
    temperature = 7;
    EXPECT_EQ(-8, GetCpuTemperature(dev, &temperature));
    EXPECT_EQ(7u, temperature);
    EXPECT_EQ(Failure("tlvMessage.nLength < 4", "", " invalid output", -8), LastRecord("GetCpuTemperature"));
}

TEST_F(DeviceInformation, GetAESensorModelWantsExactlyFiveBytes)
{
    Answer(kSensorTag, {0x03, 0x53, 0x0A, 0x00, 0x00});
    unsigned int sensor = 0;
    EXPECT_EQ(3, GetAESensorModel(dev, &sensor));
    EXPECT_EQ(0x0A53u, sensor);
    EXPECT_EQ(Body("", " pSensorModel : 2643", 3), LastRecord("GetAESensorModel"));
    const sim::Bytes wrongLengths[] = {{0x00, 0x01, 0x00, 0x00}, {0x00, 0x01, 0x00, 0x00, 0x00, 0x00}};
    for (const sim::Bytes& answer : wrongLengths) {
        Answer(kSensorTag, answer);
        sensor = 99;
        EXPECT_EQ(-8, GetAESensorModel(dev, &sensor)) << answer.size() << " bytes";
        EXPECT_EQ(99u, sensor);
        EXPECT_EQ(Failure("tlvMessage.nLength < 4", "", " invalid output", -8), LastRecord("GetAESensorModel"));
    }
}

TEST_F(DeviceInformation, TwoQueriesRecordTheSendFailureWithoutTheComparison)
{
    ASSERT_EQ(0, DisconnectSerial(dev));
    char text[16];
    EXPECT_EQ(-6, GetDeviceVersion(dev, text, sizeof text));
    EXPECT_EQ(Failure(kExecuteWithoutTest, " nLength : 16", " invalid output", -6), LastRecord("GetDeviceVersion"));
    EXPECT_EQ(-6, GetDevModelAppVer(dev, text, sizeof text));
    EXPECT_EQ(Failure(kExecuteWithoutTest, " nModelVersionLength : 16", " invalid output", -6),
              LastRecord("GetDevModelAppVer"));
    EXPECT_EQ(-6, GetDevModel(dev, text, sizeof text));
    EXPECT_EQ(Failure("m_pCommandManager->Execute(&syncCommand) != 0", " nDevModelLength : 16", " invalid output", -6),
              LastRecord("GetDevModel"));
}

using DeviceInformationOfTheModule = ModelDevice;

TEST_F(DeviceInformationOfTheModule, IdentityTextsComeFromTheModule)
{
    const sim::ModuleIdentity identity = model.Identity();
    char text[64] = {};
    EXPECT_EQ(0, Ping(dev, "hello", 5));
    ASSERT_EQ(0, GetDeviceVersion(dev, text, sizeof text - 1));
    EXPECT_EQ(identity.firmwareVersion, text);
    memset(text, 0, sizeof text);
    ASSERT_EQ(0, GetDevModelAppVer(dev, text, sizeof text - 1));
    EXPECT_EQ(identity.appVersion, text);
    memset(text, 0, sizeof text);
    ASSERT_EQ(0, GetDevSn(dev, 0, text, sizeof text - 1));
    EXPECT_EQ(identity.serialNumber, text);
    memset(text, 0, sizeof text);
    ASSERT_EQ(0, GetDevSn(dev, 1, text, sizeof text - 1));
    EXPECT_EQ(identity.boardSerialNumber, text);
    memset(text, 0, sizeof text);
    ASSERT_EQ(0, GetDevModel(dev, text, sizeof text - 1));
    EXPECT_EQ(identity.model, text);
}

TEST_F(DeviceInformationOfTheModule, TemperatureAndSensorModelComeFromTheModule)
{
    model.SetTemperature(57);
    unsigned int temperature = 0, sensor = 0;
    EXPECT_EQ(0, GetCpuTemperature(dev, &temperature));
    EXPECT_EQ(57u, temperature);
    EXPECT_EQ(0, GetAESensorModel(dev, &sensor));
    EXPECT_EQ(model.Identity().sensorModel, sensor);
}
