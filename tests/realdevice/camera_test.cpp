// The camera through uvcvideo and FFmpeg's v4l2 input: pictures with their
// side text at the size the camera streams, a camera that sends nothing, and
// the metadata node that uvcvideo adds beside the capture node.
#include <string.h>
#include <sys/resource.h>

#include <future>

#include "RealDeviceTest.h"

namespace {

double CpuSeconds()
{
    struct rusage usage;
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_utime.tv_sec + usage.ru_stime.tv_sec + (usage.ru_utime.tv_usec + usage.ru_stime.tv_usec) / 1e6;
}

// The "seq" of a side text written by the feeder, -1 when there is none.
long long SeqOf(const std::string& text)
{
    const size_t at = text.find("{\"seq\":");
    return at == std::string::npos ? -1 : atoll(text.c_str() + at + 7);
}

bool HasRecord(const std::vector<TraceEntry>& records, const std::string& function, const std::string& text)
{
    for (const TraceEntry& entry : records)
        if (entry.function == function && entry.body.find(text) != std::string::npos)
            return true;
    return false;
}

class CameraTest : public RealDeviceTest {
protected:
    void SetUp() override
    {
        RealDeviceTest::SetUp();
        if (IsSkipped() || HasFatalFailure())
            return;
        StreamedSize(&width, &height);
        image.resize(size_t(width) * height * 4);
    }
    bool Shows(Rgb colour) { return PixelNear(image, width, width / 2, height / 2, colour); }

    int width = 0, height = 0;
    std::vector<char> image;
    std::string text;
};

TEST_F(CameraTest, PicturesWithTheirSideTextAtTheStreamedSize)
{
    TraceEverything();
    FeedCamera();
    ASSERT_EQ(0, ConnectCamera(dev, rig::CaptureNode().c_str()));
    int streamedWidth = 0, streamedHeight = 0;
    ASSERT_EQ(0, GetResolution(dev, &streamedWidth, &streamedHeight));
    EXPECT_EQ(width, streamedWidth) << rig::AdvertisedSizes();
    EXPECT_EQ(height, streamedHeight) << rig::AdvertisedSizes();
    // Pictures from before the feeder's come first; its own carry a sequence number.
    long long seq = -1;
    while (seq < 0 && NextFrame(image, text) == 0)
        seq = SeqOf(text);
    ASSERT_GE(seq, 0) << text;
    EXPECT_TRUE(Shows(kGreen));
    feeder->SetColour(kBlue);
    bool blue = false;
    for (int i = 0; i < 100 && !blue && NextFrame(image, text) == 0; ++i) {
        EXPECT_GE(SeqOf(text), seq) << "pictures come in order";
        seq = SeqOf(text);
        blue = Shows(kBlue);
    }
    EXPECT_TRUE(blue);
    const std::vector<TraceEntry> traces = Records("[TRACE] ");
    for (const char* body : {"codec_id = ", "width = ", "height = ", "FFCamera::openCamera thread start"})
        EXPECT_TRUE(HasRecord(traces, "openCamera", body)) << body;
    EXPECT_TRUE(HasRecord(traces, "openCamera", "width = " + std::to_string(width) + "\n"));
    EXPECT_EQ(0, DisconnectCamera(dev));
    EXPECT_EQ(-1, Grab(image));
}

// A camera that accepts the stream and sends nothing: the open gives up after
// 5 s without spinning, other threads see no camera meanwhile, and a
// disconnect ends a waiting open at once.
TEST_F(CameraTest, SilentCameraOpenIsBoundedAndHoldsNoOneUp)
{
    rig::SetCameraSilent(true);
    const std::string node = rig::CaptureNode();
    const double cpuBefore = CpuSeconds();
    const auto start = std::chrono::steady_clock::now();
    std::future<int> open = std::async(std::launch::async, [&] { return ConnectCamera(dev, node.c_str()); });
    std::this_thread::sleep_for(std::chrono::milliseconds(1000));
    const auto during = std::chrono::steady_clock::now();
    int w = 0, h = 0;
    EXPECT_EQ(-1, Grab(image));
    EXPECT_EQ(-1, GetResolution(dev, &w, &h));
    EXPECT_LT(SecondsSince(during), 1.0);
    EXPECT_EQ(std::future_status::timeout, open.wait_for(std::chrono::milliseconds(0)));
    EXPECT_EQ(-10, open.get());
    const double seconds = SecondsSince(start);
    EXPECT_GE(seconds, 4.9);
    EXPECT_LT(seconds, 9.0);
    EXPECT_LT(CpuSeconds() - cpuBefore, 0.5 * seconds) << "the open spun while it waited";
    EXPECT_TRUE(HasRecord(Records("[ERROR] "), "openCamera", "camera open failed! : no picture within 5 s\n"));

    open = std::async(std::launch::async, [&] { return ConnectCamera(dev, node.c_str()); });
    std::this_thread::sleep_for(std::chrono::milliseconds(1000));
    const auto stop = std::chrono::steady_clock::now();
    EXPECT_EQ(0, DisconnectCamera(dev));
    EXPECT_EQ(-10, open.get());
    EXPECT_LT(SecondsSince(stop), 2.0);

    rig::SetCameraSilent(false);
    FeedCamera();
    ASSERT_EQ(0, ConnectCamera(dev, node.c_str()));
    EXPECT_EQ(0, NextFrame(image, text));
}

// A camera that stops sending while it streams has no new picture, and is
// not taken for gone: its pictures come again when it resumes.
TEST_F(CameraTest, StreamThatPausesResumesWithoutReconnecting)
{
    FeedCamera();
    ASSERT_EQ(0, ConnectCamera(dev, rig::CaptureNode().c_str()));
    ASSERT_EQ(0, NextFrame(image, text));
    rig::SetCameraSilent(true);
    // Pictures already on their way still come; then none for a while.
    int result = 0;
    for (int i = 0; i < 100 && result == 0; ++i)
        result = NextFrame(image, text, 2.0);
    EXPECT_EQ(-11, result);
    rig::SetCameraSilent(false);
    EXPECT_EQ(0, NextFrame(image, text));
}

TEST_F(CameraTest, MetadataNodeIsRefusedAndTheCaptureNodeStillOpens)
{
    const std::string metadata = rig::MetadataNode();
    ASSERT_FALSE(metadata.empty());
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(-10, ConnectCamera(dev, metadata.c_str()));
    EXPECT_LT(SecondsSince(start), 4.0) << "refused without waiting for a picture";
    EXPECT_TRUE(HasRecord(Records("[ERROR] "), "openCamera", "camera open failed! : "));
    FeedCamera();
    ASSERT_EQ(0, ConnectCamera(dev, rig::CaptureNode().c_str()));
    EXPECT_EQ(0, NextFrame(image, text));
}
}  // namespace
