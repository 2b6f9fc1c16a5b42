// The serial port: listing nodes, reading, writing and the device going away.
#include <fcntl.h>
#include <string.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <string>

#include "OS/Serial_Linux/OS_Serial.h"
#include "tests/AICamera/Protocol/ProtoFixture.h"

namespace {
class NullListener : public OS_Serial_Listener {
public:
    void process(int) override {}
};
}  // namespace

TEST(EnumSerial, ListsMatchingNodesJoinedByBarsWithinTheBuffer)
{
    ASSERT_EQ(0, mkdir("nodes", 0777));
    for (const char* name : {"ttyACM0", "xttyACM9", "video0", "ttyUSB0"})
        close(open((std::string("nodes/") + name).c_str(), O_CREAT | O_WRONLY, 0644));
    char out[64];
    memset(out, 'Z', sizeof out);
    EXPECT_EQ(2, OS_Serial::EnumSerial("nodes/", out, sizeof out));
    std::string text(out);
    EXPECT_TRUE(text == "nodes/ttyACM0|nodes/xttyACM9" || text == "nodes/xttyACM9|nodes/ttyACM0") << text;
    EXPECT_EQ(std::string(sizeof out - text.size(), '\0'), std::string(out + text.size(), sizeof out - text.size()));
    ASSERT_EQ(0, unlink("nodes/xttyACM9"));
    // Cut inside the directory; one byte short of the name and its bar; just room for both.
    const struct { int size; std::string text; } rows[] = {{7, "nodes/"}, {14, "nodes/ttyACM0"}, {15, "nodes/ttyACM0"}};
    for (const auto& r : rows) {
        memset(out, 'Z', sizeof out);
        EXPECT_EQ(1, OS_Serial::EnumSerial("nodes/", out, r.size)) << r.size;
        EXPECT_EQ(r.text, std::string(out)) << r.size;
        EXPECT_EQ(sizeof out - r.size, std::count(out + r.size, out + sizeof out, 'Z')) << r.size;
    }
    ASSERT_EQ(0, unlink("nodes/ttyACM0"));
    memset(out, 'Z', sizeof out);
    EXPECT_EQ(0, OS_Serial::EnumSerial("nodes/", out, 8));
    EXPECT_EQ(std::string(8, '\0'), std::string(out, 8));
    EXPECT_EQ(-2, OS_Serial::EnumSerial("missing/", out, sizeof out));
    EXPECT_EQ(-1, OS_Serial::EnumSerial(nullptr, 8));
}

class SerialPort : public LinkTest {};

TEST_F(SerialPort, RefusesBadArgumentsAndClosedUse)
{
    OS_Serial port;
    NullListener listener;
    char buf[4] = {};
    EXPECT_EQ(-1, port.Open(nullptr));
    EXPECT_EQ(-1, port.Open(""));
    EXPECT_EQ(-1, port.Open(module.SlavePath().c_str(), nullptr));
    EXPECT_EQ(-2, port.Open("/nonexistent/ttyACM0", &listener));
    EXPECT_EQ(0, port.Write(buf, 4));
    EXPECT_EQ(0, port.Read(buf, 4));
    EXPECT_EQ(-1, port.Close());
    EXPECT_TRUE(WaitForLog("Invalid Parameter\n"));
}

TEST_F(SerialPort, EightBitBytesPassUnchanged)
{
    OS_Serial port;
    ASSERT_EQ(0, port.Open(module.SlavePath().c_str()));
    Bytes all(256);
    for (int i = 0; i < 256; ++i)
        all[i] = static_cast<unsigned char>(i);
    ASSERT_EQ(265, port.Write(sim::ModuleSimulator::EncodeFrame(0x1A, all).data(), 265));
    ASSERT_TRUE(module.WaitForRequests(1, 5000));
    EXPECT_EQ(all, module.Requests()[0].payload);
    EXPECT_EQ(0, port.Close());
}

TEST_F(SerialPort, UnplugEndsTheListenerAndLaterRequestsFailAtOnce)
{
    size_t threads = ThreadCount();
    ASSERT_EQ(0, Start());
    EXPECT_EQ(threads + 1, ThreadCount());
    module.Unplug();  // also ends the simulator's own two threads
    ASSERT_TRUE(WaitForLog("Device Pull Out\n"));
    EXPECT_TRUE(WaitUntil([&] { return ThreadCount() == threads - 2; }));
    SyncCommand cmd;
    cmd.AddTLV(0x1004, 0, nullptr);
    auto started = std::chrono::steady_clock::now();
    EXPECT_EQ(-3, manager->Execute(&cmd, false));
    EXPECT_EQ(-2, manager->Execute(&cmd, true));  // no wait for an answer that cannot come
    EXPECT_LT(std::chrono::steady_clock::now() - started, std::chrono::seconds(2));
    // The lost port is not written to again.
    EXPECT_EQ(0, manager->GetTransceiver()->SendData(const_cast<char*>("x"), 1));
    EXPECT_NE(std::string::npos, ReadLog().find("write Return Fail | nWriteNum : 0 "));
    EXPECT_EQ(0, manager->StopDataTransmit());
}
