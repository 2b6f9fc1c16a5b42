// The process-wide camera owner, and the V4L2 open path on this machine,
// which has no V4L2 device.
#include <gtest/gtest.h>

#include <sys/stat.h>

#include <atomic>
#include <fstream>
#include <future>
#include <sstream>

#include "AICamera/Video/CameraManager.h"
#include "AICamera/Log/Log.h"
#include "MjpegClip.h"
#include "TimedCall.h"

namespace {
const char* const kOpenFailed = "[ERROR] [FILE : FFCamera][FUNCTION : openCamera][LINE : ";

std::string LogText()
{
    std::stringstream log;
    log << std::ifstream("Log/" + Log::GetInstance()->GetCurrDate() + ".log").rdbuf();
    return log.str();
}

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
    const std::string text = LogText();
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
// Playback of something that holds no MJPEG picture fails at once, each with its reason.
TEST_F(CameraManagerTest, NoPictureIsNoVideo)
{
    ASSERT_EQ(0, Log::GetInstance()->Init(LOG_LEVER_ERROR, LOG_TARGET_FILE, "Log", ".log"));
    const Bytes picture = EncodeSolid(64, 48, kGreen);
    WriteFileBytes("empty.mjpeg", {});
    WriteFileBytes("text.mjpeg", Bytes(5000, 'x'));
    WriteFileBytes("broken.mjpeg", Bytes(picture.begin(), picture.begin() + long(picture.size() / 3)));
    ASSERT_EQ(0, mkdir("directory.mjpeg", 0700));
    const struct {
        const char* path;
        const char* why;
    } rows[] = {{"empty.mjpeg", "no picture decoded"},
                {"text.mjpeg", "no picture decoded"},
                {"broken.mjpeg", "Invalid data found when processing input"},
                {"directory.mjpeg", "Is a directory"}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.path);
        const auto start = std::chrono::steady_clock::now();
        EXPECT_EQ(-10, Manager()->StartPlayback(row.path, 30));
        EXPECT_LT(SecondsSince(start), 2.0) << "a file needs no waiting";
        const std::string text = LogText();
        EXPECT_NE(std::string::npos, text.find(std::string("]\ncamera open failed! : ") + row.why + "\n")) << text;
        char image[16];
        EXPECT_EQ(-1, Manager()->GetFrame(image, sizeof image, nullptr, 0));
    }
}

// A FIFO whose writer never comes: the open gives up after its time limit,
// and meanwhile other calls on the camera see none instead of waiting.
TEST_F(CameraManagerTest, OpenWithoutAPictureIsBoundedAndHoldsNoOneUp)
{
    ASSERT_EQ(0, Log::GetInstance()->Init(LOG_LEVER_ERROR, LOG_TARGET_FILE, "Log", ".log"));
    ASSERT_EQ(0, mkfifo("silent.fifo", 0600));
    const auto start = std::chrono::steady_clock::now();
    std::future<int> open = std::async(std::launch::async, [&] { return Manager()->StartPlayback("silent.fifo", 30); });
    std::this_thread::sleep_for(std::chrono::milliseconds(200));
    char image[16];
    int width = 0, height = 0;
    const auto during = std::chrono::steady_clock::now();
    EXPECT_EQ(-1, Manager()->GetFrame(image, sizeof image, nullptr, 0));
    EXPECT_EQ(-1, Manager()->GetResolution(&width, &height));
    EXPECT_EQ(-1, Manager()->SetResolution(640, 480));
    EXPECT_LT(SecondsSince(during), 1.0);
    EXPECT_EQ(std::future_status::timeout, open.wait_for(std::chrono::milliseconds(0))) << "the open is still waiting";
    EXPECT_EQ(-10, open.get());
    const double seconds = SecondsSince(start);
    EXPECT_GE(seconds, 4.9);
    EXPECT_LT(seconds, 8.0);
    EXPECT_NE(std::string::npos, LogText().find("[FUNCTION : openPlayback]")) << LogText();
    EXPECT_NE(std::string::npos, LogText().find("]\ncamera open failed! : no picture within 5 s\n")) << LogText();
}

// A stop, or another start, ends an open in progress at once with -10.
TEST_F(CameraManagerTest, StopOrNewStartCancelsAnOpenInProgress)
{
    ASSERT_EQ(0, mkfifo("silent.fifo", 0600));
    WriteFileBytes("clip.mjpeg", EncodeSolid(64, 48, kBlue));
    for (bool byStop : {true, false}) {
        SCOPED_TRACE(byStop ? "stop" : "new start");
        std::future<int> open = std::async(std::launch::async, [&] { return Manager()->StartPlayback("silent.fifo", 30); });
        std::this_thread::sleep_for(std::chrono::milliseconds(300));
        const auto start = std::chrono::steady_clock::now();
        EXPECT_EQ(0, byStop ? Manager()->StopCamera() : Manager()->StartPlayback("clip.mjpeg", 30));
        EXPECT_EQ(std::future_status::ready, open.wait_for(std::chrono::seconds(2)));
        EXPECT_EQ(-10, open.get());
        EXPECT_LT(SecondsSince(start), 2.0);
        std::vector<char> image(64 * 48 * 4);
        const int expected = byStop ? -1 : 0;
        EXPECT_EQ(expected, PollFrame([&] { return Manager()->GetFrame(image.data(), int(image.size()), nullptr, 0); }));
        EXPECT_TRUE(byStop || PixelNear(image, 64, 10, 10, kBlue));
    }
}
}  // namespace
