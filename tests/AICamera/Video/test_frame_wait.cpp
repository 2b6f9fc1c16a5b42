// WaitFrame through the exported interface: a playback of a FIFO that the
// test feeds, decoded by the real capture thread, with waiters on other threads.
#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <time.h>
#include <unistd.h>

#include <future>
#include <string>

#include "MjpegClip.h"
#include "TimedCall.h"
#include "TraceLog.h"
#include "ai_camera_ext.h"

namespace {
const int kWidth = 64;
const int kHeight = 48;
const int kNoTimeLimitMs = 20000;

double ProcessCpuSeconds()
{
    timespec t;
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &t);
    return double(t.tv_sec) + double(t.tv_nsec) / 1e9;
}

Bytes Picture(Rgb colour, const std::string& text) { return WithSegment(EncodeSolid(kWidth, kHeight, colour), 0xFE, text); }

class FrameWaitTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        ASSERT_EQ(0, SetLogConfig(LOG_LEVER_DEBUG, LOG_TARGET_FILE));
        dev = Init();
        ASSERT_NE(nullptr, dev);
    }
    void TearDown() override
    {
        if (dev)
            DeInit(dev);
        if (writer >= 0)
            close(writer);
        SetLogConfig(LOG_LEVER_OFF, LOG_TARGET_CONSOLE_FILE);
    }
    // Plays a FIFO that holds one red picture, and takes that picture.
    void PlayLiveFifo()
    {
        ASSERT_EQ(0, mkfifo("live.fifo", 0600));
        writer = open("live.fifo", O_RDWR | O_CLOEXEC);
        ASSERT_GE(writer, 0);
        Feed(Picture(kRed, "{\"n\":1,\"pad\":\"xxxxxx\"}"));
        ASSERT_EQ(0, ConnectCameraPlayback(dev, "live.fifo"));
        ASSERT_EQ(0, Wait(kNoTimeLimitMs));
        ASSERT_TRUE(PixelNear(image, kWidth, 10, 10, kRed));
    }
    void Feed(const Bytes& bytes) { ASSERT_EQ(ssize_t(bytes.size()), write(writer, bytes.data(), bytes.size())); }
    int Wait(int timeoutMs) { return WaitFrame(dev, image.data(), int(image.size()), verify, sizeof verify, timeoutMs); }
    // A WaitFrame on another thread with buffers of its own.
    std::future<int> WaitElsewhere(int timeoutMs)
    {
        void* handle = dev;
        return std::async(std::launch::async, [handle, timeoutMs] {
            std::vector<char> picture(kWidth * kHeight * 4);
            char text[64];
            return WaitFrame(handle, picture.data(), int(picture.size()), text, sizeof text, timeoutMs);
        });
    }
    static bool StillWaiting(std::future<int>& wait)
    {
        return wait.wait_for(std::chrono::milliseconds(300)) == std::future_status::timeout;
    }

    void* dev = nullptr;
    int writer = -1;
    std::vector<char> image = std::vector<char>(kWidth * kHeight * 4);
    char verify[64] = {};
};

// The wait ends with the picture that arrives during it, its side text with it,
// and each picture is handed out once; timeoutMs 0 is GetFrame.
TEST_F(FrameWaitTest, ReturnsThePictureThatArrivesDuringTheWait)
{
    PlayLiveFifo();
    EXPECT_EQ(-11, Wait(0));
    EXPECT_EQ(-11, GetFrame(dev, image.data(), int(image.size()), verify, sizeof verify));
    std::future<int> wait = std::async(std::launch::async, [this] { return Wait(kNoTimeLimitMs); });
    ASSERT_TRUE(StillWaiting(wait)) << wait.get();
    const auto fed = std::chrono::steady_clock::now();
    Feed(Picture(kBlue, "{\"n\":2,\"pad\":\"xxxxxx\"}"));
    ASSERT_EQ(std::future_status::ready, wait.wait_for(std::chrono::seconds(10)));
    EXPECT_EQ(0, wait.get());
    EXPECT_LT(SecondsSince(fed), 5.0) << "woken by the picture, not by its time limit";
    EXPECT_TRUE(PixelNear(image, kWidth, 10, 10, kBlue));
    EXPECT_STREQ("{\"n\":2,\"pad\":\"xxxxxx\"}", verify);
    EXPECT_EQ(-11, Wait(0));

    // GetFrame takes a picture from WaitFrame, and the other way round.
    Feed(Picture(kGreen, "{\"n\":3,\"pad\":\"xxxxxx\"}"));
    EXPECT_EQ(0, Wait(kNoTimeLimitMs));
    EXPECT_EQ(-11, GetFrame(dev, image.data(), int(image.size()), verify, sizeof verify));
    Feed(Picture(kRed, "{\"n\":4,\"pad\":\"xxxxxx\"}"));
    EXPECT_EQ(0, PollFrame([&] { return GetFrame(dev, image.data(), int(image.size()), verify, sizeof verify); }));
    EXPECT_EQ(-11, Wait(0));

    // The same copy rules: a side-text buffer too small for the text.
    Feed(Picture(kBlue, "{\"n\":5,\"pad\":\"xxxxxx\"}"));
    EXPECT_EQ(-4, WaitFrame(dev, image.data(), int(image.size()), verify, 8, kNoTimeLimitMs));
    EXPECT_EQ(0, Wait(0)) << "the refused picture is still there";
}

// With no picture coming the wait runs its whole time, asleep: the process
// spends next to no CPU time on it.
TEST_F(FrameWaitTest, TimesOutAsleepWhenNoPictureComes)
{
    PlayLiveFifo();
    const double cpuBefore = ProcessCpuSeconds();
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(-11, Wait(1000));
    const double cpu = ProcessCpuSeconds() - cpuBefore;
    EXPECT_GE(SecondsSince(start), 0.99);
    EXPECT_LT(cpu, 0.1) << "seconds of CPU time while waiting 1 s";
}

TEST_F(FrameWaitTest, RefusalsAndTheirRecords)
{
    EXPECT_EQ(-1, WaitFrame(nullptr, image.data(), int(image.size()), verify, sizeof verify, 0));
    EXPECT_EQ(-1, Wait(100)) << "no camera";
    EXPECT_EQ(-4, WaitFrame(dev, nullptr, int(image.size()), verify, sizeof verify, 0));
    EXPECT_EQ(-4, WaitFrame(dev, image.data(), int(image.size()), verify, 0, 0));
    EXPECT_EQ(-4, Wait(-1));
    std::vector<TraceEntry> records = TraceLog::Of("WaitFrame");
    ASSERT_EQ(5u, records.size()) << TraceLog::Text();
    EXPECT_EQ("[ERROR] dev == nullptr\n[INPUT ] invalid input\n[OUTPUT]\n[RETURN] nRet : -1\n", records[0].body);
    records.erase(records.begin());
    char self[32];
    snprintf(self, sizeof self, "%p", dev);
    EXPECT_EQ(std::string("[INPUT ] dev : ") + self +
                  " timeoutMs : 100\n[OUTPUT] imageSize : 12288 verifySize : 64\n[RETURN] nRet : -1\n",
              records[0].body);
    EXPECT_EQ(std::string("[ERROR] imageBuf == nullptr\n[INPUT ] dev : ") + self +
                  " timeoutMs : 0\n[OUTPUT] output invalid\n[RETURN] nRet : -4\n",
              records[1].body);
    EXPECT_EQ(0u, records[2].body.find("[ERROR] verifySize == 0\n"));
    EXPECT_EQ(0u, records[3].body.find("[ERROR] timeoutMs < 0\n"));
}

// A stop from another thread ends every wait at once with -10, whether by
// DisconnectCamera, by another stream taking the camera's place, or by a
// DeInit that frees the handle the waiters were given.
TEST_F(FrameWaitTest, AStopOnAnotherThreadEndsTheWaitAtOnce)
{
    const char* const ways[] = {"DisconnectCamera", "ConnectCameraPlayback", "DeInit"};
    WriteFileBytes("clip.mjpeg", Picture(kGreen, "{\"clip\":1,\"pad\":\"xx\"}"));
    for (const char* way : ways) {
        SCOPED_TRACE(way);
        PlayLiveFifo();
        std::future<int> waits[2] = {WaitElsewhere(kNoTimeLimitMs), WaitElsewhere(kNoTimeLimitMs)};
        ASSERT_TRUE(StillWaiting(waits[0]) && StillWaiting(waits[1]));
        const auto stopped = std::chrono::steady_clock::now();
        if (way == ways[0]) {
            EXPECT_EQ(0, DisconnectCamera(dev));
        } else if (way == ways[1]) {
            EXPECT_EQ(0, ConnectCameraPlayback(dev, "clip.mjpeg"));
        } else {
            EXPECT_EQ(0, DeInit(dev));
            dev = nullptr;
        }
        for (std::future<int>& wait : waits) {
            ASSERT_EQ(std::future_status::ready, wait.wait_for(std::chrono::seconds(10)));
            EXPECT_EQ(-10, wait.get());
        }
        EXPECT_LT(SecondsSince(stopped), 5.0);
        if (!dev)
            dev = Init();
        EXPECT_EQ(0, DisconnectCamera(dev));
        close(writer);
        writer = -1;
        unlink("live.fifo");
    }
}
}  // namespace
