#include "Picture.h"

#include <limits.h>
#include <stddef.h>

#include "ai_camera_ext.h"

namespace {
const int kSideTextSize = 1024;
const int kMaxSide = 16384;
}  // namespace

Picture::Picture() : sideText(kSideTextSize + 1, 0) {}

int TakePicture(void* dev, long timeoutS, Picture& picture)
{
    // A connected camera has decoded its first picture, so its size is known.
    int result = GetResolution(dev, &picture.width, &picture.height);
    if (result != 0)
        return result;
    if (picture.width <= 0 || picture.height <= 0 || picture.width > kMaxSide || picture.height > kMaxSide)
        return -11;
    picture.bgra.resize(static_cast<size_t>(picture.width) * static_cast<size_t>(picture.height) * 4);
    const long long timeoutMs = timeoutS > 0 ? static_cast<long long>(timeoutS) * 1000 : 0;
    return WaitFrame(dev, reinterpret_cast<char*>(picture.bgra.data()), static_cast<int>(picture.bgra.size()),
                     picture.sideText.data(), kSideTextSize, static_cast<int>(timeoutMs < INT_MAX ? timeoutMs : INT_MAX));
}
