#include "RealDeviceTest.h"

#include <string.h>

void RealDeviceTest::SetUp()
{
    if (!rig::Inside())
        GTEST_SKIP() << "needs the test machine with the simulated USB module (IN_TEST_VM is not set): "
                        "run scripts/test-real-device.sh";
    rig::SetCameraSilent(false);
    ASSERT_TRUE(rig::SetPlugged(true)) << "the module's nodes did not appear";
    ASSERT_EQ(0, SetLogConfig(LOG_LEVER_DEBUG, LOG_TARGET_FILE));
    ASSERT_TRUE(module.Start()) << "cannot serve " << rig::Var("VM_ACM_GADGET");
    dev = Init();
    ASSERT_NE(nullptr, dev);
}

void RealDeviceTest::TearDown()
{
    if (dev)
        DeInit(dev);
    if (feeder)
        feeder->Stop();
    if (rig::Inside()) {
        rig::SetCameraSilent(false);
        rig::SetPlugged(true);
    }
    SetLogConfig(LOG_LEVER_OFF, LOG_TARGET_CONSOLE_FILE);
}

void RealDeviceTest::ConnectModule() { ASSERT_EQ(0, ConnectSerial(dev, rig::SerialNode().c_str())); }

void RealDeviceTest::FeedCamera(int framesPerSecond)
{
    int width, height;
    rig::StreamedSize(&width, &height);
    ASSERT_GT(width, 0) << "no advertised size";
    feeder.reset(new FrameFeeder(rig::Var("VM_UVC_FIFO"), width, height, framesPerSecond));
    ASSERT_TRUE(feeder->Start()) << "cannot write " << rig::Var("VM_UVC_FIFO");
}

int RealDeviceTest::Grab(std::vector<char>& image)
{
    char verify[1024];
    return GetFrame(dev, image.data(), static_cast<int>(image.size()), verify, sizeof verify);
}

int RealDeviceTest::NextFrame(std::vector<char>& image, std::string& text, double seconds)
{
    char verify[1024];
    const auto start = std::chrono::steady_clock::now();
    int result;
    do {
        memset(verify, 0, sizeof verify);
        result = GetFrame(dev, image.data(), static_cast<int>(image.size()), verify, sizeof verify);
        if (result == -11)
            std::this_thread::sleep_for(std::chrono::milliseconds(2));
    } while (result == -11 && SecondsSince(start) < seconds);
    text = result == 0 ? std::string(verify, strnlen(verify, sizeof verify)) : "";
    return result;
}

std::vector<TraceEntry> RealDeviceTest::Records(const std::string& tag)
{
    std::vector<TraceEntry> found;
    for (const TraceEntry& entry : TraceLog::Read())
        if (entry.header.compare(0, tag.size(), tag) == 0)
            found.push_back(entry);
    return found;
}

