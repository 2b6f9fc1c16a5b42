// settings: the camera and sensor settings and the module's report switches.
#include <stdio.h>

#include <string>
#include <vector>

#include "JsonWriter.h"
#include "ResultText.h"
#include "Session.h"
#include "SettingItems.h"
#include "Verb.h"
#include "ai_camera.h"

namespace {
const char* const kResolutions[] = {"720x1280", "360x640", "720x720", "720x640", "720x480"};

// Both cameras of the settings that are kept per camera.
template <typename Print>
int ForBothCameras(const std::string& command, Print print)
{
    for (char camera = 0; camera <= 1; ++camera) {
        if (int result = print(camera))
            return Fail(command, result);
    }
    return 0;
}

template <typename Number>
int PrintNumber(Session& session, const std::string& command, const char* name, int (*get)(void* dev, Number* value))
{
    Number value = 0;
    if (int result = get(session.Dev(), &value))
        return Fail(command, result);
    PrintSetting(name, std::to_string(value), std::to_string(value));
    return 0;
}

int GetCameraStreams(Session& session, const std::string&)
{
    return ForBothCameras("settings get camera-stream", [&](char camera) {
        unsigned char open = 0;
        int result = GetCameraStream(session.Dev(), camera, &open);
        if (result == 0)
            PrintSetting(camera ? "camera-stream 1" : "camera-stream 0", open ? "open" : "closed");
        return result;
    });
}

int SetCameraStreams(Session& session, Arguments& args, const std::string& command)
{
    long camera = 0;
    std::string state;
    args.NextNumber("CAMERA", 0, 1, camera);
    if (args.Next("open|close", state) && state != "open" && state != "close")
        args.Invalid("the camera state must be open or close, not '" + state + "'");
    if (int result = ReadySerial(session, args, command))
        return result;
    int result = SetCameraStream(session.Dev(), state == "close" ? 1 : 0, static_cast<char>(camera));
    const std::string done = state == "close" ? " closed" : " opened";
    return SetDone(command, result, "camera " + std::to_string(camera) + done);
}

int GetThreshold(Session& session, const std::string& command)
{
    return PrintNumber<unsigned int>(session, command, "luminous-threshold", GetLuminousSensitivityThreshold);
}

int GetNoFlicker(Session& session, const std::string&)
{
    return ForBothCameras("settings get no-flicker", [&](char camera) {
        unsigned char hz = 0, enabled = 0;
        int result = GetDeviceNoFlickerHz(session.Dev(), camera, &hz, &enabled);
        if (result == 0)
            PrintSetting(camera ? "no-flicker 1" : "no-flicker 0",
                         "frequency code " + std::to_string(hz) + ", " + (enabled ? "on" : "off"),
                         JsonObject().Number("frequency-code", hz).Bool("on", enabled != 0).Text());
        return result;
    });
}

int SetNoFlicker(Session& session, Arguments& args, const std::string& command)
{
    long camera = 0, hz = 0, on = 0;
    args.NextNumber("CAMERA", 0, 1, camera);
    args.NextNumber("HZ-CODE", 0, 1, hz);
    NextSwitch(args, "on|off", on);
    if (int result = ReadySerial(session, args, command))
        return result;
    int result = SetDeviceNoFlickerHz(session.Dev(), static_cast<char>(camera), static_cast<char>(hz),
                                      static_cast<char>(on));
    return SetDone(command, result, "no-flicker of camera " + std::to_string(camera) + " set");
}

int GetDirection(Session& session, const std::string& command)
{
    return PrintNumber<unsigned char>(session, command, "screen-direction", GetScreenDirection);
}

int SetModuleResolution(void* dev, char mode) { return SetResolution(dev, mode); }

int GetRate(Session& session, const std::string& command)
{
    return PrintNumber<unsigned int>(session, command, "frame-rate", GetFrameRate);
}

int SetRate(void* dev, char rate) { return SetFrameRate(dev, static_cast<unsigned char>(rate)); }

int GetInfrared(Session& session, const std::string& command)
{
    return GetBytePair(session, command, "ir-light", "luminance, close time", GetIRlight);
}

int SetInfrared(Session& session, Arguments& args, const std::string& command)
{
    return SetBytePair(session, args, command, "ir-light", {"LUMINANCE", 0, 200}, {"CLOSE-TIME", 0, 120},
                       SetIRlight);
}

int SetUpload(Session& session, Arguments& args, const std::string& command)
{
    std::string state;
    long mode = 0, imageMode = 0;
    args.Next("open|close", state);
    if (state == "open") {
        args.NextNumber("MODE (0, 2, 3 or 4)", 0, 4, mode);
        args.NextNumber("IMAGE-MODE", 0, 7, imageMode);
        if (mode == 1)
            args.Invalid("upload mode 1 does not exist (it means close); use 0, 2, 3 or 4");
    } else if (!state.empty() && state != "close") {
        args.Invalid("upload must be 'open MODE IMAGE-MODE' or 'close', not '" + state + "'");
    }
    if (int result = ReadySerial(session, args, command))
        return result;
    if (state == "close")
        return SetDone(command, CloseAutoUploadAiInfo(session.Dev()), "automatic upload closed");
    int result = OpenAutoUploadAiInfo(session.Dev(), static_cast<char>(mode), static_cast<char>(imageMode));
    return SetDone(command, result, "automatic upload opened");
}

int SetFaceInfo(Session& session, Arguments& args, const std::string& command)
{
    long on = 0;
    NextSwitch(args, "on|off", on);
    if (int result = ReadySerial(session, args, command))
        return result;
    void* dev = session.Dev();
    int result = on ? OpenAutoUploadFaceInfoInFrame(dev) : CloseAutoUploadFaceInfoInFrame(dev);
    return SetDone(command, result, std::string("face information in frames ") + (on ? "on" : "off"));
}

int SetQrCode(Session& session, Arguments& args, const std::string& command)
{
    long on = 0, interval = 1;
    NextSwitch(args, "on|off", on);
    if (args.HasNext())
        args.NextNumber("INTERVAL", 0, 255, interval);
    if (int result = ReadySerial(session, args, command))
        return result;
    int result = SetQRCodeSwitch(session.Dev(), static_cast<unsigned char>(on), static_cast<unsigned char>(interval));
    return SetDone(command, result, std::string("QR-code detection ") + (on ? "on" : "off"));
}

const std::vector<SettingItem> kSettingItems = {
    {"uvc", "0..1", "the UVC video output switch", nullptr, nullptr, SetUvcSwitch, 0, 1},
    {"camera-stream", "CAMERA(0..1) open|close", "each camera open or closed", GetCameraStreams,
     SetCameraStreams, nullptr, 0, 0},
    {"rgb-ir", "0..1", "video from the colour (0) or infrared (1) camera", nullptr, nullptr, SwitchCamRgbIr, 0,
     1},
    {"stream-format", "0..1", "the stream format", nullptr, nullptr, SetStreamFormat, 0, 1},
    {"luminous-threshold", "", "the light-sensitivity threshold", GetThreshold, nullptr, nullptr, 0, 0},
    {"no-flicker", "CAMERA(0..1) HZ-CODE(0..1) on|off", "anti-flicker mains frequency per camera", GetNoFlicker,
     SetNoFlicker, nullptr, 0, 0},
    {"rotate", "0..3", "rotation", nullptr, nullptr, SetRotateAngle, 0, 3},
    {"screen-direction", "1..4", "screen direction", GetDirection, nullptr, SetScreenDirection, 1, 4},
    {"resolution", "0..4", "output 0 720x1280, 1 360x640, 2 720x720, 3 720x640, 4 720x480", nullptr, nullptr,
     SetModuleResolution, 0, 4},
    {"frame-rate", "10..25", "frames per second", GetRate, nullptr, SetRate, 10, 25},
    {"ir-light", "LUMINANCE(0..200) CLOSE-TIME(0..120)", "the infrared illuminator", GetInfrared, SetInfrared,
     nullptr, 0, 0},
    {"upload", "open MODE IMAGE-MODE | close", "automatic upload of recognition information", nullptr, SetUpload,
     nullptr, 0, 0},
    {"face-info", "on|off", "face information carried in the video frames", nullptr, SetFaceInfo, nullptr, 0, 0},
    {"qrcode", "on|off [INTERVAL]", "QR-code detection and its report interval", nullptr, SetQrCode, nullptr, 0,
     0},
};

}  // namespace

const std::vector<Verb> kSettingsVerbs = SettingVerbs("settings", "camera, sensor and report settings", kSettingItems);
