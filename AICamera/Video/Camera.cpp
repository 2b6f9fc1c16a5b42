#include "Camera.h"

#include <stdlib.h>
#include <string.h>

#include "../../OS/OS_DeviceList.h"

namespace {
const char* const kDeviceDirectory = "/dev/";
const char* const kVideoPattern = "video";
}  // namespace

Camera::Camera()
    : m_pDeviceName(nullptr),
      m_nWidth(720),
      m_nHeight(1280),
      m_nFrameSize(1280 * 720 * 4),
      m_bResolutionChanged(0),
      m_nFramerate(30),
      m_nDecoding(0)
{
}

Camera::~Camera() { free(m_pDeviceName); }

void Camera::setResolution(int width, int height)
{
    m_bResolutionChanged = 1;
    if (width == 720 && height == 960)
        height = 480;
    m_nWidth = width;
    m_nHeight = height;
}

void Camera::getResolution(int* width, int* height)
{
    *width = m_nWidth;
    *height = m_nHeight;
}

void Camera::setFramerate(int framerate) { m_nFramerate = framerate; }

void Camera::getFramerate(int* framerate) { *framerate = m_nFramerate; }

void Camera::setDecoding(int decoding) { m_nDecoding = decoding; }

void Camera::getDecoding(int* decoding) { *decoding = m_nDecoding; }

int Camera::EnumCamera(char* buf, int size) { return EnumCameraIn(kDeviceDirectory, buf, size); }

int Camera::EnumCameraIn(const char* directory, char* buf, int size)
{
    return OS_ListDeviceNodes(directory, kVideoPattern, buf, size);
}
