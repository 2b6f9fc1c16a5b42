#include "CameraManager.h"

#include <algorithm>

#include "FFCamera.h"
#include "LockableMutex.h"

CameraManager* CameraManager::GetInstance()
{
    // Made on first use under the language's one-time guard; its destructor
    // stops the camera at process exit.
    static CameraManager instance;
    return &instance;
}

CameraManager::CameraManager() : m_pCamera(nullptr), m_pOpening(nullptr)
{
    m_lock.Init();
    m_startLock.Init();
}

CameraManager::~CameraManager() { StopCamera(); }

void CameraManager::destroy(Camera* camera)
{
    if (!camera)
        return;
    camera->closeCamera();
    LockableMutex lock(m_lock);
    std::unique_lock<LockableMutex> hold(lock);
    m_waiterLeft.wait(hold, [&] { return std::find(m_waiting.begin(), m_waiting.end(), camera) == m_waiting.end(); });
    hold.unlock();
    delete camera;
}

Camera* CameraManager::detachLocked()
{
    Camera* camera = m_pCamera;
    m_pCamera = nullptr;
    if (m_pOpening) {
        m_pOpening->cancelOpen();
        m_pOpening = nullptr;
    }
    return camera;
}

int CameraManager::start(const std::function<int(FFCamera*)>& open)
{
    // An earlier open still in progress gives way to this one.
    m_lock.Lock();
    if (m_pOpening)
        m_pOpening->cancelOpen();
    m_lock.Unlock();

    m_startLock.Lock();
    FFCamera* camera = new FFCamera();
    m_lock.Lock();
    Camera* previous = detachLocked();
    m_pOpening = camera;
    m_lock.Unlock();
    destroy(previous);

    int result = open(camera);

    m_lock.Lock();
    // A stop or another start in the meantime took the camera's place.
    const bool wanted = m_pOpening == camera;
    if (wanted)
        m_pOpening = nullptr;
    if (wanted && result == 0) {
        m_pCamera = camera;
        camera = nullptr;
    }
    m_lock.Unlock();
    if (camera && result == 0)
        result = -10;
    destroy(camera);
    m_startLock.Unlock();
    return result;
}

int CameraManager::StartCamera(void* name)
{
    return start([name](FFCamera* camera) { return camera->openCamera(static_cast<const char*>(name)); });
}

int CameraManager::StartPlayback(const char* path, int framesPerSecond)
{
    return start([path, framesPerSecond](FFCamera* camera) { return camera->openPlayback(path, framesPerSecond); });
}

int CameraManager::StopCamera()
{
    m_lock.Lock();
    Camera* camera = detachLocked();
    m_lock.Unlock();
    destroy(camera);
    return 0;
}

int CameraManager::GetFrame(char* imageBuf, int imageSize, char* verifyBuf, int verifySize)
{
    m_lock.Lock();
    int result = m_pCamera ? m_pCamera->getFrame(imageBuf, imageSize, verifyBuf, verifySize) : -1;
    m_lock.Unlock();
    return result;
}

int CameraManager::WaitFrame(char* imageBuf, int imageSize, char* verifyBuf, int verifySize, int timeoutMs)
{
    m_lock.Lock();
    Camera* camera = m_pCamera;
    if (camera)
        m_waiting.push_back(camera);
    m_lock.Unlock();
    if (!camera)
        return -1;
    // The wait holds no manager lock: a stop meanwhile closes the camera, which
    // ends the wait, and frees it only after this call has left it.
    int result = camera->waitFrame(imageBuf, imageSize, verifyBuf, verifySize, timeoutMs);
    m_lock.Lock();
    m_waiting.erase(std::find(m_waiting.begin(), m_waiting.end(), camera));
    m_waiterLeft.notify_all();
    m_lock.Unlock();
    return result;
}

int CameraManager::GetResolution(int* width, int* height)
{
    m_lock.Lock();
    int result = -1;
    if (m_pCamera) {
        m_pCamera->getResolution(width, height);
        result = 0;
    }
    m_lock.Unlock();
    return result;
}

int CameraManager::SetResolution(int width, int height)
{
    m_lock.Lock();
    int result = -1;
    if (m_pCamera) {
        m_pCamera->setResolution(width, height);
        result = 0;
    }
    m_lock.Unlock();
    return result;
}
