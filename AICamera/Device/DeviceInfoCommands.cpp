// Device information and maintenance: echo, version texts, serial number,
// model, temperature, sensor model, reboot, reset and recovery.
#include <string.h>

#include "DeviceCommand.h"

namespace {
// The serial-number and model answers begin with 4 bytes the host skips.
const unsigned int kSkippedHead = 4;
const unsigned char kRebootReset = 0x00;
const unsigned char kRebootEngineering = 0x04;
const char* const kExecuteTextWithoutTest = "m_pCommandManager->Execute(&syncCommand)";

// A text query: the answer, from `skip` on, is the text; it has no status byte.
int QueryText(DeviceRequest& req, const char* name, void* text, unsigned int length, unsigned int skip,
              AnswerLength check)
{
    if (!req.Exchange({check}))
        return req.Result();
    const TLVMessage& answer = req.Answer();
    CopyAnswerText(text, length, static_cast<const char*>(answer.pValue) + skip, answer.nLength - skip);
    return req.Succeed(" %s : %.*s", name, PrintableLength(text, length), static_cast<char*>(text));
}
}  // namespace

int AICamera::Ping(const void* pTestData, unsigned int nTestDataLength)
{
    DEVICE_REQUEST(req, 0x1000);
    req.Inputs(" pTestData : %s nTestDataLength : %d", pTestData ? static_cast<const char*>(pTestData) : "",
               nTestDataLength);
    if (req.RefuseText(pTestData, nTestDataLength, "pTestData == nullptr",
                       "!strlen(static_cast<char*>(const_cast<void*>(pTestData)))",
                       "nTestDataLength != strlen(static_cast<char*>(const_cast<void*>(pTestData)))"))
        return req.Result();
    WriteBytes(req.Payload(), pTestData, nTestDataLength);
    if (!req.Exchange({AnswerLength::Exactly(nTestDataLength, "tlvMessage.nLength != nTestDataLength")}))
        return req.Result();
    if (strncmp(static_cast<const char*>(req.Answer().pValue), static_cast<const char*>(pTestData),
                nTestDataLength) != 0)
        return req.Fail(-7, "strncmp(reinterpret_cast<const char *>(tlvMessage.pValue) , "
                            "reinterpret_cast<const char *>(pTestData), nTestDataLength) != 0");
    return req.Succeed();
}

int AICamera::GetDeviceVersion(void* pVersion, unsigned int nLength)
{
    DEVICE_REQUEST(req, 0x1003);
    req.Inputs(" nLength : %d", nLength);
    req.InvalidOutputOnFailure();
    req.ExecuteFailureText(kExecuteTextWithoutTest);
    if (req.Refuse(pVersion == nullptr, "pVersion == nullptr") || req.Refuse(nLength == 0, "nLength == 0"))
        return req.Result();
    return QueryText(req, "pVersion", pVersion, nLength, 0, AnswerLength::AtLeast(1, "tlvMessage.nLength == 0"));
}

int AICamera::GetDevModelAppVer(void* pModelVersion, unsigned int nModelVersionLength)
{
    DEVICE_REQUEST(req, 0x200D);
    req.Inputs(" nModelVersionLength : %d", nModelVersionLength);
    req.InvalidOutputOnFailure();
    req.ExecuteFailureText(kExecuteTextWithoutTest);
    if (req.Refuse(pModelVersion == nullptr, "pModelVersion == nullptr") ||
        req.Refuse(nModelVersionLength == 0, "nModelVersionLength == 0"))
        return req.Result();
    return QueryText(req, "pModelVersion", pModelVersion, nModelVersionLength, 0, AnswerLength::AtLeast(1, "tlvMessage.nLength == 0"));
}

int AICamera::GetDevSn(char nMode, void* pDevSn, unsigned int nDevsnLength)
{
    DEVICE_REQUEST(req, 0x2001);
    req.Inputs(" nMode : %d nDevsnLength : %d", nMode, nDevsnLength);
    req.InvalidOutputOnFailure();
    if (req.Refuse(!IsZeroOrOne(nMode), "nMode != 0x00 && nMode != 0x01") ||
        req.Refuse(pDevSn == nullptr, "pDevSn == nullptr") || req.Refuse(nDevsnLength == 0, "nDevsnLength == 0"))
        return req.Result();
    req.Payload().WriteChar(static_cast<unsigned char>(nMode));
    return QueryText(req, "pDevSn", pDevSn, nDevsnLength, kSkippedHead,
                     AnswerLength::AtLeast(kSkippedHead + 1, "tlvMessage.nLength  <= 4"));
}

int AICamera::GetDevModel(void* pDevModel, unsigned int nDevModelLength)
{
    DEVICE_REQUEST(req, 0x2002);
    req.Inputs(" nDevModelLength : %d", nDevModelLength);
    req.InvalidOutputOnFailure();
    if (req.Refuse(pDevModel == nullptr, "pDevModel == nullptr") ||
        req.Refuse(nDevModelLength == 0, "nDevModelLength == 0"))
        return req.Result();
    return QueryText(req, "pDevModel", pDevModel, nDevModelLength, kSkippedHead,
                     AnswerLength::AtLeast(kSkippedHead + 1, "tlvMessage.nLength  <= 4"));
}

int AICamera::GetCpuTemperature(unsigned int* nTemperature)
{
    DEVICE_REQUEST(req, 0x200F);
    req.InvalidOutputOnFailure();
    req.Outputs({OUTPUT(nTemperature)});
    if (!req.Exchange({AnswerLength::AtLeast(4, "tlvMessage.nLength < 4")}))
        return req.Result();
    // No status byte: the temperature starts the answer.
    req.LoadAnswer().ReadInt(nTemperature, kLittleEndian);
    return req.Succeed(" nTemperature : %d", *nTemperature);
}

int AICamera::GetAESensorModel(unsigned int* pSensorModel)
{
    DEVICE_REQUEST(req, 0x2010);
    req.InvalidOutputOnFailure();
    req.Outputs({OUTPUT(pSensorModel)});
    // Exactly 5 bytes are required, although the recorded text says otherwise.
    if (!req.Exchange({AnswerLength::Exactly(5, "tlvMessage.nLength < 4")}))
        return req.Result();
    req.ReadStatus().ReadInt(pSensorModel, kLittleEndian);
    return req.Succeed(" pSensorModel : %d", *pSensorModel);
}

int AICamera::Reboot(int nMode)
{
    DEVICE_REQUEST(req, 0x1004);
    req.Inputs(" nMode : %d", nMode);
    if (req.Refuse(static_cast<unsigned int>(nMode) > kRebootEngineering, "nMode < 0x00 || nMode > 0x04"))
        return req.Result();
    req.Payload().WriteChar(static_cast<unsigned char>(nMode));
    return req.StatusOnly({AnswerLength::Exactly(1)});
}

int AICamera::Reset()
{
    DEVICE_REQUEST(req, 0x1004);
    req.Payload().WriteChar(kRebootReset);
    return req.StatusOnly({AnswerLength::Exactly(1)});
}

int AICamera::SetUmodeToEngin()
{
    DEVICE_REQUEST(req, 0x1004);
    req.Payload().WriteChar(kRebootEngineering);
    return req.StatusOnly({AnswerLength::Exactly(1)});
}

int AICamera::Recovery(int nMode)
{
    DEVICE_REQUEST(req, 0x1005);
    req.Inputs(" nMode : %d", nMode);
    if (req.Refuse(!IsZeroOrOne(nMode), "nMode != 0x00 && nMode != 0x01"))
        return req.Result();
    req.Payload().WriteChar(static_cast<unsigned char>(nMode));
    return req.StatusOnly({AnswerLength::Exactly(1)});
}
