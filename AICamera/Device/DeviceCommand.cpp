#include "DeviceCommand.h"

#include <limits.h>
#include <stdlib.h>
#include <string.h>

void WriteBytes(Message& message, const void* data, unsigned int length)
{
    if (length)
        message.WriteData(const_cast<void*>(data), length);
}

void WriteSizedBytes(Message& message, const void* data, unsigned int length)
{
    message.WriteInt(length, kLittleEndian);
    WriteBytes(message, data, length);
}

unsigned int Remaining(Message& message)
{
    void* block = nullptr;
    unsigned int length = 0;
    message.GetData(&block, &length);
    return length - message.GetPosition();
}

namespace {
void ReadImageOutput(Message& answer, void** ppImage, unsigned int* pImageLength)
{
    *ppImage = nullptr;
    if (answer.ReadInt(pImageLength, kLittleEndian) != 0 || *pImageLength == 0) {
        *pImageLength = 0;
        return;
    }
    // The caller gets the length the module claims, in a zeroed buffer one byte
    // longer; an answer shorter than its claim leaves the buffer zero.
    void* image = calloc(static_cast<size_t>(*pImageLength) + 1, 1);
    if (!image) {
        *pImageLength = 0;
        return;
    }
    *ppImage = image;
    answer.ReadData(image, *pImageLength);
}
}  // namespace

int StatusAndImage(DeviceRequest& req, void** ppImage, unsigned int* pImageLength, const char* outputs,
                   bool onlyOnSuccess)
{
    if (!req.Exchange({AnswerLength::AtLeast(1, "tlvMessage.nLength < 1")}))
        return req.Result();
    Message& answer = req.ReadStatus();
    if (!onlyOnSuccess || req.Result() == 0)
        ReadImageOutput(answer, ppImage, pImageLength);
    return req.Succeed(outputs, *ppImage, *pImageLength);
}

int PrintableLength(const void* text, unsigned int capacity)
{
    size_t limit = capacity < INT_MAX ? capacity : INT_MAX;
    return static_cast<int>(strnlen(static_cast<const char*>(text), limit));
}

int StatusAndTwoBytes(DeviceRequest& req, unsigned char* first, unsigned char* second, const char* outputs)
{
    if (!req.Exchange({AnswerLength::Exactly(3)}))
        return req.Result();
    Message& answer = req.ReadStatus();
    answer.ReadChar(first);
    answer.ReadChar(second);
    return req.Succeed(outputs, *first, *second);
}
