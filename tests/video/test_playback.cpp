// The capture thread, frame hand-out and side text of FFCamera, driven by
// real MJPEG recordings played from a file or a FIFO.
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <time.h>

#include <chrono>
#include <functional>
#include <string>
#include <thread>
#include <vector>

#include "AICamera/FFCamera.h"
#include "FifoWriter.h"
#include "MjpegClip.h"

namespace {
const int kWidth = 320;
const int kHeight = 240;
const int kFps = 50;
const auto kDeadline = std::chrono::seconds(20);
const std::string kRedText = "{\"colour\":\"red\",\"n\":1}";
const std::string kGreenText = "{\"colour\":\"green\",\"n\":2}";
const std::string kBlueText = "{\"colour\":\"blue\",\"n\":3}";

Bytes Picture(Rgb colour, const std::string& comment, int width = kWidth, int height = kHeight)
{
    Bytes jpeg = EncodeSolid(width, height, colour);
    return comment.empty() ? jpeg : WithSegment(jpeg, 0xFE, comment);
}

// What one successful getFrame handed out.
struct Handout {
    std::vector<char> image;
    std::string verify;  // the verify buffer as a C string, "#" when untouched
};

class PlaybackTest : public ::testing::Test {
protected:
    PlaybackTest() : m_image(static_cast<size_t>(kWidth) * kHeight * 4) {}

    int Play(const Bytes& clip, int fps = kFps)
    {
        WriteFileBytes("clip.mjpeg", clip);
        return m_camera.openPlayback("clip.mjpeg", fps);
    }

    // Calls getFrame until it hands something out or the deadline passes.
    int Next(Handout* out, int verifySize = 256, int imageSize = -1)
    {
        if (imageSize < 0)
            imageSize = static_cast<int>(m_image.size());
        auto end = std::chrono::steady_clock::now() + kDeadline;
        for (;;) {
            std::vector<char> verify(1025, '#');
            int result = m_camera.getFrame(m_image.data(), imageSize, verify.data(), verifySize);
            if (result != -11 || std::chrono::steady_clock::now() > end) {
                if (out) {
                    out->image = m_image;
                    size_t filled = verifySize > 0 ? static_cast<size_t>(verifySize) : 0;
                    out->verify = std::string(verify.data(), strnlen(verify.data(), filled));
                    if (out->verify.substr(0, 1) == "#")
                        out->verify = "#";
                }
                return result;
            }
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
    }

    // Hands out pictures until one with the colour at its centre comes.
    bool WaitForColour(Rgb colour, Handout* out, int verifySize = 256)
    {
        auto end = std::chrono::steady_clock::now() + kDeadline;
        while (std::chrono::steady_clock::now() < end) {
            if (Next(out, verifySize) == 0 && PixelNear(out->image, kWidth, kWidth / 2, kHeight / 2, colour))
                return true;
        }
        return false;
    }

    FFCamera m_camera;
    std::vector<char> m_image;
};

TEST_F(PlaybackTest, PictureIsHandedOutOnceThenNoNewPicture)
{
    ASSERT_EQ(0, Play(Concat({Picture(kRed, kRedText), Picture(kGreen, kGreenText),
                              Picture(kBlue, kBlueText + "tail after the brace")})));
    Handout got;
    ASSERT_TRUE(WaitForColour(kBlue, &got));
    EXPECT_EQ(kBlueText, got.verify);
    for (int y : {0, kHeight / 3, kHeight - 1})
        for (int x : {0, kWidth / 2, kWidth - 1})
            EXPECT_TRUE(PixelNear(got.image, kWidth, x, y, kBlue)) << x << "," << y;
    // The last picture of the recording was handed out; nothing new comes.
    std::vector<char> verify(256, '#');
    EXPECT_EQ(-11, m_camera.getFrame(m_image.data(), static_cast<int>(m_image.size()), verify.data(), 256));
    EXPECT_EQ(-11, m_camera.getFrame(m_image.data(), 16, nullptr, 0));
}

TEST_F(PlaybackTest, BarsComeOutInPlaceAsBgra)
{
    const std::vector<Rgb> bars = {kRed, kGreen, kBlue, kWhite};
    ASSERT_EQ(0, Play(EncodeBars(kWidth, kHeight, bars)));
    Handout got;
    ASSERT_EQ(0, Next(&got));
    const int barWidth = kWidth / static_cast<int>(bars.size());
    for (size_t i = 0; i < bars.size(); ++i) {
        int x = barWidth * static_cast<int>(i) + barWidth / 2;
        EXPECT_TRUE(PixelNear(got.image, kWidth, x, 10, bars[i])) << "bar " << i;
        EXPECT_TRUE(PixelNear(got.image, kWidth, x, kHeight - 10, bars[i])) << "bar " << i;
    }
}

TEST_F(PlaybackTest, SideTextEachFrameMatchesItsPicture)
{
    const std::string appText = "{\"colour\":\"green\",\"where\":\"APP3\"}";
    const std::string tailText = "{\"colour\":\"blue\",\"where\":\"after EOI\"}";
    ASSERT_EQ(0, Play(Concat({Picture(kRed, kRedText), WithSegment(EncodeSolid(kWidth, kHeight, kGreen), 0xE3, appText),
                              WithTrailer(EncodeSolid(kWidth, kHeight, kBlue), tailText)})));
    Handout got;
    bool blue = false;
    while (!blue && Next(&got) == 0) {
        if (PixelNear(got.image, kWidth, 5, 5, kRed))
            EXPECT_EQ(kRedText, got.verify);
        else if (PixelNear(got.image, kWidth, 5, 5, kGreen))
            EXPECT_EQ(appText, got.verify);
        else
            blue = PixelNear(got.image, kWidth, 5, 5, kBlue);
    }
    ASSERT_TRUE(blue);
    EXPECT_EQ(tailText, got.verify);
}

TEST_F(PlaybackTest, SmallVerifyBufferGivesMinus4EvenWithAPictureReady)
{
    ASSERT_EQ(0, Play(Picture(kGreen, kGreenText)));
    Handout got;
    const int small = static_cast<int>(kGreenText.size()) - 1;
    // Polled with the small buffer: -11 until the picture is there, then -4.
    ASSERT_EQ(-4, Next(&got, small));
    EXPECT_EQ("#", got.verify);
    EXPECT_EQ(-4, Next(&got, small));
    // The refusal handed nothing out: the picture and its text are still there.
    ASSERT_EQ(0, Next(&got, static_cast<int>(kGreenText.size())));
    EXPECT_EQ(kGreenText, got.verify);
    EXPECT_TRUE(PixelNear(got.image, kWidth, 100, 100, kGreen));
    EXPECT_EQ(-11, m_camera.getFrame(m_image.data(), 4, nullptr, 0));
}

TEST_F(PlaybackTest, ZeroSizesDiscardTheReadyFlags)
{
    ASSERT_EQ(0, Play(Picture(kGreen, kGreenText)));
    ASSERT_EQ(-4, Next(nullptr, 1));  // the picture is ready
    EXPECT_EQ(0, m_camera.getFrame(nullptr, 0, nullptr, 0));
    EXPECT_EQ(-11, m_camera.getFrame(m_image.data(), static_cast<int>(m_image.size()), nullptr, 0));
}

TEST_F(PlaybackTest, ShortSideTextKeepsThePreviousTextButNotReady)
{
    const std::string shortText = "{\"n\":2}";  // 7 bytes: not side text
    FifoWriter writer("short.fifo", Concat({Picture(kRed, kRedText + "xyz"), Picture(kGreen, shortText)}));
    ASSERT_EQ(0, m_camera.openPlayback("short.fifo", kFps));
    ASSERT_TRUE(writer.Opened());
    Handout got;
    // Green is still open-ended in the FIFO, so red comes alone, cut after its brace.
    ASSERT_EQ(0, Next(&got));
    EXPECT_TRUE(PixelNear(got.image, kWidth, 5, 5, kRed));
    EXPECT_EQ(kRedText, got.verify);
    writer.Close();
    ASSERT_EQ(0, Next(&got));
    EXPECT_TRUE(PixelNear(got.image, kWidth, 5, 5, kGreen));
    EXPECT_EQ("#", got.verify);  // not ready: the buffer is left alone
    // Red's text is still in place: its length still sets the smallest buffer.
    EXPECT_EQ(-4, m_camera.getFrame(nullptr, 0, &got.image[0], static_cast<int>(kRedText.size()) - 1));
    EXPECT_EQ(0, m_camera.getFrame(nullptr, 0, &got.image[0], static_cast<int>(kRedText.size())));
}

TEST_F(PlaybackTest, PacketStartingWithOneIsDropped)
{
    // The leading 1 makes red's packet start with it; had red been decoded,
    // its long text would outlive green's short one.
    Bytes tagged = Picture(kRed, kRedText);
    tagged.insert(tagged.begin(), 1);
    ASSERT_EQ(0, Play(Concat({tagged, Picture(kGreen, "{\"n\":2}")})));
    Handout got;
    ASSERT_EQ(0, Next(&got, 1));
    EXPECT_TRUE(PixelNear(got.image, kWidth, 5, 5, kGreen));
    EXPECT_EQ("#", got.verify);
}

TEST_F(PlaybackTest, ResolutionComesFromTheStream)
{
    int width = 0, height = 0;
    m_camera.getResolution(&width, &height);
    EXPECT_EQ(720, width);
    EXPECT_EQ(1280, height);
    ASSERT_EQ(0, Play(Picture(kGreen, "", 176, 144)));
    m_camera.getResolution(&width, &height);
    EXPECT_EQ(176, width);
    EXPECT_EQ(144, height);
}

TEST_F(PlaybackTest, StreamOf720By960IsKeptAs720By480)
{
    ASSERT_EQ(0, Play(EncodeBars(720, 960, {kRed, kBlue})));
    int width = 0, height = 0;
    m_camera.getResolution(&width, &height);
    EXPECT_EQ(720, width);
    EXPECT_EQ(480, height);
    // The whole 720 by 960 picture is converted all the same.
    std::vector<char> image(720 * 960 * 4);
    auto end = std::chrono::steady_clock::now() + kDeadline;
    int result = -11;
    while (result == -11 && std::chrono::steady_clock::now() < end)
        result = m_camera.getFrame(image.data(), static_cast<int>(image.size()), nullptr, 0);
    ASSERT_EQ(0, result);
    EXPECT_TRUE(PixelNear(image, 720, 100, 950, kRed));
    EXPECT_TRUE(PixelNear(image, 720, 600, 950, kBlue));
}

TEST_F(PlaybackTest, CloseAndReopen)
{
    ASSERT_EQ(0, Play(Picture(kRed, kRedText)));
    Handout got;
    ASSERT_TRUE(WaitForColour(kRed, &got));
    m_camera.closeCamera();
    EXPECT_EQ(-11, m_camera.getFrame(m_image.data(), static_cast<int>(m_image.size()), nullptr, 0));
    ASSERT_EQ(0, Play(Picture(kBlue, kBlueText)));
    ASSERT_TRUE(WaitForColour(kBlue, &got));
    EXPECT_EQ(kBlueText, got.verify);
    // Opening again without a close closes the running stream first.
    ASSERT_EQ(0, Play(Picture(kGreen, kGreenText)));
    ASSERT_TRUE(WaitForColour(kGreen, &got));
}

TEST_F(PlaybackTest, BrokenPacketsNeitherCrashNorStopTheStream)
{
    Bytes green = EncodeSolid(kWidth, kHeight, kGreen);
    ASSERT_EQ(0, Play(Concat({Picture(kRed, kRedText), Garbage(3000), Truncated(green), Garbage(100),
                              Picture(kBlue, kBlueText)})));
    Handout got;
    ASSERT_TRUE(WaitForColour(kBlue, &got));
    EXPECT_EQ(kBlueText, got.verify);
}

TEST_F(PlaybackTest, DestroyingARunningCameraStopsItsThread)
{
    // The writer keeps the FIFO open and silent: the thread is blocked in a read.
    auto writer = std::make_unique<FifoWriter>("quiet.fifo", Concat({Picture(kRed, kRedText), Picture(kRed, kRedText)}));
    auto camera = std::make_unique<FFCamera>();
    ASSERT_EQ(0, camera->openPlayback("quiet.fifo", kFps));
    ASSERT_TRUE(writer->Opened());
    std::vector<char> image(m_image.size());
    auto end = std::chrono::steady_clock::now() + kDeadline;
    int result = -11;
    while (result == -11 && std::chrono::steady_clock::now() < end)
        result = camera->getFrame(image.data(), static_cast<int>(image.size()), nullptr, 0);
    ASSERT_EQ(0, result);
    camera.reset();  // returns only once the thread has left its read
    EXPECT_FALSE(writer->Write(Picture(kRed, kRedText)));  // the reader is gone
}

TEST_F(PlaybackTest, FileAtItsEndDoesNotBurnACore)
{
    ASSERT_EQ(0, Play(Picture(kGreen, kGreenText)));
    ASSERT_EQ(0, Next(nullptr));
    // Measured over a window, the thread at the end of the file must mostly sleep.
    timespec cpu0, cpu1;
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &cpu0);
    auto wall0 = std::chrono::steady_clock::now();
    std::this_thread::sleep_for(std::chrono::milliseconds(500));
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &cpu1);
    double wall = std::chrono::duration<double>(std::chrono::steady_clock::now() - wall0).count();
    double cpu = (cpu1.tv_sec - cpu0.tv_sec) + (cpu1.tv_nsec - cpu0.tv_nsec) / 1e9;
    EXPECT_LT(cpu, wall * 0.25) << "cpu " << cpu << " s over " << wall << " s";
}

TEST_F(PlaybackTest, BadPlaybackArguments)
{
    EXPECT_EQ(-4, m_camera.openPlayback(nullptr, kFps));
    WriteFileBytes("clip.mjpeg", Picture(kGreen, ""));
    EXPECT_EQ(-4, m_camera.openPlayback("clip.mjpeg", 0));
    EXPECT_EQ(-4, m_camera.openPlayback("clip.mjpeg", 1001));
    EXPECT_EQ(-10, m_camera.openPlayback("no-such-recording.mjpeg", kFps));
    std::string longName(300, 'a');
    WriteFileBytes(longName.substr(0, 200), Picture(kGreen, ""));
    EXPECT_EQ(-10, m_camera.openPlayback(longName.c_str(), kFps));
}
}  // namespace
