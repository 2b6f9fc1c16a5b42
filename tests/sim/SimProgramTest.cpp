// aicam-sim as a program: serial link, face library file, MJPEG stream, signals.
#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include <climits>
#include <cstdlib>
#include <fstream>
#include <sstream>

#include "HostLink.h"
#include "JpegDecode.h"
#include "ModuleProtocol.h"
#include "SimProcess.h"

namespace sim::test {
namespace {

Bytes AddFaceRequest(const std::string& id) {
    Bytes v{0};
    PutU32(v, uint32_t(id.size()));
    PutText(v, id);
    return v;
}

// Everything a reader gets from the FIFO until the writer closes it.
Bytes ReadUntilEnd(const std::string& path) {
    Bytes all;
    const int fd = ::open(path.c_str(), O_RDONLY);
    if (fd < 0) return all;
    uint8_t buffer[65536];
    for (;;) {
        pollfd p{fd, POLLIN, 0};
        if (::poll(&p, 1, 10000) <= 0) break;
        const ssize_t n = ::read(fd, buffer, sizeof buffer);
        if (n <= 0) break;
        all.insert(all.end(), buffer, buffer + n);
    }
    ::close(fd);
    return all;
}

// The JPEGs of an MJPEG stream: each starts at a start-of-image marker.
std::vector<Bytes> SplitJpegs(const Bytes& stream) {
    std::vector<Bytes> out;
    for (size_t i = 0; i + 1 < stream.size(); ++i) {
        if (stream[i] != 0xFF || stream[i + 1] != 0xD8) continue;
        if (!out.empty()) out.back().resize(out.back().size() - (stream.size() - i));
        out.emplace_back(stream.begin() + long(i), stream.end());
    }
    return out;
}

std::string SideText(const Bytes& jpeg) {
    if (jpeg.size() < 6 || jpeg[2] != 0xFF || jpeg[3] != 0xFE) return std::string();
    const size_t length = size_t(jpeg[4]) << 8 | jpeg[5];
    if (length < 2 || 4 + length > jpeg.size()) return std::string();
    return std::string(jpeg.begin() + 6, jpeg.begin() + long(4 + length));
}

std::string Slurp(const std::string& path) {
    std::ifstream in(path);
    std::stringstream s;
    s << in.rdbuf();
    return s.str();
}

TEST(SimProgramTest, ServesTheSerialLinkAndTheVideoAndKeepsItsLibrary) {
    ::unlink("video.fifo");
    ::unlink("program-faces.txt");
    SimProcess program({AICAM_SIM_PROGRAM, "--link", "ttySIM0", "--library", "program-faces.txt", "--video",
                        "video.fifo", "--fifo", "--size", "320x240", "--fps", "50", "--frames", "8"});
    const std::string serial = program.FirstLine(10000);
    ASSERT_FALSE(serial.empty());
    char linked[PATH_MAX] = {};
    ASSERT_GT(::readlink("ttySIM0", linked, sizeof linked - 1), 0);
    EXPECT_EQ(serial, linked);
    {
        HostLink host("ttySIM0");
        std::optional<Bytes> added = host.Ask(proto::kTagAddFace, AddFaceRequest("alice"));
        ASSERT_TRUE(added);
        EXPECT_EQ(*added, Bytes{proto::kOk});
    }
    const std::vector<Bytes> frames = SplitJpegs(ReadUntilEnd("video.fifo"));
    ASSERT_EQ(frames.size(), 8u);
    for (size_t i = 0; i < frames.size(); ++i) {
        DecodedSize size;
        ASSERT_TRUE(DecodeJpeg(frames[i], size)) << "frame " << i;
        EXPECT_EQ(size.width, 320);
        EXPECT_EQ(size.height, 240);
        const std::string side = SideText(frames[i]);
        EXPECT_EQ(side.rfind("{\"frame\":" + std::to_string(i) + ",", 0), 0u) << side;
        EXPECT_EQ(side.back(), '}');
        EXPECT_NE(side.find("\"id\":\"alice\""), std::string::npos) << side;
    }
    EXPECT_EQ(program.StopWith(SIGTERM, 10000), 0);
    EXPECT_NE(::access("ttySIM0", F_OK), 0);   // the link and the FIFO go with the program
    EXPECT_NE(::access("video.fifo", F_OK), 0);
    EXPECT_NE(Slurp("program-faces.txt").find("alice\tcamera\t"), std::string::npos);

    SimProcess again({AICAM_SIM_PROGRAM, "--library", "program-faces.txt"});
    const std::string serialAgain = again.FirstLine(10000);
    ASSERT_FALSE(serialAgain.empty());
    HostLink host(serialAgain);
    Bytes query{0};
    PutU32(query, 5);
    PutText(query, "alice");
    EXPECT_EQ(host.Ask(proto::kTagQueryFace, query), Bytes{proto::kOk});
    EXPECT_EQ(again.StopWith(SIGINT, 10000), 0);
}

TEST(SimProgramTest, UnplugsAfterTheGivenNumberOfRequests) {
    SimProcess program({AICAM_SIM_PROGRAM, "--unplug-after", "2"});
    const std::string serial = program.FirstLine(10000);
    ASSERT_FALSE(serial.empty());
    HostLink host(serial);
    EXPECT_TRUE(host.Ask(proto::kTagPing, {'a'}));
    EXPECT_TRUE(host.Ask(proto::kTagPing, {'b'}));
    const int fd = ::open(serial.c_str(), O_RDWR | O_NOCTTY | O_NONBLOCK);
    bool hungUp = fd < 0;
    for (int i = 0; i < 100 && !hungUp; ++i) {
        pollfd p{fd, POLLIN, 0};
        hungUp = ::poll(&p, 1, 100) > 0 && (p.revents & (POLLHUP | POLLERR));
    }
    if (fd >= 0) ::close(fd);
    EXPECT_TRUE(hungUp);
    EXPECT_EQ(program.StopWith(SIGTERM, 10000), 0);
}

TEST(SimProgramTest, RefusesBadOptionsWithOneLine) {
    SimProcess program({AICAM_SIM_PROGRAM, "--fps", "0"});
    EXPECT_EQ(program.FirstLine(10000), "");   // nothing on standard output
    EXPECT_EQ(program.StopWith(0, 10000), 2);
}

}  // namespace
}  // namespace sim::test
