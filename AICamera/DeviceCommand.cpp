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

void ReadImageOutput(Message& answer, void** ppImage, unsigned int* pImageLength)
{
    if (answer.ReadInt(pImageLength, kLittleEndian) != 0 || *pImageLength == 0) {
        *ppImage = nullptr;
        *pImageLength = 0;
        return;
    }
    size_t size = static_cast<size_t>(*pImageLength) + 1;
    void* image = malloc(size);
    if (!image) {
        *ppImage = nullptr;
        *pImageLength = 0;
        return;
    }
    memset(image, 0, size);
    *ppImage = image;
    // A module that claims more than it sent leaves the buffer zeroed.
    answer.ReadData(image, *pImageLength);
}

int PrintableLength(const void* text, unsigned int capacity)
{
    size_t limit = capacity < INT_MAX ? capacity : INT_MAX;
    return static_cast<int>(strnlen(static_cast<const char*>(text), limit));
}
