#include "CameraManager.h"

#include "FFCamera.h"

CameraManager* CameraManager::GetInstance()
{
    // Made on first use under the language's one-time guard; its destructor
    // stops the camera at process exit.
    static CameraManager instance;
    return &instance;
}

CameraManager::CameraManager() : m_pCamera(nullptr) { m_lock.Init(); }

CameraManager::~CameraManager() { StopCamera(); }

void CameraManager::stopLocked()
{
    if (m_pCamera) {
        m_pCamera->closeCamera();
        delete m_pCamera;
        m_pCamera = nullptr;
    }
}

int CameraManager::adopt(Camera* camera, int openResult)
{
    if (openResult != 0) {
        delete camera;
        return openResult;
    }
    m_pCamera = camera;
    return 0;
}

int CameraManager::StartCamera(void* name)
{
    m_lock.Lock();
    stopLocked();
    FFCamera* camera = new FFCamera();
    int result = adopt(camera, camera->openCamera(static_cast<const char*>(name)));
    m_lock.Unlock();
    return result;
}

int CameraManager::StartPlayback(const char* path, int framesPerSecond)
{
    m_lock.Lock();
    stopLocked();
    FFCamera* camera = new FFCamera();
    int result = adopt(camera, camera->openPlayback(path, framesPerSecond));
    m_lock.Unlock();
    return result;
}

int CameraManager::StopCamera()
{
    m_lock.Lock();
    stopLocked();
    m_lock.Unlock();
    return 0;
}

int CameraManager::GetFrame(char* imageBuf, int imageSize, char* verifyBuf, int verifySize)
{
    m_lock.Lock();
    int result = m_pCamera ? m_pCamera->getFrame(imageBuf, imageSize, verifyBuf, verifySize) : -1;
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
