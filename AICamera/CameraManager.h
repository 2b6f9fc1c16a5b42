// The process-wide owner of the one open camera.
#ifndef AICAMERA_CAMERAMANAGER_H
#define AICAMERA_CAMERAMANAGER_H

#include "../OS/OS_Mutex.h"

class Camera;

class CameraManager {
public:
    static CameraManager* GetInstance();
    ~CameraManager();
    CameraManager(const CameraManager&) = delete;
    CameraManager& operator=(const CameraManager&) = delete;

    // Replaces any current camera by the video node `name`; 0 or the open's code.
    int StartCamera(void* name);
    // Replaces any current camera by a recorded MJPEG file or FIFO, replayed
    // at framesPerSecond; 0, -4 for a null path or a rate outside 1..1000,
    // -10 when it cannot be opened.
    int StartPlayback(const char* path, int framesPerSecond);
    int StopCamera();
    // -1 with no camera, else the camera's own result.
    int GetFrame(char* imageBuf, int imageSize, char* verifyBuf, int verifySize);
    int GetResolution(int* width, int* height);
    int SetResolution(int width, int height);

private:
    CameraManager();
    // Keeps the camera when it opened, destroys it otherwise; returns openResult.
    int adopt(Camera* camera, int openResult);
    void stopLocked();

    Camera* m_pCamera;
    // Keeps a frame copy from racing the teardown of the camera it copies from.
    OS_Mutex m_lock;
};

#endif
