// The process-wide owner of the one open camera.
#ifndef AICAMERA_CAMERAMANAGER_H
#define AICAMERA_CAMERAMANAGER_H

#include <condition_variable>
#include <functional>
#include <vector>

#include "../../OS/OS_Mutex.h"

class Camera;
class FFCamera;

class CameraManager {
public:
    static CameraManager* GetInstance();
    ~CameraManager();
    CameraManager(const CameraManager&) = delete;
    CameraManager& operator=(const CameraManager&) = delete;

    // Replaces any current camera by the video node `name`; 0 or the open's code.
    int StartCamera(void* name);
    // Replaces any current camera by a recorded MJPEG file or FIFO, a file
    // replayed at framesPerSecond; 0, -4 for a null path or a rate outside
    // 1..1000, -10 when it cannot be opened.
    int StartPlayback(const char* path, int framesPerSecond);
    // Stops the current camera and cancels an open in progress (which then
    // returns -10); always 0.
    int StopCamera();
    // -1 with no camera, else the camera's own result.
    int GetFrame(char* imageBuf, int imageSize, char* verifyBuf, int verifySize);
    // -1 with no camera, else the camera's waitFrame result: -10 also when the
    // camera is stopped or replaced during the wait, which then ends at once.
    int WaitFrame(char* imageBuf, int imageSize, char* verifyBuf, int verifySize, int timeoutMs);
    int GetResolution(int* width, int* height);
    int SetResolution(int width, int height);

private:
    CameraManager();
    // Opens a fresh camera with `open` while holding no lock that the other
    // calls take: until it is open they see no camera, and never wait for it.
    int start(const std::function<int(FFCamera*)>& open);
    // Detaches the current camera and cancels an open in progress; the caller closes what it got.
    Camera* detachLocked();
    // Closes a detached camera, which wakes its waiters, and frees it once
    // the last of them has left it.
    void destroy(Camera* camera);

    Camera* m_pCamera;
    // The camera being opened, or null; never used by GetFrame and the like.
    FFCamera* m_pOpening;
    // Guards both pointers, held only for moments: a frame copy never races
    // the teardown of the camera it copies from.
    OS_Mutex m_lock;
    // One open at a time; only opens wait for it.
    OS_Mutex m_startLock;
    // The camera of each WaitFrame in progress, once per call; guarded by m_lock.
    std::vector<Camera*> m_waiting;
    // Signalled under m_lock when a WaitFrame leaves its camera.
    std::condition_variable_any m_waiterLeft;
};

#endif
