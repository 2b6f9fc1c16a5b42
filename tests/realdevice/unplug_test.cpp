// The module unplugged while the library uses it, as only the kernel's
// drivers show it: the serial port hangs up and the camera gives ENODEV.
#include <future>

#include "RealDeviceTest.h"

namespace {

// A request waiting for its answer when the module goes returns -6 at once,
// and so do later ones, until the application connects again.
TEST_F(RealDeviceTest, UnplugInTheMiddleOfARequest)
{
    ConnectModule();
    ASSERT_EQ(0, Ping(dev, "before", 6));
    module.simulator.SetAnswerDelay(8000);
    std::future<int> ping = std::async(std::launch::async, [&] { return Ping(dev, "unanswered", 10); });
    ASSERT_TRUE(module.simulator.WaitForRequests(2, 10000));
    const auto unplugged = std::chrono::steady_clock::now();
    ASSERT_TRUE(rig::SetPlugged(false));
    EXPECT_EQ(-6, ping.get());
    EXPECT_LT(SecondsSince(unplugged), 3.0) << "the waiting request noticed the hang-up";
    const auto later = std::chrono::steady_clock::now();
    EXPECT_EQ(-6, Ping(dev, "after", 5));
    EXPECT_LT(SecondsSince(later), 1.0);

    DisconnectSerial(dev);
    ASSERT_TRUE(rig::SetPlugged(true));
    ASSERT_TRUE(module.ServeAgain());
    module.simulator.SetAnswerDelay(0);
    ConnectModule();
    EXPECT_EQ(0, Ping(dev, "again", 5));
}

// The stream ends for good: GetFrame returns -10 from then on, one error
// record says why, and the replugged module's camera opens again.
TEST_F(RealDeviceTest, UnplugInTheMiddleOfTheStream)
{
    int width, height;
    StreamedSize(&width, &height);
    std::vector<char> image(size_t(width) * height * 4);
    std::string text;
    FeedCamera();
    ASSERT_EQ(0, ConnectCamera(dev, rig::CaptureNode().c_str()));
    ASSERT_EQ(0, NextFrame(image, text));
    ASSERT_TRUE(rig::SetPlugged(false));
    int result = 0;
    const auto unplugged = std::chrono::steady_clock::now();
    while ((result = Grab(image)) != -10 && SecondsSince(unplugged) < 5)
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    EXPECT_EQ(-10, result);
    std::this_thread::sleep_for(std::chrono::milliseconds(500));
    EXPECT_EQ(-10, Grab(image));
    size_t gone = 0;
    for (const TraceEntry& entry : Records("[ERROR] "))
        gone += entry.body.find("camera gone") != std::string::npos;
    EXPECT_EQ(1u, gone) << TraceLog::Text();

    EXPECT_EQ(0, DisconnectCamera(dev));
    ASSERT_TRUE(rig::SetPlugged(true));
    ASSERT_EQ(0, ConnectCamera(dev, rig::CaptureNode().c_str()));
    EXPECT_EQ(0, NextFrame(image, text));
}
}  // namespace
