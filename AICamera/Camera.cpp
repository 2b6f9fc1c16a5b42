#include "Camera.h"

#include <dirent.h>
#include <stdlib.h>
#include <string.h>

namespace {
const char* const kDeviceDirectory = "/dev/";
const char* const kVideoPattern = "video";

// Appends text to the list while keeping the buffer's last byte for the
// terminator; `length` counts the whole list, written or not.
void AppendBounded(char* buf, int size, size_t* length, const char* text)
{
    for (const char* c = text; *c; ++c, ++*length) {
        if (*length < static_cast<size_t>(size) - 1)
            buf[*length] = *c;
    }
}
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
    if (!buf || size <= 0)
        return -1;
    memset(buf, 0, static_cast<size_t>(size));
    DIR* dir = opendir(directory);
    if (!dir)
        return -2;
    int count = 0;
    size_t length = 0;
    while (struct dirent* entry = readdir(dir)) {
        if (!strstr(entry->d_name, kVideoPattern))
            continue;
        AppendBounded(buf, size, &length, directory);
        AppendBounded(buf, size, &length, entry->d_name);
        AppendBounded(buf, size, &length, "|");
        ++count;
    }
    closedir(dir);
    // A list that fits loses its final "|"; a longer one is cut at size - 1.
    if (length > 0 && length + 1 <= static_cast<size_t>(size))
        buf[length - 1] = '\0';
    else
        buf[size - 1] = '\0';
    return count;
}
