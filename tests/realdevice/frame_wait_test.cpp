// WaitFrame when the module is unplugged under the stream: only the kernel's
// uvcvideo driver shows the camera going (ENODEV, the node removed).
#include <future>

#include "RealDeviceTest.h"
#include "ai_camera_ext.h"

namespace {

// A caller waiting for the next picture learns at once that none will come.
TEST_F(RealDeviceTest, UnplugEndsAWaitForTheNextPicture)
{
    int width, height;
    rig::StreamedSize(&width, &height);
    FeedCamera();
    ASSERT_EQ(0, ConnectCamera(dev, rig::CaptureNode().c_str()));
    std::atomic<int> pictures(0);
    std::future<int> waits = std::async(std::launch::async, [&] {
        std::vector<char> image(size_t(width) * height * 4);
        char text[1024];
        int result;
        while ((result = WaitFrame(dev, image.data(), int(image.size()), text, sizeof text, 20000)) == 0)
            ++pictures;
        return result;
    });
    const auto start = std::chrono::steady_clock::now();
    while (pictures < 3 && SecondsSince(start) < 20)
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    ASSERT_GE(pictures.load(), 3) << "the stream runs";
    const auto unplugged = std::chrono::steady_clock::now();
    ASSERT_TRUE(rig::SetPlugged(false));
    ASSERT_EQ(std::future_status::ready, waits.wait_for(std::chrono::seconds(15)));
    EXPECT_EQ(-10, waits.get());
    EXPECT_LT(SecondsSince(unplugged), 5.0) << "woken by the stream's end, not by its time limit";
    std::vector<char> image(size_t(width) * height * 4);
    char text[1024];
    const auto later = std::chrono::steady_clock::now();
    EXPECT_EQ(-10, WaitFrame(dev, image.data(), int(image.size()), text, sizeof text, 5000));
    EXPECT_LT(SecondsSince(later), 1.0) << "a gone stream is not waited for";

    EXPECT_EQ(0, DisconnectCamera(dev));
    ASSERT_TRUE(rig::SetPlugged(true));
}
}  // namespace
