// Camera and sensor settings. Several settings share a tag and are told apart
// by a leading sub-command byte: 0 reads and 1 writes, except the infrared
// light (1 reads, 0 writes) and the camera stream (the close flag writes, 2 reads).
#include "DeviceCommand.h"

namespace {
enum { kRead = 0x00, kWrite = 0x01 };
enum { kIRlightRead = 0x01, kIRlightWrite = 0x00 };
const unsigned char kCameraStreamRead = 0x02;
const char* const kModeBinaryText = "nMode != 0x00 && nMode != 0x01";
const char* const kCameraIdText = "nCameraId != 0x00 && nCameraId != 0x01";
const char* const kExecuteTextWithoutTest = "m_pCommandManager->Execute(&syncCommand)";
const unsigned char kMaxLuminance = 200;
const unsigned char kMaxCloseTime = 120;

// The module's output sizes by resolution mode.
struct ResolutionMode {
    int width;
    int height;
};
const ResolutionMode kResolutionModes[] = {{720, 1280}, {360, 640}, {720, 720}, {720, 640}, {720, 480}};
const unsigned char kMaxResolutionMode = 4;

inline bool Above(char value, unsigned char max) { return static_cast<unsigned char>(value) > max; }
}  // namespace

// A setting of one mode byte, 0 or 1, answered by a status byte.
#define BINARY_MODE_SETTING(Method, tag)                                  \
    int AICamera::Method(char nMode)                                      \
    {                                                                     \
        DEVICE_REQUEST(req, tag);                                         \
        req.Inputs(" nMode : %d", nMode);                                 \
        if (req.Refuse(!IsZeroOrOne(nMode), kModeBinaryText))             \
            return req.Result();                                          \
        req.Payload().WriteChar(static_cast<unsigned char>(nMode));       \
        return req.StatusOnly({AnswerLength::Exactly(1)});                \
    }

BINARY_MODE_SETTING(SetUvcSwitch, 0x2003)
BINARY_MODE_SETTING(SwitchCamRgbIr, 0x2005)
BINARY_MODE_SETTING(SetStreamFormat, 0x200E)

int AICamera::SetCameraStream(char isCloseCamera, char nCameraType)
{
    DEVICE_REQUEST(req, 0x2004);
    req.Inputs(" isCloseCamera : %d nCameraType : %d", isCloseCamera, nCameraType);
    if (req.Refuse(!IsZeroOrOne(isCloseCamera), "isCloseCamera != 0x00 && isCloseCamera != 0x01") ||
        req.Refuse(!IsZeroOrOne(nCameraType), "nCameraType != 0x00 && nCameraType != 0x01"))
        return req.Result();
    req.Payload().WriteChar(static_cast<unsigned char>(isCloseCamera));
    req.Payload().WriteChar(static_cast<unsigned char>(nCameraType));
    return req.StatusOnly({AnswerLength::Exactly(1)});
}

int AICamera::GetCameraStream(char nCameraType, unsigned char* isOpenCamera)
{
    DEVICE_REQUEST(req, 0x2004);
    req.Inputs(" nCameraType : %d", nCameraType);
    req.InvalidOutputOnFailure();
    req.Outputs({OUTPUT(isOpenCamera)});
    if (req.Refuse(!IsZeroOrOne(nCameraType), "nCameraType != 0x00 && nCameraType != 0x01"))
        return req.Result();
    req.Payload().WriteChar(kCameraStreamRead);
    req.Payload().WriteChar(static_cast<unsigned char>(nCameraType));
    if (!req.Exchange({AnswerLength::Exactly(2)}))
        return req.Result();
    req.ReadStatus().ReadChar(isOpenCamera);
    return req.Succeed(" isOpenCamera : %d", *isOpenCamera);
}

int AICamera::GetLuminousSensitivityThreshold(unsigned int* nThreshold)
{
    DEVICE_REQUEST(req, 0x200C);
    req.InvalidOutputOnFailure();
    req.Outputs({OUTPUT(nThreshold)});
    req.ExecuteFailureText(kExecuteTextWithoutTest);
    if (!req.Exchange({AnswerLength::Exactly(5)}))
        return req.Result();
    req.ReadStatus().ReadInt(nThreshold, kLittleEndian);
    return req.Succeed(" nThreshold : %d", *nThreshold);
}

int AICamera::GetDeviceNoFlickerHz(char nCameraId, unsigned char* pHz, unsigned char* isEnable)
{
    DEVICE_REQUEST(req, 0x200B);
    req.Inputs(" nCameraId : %d", nCameraId);
    req.InvalidOutputOnFailure();
    req.Outputs({OUTPUT(pHz), OUTPUT(isEnable)});
    req.ExecuteFailureText(kExecuteTextWithoutTest);
    if (req.Refuse(!IsZeroOrOne(nCameraId), kCameraIdText))
        return req.Result();
    req.Payload().WriteChar(kRead);
    req.Payload().WriteChar(static_cast<unsigned char>(nCameraId));
    return StatusAndTwoBytes(req, pHz, isEnable, " pHz : %d isEnable : %d");
}

int AICamera::SetDeviceNoFlickerHz(char nCameraId, char nHz, char isEnable)
{
    DEVICE_REQUEST(req, 0x200B);
    req.Inputs(" nCameraId : %d  nHz : %d isEnable : %d", nCameraId, nHz, isEnable);
    if (req.Refuse(!IsZeroOrOne(nCameraId), kCameraIdText) ||
        req.Refuse(!IsZeroOrOne(nHz), "nHz != 0x00 && nHz != 0x01") ||
        req.Refuse(!IsZeroOrOne(isEnable), "isEnable != 0x00 && isEnable != 0x01"))
        return req.Result();
    Message& payload = req.Payload();
    payload.WriteChar(kWrite);
    payload.WriteChar(static_cast<unsigned char>(nCameraId));
    payload.WriteChar(static_cast<unsigned char>(nHz));
    payload.WriteChar(static_cast<unsigned char>(isEnable));
    return req.StatusOnly({AnswerLength::AtLeast(1, "tlvMessage.nLength < 1")});
}

int AICamera::SetRotateAngle(char nMode)
{
    DEVICE_REQUEST(req, 0x200A);
    req.Inputs(" nMode : %d", nMode);
    if (req.Refuse(Above(nMode, 3), "nMode < 0x00 || nMode > 0x03"))
        return req.Result();
    req.Payload().WriteChar(static_cast<unsigned char>(nMode));
    return req.StatusOnly({AnswerLength::Exactly(1)});
}

int AICamera::GetScreenDirection(unsigned char* pMode)
{
    DEVICE_REQUEST(req, 0x2009);
    req.InvalidOutputOnFailure();
    req.Outputs({OUTPUT(pMode)});
    req.Payload().WriteChar(kRead);
    if (!req.Exchange({AnswerLength::Exactly(2)}))
        return req.Result();
    req.ReadStatus().ReadChar(pMode);
    return req.Succeed(" pMode : %d", *pMode);
}

int AICamera::SetScreenDirection(char nMode)
{
    DEVICE_REQUEST(req, 0x2009);
    req.Inputs(" nMode : %d", nMode);
    if (req.Refuse(nMode == 0 || Above(nMode, 4), "nMode < 0x01 || nMode > 0x04"))
        return req.Result();
    req.Payload().WriteChar(kWrite);
    req.Payload().WriteChar(static_cast<unsigned char>(nMode));
    return req.StatusOnly({AnswerLength::Exactly(1)});
}

int AICamera::SetResolution(char nMode)
{
    DEVICE_REQUEST(req, 0x2008);
    req.Inputs(" nMode : %d", nMode);
    if (req.Refuse(Above(nMode, kMaxResolutionMode), "nMode < 0x00 || nMode > 0x04"))
        return req.Result();
    req.Payload().WriteChar(static_cast<unsigned char>(nMode));
    if (!req.Exchange({AnswerLength::Exactly(1)}))
        return req.Result();
    req.ReadStatus();
    // The host-side capture expects the module's new size only once it is taken.
    if (req.Result() == 0) {
        const ResolutionMode& size = kResolutionModes[static_cast<unsigned char>(nMode)];
        SetResolution(size.width, size.height);
    }
    return req.Succeed();
}

int AICamera::GetFrameRate(unsigned int* pFrameRate)
{
    DEVICE_REQUEST(req, 0x2007);
    req.InvalidOutputOnFailure();
    req.Outputs({OUTPUT(pFrameRate)});
    req.Payload().WriteChar(kRead);
    if (!req.Exchange({AnswerLength::Exactly(5)}))
        return req.Result();
    req.ReadStatus().ReadInt(pFrameRate, kLittleEndian);
    return req.Succeed(" pFrameRate : %d", *pFrameRate);
}

int AICamera::SetFrameRate(int nFrameRate)
{
    DEVICE_REQUEST(req, 0x2007);
    req.Inputs(" nFrameRate : %d", nFrameRate);
    if (req.Refuse(static_cast<unsigned int>(nFrameRate) - 10u > 15u, "nFrameRate < 10 || nFrameRate > 25"))
        return req.Result();
    req.Payload().WriteChar(kWrite);
    req.Payload().WriteChar(static_cast<unsigned char>(nFrameRate));
    return req.StatusOnly({AnswerLength::AtLeast(1, "tlvMessage.nLength < 1")});
}

int AICamera::GetIRlight(unsigned char* pLuminance, unsigned char* pCloseTime)
{
    DEVICE_REQUEST(req, 0x2006);
    req.InvalidOutputOnFailure();
    req.Outputs({OUTPUT(pLuminance), OUTPUT(pCloseTime)});
    req.Payload().WriteChar(kIRlightRead);
    return StatusAndTwoBytes(req, pLuminance, pCloseTime, " pLuminance : %d pCloseTime : %d");
}

int AICamera::SetIRlight(unsigned char nLuminance, unsigned char nCloseTime)
{
    DEVICE_REQUEST(req, 0x2006);
    req.Inputs(" nLuminance : %d nCloseTime : %d", nLuminance, nCloseTime);
    if (req.Refuse(nLuminance > kMaxLuminance, "nLuminance > 200") ||
        req.Refuse(nCloseTime > kMaxCloseTime, "nCloseTime > 120"))
        return req.Result();
    Message& payload = req.Payload();
    payload.WriteChar(kIRlightWrite);
    payload.WriteChar(nLuminance);
    payload.WriteChar(nCloseTime);
    return req.StatusOnly({AnswerLength::Exactly(1)});
}
