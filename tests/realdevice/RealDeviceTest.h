// A device handle of the real library on the host's side of the test
// machine's USB link, with the simulated module on the other side. Outside
// the machine every test is skipped.
#ifndef TESTS_REALDEVICE_REAL_DEVICE_TEST_H
#define TESTS_REALDEVICE_REAL_DEVICE_TEST_H

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "ModuleEnd.h"
#include "Rig.h"
#include "TimedCall.h"
#include "TraceLog.h"
#include "ai_camera.h"

class RealDeviceTest : public ::testing::Test {
protected:
    void SetUp() override;
    // Trace level, for the records of the camera's open.
    static void TraceEverything() { ASSERT_EQ(0, SetLogConfig(LOG_LEVER_TRACE, LOG_TARGET_FILE)); }
    void TearDown() override;

    // Connects the handle's serial link to the module's node.
    void ConnectModule();
    // Feeds pictures of the size the camera streams into its FIFO.
    void FeedCamera(int framesPerSecond = 15);
    // One GetFrame call with room for the side text.
    int Grab(std::vector<char>& image);
    // Polls GetFrame until it gives something other than -11 or `seconds` pass.
    int NextFrame(std::vector<char>& image, std::string& text, double seconds = 20);
    // The records of this level tag ("[ERROR] ") written so far.
    static std::vector<TraceEntry> Records(const std::string& tag);

    ModuleEnd module;
    std::unique_ptr<FrameFeeder> feeder;
    void* dev = nullptr;
};

#endif
