// The serial port: listing nodes, reading, writing and the device going away.
#include <errno.h>
#include <fcntl.h>
#include <string.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <string>
#include <vector>

#include "ProtoFixture.h"
#include "OS/Serial_Linux/OS_Serial.h"

namespace {
void MakeNodes(const std::string& dir, const std::vector<std::string>& names)
{
    mkdir(dir.c_str(), 0777);
    for (const std::string& name : names) {
        int fd = open((dir + name).c_str(), O_CREAT | O_WRONLY, 0644);
        ASSERT_GE(fd, 0);
        close(fd);
    }
}

std::vector<std::string> SplitSorted(const std::string& text)
{
    std::vector<std::string> parts;
    size_t start = 0;
    for (size_t bar; (bar = text.find('|', start)) != std::string::npos; start = bar + 1)
        parts.push_back(text.substr(start, bar - start));
    parts.push_back(text.substr(start));
    std::sort(parts.begin(), parts.end());
    return parts;
}

class NullListener : public OS_Serial_Listener {
public:
    void process(int) override {}
};
}  // namespace

TEST(EnumSerial, ListsMatchingNodesJoinedByBars)
{
    MakeNodes("enum_two/", {"ttyACM0", "xttyACM9", "video0", "ttyUSB0"});
    char out[128];
    memset(out, 'Z', sizeof out);
    EXPECT_EQ(2, OS_Serial::EnumSerial("enum_two/", out, sizeof out));
    std::string text(out);
    EXPECT_EQ((std::vector<std::string>{"enum_two/ttyACM0", "enum_two/xttyACM9"}), SplitSorted(text));
    // Everything after the text stays zero.
    for (size_t i = text.size(); i < sizeof out; ++i)
        ASSERT_EQ(0, out[i]) << i;
}

TEST(EnumSerial, TooSmallBufferIsCutAndNeverOverrun)
{
    MakeNodes("enum_cut/", {"ttyACM0"});
    char out[32];
    memset(out, 'Z', sizeof out);
    EXPECT_EQ(1, OS_Serial::EnumSerial("enum_cut/", out, 10));
    EXPECT_EQ(std::string("enum_cut/"), std::string(out));
    for (size_t i = 10; i < sizeof out; ++i)
        EXPECT_EQ('Z', out[i]) << i;
    // One byte short of the text with its bar, and exactly room for it.
    for (int size : {17, 18}) {
        memset(out, 'Z', sizeof out);
        EXPECT_EQ(1, OS_Serial::EnumSerial("enum_cut/", out, size));
        EXPECT_EQ(std::string("enum_cut/ttyACM0"), std::string(out));
        EXPECT_EQ('Z', out[size]);
    }
}

TEST(EnumSerial, NoMatchMissingDirectoryAndNullBuffer)
{
    MakeNodes("enum_none/", {"video0"});
    char out[8];
    memset(out, 'Z', sizeof out);
    EXPECT_EQ(0, OS_Serial::EnumSerial("enum_none/", out, sizeof out));
    EXPECT_EQ(std::string(8, '\0'), std::string(out, sizeof out));
    EXPECT_EQ(-2, OS_Serial::EnumSerial("enum_missing/", out, sizeof out));
    EXPECT_EQ(-1, OS_Serial::EnumSerial(nullptr, 8));
    // The default directory is /dev/: this machine may have none, but the text must match the count.
    char devices[512];
    int found = OS_Serial::EnumSerial(devices, sizeof devices);
    EXPECT_EQ(found == 0, devices[0] == '\0');
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

TEST_F(SerialPort, ReadWithNothingWaitingReturnsAtOnce)
{
    OS_Serial port;
    ASSERT_EQ(0, port.Open(module.SlavePath().c_str()));
    char buf[8];
    EXPECT_EQ(-1, port.Read(buf, sizeof buf));
    EXPECT_EQ(EAGAIN, errno);
    module.PushRaw({1, 2, 3});
    ASSERT_TRUE(module.WaitForOutputDrained(5000));
    ASSERT_TRUE(WaitUntil([&] { return port.Read(buf, sizeof buf) == 3; }));
    EXPECT_EQ(0, memcmp(buf, "\1\2\3", 3));
    EXPECT_EQ(0, port.Close());
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
}

TEST_F(SerialPort, UnplugEndsTheListenerAndLaterWritesFail)
{
    size_t threads = ThreadCount();
    ASSERT_EQ(0, Start());
    EXPECT_EQ(threads + 1, ThreadCount());
    module.Unplug();  // also ends the simulator's own two threads
    ASSERT_TRUE(WaitForLog("Device Pull Out\n"));
    EXPECT_TRUE(WaitUntil([&] { return ThreadCount() == threads - 2; }));
    SyncCommand cmd;
    cmd.AddTLV(0x1004, 0, nullptr);
    EXPECT_EQ(0, manager->Execute(&cmd, false));  // only a zero-byte write counts as failed
    EXPECT_EQ(-1, manager->GetTransceiver()->SendData(const_cast<char*>("x"), 1));
    EXPECT_NE(std::string::npos, ReadLog().find("write Return Fail | nWriteNum : -1  Errno : 5 "));
    EXPECT_EQ(0, manager->StopDataTransmit());
}
