/* Calls into the library from a unit compiled as C, through its public headers. */
#ifdef __cplusplus
#error "this unit must be compiled as C"
#endif

#include <stdlib.h>
#include <string.h>

#include "ai_camera.h"
#include "ai_camera_ext.h"

void CEnumValues(int values[9]);
void CHandleResults(void* dev, int results[8]);
int CEnrolAndCopyImage(void* dev, unsigned char* copy, unsigned int capacity, unsigned int* length);
void CRegisterReco(void* dev, void (*callback)(char* data, int len));
int CCountModules(char* version, int versionSize);

void CEnumValues(int values[9])
{
    LOG_LEVER trace = LOG_LEVER_TRACE;
    LOG_TARGET both = LOG_TARGET_CONSOLE_FILE;
    AI_CAMERA_TYPE type = AI_CAMERA_TYPE_V2;
    int all[9] = {trace, LOG_LEVER_DEBUG, LOG_LEVER_OFF, LOG_TARGET_CONSOLE, LOG_TARGET_FILE, both,
                  AI_CAMERA_TYPE_V1, type, AI_CAMERA_TYPE_V3};
    memcpy(values, all, sizeof all);
}

/* Six calls with a null handle, then the playback extension refusing a null and an empty path. */
void CHandleResults(void* dev, int results[8])
{
    char list[8];
    results[0] = DeInit(NULL);
    results[1] = DeInitDev(NULL);
    results[2] = ConnectSerial(NULL, "/dev/ttyACM0");
    results[3] = AddFace(NULL, "a", 1);
    results[4] = GetDeviceFaceID(NULL, list, sizeof list);
    results[5] = ConnectCameraPlayback(NULL, "clip.mjpeg");
    results[6] = ConnectCameraPlayback(dev, NULL);
    results[7] = ConnectCameraPlayback(dev, "");
}

/* Copies the image with its trailing zero, up to `capacity` bytes, and frees the library's buffer. */
int CEnrolAndCopyImage(void* dev, unsigned char* copy, unsigned int capacity, unsigned int* length)
{
    void* image = NULL;
    int result = AddFaceReturnImage(dev, "carol", 5, &image, length);
    if (image) {
        memcpy(copy, image, *length + 1 < capacity ? *length + 1 : capacity);
        free(image);
    }
    return result;
}

void CRegisterReco(void* dev, void (*callback)(char* data, int len))
{
    AI_CAMERA_REPORT_FUNC function = callback;
    RegisterRecoReportCb(dev, function);
}

/* The module array as C declares it, and the version text. */
int CCountModules(char* version, int versionSize)
{
    AI_CAMERA_MODULE modules[1];
    GetSdkVersion(version, versionSize);
    return EnumModules(modules, 1, 0, 0, AI_CAMERA_MODULES_PARTIAL);
}
