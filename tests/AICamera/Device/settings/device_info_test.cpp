// The echo test, identity texts, temperature and sensor model; reboot, reset,
// the engineering mode and recovery.
#include "SettingsDevice.h"

using namespace std::string_literals;

namespace {
const std::string kUntouched(16, 'Q');

// The 4 header bytes the module puts before the serial number and model texts.
sim::Bytes HeadedText(const std::string& text)
{
    sim::Bytes value = BytesOf(std::string(4, '\0') + text);
    value[0] = static_cast<uint8_t>(text.size());
    return value;
}

Call Version(unsigned int length)
{
    return InBuffer(16, [=](void* d, char* t) { return GetDeviceVersion(d, t, length); });
}
Call AppVersion(unsigned int length)
{
    return InBuffer(16, [=](void* d, char* t) { return GetDevModelAppVer(d, t, length); });
}
Call Serial(char mode, unsigned int length)
{
    return InBuffer(16, [=](void* d, char* t) { return GetDevSn(d, mode, t, length); });
}
Call DeviceModel(unsigned int length)
{
    return InBuffer(16, [=](void* d, char* t) { return GetDevModel(d, t, length); });
}
}  // namespace

using DeviceInformation = SettingsDevice;

// Text queries read no status byte; the records show the caller's buffer up to its length, never beyond.
TEST_F(DeviceInformation, ExchangesRefusalsAndSendFailures)
{
    const Call ping = Invoke(Ping, "abc", 3);
    const char* const pingInputs = " pTestData : abc nTestDataLength : 3";
    const sim::Bytes shortSensor = {0x00, 0x01, 0x00, 0x00}, longSensor = {0x00, 0x01, 0x00, 0x00, 0x00, 0x00};
    const Call temperature = Outputs(GetCpuTemperature), sensor = Outputs(GetAESensorModel);
    Walk({
        {"Ping", 0x1000, BytesOf("abc"), ping, 0, BytesOf("abc"), pingInputs, ""},
        {"Ping", 0x1000, BytesOf("abd"), ping, -7, BytesOf("abc"), pingInputs, "",
         "strncmp(reinterpret_cast<const char *>(tlvMessage.pValue) , "
         "reinterpret_cast<const char *>(pTestData), nTestDataLength) != 0"},
        {"Ping", 0x1000, BytesOf("abcd"), ping, -8, BytesOf("abc"), pingInputs, "",
         "tlvMessage.nLength != nTestDataLength"},
        {"GetDeviceVersion", 0x1003, BytesOf("FW 1.2"), Version(12), 0, {}, " nLength : 12",
         " pVersion : FW 1.2QQQQQQ", "", "FW 1.2QQQQQQQQQQ"},
        {"GetDeviceVersion", 0x1003, {}, Version(12), -8, {}, " nLength : 12", " invalid output",
         "tlvMessage.nLength == 0", kUntouched},
        {"GetDevModelAppVer", 0x200D, {'A', 'P', 'P', 0x00, 'x'}, AppVersion(8), 0, {}, " nModelVersionLength : 8",
         " pModelVersion : APP", "", "APP\0\0QQQQQQQQQQQ"s},
        // Serial number and model skip 4 leading bytes.
        {"GetDevSn", 0x2001, HeadedText("SN123"), Serial(1, 3), 0, {0x01}, " nMode : 1 nDevsnLength : 3",
         " pDevSn : SN1", "", "SN1QQQQQQQQQQQQQ"},
        {"GetDevSn", 0x2001, {0x05, 0x00, 0x00, 0x00}, Serial(0, 8), -8, {0x00}, " nMode : 0 nDevsnLength : 8",
         " invalid output", "tlvMessage.nLength  <= 4", kUntouched},
        {"GetDevModel", 0x2002, HeadedText("M1"), DeviceModel(8), 0, {}, " nDevModelLength : 8",
         " pDevModel : M1QQQQQQ", "", "M1QQQQQQQQQQQQQQ"},
        {"GetDevModel", 0x2002, {0x00, 0x00, 0x00, 0x00}, DeviceModel(8), -8, {}, " nDevModelLength : 8",
         " invalid output", "tlvMessage.nLength  <= 4", kUntouched},
        // No status byte before the temperature; extra bytes are ignored.
        {"GetCpuTemperature", 0x200F, {0x2A, 0x00, 0x00, 0x00}, temperature, 0, {}, "", " nTemperature : 42", "", "42"},
        {"GetCpuTemperature", 0x200F, {0x2B, 0x01, 0x00, 0x00, 0x7F}, temperature, 0, {}, "", " nTemperature : 299",
         "", "299"},
        {"GetCpuTemperature", 0x200F, {0x2A, 0x00, 0x00}, temperature, -8, {}, "", " invalid output",
         "tlvMessage.nLength < 4", "77"},
        // Exactly 5 bytes, under the text of a lower bound.
        {"GetAESensorModel", 0x2010, {0x03, 0x53, 0x0A, 0x00, 0x00}, sensor, 3, {}, "", " pSensorModel : 2643",
         "", "2643"},
        {"GetAESensorModel", 0x2010, shortSensor, sensor, -8, {}, "", " invalid output", "tlvMessage.nLength < 4",
         "77"},
        {"GetAESensorModel", 0x2010, longSensor, sensor, -8, {}, "", " invalid output", "tlvMessage.nLength < 4", "77"},
        // Reset and the engineering mode are reboots in modes 0 and 4; the status is the result.
        {"Reboot", 0x1004, {0x00}, Invoke(Reboot, 4), 0, {0x04}, " nMode : 4", ""},
        {"SetUmodeToEngin", 0x1004, {0x00}, Invoke(SetUmodeToEngin), 0, {0x04}, "", ""},
        {"Reboot", 0x1004, {0x00}, Invoke(Reboot, 0), 0, {0x00}, " nMode : 0", ""},
        {"Reset", 0x1004, {0xC8}, Invoke(Reset), 200, {0x00}, "", ""},
        {"Reboot", 0x1004, {0xC8}, Invoke(Reboot, 2), 200, {0x02}, " nMode : 2", ""},
        {"SetUmodeToEngin", 0x1004, {0x00, 0x00}, Invoke(SetUmodeToEngin), -8, {0x04}, "", "",
         "tlvMessage.nLength != 1"},
        {"Recovery", 0x1005, {0x00}, Invoke(Recovery, 1), 0, {0x01}, " nMode : 1", ""},
    });
    const char* const modeText = "nMode != 0x00 && nMode != 0x01";
    const char* const rebootText = "nMode < 0x00 || nMode > 0x04";
    Walk({
        {"Ping", Invoke(Ping, "abc", 2), "nTestDataLength != strlen(static_cast<char*>(const_cast<void*>(pTestData)))"},
        {"Ping", Invoke(Ping, nullptr, 3), "pTestData == nullptr"},
        {"Ping", Invoke(Ping, "", 0), "!strlen(static_cast<char*>(const_cast<void*>(pTestData)))"},
        {"GetDeviceVersion", Version(0), "nLength == 0", " invalid output", " invalid input", -4, kUntouched},
        {"GetDeviceVersion", Invoke(GetDeviceVersion, nullptr, 64), "pVersion == nullptr", " invalid output"},
        {"GetDevModelAppVer", AppVersion(0), "nModelVersionLength == 0", " invalid output", " invalid input", -4,
         kUntouched},
        {"GetDevSn", Serial(2, 8), modeText, " invalid output", " invalid input", -4, kUntouched},
        {"GetDevSn", Serial(-1, 8), modeText, " invalid output", " invalid input", -4, kUntouched},
        {"GetDevSn", Invoke(GetDevSn, 0, nullptr, 8), "pDevSn == nullptr", " invalid output"},
        {"GetDevSn", Serial(0, 0), "nDevsnLength == 0", " invalid output", " invalid input", -4, kUntouched},
        {"Reboot", Invoke(Reboot, 5), rebootText},
        {"Reboot", Invoke(Reboot, -1), rebootText},
        {"Recovery", Invoke(Recovery, 2), modeText},
        {"Recovery", Invoke(Recovery, -1), modeText},
    });
    // Some records name the send without its comparison with 0.
    ASSERT_EQ(0, DisconnectSerial(dev));
    const std::string send = "m_pCommandManager->Execute(&syncCommand)";
    Walk({
        {"GetDeviceVersion", Version(8), send, " invalid output", " nLength : 8", -6, kUntouched},
        {"GetDevModelAppVer", AppVersion(8), send, " invalid output", " nModelVersionLength : 8", -6, kUntouched},
        {"GetDevModel", DeviceModel(8), send + " != 0", " invalid output", " nDevModelLength : 8", -6, kUntouched},
        {"GetLuminousSensitivityThreshold", Outputs(GetLuminousSensitivityThreshold), send, " invalid output", "", -6,
         "77"},
        {"GetDeviceNoFlickerHz", Outputs(GetDeviceNoFlickerHz, 0), send, " invalid output", " nCameraId : 0", -6,
         "77 77"},
        {"GetFrameRate", Outputs(GetFrameRate), send + " != 0", " invalid output", "", -6, "77"},
    }, false);
}
