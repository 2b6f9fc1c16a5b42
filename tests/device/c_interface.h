/* What the C unit offers the C++ tests: calls made from code compiled as C. */
#ifndef TESTS_DEVICE_C_INTERFACE_H
#define TESTS_DEVICE_C_INTERFACE_H

#ifdef __cplusplus
extern "C" {
#endif

/* The header's enumeration values, in this order: LOG_LEVER_TRACE, LOG_LEVER_DEBUG,
   LOG_LEVER_OFF, LOG_TARGET_CONSOLE, LOG_TARGET_FILE, LOG_TARGET_CONSOLE_FILE,
   AI_CAMERA_TYPE_V1, AI_CAMERA_TYPE_V2, AI_CAMERA_TYPE_V3. */
enum { C_ENUM_VALUE_COUNT = 9 };
void CEnumValues(int values[C_ENUM_VALUE_COUNT]);

/* Results of a few functions called with a null handle, in this order: DeInit,
   DeInitDev, ConnectSerial, AddFace, GetDeviceFaceID, ConnectCameraPlayback. */
enum { C_NULL_HANDLE_COUNT = 6 };
void CNullHandleResults(int results[C_NULL_HANDLE_COUNT]);

/* ConnectCameraPlayback with a null path, then an empty one. */
void CPlaybackRefusals(void* dev, int results[2]);

/* AddFaceReturnImage for "carol"; copies up to `capacity` bytes of the image
   (with its trailing zero) into `copy`, frees the library's buffer, and returns
   the result; *length gets the image length. */
int CEnrolAndCopyImage(void* dev, unsigned char* copy, unsigned int capacity, unsigned int* length);

/* Registers `callback` for recognition reports from C. */
void CRegisterReco(void* dev, void (*callback)(char* data, int len));

#ifdef __cplusplus
}
#endif

#endif
