// Face library: enrol, delete and query faces, features, the identifier list.
#include <string.h>

#include "DeviceCommand.h"

namespace {
// Tag 0x01 serves three enrolment commands, told apart by the first byte.
enum { kEnrolLive = 0, kEnrolFromImage = 1, kEnrolReturnImage = 2 };
const unsigned int kIDListHead = 6;  // status, isLastSlice, u32 position
// The most identifier-list bytes a module may send: far beyond any face library.
const unsigned int kMaxIDListOffset = 16u << 20;
}  // namespace

int AICamera::AddFace(const void* pID, unsigned int nIDLength)
{
    DEVICE_REQUEST(req, 0x01);
    req.Inputs(" pID : %p nIDLength : %d", pID, nIDLength);
    req.SetTimeout(DeviceRequest::kEnrolTimeout);
    if (req.RefuseID(pID, nIDLength))
        return req.Result();
    req.Payload().WriteChar(kEnrolLive);
    WriteSizedBytes(req.Payload(), pID, nIDLength);
    if (!req.Exchange({AnswerLength::Exactly(1)}))
        return req.Result();
    req.ReadSignedStatus();
    return req.Succeed();
}

int AICamera::AddFaceByImage(const void* pID, unsigned int nIDLength, const void* pImage,
                             unsigned int nImageLength)
{
    DEVICE_REQUEST(req, 0x01);
    req.Inputs(" pID : %p nIDLength : %d pImage : %p nImageLength : %d", pID, nIDLength, pImage,
               nImageLength);
    req.SetTimeout(DeviceRequest::kEnrolTimeout);
    req.InvalidOutputOnRefusal();
    if (req.RefuseID(pID, nIDLength) || req.Refuse(pImage == nullptr, "pImage == nullptr") ||
        req.Refuse(nImageLength == 0, "nImageLength == 0"))
        return req.Result();
    req.Payload().WriteChar(kEnrolFromImage);
    WriteSizedBytes(req.Payload(), pID, nIDLength);
    WriteSizedBytes(req.Payload(), pImage, nImageLength);
    return req.StatusOnly({AnswerLength::Exactly(1)});
}

int AICamera::AddFaceReturnImage(const void* pID, unsigned int nIDLength, void** ppImage,
                                 unsigned int* pImageLength)
{
    DEVICE_REQUEST(req, 0x01);
    req.Inputs(" pID : %p nIDLength : %d", pID, nIDLength);
    req.SetTimeout(DeviceRequest::kEnrolTimeout);
    req.InvalidOutputOnFailure();
    req.Outputs({OUTPUT(ppImage), OUTPUT(pImageLength)});
    if (req.RefuseID(pID, nIDLength))
        return req.Result();
    req.Payload().WriteChar(kEnrolReturnImage);
    WriteSizedBytes(req.Payload(), pID, nIDLength);
    return StatusAndImage(req, ppImage, pImageLength, " ppImage : %p pImageLength : %d");
}

int AICamera::AddFaceSlice(const void* pID, unsigned int nIDLength, unsigned int nImageTotalLength,
                           unsigned int nPosition, int isLastSlice, const void* pSliceData,
                           unsigned int nSliceDataLength)
{
    DEVICE_REQUEST(req, 0x07);
    req.Inputs(" pID : %p nIDLength : %d nImageTotalLength : %d nPosition : %d isLastSlice : %d "
               "pSliceData : %p nSliceDataLength :%d",
               pID, nIDLength, nImageTotalLength, nPosition, isLastSlice, pSliceData,
               nSliceDataLength);
    if (req.RefuseID(pID, nIDLength) ||
        req.Refuse(nImageTotalLength < nPosition, "nImageTotalLength < nPosition") ||
        req.Refuse(!IsZeroOrOne(isLastSlice), "(isLastSlice != 0) && (isLastSlice != 1)") ||
        req.Refuse(pSliceData == nullptr, "pSliceData == nullptr") ||
        req.Refuse(nSliceDataLength == 0, "nSliceDataLength == 0"))
        return req.Result();
    Message& payload = req.Payload();
    payload.WriteChar(static_cast<unsigned char>(nIDLength));  // one byte: the low byte only
    WriteBytes(payload, pID, nIDLength);
    payload.WriteInt(nImageTotalLength, kLittleEndian);
    payload.WriteInt(nPosition, kLittleEndian);
    payload.WriteChar(static_cast<unsigned char>(isLastSlice));
    WriteBytes(payload, pSliceData, nSliceDataLength);
    return req.StatusOnly({AnswerLength::Exactly(1)});
}

int AICamera::DeleteFace(int nMode, const void* pID, unsigned int nIDLength)
{
    DEVICE_REQUEST(req, 0x02);
    req.Inputs(" nMode : %d pID : %p nIDLength : %d", nMode, pID, nIDLength);
    if (req.Refuse(!IsZeroOrOne(nMode), "nMode invalid") || (nMode == 1 && req.RefuseID(pID, nIDLength)))
        return req.Result();
    req.Payload().WriteChar(static_cast<unsigned char>(nMode));
    if (nMode == 1)
        WriteSizedBytes(req.Payload(), pID, nIDLength);
    return req.StatusOnly({AnswerLength::Exactly(1)});
}

int AICamera::QueryFace(const void* pID, unsigned int nIDLength, int nMode)
{
    DEVICE_REQUEST(req, 0x03);
    req.Inputs(" pID : %p nIDLength : %d nMode : %d ", pID, nIDLength, nMode);
    if (req.RefuseID(pID, nIDLength) || req.Refuse(nMode != 0, "nMode != 0"))
        return req.Result();
    req.Payload().WriteChar(0);
    WriteSizedBytes(req.Payload(), pID, nIDLength);
    return req.StatusOnly({AnswerLength::Exactly(1)});
}

int AICamera::AddFeature(const void* pID, unsigned int nIDLength, const void* pFeature,
                         unsigned int nFeatureLength)
{
    DEVICE_REQUEST(req, 0x05);
    req.Inputs(" pID : %p nIDLength : %d pFeature : %p nFeatureLength : %d", pID, nIDLength,
               pFeature, nFeatureLength);
    // The texts recorded for these checks do not name what they test; they are
    // kept as the module's tools expect them. A null feature is only refused by
    // the last check, so its length test is skipped rather than dereferenced.
    if (req.Refuse(pID == nullptr, "pID == nullptr"))
        return req.Result();
    size_t idLength = strlen(static_cast<const char*>(pID));
    if (req.Refuse(idLength == 0, "!strlen(static_cast<char*>(const_cast<void*>(pFeature)))") ||
        req.Refuse(idLength != nIDLength, "nIDLength != 1384") ||
        req.Refuse(pFeature && strlen(static_cast<const char*>(pFeature)) != kFeatureLength,
                   "strlen(static_cast<char*>(const_cast<void*>(pID))) != 1384") ||
        req.Refuse(nFeatureLength != kFeatureLength, "nIDLength != 1384") ||
        req.Refuse(pFeature == nullptr, "pFeature == nullptr"))
        return req.Result();
    WriteSizedBytes(req.Payload(), pID, nIDLength);
    WriteSizedBytes(req.Payload(), pFeature, kFeatureLength);
    return req.StatusOnly({AnswerLength::Exactly(1)});
}

int AICamera::QueryFeature(const void* pID, unsigned int nIDLength, void* pFeature,
                           unsigned int nFeatureLength)
{
    DEVICE_REQUEST(req, 0x06);
    req.Inputs(" pID : %p nIDLength : %d nFeatureLength : %d", pID, nIDLength, nFeatureLength);
    req.InvalidOutputOnFailure();
    req.ExecuteFailureText("m_pCommandManager->Execute(&syncCommand)");
    if (req.RefuseID(pID, nIDLength) || req.Refuse(pFeature == nullptr, "pFeature == nullptr") ||
        req.Refuse(nFeatureLength == 0, "nFeatureLength == 0"))
        return req.Result();
    WriteSizedBytes(req.Payload(), pID, nIDLength);
    if (!req.Exchange({AnswerLength::AtLeast(1, "tlvMessage.nLength < 1")}))
        return req.Result();
    Message& answer = req.ReadStatus();
    if (req.Result() != 0)
        return req.Fail(req.Result(), nullptr);
    if (static_cast<unsigned long long>(req.Answer().nLength) <= 1ULL + 4 + nIDLength + 4)
        return req.Fail(-8, "tlvMessage.nLength <= 1 + 4 + nIDLength + 4");
    unsigned int answerIDLength = 0;
    void* answerID = nullptr;
    if (answer.ReadInt(&answerIDLength, kLittleEndian) != 0 || answerIDLength != nIDLength ||
        answer.ReadData(&answerID, answerIDLength) != 0 ||
        strncmp(static_cast<const char*>(pID), static_cast<const char*>(answerID), nIDLength) != 0)
        return req.Fail(-7, "tlvMessage.nLength != nIDLength || "
                            "strncmp(static_cast<const OS_INT8*>(pID),static_cast<const "
                            "OS_INT8*>(tlvMessage.pValue),nIDLength) != 0");
    answer.SetPosition(answer.GetPosition() + answerIDLength);
    unsigned int featureLength = 0;
    void* feature = nullptr;
    if (answer.ReadInt(&featureLength, kLittleEndian) == 0) {
        unsigned int available = Remaining(answer);
        unsigned int sent = featureLength < available ? featureLength : available;
        if (sent && answer.ReadData(&feature, sent) == 0)
            CopyAnswerText(pFeature, nFeatureLength, feature, sent);
    }
    req.Inputs(" pID : %.*s nIDLength : %d nFeatureLength : %d", static_cast<int>(nIDLength),
               static_cast<const char*>(pID), answerIDLength, nFeatureLength);
    return req.Succeed(" pFeature : %p", pFeature);
}

int AICamera::GetDeviceFaceID(void* pIDList, unsigned int nIDListLength)
{
    DEVICE_REQUEST(req, 0x08);
    req.Inputs(" nIDListLength : %d", nIDListLength);
    req.ShowInputsOnRefusal();
    req.InvalidOutputOnFailure();
    if (req.Refuse(pIDList == nullptr, "pIDList == nullptr") ||
        req.Refuse(nIDListLength == 0, "nIDListLength == 0") || req.NoManager())
        return req.Result();
    char* list = static_cast<char*>(pIDList);
    memset(list, 0, nIDListLength);
    size_t listed = 0;  // the list never grows past nIDListLength - 1 characters
    unsigned int offset = 0;
    for (;;) {
        req.Restart();
        req.Payload().WriteInt(offset, kLittleEndian);
        if (!req.Exchange({AnswerLength::AtLeast(kIDListHead + 1, "tlvMessage.nLength  <= 6")}))
            return req.Result();
        unsigned int chunk = req.Answer().nLength - kIDListHead;
        // A module that never marks its last slice must not keep us asking.
        if (chunk > kMaxIDListOffset - offset)
            return req.Fail(-7, "offset + chunk > 0x1000000");
        offset += chunk;
        Message& answer = req.ReadStatus();
        if (req.Result() != 0)
            return req.Fail(req.Result(), nullptr);
        unsigned char isLastSlice = 0;
        unsigned int nPosition = 0;
        if (answer.ReadChar(&isLastSlice) != 0)
            return req.Fail(-7, "message.ReadChar(&isLastSlice) != 0");
        if (answer.ReadInt(&nPosition, kLittleEndian) != 0)
            return req.Fail(-7, "message.ReadInt(&nPosition,1) != 0");
        const char* text = static_cast<const char*>(req.Answer().pValue) + kIDListHead;
        size_t appended = strnlen(text, chunk);
        if (appended == 0 && isLastSlice == 0)
            return req.Fail(-7, "strnlen(chunk) == 0 && isLastSlice == 0");
        size_t room = nIDListLength - 1 - listed;
        if (appended > room)
            appended = room;
        memcpy(list + listed, text, appended);
        listed += appended;
        if (isLastSlice != 0)
            return req.Succeed(" pIDList : %p", pIDList);
    }
}

int AICamera::GetDeviceFaceLibraryNum(unsigned int* nFaceNum)
{
    DEVICE_REQUEST(req, 0x35);
    req.InvalidOutputOnFailure();
    req.Outputs({OUTPUT(nFaceNum)});
    if (!req.Exchange({AnswerLength::Exactly(5)}))
        return req.Result();
    req.ReadSignedStatus().ReadInt(nFaceNum, kLittleEndian);
    return req.Succeed(" nFaceNum : %d", *nFaceNum);
}
