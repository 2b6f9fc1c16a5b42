// The process-wide camera owner, and the V4L2 open path on this machine,
// which has no V4L2 device.
#include <gtest/gtest.h>
#include <unistd.h>

#include <atomic>
#include <fstream>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include "AICamera/CameraManager.h"
#include "AICamera/FFCamera.h"
#include "AICamera/Log.h"
#include "MjpegClip.h"

namespace {
std::string ScratchPath(const std::string& name)
{
    char cwd[4096];
    return std::string(getcwd(cwd, sizeof cwd) ? cwd : ".") + "/" + name;
}

// Sends the log to a file of the scratch directory for one test.
class FileLog {
public:
    explicit FileLog(LOG_LEVER level) : m_dir(ScratchPath("Log"))
    {
        EXPECT_EQ(0, Log::GetInstance()->Init(level, LOG_TARGET_FILE, m_dir, ".log"));
        m_file = m_dir + "/" + Log::GetInstance()->GetCurrDate() + ".log";
        unlink(m_file.c_str());
    }
    ~FileLog() { Log::GetInstance()->Init(LOG_LEVER_OFF, LOG_TARGET_CONSOLE_FILE, "Log", ".log"); }
    std::string Text() const
    {
        std::ifstream in(m_file);
        std::stringstream text;
        text << in.rdbuf();
        return text.str();
    }

private:
    std::string m_dir;
    std::string m_file;
};

const char* const kOpenFailed = "[ERROR] [FILE : FFCamera][FUNCTION : openCamera][LINE : ";

class CameraManagerTest : public ::testing::Test {
protected:
    void TearDown() override { CameraManager::GetInstance()->StopCamera(); }
    CameraManager* Manager() { return CameraManager::GetInstance(); }
};

TEST_F(CameraManagerTest, CodesWithNoCamera)
{
    char image[16], verify[16];
    int width = 1, height = 2;
    EXPECT_EQ(CameraManager::GetInstance(), Manager());
    EXPECT_EQ(0, Manager()->StopCamera());
    EXPECT_EQ(-1, Manager()->GetFrame(image, sizeof image, verify, sizeof verify));
    EXPECT_EQ(-1, Manager()->GetResolution(&width, &height));
    EXPECT_EQ(1, width);
    EXPECT_EQ(2, height);
    EXPECT_EQ(-1, Manager()->SetResolution(640, 480));
}

TEST_F(CameraManagerTest, OpeningANonVideoNodeFailsWithARecord)
{
    FileLog log(LOG_LEVER_ERROR);
    WriteFileBytes("not_a_camera", Bytes(100, 0));
    FFCamera camera;
    EXPECT_EQ(-10, camera.openCamera(ScratchPath("not_a_camera").c_str()));
    char image[16];
    EXPECT_EQ(-11, camera.getFrame(image, sizeof image, nullptr, 0));
    std::string text = log.Text();
    size_t at = text.find(kOpenFailed);
    ASSERT_NE(std::string::npos, at) << text;
    size_t body = text.find("]\ncamera open failed! : ", at);
    ASSERT_NE(std::string::npos, body) << text;
    // The error text that FFmpeg gave follows.
    EXPECT_GT(text.find('\n', body + 26), body + 26) << text;
}

TEST_F(CameraManagerTest, FailedStartLeavesNoCamera)
{
    FileLog log(LOG_LEVER_ERROR);
    WriteFileBytes("clip.mjpeg", EncodeSolid(64, 48, kGreen));
    ASSERT_EQ(0, Manager()->StartPlayback("clip.mjpeg", 30));
    std::string missing = ScratchPath("no_such_video0");
    EXPECT_EQ(-10, Manager()->StartCamera(const_cast<char*>(missing.c_str())));
    char image[16];
    EXPECT_EQ(-1, Manager()->GetFrame(image, sizeof image, nullptr, 0));
    EXPECT_NE(std::string::npos, log.Text().find(kOpenFailed));
    EXPECT_EQ(-10, Manager()->StartPlayback("no_such_clip.mjpeg", 30));
    EXPECT_EQ(-1, Manager()->GetFrame(image, sizeof image, nullptr, 0));
}

TEST_F(CameraManagerTest, PlaybackThroughTheManager)
{
    WriteFileBytes("clip.mjpeg", EncodeBars(640, 480, {kRed, kBlue}));
    ASSERT_EQ(0, Manager()->StartPlayback("clip.mjpeg", 30));
    int width = 0, height = 0;
    ASSERT_EQ(0, Manager()->GetResolution(&width, &height));
    EXPECT_EQ(640, width);
    EXPECT_EQ(480, height);
    std::vector<char> image(640 * 480 * 4);
    int result = -11;
    auto end = std::chrono::steady_clock::now() + std::chrono::seconds(20);
    while (result == -11 && std::chrono::steady_clock::now() < end)
        result = Manager()->GetFrame(image.data(), static_cast<int>(image.size()), nullptr, 0);
    ASSERT_EQ(0, result);
    EXPECT_TRUE(PixelNear(image, 640, 10, 240, kRed));
    EXPECT_TRUE(PixelNear(image, 640, 630, 240, kBlue));
    EXPECT_EQ(0, Manager()->SetResolution(720, 960));
    ASSERT_EQ(0, Manager()->GetResolution(&width, &height));
    EXPECT_EQ(720, width);
    EXPECT_EQ(480, height);
    EXPECT_EQ(0, Manager()->StopCamera());
    EXPECT_EQ(-1, Manager()->GetResolution(&width, &height));
}

// Readers copy frames while the camera is restarted and stopped under them.
TEST_F(CameraManagerTest, FramesCopiedWhileTheCameraIsReplaced)
{
    Bytes clip;
    for (int i = 0; i < 40; ++i)
        clip = Concat({clip, WithSegment(EncodeSolid(320, 240, i % 2 ? kRed : kGreen), 0xFE,
                                         "{\"frame\":" + std::to_string(i) + ",\"pad\":\"xxxx\"}")});
    WriteFileBytes("clip.mjpeg", clip);
    std::atomic<bool> done(false);
    std::atomic<int> handedOut(0);
    std::vector<std::thread> readers;
    for (int r = 0; r < 2; ++r) {
        readers.emplace_back([&] {
            std::vector<char> image(320 * 240 * 4);
            char verify[64];
            while (!done) {
                int result = Manager()->GetFrame(image.data(), static_cast<int>(image.size()), verify, sizeof verify);
                if (result == 0)
                    ++handedOut;
                else
                    EXPECT_TRUE(result == -11 || result == -1) << result;
            }
        });
    }
    for (int round = 0; round < 6; ++round) {
        ASSERT_EQ(0, Manager()->StartPlayback("clip.mjpeg", 200));
        int seen = handedOut;
        auto end = std::chrono::steady_clock::now() + std::chrono::seconds(20);
        while (handedOut < seen + 3 && std::chrono::steady_clock::now() < end)
            std::this_thread::yield();
        if (round % 2)
            Manager()->StopCamera();
    }
    Manager()->StopCamera();
    done = true;
    for (std::thread& reader : readers)
        reader.join();
    EXPECT_GE(handedOut, 18);
}
}  // namespace
