#include "Picture.h"

#include <time.h>

#include "ai_camera.h"

namespace {
const int kSideTextSize = 1024;
const long kPollMs = 10;
const int kMaxSide = 16384;

void SleepMs(long ms)
{
    timespec pause = {ms / 1000, (ms % 1000) * 1000000};
    nanosleep(&pause, nullptr);
}
}  // namespace

Picture::Picture() : sideText(kSideTextSize + 1, 0) {}

int TakePicture(void* dev, long timeoutS, Picture& picture)
{
    int result = -11;
    for (long waited = 0; waited <= timeoutS * 1000; waited += kPollMs) {
        result = GetResolution(dev, &picture.width, &picture.height);
        if (result != 0)
            return result;
        if (picture.width > 0 && picture.height > 0 && picture.width <= kMaxSide && picture.height <= kMaxSide) {
            const size_t size = static_cast<size_t>(picture.width) * static_cast<size_t>(picture.height) * 4;
            picture.bgra.resize(size);
            result = GetFrame(dev, reinterpret_cast<char*>(picture.bgra.data()), static_cast<int>(size),
                              picture.sideText.data(), kSideTextSize);
            if (result != -11)
                return result;
        }
        SleepMs(kPollMs);
    }
    return result;
}
