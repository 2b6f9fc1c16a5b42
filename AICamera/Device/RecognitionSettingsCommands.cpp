// Recognition settings: the configuration text, the counts, template updating.
#include <string.h>

#include "DeviceCommand.h"

namespace {
// The configuration pair uses 0 to set and 1 to get, the reverse of the others.
enum { kConfigSet = 0, kConfigGet = 1 };
enum { kGet = 0, kSet = 1 };
const unsigned char kConfigType = 0;
const unsigned char kMaxCount = 10;
}  // namespace

int AICamera::SetRecConfig(const void* pData, unsigned int nDataLength, int nConfigType)
{
    DEVICE_REQUEST(req, 0x17);
    req.Inputs(" pData : %s nDataLength : %d nConfigType : %d", pData ? static_cast<const char*>(pData) : "",
               nDataLength, nConfigType);
    if (req.RefuseText(pData, nDataLength, "pData == nullptr",
                       "!strlen(static_cast<char*>(const_cast<void*>(pData)))",
                       "nDataLength != strlen(static_cast<char*>(const_cast<void*>(pData)))") ||
        req.Refuse(nConfigType != kConfigType, "nConfigType != 0"))
        return req.Result();
    req.Payload().WriteChar(kConfigSet);
    req.Payload().WriteChar(kConfigType);
    WriteBytes(req.Payload(), pData, nDataLength);
    return req.StatusOnly({AnswerLength::Exactly(1)});
}

int AICamera::GetRecConfig(void* pData, unsigned int nDataLength, int nConfigType)
{
    DEVICE_REQUEST(req, 0x17);
    req.Inputs(" nDataLength : %d nConfigType : %d", nDataLength, nConfigType);
    req.InvalidOutputOnFailure();
    // The configuration type is refused under the length's text.
    if (req.Refuse(pData == nullptr, "pData == nullptr") || req.Refuse(nDataLength == 0, "nDataLength == 0") ||
        req.Refuse(nConfigType != kConfigType, "nDataLength == 0") || req.NoManager())
        return req.Result();
    memset(pData, 0, nDataLength);
    req.Payload().WriteChar(kConfigGet);
    req.Payload().WriteChar(kConfigType);
    if (!req.Exchange({AnswerLength::AtLeast(1, "tlvMessage.nLength  == 0")}))
        return req.Result();
    req.ReadStatus();
    const TLVMessage& answer = req.Answer();
    if (answer.nLength > 1)
        CopyAnswerText(pData, nDataLength, static_cast<const char*>(answer.pValue) + 1, answer.nLength - 1);
    return req.Succeed(" pData : %.*s ", PrintableLength(pData, nDataLength), static_cast<char*>(pData));
}

int AICamera::SetRecognizeCount(unsigned char nRecCount, unsigned char nLivingCount)
{
    DEVICE_REQUEST(req, 0x09);
    req.Inputs(" nRecCount : %d nLivingCount : %d", nRecCount, nLivingCount);
    req.ShowInputsOnRefusal();
    if (req.Refuse(nRecCount == 0 || nRecCount > kMaxCount, "(nRecCount == 0) || (nRecCount > 10)") ||
        req.Refuse(nLivingCount == 0 || nLivingCount > kMaxCount, "(nLivingCount == 0) || (nLivingCount > 10)"))
        return req.Result();
    req.Payload().WriteChar(kSet);
    req.Payload().WriteChar(nRecCount);
    req.Payload().WriteChar(nLivingCount);
    return req.StatusOnly({AnswerLength::Exactly(1)});
}

int AICamera::GetRecognizeCount(unsigned char* pRecCount, unsigned char* pLivingCount)
{
    DEVICE_REQUEST(req, 0x09);
    req.InvalidOutputOnFailure();
    req.Outputs({OUTPUT(pRecCount), OUTPUT(pLivingCount)});
    req.Payload().WriteChar(kGet);
    return StatusAndTwoBytes(req, pRecCount, pLivingCount, " pRecCount : %d pLivingCount : %d");
}

int AICamera::SetTemplateUpdate(unsigned char isUpdate)
{
    DEVICE_REQUEST(req, 0x0A);
    req.Inputs(" isUpdate : %d", isUpdate);
    req.ShowInputsOnRefusal();
    if (req.Refuse(isUpdate > 1, "isUpdate != 0 && isUpdate != 1"))
        return req.Result();
    req.Payload().WriteChar(kSet);
    req.Payload().WriteChar(isUpdate);
    return req.StatusOnly({AnswerLength::Exactly(1)});
}

int AICamera::GetTemplateUpdate(unsigned char* isUpdate)
{
    DEVICE_REQUEST(req, 0x0A);
    req.InvalidOutputOnFailure();
    req.Outputs({OUTPUT(isUpdate)});
    req.Payload().WriteChar(kGet);
    if (!req.Exchange({AnswerLength::Exactly(2)}))
        return req.Result();
    req.ReadSignedStatus().ReadChar(isUpdate);
    return req.Succeed(" isUpdate : %d", *isUpdate);
}
