// The process-wide camera owner, and the V4L2 open path on this machine,
// which has no V4L2 device.
#include <gtest/gtest.h>

#include <atomic>
#include <fstream>
#include <sstream>

#include "AICamera/CameraManager.h"
#include "AICamera/Log.h"
#include "MjpegClip.h"

namespace {
const char* const kOpenFailed = "[ERROR] [FILE : FFCamera][FUNCTION : openCamera][LINE : ";

class CameraManagerTest : public ::testing::Test {
protected:
    void TearDown() override
    {
        Manager()->StopCamera();
        Log::GetInstance()->Init(LOG_LEVER_OFF, LOG_TARGET_CONSOLE_FILE, "Log", ".log");
    }
    CameraManager* Manager() { return CameraManager::GetInstance(); }
};

TEST_F(CameraManagerTest, CodesWithNoCameraAndAfterFailedOpens)
{
    char image[16];
    int width = 1, height = 2;
    EXPECT_EQ(0, Manager()->StopCamera());
    EXPECT_EQ(-1, Manager()->GetFrame(image, sizeof image, image, sizeof image));
    EXPECT_EQ(-1, Manager()->GetResolution(&width, &height));
    EXPECT_TRUE(width == 1 && height == 2);
    EXPECT_EQ(-1, Manager()->SetResolution(640, 480));

    ASSERT_EQ(0, Log::GetInstance()->Init(LOG_LEVER_ERROR, LOG_TARGET_FILE, "Log", ".log"));
    WriteFileBytes("clip.mjpeg", EncodeSolid(64, 48, kGreen));
    WriteFileBytes("not_a_camera", Bytes(100, 0));
    ASSERT_EQ(0, Manager()->StartPlayback("clip.mjpeg", 30));
    char notVideo[] = "not_a_camera";
    EXPECT_EQ(-10, Manager()->StartCamera(notVideo));  // the failed start leaves no camera
    EXPECT_EQ(-1, Manager()->GetFrame(image, sizeof image, nullptr, 0));
    std::stringstream log;
    log << std::ifstream("Log/" + Log::GetInstance()->GetCurrDate() + ".log").rdbuf();
    const std::string text = log.str();
    size_t body = text.find("]\ncamera open failed! : ", text.find(kOpenFailed));
    ASSERT_NE(std::string::npos, body) << text;
    EXPECT_GT(text.find('\n', body + 26), body + 26) << "FFmpeg's error text follows: " << text;
    EXPECT_EQ(-10, Manager()->StartPlayback("no_such_clip.mjpeg", 30));
    EXPECT_EQ(-1, Manager()->GetFrame(image, sizeof image, nullptr, 0));
}

// A 720 by 960 stream is reported as 720 by 480 but converted whole.
TEST_F(CameraManagerTest, PlaybackThroughTheManager)
{
    WriteFileBytes("tall.mjpeg", EncodeBars(720, 960, {kRed, kBlue}));
    ASSERT_EQ(0, Manager()->StartPlayback("tall.mjpeg", 30));
    int width = 0, height = 0;
    ASSERT_EQ(0, Manager()->GetResolution(&width, &height));
    EXPECT_TRUE(width == 720 && height == 480) << width << "x" << height;
    std::vector<char> image(720 * 960 * 4);
    ASSERT_EQ(0, PollFrame([&] { return Manager()->GetFrame(image.data(), static_cast<int>(image.size()), nullptr, 0); }));
    EXPECT_TRUE(PixelNear(image, 720, 100, 950, kRed));  // red and blue apart: BGRA in its order
    EXPECT_TRUE(PixelNear(image, 720, 600, 950, kBlue));
    EXPECT_EQ(0, Manager()->SetResolution(640, 360));
    ASSERT_EQ(0, Manager()->GetResolution(&width, &height));
    EXPECT_TRUE(width == 640 && height == 360) << width << "x" << height;
    EXPECT_EQ(0, Manager()->SetResolution(720, 960));
    ASSERT_EQ(0, Manager()->GetResolution(&width, &height));
    EXPECT_TRUE(width == 720 && height == 480) << width << "x" << height;
    EXPECT_EQ(0, Manager()->StopCamera());
    EXPECT_EQ(-1, Manager()->GetResolution(&width, &height));
}

// Readers copy frames while the camera is restarted and stopped under them.
TEST_F(CameraManagerTest, FramesCopiedWhileTheCameraIsReplaced)
{
    std::vector<Bytes> clip;
    for (int i = 0; i < 40; ++i)
        clip.push_back(WithSegment(EncodeSolid(320, 240, i % 2 ? kRed : kGreen), 0xFE,
                                   "{\"frame\":" + std::to_string(i) + ",\"pad\":\"xxxx\"}"));
    WriteFileBytes("clip.mjpeg", Concat(clip));
    std::atomic<bool> done(false);
    std::atomic<int> handedOut(0);
    auto read = [&] {
        std::vector<char> image(320 * 240 * 4);
        char verify[64];
        while (!done) {
            int result = Manager()->GetFrame(image.data(), static_cast<int>(image.size()), verify, sizeof verify);
            handedOut += result == 0;
            EXPECT_TRUE(result == 0 || result == -11 || result == -1) << result;
        }
    };
    std::thread readers[2] = {std::thread(read), std::thread(read)};
    for (int round = 0; round < 6; ++round) {
        ASSERT_EQ(0, Manager()->StartPlayback("clip.mjpeg", 200));
        const int seen = handedOut;
        const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(20);
        while (handedOut < seen + 3 && std::chrono::steady_clock::now() < end)
            std::this_thread::yield();
        if (round % 2)
            Manager()->StopCamera();
    }
    done = true;
    for (std::thread& reader : readers)
        reader.join();
    EXPECT_GE(handedOut, 18);
}
}  // namespace
