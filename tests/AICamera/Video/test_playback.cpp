// The capture thread, frame hand-out and side text of FFCamera, driven by
// real MJPEG recordings played from a file or a FIFO.
#include <errno.h>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <string.h>
#include <sys/stat.h>
#include <time.h>
#include <unistd.h>

#include <memory>

#include "AICamera/Video/FFCamera.h"
#include "MjpegClip.h"
#include "TimedCall.h"

namespace {
const int kWidth = 320;
const int kHeight = 240;
const int kFps = 50;
const std::string kRedText = "{\"colour\":\"red\",\"n\":1}";
const std::string kGreenText = "{\"colour\":\"green\",\"n\":2}";
const std::string kBlueText = "{\"colour\":\"blue\",\"n\":3}";

Bytes Picture(Rgb colour, const std::string& comment = "")
{
    Bytes jpeg = EncodeSolid(kWidth, kHeight, colour);
    return comment.empty() ? jpeg : WithSegment(jpeg, 0xFE, comment);
}

class PlaybackTest : public ::testing::Test {
protected:
    int Play(const Bytes& clip)
    {
        WriteFileBytes("clip.mjpeg", clip);
        return m_camera->openPlayback("clip.mjpeg", kFps);
    }
    int GetInto(char* verify = nullptr, int verifySize = 0)
    {
        return m_camera->getFrame(m_image.data(), static_cast<int>(m_image.size()), verify, verifySize);
    }
    // Polls getFrame; m_verify is the side text handed out, "#" when the buffer was left alone.
    int Next(int verifySize = 256)
    {
        std::vector<char> verify(1025, '#');
        int result = PollFrame([&] { return GetInto(verify.data(), verifySize); });
        m_verify = verify[0] == '#' ? "#" : std::string(verify.data(), strnlen(verify.data(), verifySize));
        return result;
    }
    bool Shows(Rgb colour, int x = kWidth / 2, int y = kHeight / 2) { return PixelNear(m_image, kWidth, x, y, colour); }
    // Makes a FIFO, writes `first` into it and opens it for playback; the
    // writing end, which the test holds open, or -1.
    int PlayFifo(const char* path, const Bytes& first)
    {
        const int writer = mkfifo(path, 0600) == 0 ? open(path, O_RDWR | O_CLOEXEC) : -1;
        const bool written = writer >= 0 && write(writer, first.data(), first.size()) == ssize_t(first.size());
        return written && m_camera->openPlayback(path, kFps) == 0 ? writer : -1;
    }
    // Hands out pictures until one of this colour comes.
    bool WaitFor(Rgb colour)
    {
        while (Next() == 0)
            if (Shows(colour))
                return true;
        return false;
    }

    std::unique_ptr<FFCamera> m_camera = std::make_unique<FFCamera>();
    std::vector<char> m_image = std::vector<char>(kWidth * kHeight * 4);
    std::string m_verify;
};

TEST_F(PlaybackTest, PictureHandedOutOnceWithTextCutAfterTheBraceThenCloseAndReopen)
{
    int width = 0, height = 0;
    m_camera->getResolution(&width, &height);
    EXPECT_EQ(720, width);
    EXPECT_EQ(1280, height);
    ASSERT_EQ(0, Play(Concat({Picture(kRed, kRedText), Picture(kGreen, kGreenText),
                              Picture(kBlue, kBlueText + "tail after the brace")})));
    m_camera->getResolution(&width, &height);  // now the stream's
    EXPECT_EQ(kWidth, width);
    EXPECT_EQ(kHeight, height);
    ASSERT_TRUE(WaitFor(kBlue));
    EXPECT_EQ(kBlueText, m_verify);
    EXPECT_TRUE(Shows(kBlue, 0, 0) && Shows(kBlue, kWidth - 1, kHeight - 1));
    char verify[256];
    EXPECT_EQ(-11, GetInto(verify, sizeof verify));
    EXPECT_EQ(-11, m_camera->getFrame(m_image.data(), 16, nullptr, 0));
    m_camera->closeCamera();
    ASSERT_EQ(0, Play(Picture(kRed, kRedText)));
    ASSERT_TRUE(WaitFor(kRed));
    EXPECT_EQ(kRedText, m_verify);
    ASSERT_EQ(0, Play(Picture(kGreen, kGreenText)));  // without a close
    ASSERT_TRUE(WaitFor(kGreen));
}

// Broken packets between the pictures neither crash nor stop the stream.
TEST_F(PlaybackTest, SideTextOfEachFrameMatchesItsPicture)
{
    const std::string appText = "{\"colour\":\"green\",\"where\":\"APP3\"}";
    const std::string tailText = "{\"colour\":\"blue\",\"where\":\"after EOI\"}";
    Bytes junk = {0xFF, 0xD8, 0xFF, 0xE0, 0x00, 0x10};
    junk.resize(3000, 0x5A);
    const Bytes grey = Picture({128, 128, 128});
    ASSERT_EQ(0, Play(Concat({Picture(kRed, kRedText), junk, Bytes(grey.begin(), grey.end() - 40), junk,
                              WithSegment(Picture(kGreen), 0xE3, appText), WithTrailer(Picture(kBlue), tailText)})));
    while (Next() == 0 && !Shows(kBlue))
        EXPECT_TRUE((!Shows(kRed) || m_verify == kRedText) && (!Shows(kGreen) || m_verify == appText)) << m_verify;
    ASSERT_TRUE(Shows(kBlue));
    EXPECT_EQ(tailText, m_verify);
}

TEST_F(PlaybackTest, SmallVerifyBufferGivesMinus4EvenWithAPictureReady)
{
    ASSERT_EQ(0, Play(Picture(kGreen, kGreenText)));
    const int fits = static_cast<int>(kGreenText.size());
    ASSERT_EQ(-4, Next(fits - 1));
    EXPECT_EQ("#", m_verify);
    EXPECT_EQ(-4, Next(fits - 1));
    ASSERT_EQ(0, Next(fits));  // the refusals handed nothing out
    EXPECT_EQ(kGreenText, m_verify);
    EXPECT_TRUE(Shows(kGreen));
    EXPECT_EQ(-11, m_camera->getFrame(m_image.data(), 4, nullptr, 0));
}

TEST_F(PlaybackTest, ZeroSizesDiscardTheReadyFlags)
{
    ASSERT_EQ(0, Play(Picture(kGreen, kGreenText)));
    ASSERT_EQ(-4, Next(1));  // the picture is ready
    EXPECT_EQ(0, m_camera->getFrame(nullptr, 0, nullptr, 0));
    EXPECT_EQ(-11, GetInto());
}

TEST_F(PlaybackTest, ShortSideTextKeepsThePreviousTextButNotReady)
{
    const int writer = PlayFifo("short.fifo", Picture(kRed, kRedText));
    ASSERT_GE(writer, 0);
    ASSERT_EQ(0, Next());
    EXPECT_TRUE(Shows(kRed));
    const Bytes green = Picture(kGreen, "{\"n\":2}");
    ASSERT_EQ(ssize_t(green.size()), write(writer, green.data(), green.size()));
    ASSERT_EQ(0, Next());
    EXPECT_TRUE(Shows(kGreen));
    EXPECT_EQ("#", m_verify);  // 7 bytes: not ready
    // Red's text is still in place: its length still sets the smallest buffer.
    char verify[64];
    EXPECT_EQ(-4, m_camera->getFrame(nullptr, 0, verify, static_cast<int>(kRedText.size()) - 1));
    EXPECT_EQ(0, m_camera->getFrame(nullptr, 0, verify, static_cast<int>(kRedText.size())));
    close(writer);
}

// A live writer's picture is handed on once its end is in, without waiting
// for the next one to begin, and the FIFO is read as fast as it is fed
// rather than at a recording's rate.
TEST_F(PlaybackTest, LiveFifoPicturesComeAsTheyArrive)
{
    const int writer = PlayFifo("live.fifo", Picture(kRed, kRedText));
    ASSERT_GE(writer, 0);
    ASSERT_EQ(0, Next());
    EXPECT_TRUE(Shows(kRed));
    EXPECT_EQ(kRedText, m_verify);

    // Paced at the rate of a file, these would take 4 s to come through.
    const int burst = 4 * kFps;
    std::vector<Bytes> pictures(burst, Picture(kGreen, kGreenText));
    pictures.push_back(Picture(kBlue, kBlueText));
    const Bytes stream = Concat(pictures);
    const auto start = std::chrono::steady_clock::now();
    std::thread feed([&] {
        for (size_t at = 0; at < stream.size();) {
            ssize_t put = write(writer, stream.data() + at, stream.size() - at);
            if (put <= 0)
                return;
            at += size_t(put);
        }
    });
    const bool blue = WaitFor(kBlue);
    const double seconds = SecondsSince(start);
    feed.join();
    close(writer);
    ASSERT_TRUE(blue);
    EXPECT_EQ(kBlueText, m_verify);
    EXPECT_LT(seconds, 2.0);
}

TEST_F(PlaybackTest, PacketStartingWithOneIsDropped)
{
    // Had red been decoded, its long text would outlive green's short one.
    Bytes tagged = Picture(kRed, kRedText);
    tagged.insert(tagged.begin(), 1);
    ASSERT_EQ(0, Play(Concat({tagged, Picture(kGreen, "{\"n\":2}")})));
    ASSERT_EQ(0, Next(1));
    EXPECT_TRUE(Shows(kGreen));
    EXPECT_EQ("#", m_verify);
}

TEST_F(PlaybackTest, DestroyingACameraBlockedInARead)
{
    const int writer = PlayFifo("quiet.fifo", Concat({Picture(kRed, kRedText), Picture(kRed, kRedText)}));
    ASSERT_GE(writer, 0);
    ASSERT_EQ(0, Next());
    m_camera.reset();  // the writer stays silent: the thread waits in its read
    close(writer);
    EXPECT_EQ(-1, open("quiet.fifo", O_WRONLY | O_NONBLOCK)) << "the camera still reads the FIFO";
    EXPECT_EQ(ENXIO, errno);
}

TEST_F(PlaybackTest, FileAtItsEndDoesNotBurnACore)
{
    ASSERT_EQ(0, Play(Picture(kGreen, kGreenText)));
    ASSERT_EQ(0, Next());
    const clock_t cpu = clock();
    const auto wall = std::chrono::steady_clock::now();
    std::this_thread::sleep_for(std::chrono::milliseconds(500));  // a measuring window
    const double cpuSeconds = double(clock() - cpu) / CLOCKS_PER_SEC;
    EXPECT_LT(cpuSeconds, 0.25 * SecondsSince(wall));
}
}  // namespace
