// Camera and sensor settings: sub-command bytes, range checks on char values
// and answer layouts.
#include <limits.h>

#include "SettingsDevice.h"

using CameraSettings = SettingsDevice;

TEST_F(CameraSettings, ExchangesAndRefusals)
{
    const Call flicker = Invoke(SetDeviceNoFlickerHz, 0, 1, 1);
    const sim::Bytes flickerRequest = {0x01, 0x00, 0x01, 0x01};
    const char* const flickerInputs = " nCameraId : 0  nHz : 1 isEnable : 1";
    Walk({
        {"SetUvcSwitch", 0x2003, {0x06}, Invoke(SetUvcSwitch, 1), 6, {0x01}, " nMode : 1", ""},
        {"SetCameraStream", 0x2004, {0x06}, Invoke(SetCameraStream, 1, 0), 6, {0x01, 0x00},
         " isCloseCamera : 1 nCameraType : 0", ""},
        {"SwitchCamRgbIr", 0x2005, {0x06}, Invoke(SwitchCamRgbIr, 1), 6, {0x01}, " nMode : 1", ""},
        {"SetStreamFormat", 0x200E, {0x06}, Invoke(SetStreamFormat, 0), 6, {0x00}, " nMode : 0", ""},
        {"SetDeviceNoFlickerHz", 0x200B, {0x06}, Invoke(SetDeviceNoFlickerHz, 1, 0, 1), 6,
         {0x01, 0x01, 0x00, 0x01}, " nCameraId : 1  nHz : 0 isEnable : 1", ""},
        {"SetRotateAngle", 0x200A, {0x06}, Invoke(SetRotateAngle, 3), 6, {0x03}, " nMode : 3", ""},
        {"SetScreenDirection", 0x2009, {0x06}, Invoke(SetScreenDirection, 4), 6, {0x01, 0x04}, " nMode : 4", ""},
        {"SetFrameRate", 0x2007, {0x06}, Invoke(SetFrameRate, 25), 6, {0x01, 0x19}, " nFrameRate : 25", ""},
        {"SetIRlight", 0x2006, {0x06}, Invoke(SetIRlight, 10, 5), 6, {0x00, 0x0A, 0x05},
         " nLuminance : 10 nCloseTime : 5", ""},
        {"SetIRlight", 0x2006, {0x06}, Invoke(SetIRlight, 200, 120), 6, {0x00, 0xC8, 0x78},
         " nLuminance : 200 nCloseTime : 120", ""},
        // Some setters take answers longer than the status byte.
        {"SetDeviceNoFlickerHz", 0x200B, {0x00, 0x55}, flicker, 0, flickerRequest, flickerInputs, ""},
        {"SetDeviceNoFlickerHz", 0x200B, {}, flicker, -8, flickerRequest, flickerInputs, "", "tlvMessage.nLength < 1"},
        {"SetFrameRate", 0x2007, {0x02, 0x55}, Invoke(SetFrameRate, 10), 2, {0x01, 0x0A}, " nFrameRate : 10", ""},
        {"SetRotateAngle", 0x200A, {0x00, 0x55}, Invoke(SetRotateAngle, 1), -8, {0x01}, " nMode : 1", "",
         "tlvMessage.nLength != 1"},
        // Getters: sub-command 0 where a tag also sets, but 1 for the infrared light and 2 for the stream.
        {"GetFrameRate", 0x2007, {0x00, 0x19, 0x00, 0x00, 0x00}, Outputs(GetFrameRate), 0, {0x00}, "",
         " pFrameRate : 25", "", "25"},
        {"GetFrameRate", 0x2007, {0x00, 0x19, 0x00, 0x00}, Outputs(GetFrameRate), -8, {0x00}, "",
         " invalid output", "tlvMessage.nLength != 5", "77"},
        {"GetIRlight", 0x2006, {0x01, 0x64, 0x1E}, Outputs(GetIRlight), 1, {0x01}, "",
         " pLuminance : 100 pCloseTime : 30", "", "100 30"},
        {"GetCameraStream", 0x2004, {0x00, 0x01}, Outputs(GetCameraStream, 1), 0, {0x02, 0x01}, " nCameraType : 1",
         " isOpenCamera : 1", "", "1"},
        {"GetDeviceNoFlickerHz", 0x200B, {0x00, 0x01, 0x00}, Outputs(GetDeviceNoFlickerHz, 1), 0, {0x00, 0x01},
         " nCameraId : 1",
         " pHz : 1 isEnable : 0", "", "1 0"},
        {"GetScreenDirection", 0x2009, {0x00, 0x03}, Outputs(GetScreenDirection), 0, {0x00}, "", " pMode : 3", "", "3"},
        {"GetLuminousSensitivityThreshold", 0x200C, {0x04, 0x78, 0x01, 0x00, 0x00},
         Outputs(GetLuminousSensitivityThreshold), 4, {}, "", " nThreshold : 376", "", "376"},
    });
    const char* const modeText = "nMode != 0x00 && nMode != 0x01";
    const char* const cameraIdText = "nCameraId != 0x00 && nCameraId != 0x01";
    const char* const cameraTypeText = "nCameraType != 0x00 && nCameraType != 0x01";
    const char* const directionText = "nMode < 0x01 || nMode > 0x04";
    const char* const frameRateText = "nFrameRate < 10 || nFrameRate > 25";
    Walk({
        {"SetUvcSwitch", Invoke(SetUvcSwitch, 2), modeText},
        {"SwitchCamRgbIr", Invoke(SwitchCamRgbIr, 2), modeText},
        {"SetStreamFormat", Invoke(SetStreamFormat, -1), modeText},
        {"SetCameraStream", Invoke(SetCameraStream, 2, 0), "isCloseCamera != 0x00 && isCloseCamera != 0x01"},
        {"SetCameraStream", Invoke(SetCameraStream, 0, -1), cameraTypeText},
        {"GetCameraStream", Outputs(GetCameraStream, -1), cameraTypeText, " invalid output", " invalid input", -4,
         "77"},
        {"GetDeviceNoFlickerHz", Outputs(GetDeviceNoFlickerHz, 2), cameraIdText, " invalid output", " invalid input",
         -4, "77 77"},
        {"SetDeviceNoFlickerHz", Invoke(SetDeviceNoFlickerHz, -1, 0, 0), cameraIdText},
        {"SetDeviceNoFlickerHz", Invoke(SetDeviceNoFlickerHz, 0, 2, 0), "nHz != 0x00 && nHz != 0x01"},
        {"SetDeviceNoFlickerHz", Invoke(SetDeviceNoFlickerHz, 0, 0, -1), "isEnable != 0x00 && isEnable != 0x01"},
        {"SetRotateAngle", Invoke(SetRotateAngle, 4), "nMode < 0x00 || nMode > 0x03"},
        {"SetRotateAngle", Invoke(SetRotateAngle, -1), "nMode < 0x00 || nMode > 0x03"},
        {"SetScreenDirection", Invoke(SetScreenDirection, 0), directionText},
        {"SetScreenDirection", Invoke(SetScreenDirection, 5), directionText},
        {"SetScreenDirection", Invoke(SetScreenDirection, -1), directionText},
        {"SetResolution", Invoke(SetResolution, 5), "nMode < 0x00 || nMode > 0x04"},
        {"SetResolution", Invoke(SetResolution, -1), "nMode < 0x00 || nMode > 0x04"},
        {"SetFrameRate", Invoke(SetFrameRate, 9), frameRateText},
        {"SetFrameRate", Invoke(SetFrameRate, 26), frameRateText},
        {"SetFrameRate", Invoke(SetFrameRate, -1), frameRateText},
        {"SetFrameRate", Invoke(SetFrameRate, 25 + 256), frameRateText},
        {"SetFrameRate", Invoke(SetFrameRate, INT_MIN), frameRateText},
        {"SetFrameRate", Invoke(SetFrameRate, INT_MIN + 5), frameRateText},
        {"SetIRlight", Invoke(SetIRlight, 201, 0), "nLuminance > 200"},
        {"SetIRlight", Invoke(SetIRlight, 0, 121), "nCloseTime > 120"},
    });
}
