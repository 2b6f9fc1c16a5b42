// WaitFrame on the camera owner while other threads stop and replace the
// camera under the waiters (also run under ThreadSanitizer).
#include <gtest/gtest.h>

#include <atomic>
#include <thread>

#include "AICamera/Video/CameraManager.h"
#include "MjpegClip.h"

namespace {
TEST(CameraManagerWait, WaitersSurviveTheCameraBeingStoppedAndReplaced)
{
    CameraManager* manager = CameraManager::GetInstance();
    std::vector<Bytes> clip;
    for (int i = 0; i < 20; ++i)
        clip.push_back(EncodeSolid(160, 120, i % 2 ? kRed : kBlue));
    WriteFileBytes("clip.mjpeg", Concat(clip));
    std::atomic<bool> done(false);
    std::atomic<int> pictures(0), ended(0), unexpected(0);
    auto wait = [&] {
        std::vector<char> image(160 * 120 * 4);
        while (!done) {
            int result = manager->WaitFrame(image.data(), int(image.size()), nullptr, 0, 2000);
            pictures += result == 0;
            ended += result == -10;
            // -1: between a stop and the next start there is no camera.
            unexpected += result != 0 && result != -10 && result != -11 && result != -1;
            if (result == -1)
                std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
    };
    std::thread waiters[3] = {std::thread(wait), std::thread(wait), std::thread(wait)};
    for (int round = 0; round < 8; ++round) {
        ASSERT_EQ(0, manager->StartPlayback("clip.mjpeg", 200));
        const int seen = pictures;
        const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(20);
        while (pictures < seen + 3 && std::chrono::steady_clock::now() < end)
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        if (round % 2)
            manager->StopCamera();
    }
    done = true;
    manager->StopCamera();
    for (std::thread& waiter : waiters)
        waiter.join();
    EXPECT_EQ(0, unexpected.load());
    EXPECT_GE(pictures.load(), 24);
    EXPECT_GT(ended.load(), 0) << "some waits were ended by a stop or a replacement";
}
}  // namespace
