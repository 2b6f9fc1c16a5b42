// Switches for the reports the module pushes on its own: recognition
// information, face information in frames, and QR codes.
#include "DeviceCommand.h"

namespace {
enum : unsigned short { kAiInfoTag = 0x0018, kFaceInfoInFrameTag = 0x0019 };
// The close request of the recognition information carries 1, which is why
// upload mode 1 cannot be asked for.
const unsigned char kAiInfoClose = 0x01;
enum { kFaceInfoOpen = 0x00, kFaceInfoClose = 0x01 };
const unsigned char kMaxImageMode = 7;

// The upload switches test the answer twice: empty, then not one byte.
#define UPLOAD_SWITCH_ANSWER \
    { AnswerLength::AtLeast(1, "tlvMessage.nLength  == 0"), AnswerLength::Exactly(1) }

bool IsUploadMode(char mode) { return mode == 0x00 || mode == 0x02 || mode == 0x03 || mode == 0x04; }
}  // namespace

int AICamera::UploadSwitch(const char* function, int line, unsigned short tag, unsigned char value)
{
    DeviceRequest req(this, m_pCommandManager, function, line, tag);
    req.Payload().WriteChar(value);
    return req.StatusOnly(UPLOAD_SWITCH_ANSWER);
}

int AICamera::OpenAutoUploadAiInfo(char nUploadMode, char nImageMode)
{
    DEVICE_REQUEST(req, kAiInfoTag);
    req.Inputs(" nUploadMode : %d nImageMode : %d", nUploadMode, nImageMode);
    if (req.Refuse(!IsUploadMode(nUploadMode),
                   "nUploadMode != 0x00 && nUploadMode != 0x02 && nUploadMode != 0x03 && nUploadMode != 0x04") ||
        req.Refuse(static_cast<unsigned char>(nImageMode) > kMaxImageMode, "nImageMode < 0 || nImageMode > 7"))
        return req.Result();
    req.Payload().WriteChar(static_cast<unsigned char>(nUploadMode));
    req.Payload().WriteChar(static_cast<unsigned char>(nImageMode));
    return req.StatusOnly(UPLOAD_SWITCH_ANSWER);
}

int AICamera::CloseAutoUploadAiInfo() { return UploadSwitch(__func__, __LINE__, kAiInfoTag, kAiInfoClose); }

int AICamera::OpenAutoUploadFaceInfoInFrame()
{
    return UploadSwitch(__func__, __LINE__, kFaceInfoInFrameTag, kFaceInfoOpen);
}

int AICamera::CloseAutoUploadFaceInfoInFrame()
{
    return UploadSwitch(__func__, __LINE__, kFaceInfoInFrameTag, kFaceInfoClose);
}

int AICamera::SetQRCodeSwitch(unsigned char isOpen, unsigned char interval)
{
    DEVICE_REQUEST(req, 0x0022);
    req.Inputs(" isOpen : %d interval : %d", isOpen, interval);
    req.RefusalInputs(" isOpen : %d", isOpen);
    if (req.Refuse(isOpen > 1, "isOpen != 0 && isOpen != 1"))
        return req.Result();
    req.Payload().WriteChar(isOpen);
    req.Payload().WriteChar(interval);
    return req.StatusOnly({AnswerLength::Exactly(1)});
}
