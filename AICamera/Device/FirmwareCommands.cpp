// Firmware upgrade: the package goes up in slices, then the module checks its
// hash and applies it. Cutting the package is the caller's business.
#include <string.h>

#include <string>

#include "DeviceCommand.h"

int AICamera::UploadPackageSlice(unsigned int nPosition, const void* pPacketData, unsigned int nPacketDataLength)
{
    DEVICE_REQUEST(req, 0x0020);
    req.Inputs(" nPosition : %d pPacketData : %p nPacketDataLength : %d", nPosition, pPacketData, nPacketDataLength);
    if (req.Refuse(pPacketData == nullptr, "pPacketData == nullptr") ||
        req.Refuse(nPacketDataLength == 0, "nPacketDataLength == 0"))
        return req.Result();
    req.Payload().WriteInt(nPosition, kLittleEndian);
    WriteSizedBytes(req.Payload(), pPacketData, nPacketDataLength);
    return req.StatusOnly({AnswerLength::Exactly(1)});
}

int AICamera::ApplyUpgrade(const void* pHashData, unsigned int nHashDataLength)
{
    std::string errorInfo;
    return ApplyUpgradeWithErrorInfo(pHashData, nHashDataLength, errorInfo);
}

int AICamera::ApplyUpgradeWithErrorInfo(const void* pHashData, unsigned int nHashDataLength, std::string& errorInfo)
{
    errorInfo.clear();
    // Recorded as the one ApplyUpgrade, whichever way it was called.
    DeviceRequest req(this, m_pCommandManager, "ApplyUpgrade", __LINE__, 0x0021);
    req.Inputs(" pHashData : %p nHashDataLength : %d", pHashData, nHashDataLength);
    if (req.RefuseText(pHashData, nHashDataLength, "pHashData == nullptr",
                       "!strlen(static_cast<char*>(const_cast<void*>(pHashData)))",
                       "nHashDataLength != strlen(static_cast<char*>(const_cast<void*>(pHashData)))"))
        return req.Result();
    WriteSizedBytes(req.Payload(), pHashData, nHashDataLength);
    if (!req.Exchange({AnswerLength::AtLeast(1, "tlvMessage.nLength < 1")}))
        return req.Result();
    Message& answer = req.ReadStatus();
    unsigned int errorLength = req.Answer().nLength - 1;
    if (errorLength == 0)
        return req.Succeed();
    // The module explains a refusal in a text after the status; the text ends
    // at its first zero byte, if it has one.
    errorInfo.assign(errorLength, '\0');
    answer.ReadData(&errorInfo[0], errorLength);
    errorInfo.resize(strlen(errorInfo.c_str()));
    req.AppendInputs(" errorInfo : %s", errorInfo.c_str());
    return req.Succeed();
}
