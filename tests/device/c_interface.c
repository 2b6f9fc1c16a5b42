/* Calls into the library from a unit compiled as C, through its public headers. */
#ifdef __cplusplus
#error "this unit must be compiled as C"
#endif

#include <stdlib.h>
#include <string.h>

#include "ai_camera.h"
#include "ai_camera_ext.h"
#include "c_interface.h"

void CEnumValues(int values[C_ENUM_VALUE_COUNT])
{
    LOG_LEVER trace = LOG_LEVER_TRACE;
    LOG_TARGET both = LOG_TARGET_CONSOLE_FILE;
    AI_CAMERA_TYPE type = AI_CAMERA_TYPE_V2;
    values[0] = trace;
    values[1] = LOG_LEVER_DEBUG;
    values[2] = LOG_LEVER_OFF;
    values[3] = LOG_TARGET_CONSOLE;
    values[4] = LOG_TARGET_FILE;
    values[5] = both;
    values[6] = AI_CAMERA_TYPE_V1;
    values[7] = type;
    values[8] = AI_CAMERA_TYPE_V3;
}

void CNullHandleResults(int results[C_NULL_HANDLE_COUNT])
{
    char list[8];
    results[0] = DeInit(NULL);
    results[1] = DeInitDev(NULL);
    results[2] = ConnectSerial(NULL, "/dev/ttyACM0");
    results[3] = AddFace(NULL, "a", 1);
    results[4] = GetDeviceFaceID(NULL, list, sizeof list);
    results[5] = ConnectCameraPlayback(NULL, "clip.mjpeg");
}

void CPlaybackRefusals(void* dev, int results[2])
{
    results[0] = ConnectCameraPlayback(dev, NULL);
    results[1] = ConnectCameraPlayback(dev, "");
}

int CEnrolAndCopyImage(void* dev, unsigned char* copy, unsigned int capacity, unsigned int* length)
{
    void* image = NULL;
    int result = AddFaceReturnImage(dev, "carol", 5, &image, length);
    if (image) {
        unsigned int n = *length + 1 < capacity ? *length + 1 : capacity;
        memcpy(copy, image, n);
        free(image);
    }
    return result;
}

void CRegisterReco(void* dev, void (*callback)(char* data, int len))
{
    AI_CAMERA_REPORT_FUNC function = callback;
    RegisterRecoReportCb(dev, function);
}
