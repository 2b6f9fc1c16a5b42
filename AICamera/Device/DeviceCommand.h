// What the command groups of AICamera share beyond the request itself.
#ifndef AICAMERA_DEVICE_COMMAND_H
#define AICAMERA_DEVICE_COMMAND_H

#include "AICamera.h"
#include "DeviceRequest.h"

// Every record of one command carries the line of its request.
#define DEVICE_REQUEST(req, tag) DeviceRequest req(this, m_pCommandManager, __func__, __LINE__, tag)

// Mode values of the recognition and comparison commands.
enum {
    MTC_MODE_RECOGNIZE_ONLY = 0,
    MTC_MODE_RECOGNIZE_LIVE = 1,
    MTC_MODE_RECOGNIZE_SINGLE = 0,
    MTC_MODE_RECOGNIZE_MULTI = 1,
    MTC_STATIC_COMPARE_LOCAL_CAPTURE = 0,
    MTC_STATIC_COMPARE_REMOTE_INPUT = 1,
};

// Length of a feature text, fixed by the protocol.
const unsigned int kFeatureLength = 1384;

// 32-bit payload fields are little-endian.
const unsigned int kLittleEndian = 1;

// True for 0 and 1; a negative char compares as a large unsigned value.
inline bool IsZeroOrOne(int value) { return static_cast<unsigned int>(value) <= 1; }
inline bool IsZeroOrOne(char value) { return static_cast<unsigned char>(value) <= 1; }

// u32 length, then the bytes.
void WriteSizedBytes(Message& message, const void* data, unsigned int length);
// Raw bytes, no length.
void WriteBytes(Message& message, const void* data, unsigned int length);

// Bytes left to read in a message.
unsigned int Remaining(Message& message);

// Exchange, then an answer of a status byte, a u32 image length and the image,
// read into a malloc'd buffer of length + 1 zeroed bytes that the caller frees
// (an absent or empty image, or a failed allocation, yields null and 0). With onlyOnSuccess, a non-zero
// status leaves both outputs untouched. `outputs` formats them for the record.
int StatusAndImage(DeviceRequest& req, void** ppImage, unsigned int* pImageLength, const char* outputs,
                   bool onlyOnSuccess = false);

// Exchange, then an answer of exactly a status byte and two bytes, read into
// first and second whatever the status; `outputs` formats the two for the record.
int StatusAndTwoBytes(DeviceRequest& req, unsigned char* first, unsigned char* second, const char* outputs);

// Length of a caller's text buffer that need not be terminated, for "%.*s".
int PrintableLength(const void* text, unsigned int capacity);

#endif
