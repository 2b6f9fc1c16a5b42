// Recognition: one-to-many and one-to-one, pause and resume, single results,
// and static comparisons that return an image.
#include <string.h>

#include "DeviceCommand.h"

namespace {
const char* const kRecModeText = "nRecMode != MTC_MODE_RECOGNIZE_ONLY && nRecMode != MTC_MODE_RECOGNIZE_LIVE";
const char* const kMulModeText = "nMulMode != MTC_MODE_RECOGNIZE_SINGLE && nMulMode != MTC_MODE_RECOGNIZE_MULTI";
const char* const kLastSliceText = "(isLastSlice != 0) && (isLastSlice != 1)";
const char* const kResImageOutputs = " ppResImage : %p pResImageLength : %d";

// Tag 0x24 carries both forms of one-to-one recognition: a whole image is the
// single, final slice at position 0.
void WriteOneToOneSlice(Message& payload, int nRecMode, int nMulMode, unsigned int total,
                        unsigned int position, int isLastSlice, const void* data, unsigned int length)
{
    payload.WriteChar(static_cast<unsigned char>(nRecMode));
    payload.WriteChar(static_cast<unsigned char>(nMulMode));
    payload.WriteInt(total, kLittleEndian);
    payload.WriteInt(position, kLittleEndian);
    payload.WriteChar(static_cast<unsigned char>(isLastSlice));
    WriteBytes(payload, data, length);
}

// Tag 0x04 serves two comparisons, told apart by the first byte.
enum { kCompareLocal = 0, kCompareHostImage = 1 };
}  // namespace

int AICamera::StartOnetoNumRecognize(int nRecMode, int nMulMode)
{
    DEVICE_REQUEST(req, 0x10);
    req.Inputs(" nRecMode : %d nMulMode : %d", nRecMode, nMulMode);
    req.ShowInputsOnRefusal();
    if (req.Refuse(!IsZeroOrOne(nRecMode), kRecModeText) || req.Refuse(!IsZeroOrOne(nMulMode), kMulModeText))
        return req.Result();
    req.Payload().WriteChar(static_cast<unsigned char>(nRecMode));
    req.Payload().WriteChar(static_cast<unsigned char>(nMulMode));
    return req.StatusOnly({AnswerLength::Exactly(1)});
}

int AICamera::StartOnetoOneRecognize(int nRecMode, int nMulMode, const void* pImage, unsigned int nImageLength)
{
    DEVICE_REQUEST(req, 0x24);
    req.Inputs(" nRecMode : %d nMulMode : %d pImage : %p nImageLength : %d", nRecMode, nMulMode, pImage,
               nImageLength);
    if (req.Refuse(!IsZeroOrOne(nRecMode), kRecModeText) || req.Refuse(!IsZeroOrOne(nMulMode), kMulModeText) ||
        req.Refuse(pImage == nullptr, "pImage == nullptr") || req.Refuse(nImageLength == 0, "nImageLength == 0"))
        return req.Result();
    WriteOneToOneSlice(req.Payload(), nRecMode, nMulMode, nImageLength, 0, 1, pImage, nImageLength);
    return req.StatusOnly({AnswerLength::Exactly(1)});
}

int AICamera::StartOnetoOneRecognizeSlice(int nRecMode, int nMulMode, unsigned int nImageTotalLength,
                                          unsigned int nPosition, int isLastSlice, const void* pSliceData,
                                          unsigned int nSliceDataLength)
{
    DEVICE_REQUEST(req, 0x24);
    req.Inputs(" nRecMode : %d nMulMode : %d nImageTotalLength : %d nPosition : %d isLastSlice : %d "
               "pSliceData : %p nSliceDataLength : %d",
               nRecMode, nMulMode, nImageTotalLength, nPosition, isLastSlice, pSliceData, nSliceDataLength);
    if (req.Refuse(!IsZeroOrOne(nRecMode), kRecModeText) || req.Refuse(!IsZeroOrOne(nMulMode), kMulModeText) ||
        req.Refuse(!IsZeroOrOne(isLastSlice), kLastSliceText) ||
        req.Refuse(pSliceData == nullptr, "pSliceData == nullptr") ||
        req.Refuse(nSliceDataLength == 0, "nSliceDataLength == 0"))
        return req.Result();
    WriteOneToOneSlice(req.Payload(), nRecMode, nMulMode, nImageTotalLength, nPosition, isLastSlice, pSliceData,
                       nSliceDataLength);
    return req.StatusOnly({AnswerLength::Exactly(1)});
}

int AICamera::ResumeRecognize()
{
    DEVICE_REQUEST(req, 0x14);
    return req.StatusOnly({AnswerLength::Exactly(1)});
}

int AICamera::PauseRecognize()
{
    DEVICE_REQUEST(req, 0x15);
    return req.StatusOnly({AnswerLength::Exactly(1)});
}

int AICamera::QueryRecognize()
{
    DEVICE_REQUEST(req, 0x16);
    req.Payload().WriteChar(0);
    return req.StatusOnly({AnswerLength::Exactly(1)});
}

int AICamera::GetSingleRecognize(void* pData, unsigned int nDataLength)
{
    DEVICE_REQUEST(req, 0x25);
    req.Inputs(" nDataLength : %d", nDataLength);
    req.InvalidOutputOnFailure();
    if (req.Refuse(pData == nullptr, "pData == nullptr") || req.Refuse(nDataLength == 0, "nDataLength == 0") ||
        req.NoManager())
        return req.Result();
    memset(pData, 0, nDataLength);
    if (!req.Exchange({AnswerLength::AtLeast(4, "tlvMessage.nLength < 4")}))
        return req.Result();
    // No status byte: a u32 text length, then the text.
    unsigned int textLength = 0;
    req.LoadAnswer().ReadInt(&textLength, kLittleEndian);
    unsigned int sent = req.Answer().nLength - 4;
    if (textLength)
        CopyAnswerText(pData, nDataLength, static_cast<const char*>(req.Answer().pValue) + 4,
                       textLength < sent ? textLength : sent);
    return req.Succeed(" pData : %.*s", PrintableLength(pData, nDataLength), static_cast<char*>(pData));
}

int AICamera::StaticFaceCompare(void** ppResImage, unsigned int* pResImageLength)
{
    DEVICE_REQUEST(req, 0x04);
    req.InvalidOutputOnFailure();
    req.Outputs({OUTPUT(ppResImage), OUTPUT(pResImageLength)});
    req.Payload().WriteChar(kCompareLocal);
    return StatusAndImage(req, ppResImage, pResImageLength, kResImageOutputs);
}

int AICamera::StaticFaceCompareReturnImage(const void* pImage, unsigned int nImageLength, void** ppResImage,
                                           unsigned int* pResImageLength)
{
    DEVICE_REQUEST(req, 0x04);
    req.Inputs(" pImage : %p nImageLength : %d", pImage, nImageLength);
    req.InvalidOutputOnFailure();
    req.Outputs({OUTPUT(ppResImage), OUTPUT(pResImageLength)});
    if (req.Refuse(pImage == nullptr, "pImage == nullptr") || req.Refuse(nImageLength == 0, "nImageLength == 0"))
        return req.Result();
    req.Payload().WriteChar(kCompareHostImage);
    WriteSizedBytes(req.Payload(), pImage, nImageLength);
    return StatusAndImage(req, ppResImage, pResImageLength, kResImageOutputs);
}

int AICamera::StaticFaceCompareSlice(int nMode, unsigned int nImageTotalLength, unsigned int nPosition,
                                     int isLastSlice, const void* pSliceData, unsigned int nSliceDataLength,
                                     void** ppResImage, unsigned int* pResImageLength)
{
    DEVICE_REQUEST(req, 0x23);
    req.Inputs(" nMode : %d nImageTotalLength : %d nPosition : %d isLastSlice : %d pSliceData : %p "
               "nSliceDataLength : %d",
               nMode, nImageTotalLength, nPosition, isLastSlice, pSliceData, nSliceDataLength);
    req.ShowInputsOnRefusal();
    req.InvalidOutputOnFailure();
    req.Outputs({OUTPUT(ppResImage), OUTPUT(pResImageLength)});
    if (req.Refuse(!IsZeroOrOne(nMode),
                   "nMode != MTC_STATIC_COMPARE_LOCAL_CAPTURE && nMode != MTC_STATIC_COMPARE_REMOTE_INPUT") ||
        req.Refuse(nImageTotalLength == 0, "nImageTotalLength == 0") ||
        req.Refuse(!IsZeroOrOne(isLastSlice), kLastSliceText) ||
        req.Refuse(pSliceData == nullptr, "pSliceData == nullptr") ||
        req.Refuse(nSliceDataLength == 0, "nSliceDataLength == 0"))
        return req.Result();
    Message& payload = req.Payload();
    payload.WriteChar(static_cast<unsigned char>(nMode));
    payload.WriteInt(nImageTotalLength, kLittleEndian);
    payload.WriteInt(nPosition, kLittleEndian);
    payload.WriteChar(static_cast<unsigned char>(isLastSlice));
    WriteBytes(payload, pSliceData, nSliceDataLength);
    // Only a comparison that succeeded carries an image.
    return StatusAndImage(req, ppResImage, pResImageLength, kResImageOutputs, true);
}
