// Frames and their checksum, the executor's checks on received frames, and
// how the transceiver cuts the module's byte stream into frames.
#include <stdint.h>

#include <algorithm>

#include "ProtoFixture.h"

namespace {
using sim::ModuleSimulator;

Bytes operator+(Bytes a, const Bytes& b)
{
    a.insert(a.end(), b.begin(), b.end());
    return a;
}

Bytes Slice(const Bytes& bytes, size_t from, size_t to = SIZE_MAX)
{
    return Bytes(bytes.begin() + from, bytes.begin() + std::min(to, bytes.size()));
}

// The tag of a received frame is the two bytes after its length, whatever they
// belong to: in a payload shorter than two bytes, the checksum supplies them.
unsigned short TagOf(const Bytes& frame) { return static_cast<unsigned short>(frame[5] | frame[6] << 8); }
}  // namespace

TEST(Checksum, MatchesTheCheckValueAndTheSimulatorsOwnCrc)
{
    unsigned char digits[] = "123456789";
    EXPECT_EQ(0x340BC6D9u, CommandExecutor::GetCheckSums(digits, 9));
    EXPECT_EQ(0x340BC6D9u, ModuleSimulator::Crc(digits, 9));
    Bytes data;
    for (unsigned int n = 0, seed = 12345; n < 600; ++n, seed = seed * 1103515245u + 12345u) {
        EXPECT_EQ(ModuleSimulator::Crc(data.data(), n), CommandExecutor::GetCheckSums(data.data(), n)) << n;
        data.push_back(static_cast<unsigned char>(seed >> 16));
    }
}

TEST(ExecutorChecks, RefusesEachKindOfBadFrame)
{
    StartFileLog();
    CommandManager manager;
    CommandExecutor executor{&manager, &manager.Counters()};
    RecordingReport report{0x31};
    manager.Register(&report);
    Bytes good = Report(0x31, {0x05});
    Bytes empty = ModuleSimulator::EncodeFrame(0xA1, {}), oneByte = ModuleSimulator::EncodeFrame(0xA1, {0x31});
    RecordingReport emptyReport{TagOf(empty)}, oneByteReport{TagOf(oneByte)};
    manager.Register(&emptyReport);
    manager.Register(&oneByteReport);
    EXPECT_EQ(-1, executor.Process(nullptr, 10));
    EXPECT_EQ(-1, executor.Process(good.data(), 0));
    const struct { const char* name; Bytes frame; int result; } rows[] = {
        {"host marker", Bytes{0x1A} + Slice(good, 1), -2},
        {"wrong high nibble", Bytes{0xB1} + Slice(good, 1), -3},
        {"one byte short of its length", Bytes{0xA1, 0, 0, 0, 0x0A} + Bytes(13), -4},
        {"shorter than a header", {0xA1, 0, 0}, -4},
        {"length near 2^32", {0xA1, 0xFF, 0xFF, 0xFF, 0xFF, 0, 0, 0, 0, 0}, -4},
        {"empty payload", empty, 0},
        {"payload too short for a tag", oneByte, 0},
        {"good", good, 0},
    };
    for (const auto& r : rows) {
        SCOPED_TRACE(r.name);
        Bytes frame = r.frame;
        EXPECT_EQ(r.result, executor.Process(frame.data(), static_cast<unsigned int>(frame.size())));
    }
    for (size_t bit = 0; bit < (good.size() - 9) * 8; ++bit) {
        Bytes flipped = good;
        flipped[5 + bit / 8] ^= static_cast<unsigned char>(1u << (bit % 8));
        EXPECT_EQ(-5, executor.Process(flipped.data(), static_cast<unsigned int>(flipped.size()))) << "bit " << bit;
    }
    // Both short payloads reach the handler of the tag their checksum completes,
    // with no record to hand out.
    EXPECT_EQ((std::vector<Bytes>{{0x05}}), report.Values());
    EXPECT_EQ((std::vector<Bytes>{{}}), emptyReport.Values());
    EXPECT_EQ((std::vector<Bytes>{{}}), oneByteReport.Values());
    char oneByteTag[32];
    snprintf(oneByteTag, sizeof oneByteTag, "Recv Tag : %04X\n", TagOf(oneByte));
    EXPECT_NE(std::string::npos, ReadLog().find(oneByteTag));
}

class Framing : public LinkTest {
protected:
    void SetUp() override
    {
        LinkTest::SetUp();
        ASSERT_NO_FATAL_FAILURE(Restart());
    }
    // A fresh link empties the receive buffer and the registry.
    void Restart()
    {
        ASSERT_EQ(0, Start());
        report = &NewReport(0x31);
        empty = &NewReport(TagOf(ModuleSimulator::EncodeFrame(0xA1, {})));
        ASSERT_EQ(0, manager->Register(report));
        ASSERT_EQ(0, manager->Register(empty));
    }
    int Feed(const Bytes& bytes)
    {
        return manager->GetTransceiver()->Receive(bytes.data(), static_cast<int>(bytes.size()));
    }
    RecordingReport* report = nullptr;
    RecordingReport* empty = nullptr;
};

TEST_F(Framing, DeliversEachWholeFrameAndNoOther)
{
    Bytes split = Report(0x31, {1, 2, 3, 4}), nine = ModuleSimulator::EncodeFrame(0xA1, {}), next = Report(0x31, {7});
    Bytes full(DATA_BUFFER_SIZE - 15, 0x3C);  // with its frame and record headers, exactly the buffer
    // Reads in turn, the frames delivered (to either handler) after each, and the 0x31 values.
    const struct {
        const char* name;
        std::vector<Bytes> reads;
        std::vector<size_t> delivered;
        std::vector<Bytes> values;
    } rows[] = {
        {"two frames in one read", {Report(0x31, {1}) + Report(0x31, {2})}, {2}, {{1}, {2}}},
        {"a frame split over two reads", {Slice(split, 0, 7), Slice(split, 7)}, {0, 1}, {{1, 2, 3, 4}}},
        {"a lone nine-byte frame waits for a tenth byte", {nine, Slice(next, 0, 1), Slice(next, 1)}, {0, 1, 2}, {{7}}},
        {"garbage discards everything buffered",
         {Bytes{0} + Report(0x31, {1}) + Report(0x31, {2}), Report(0x31, {3})}, {0, 1}, {{3}}},
        {"a frame filling the whole buffer", {Report(0x31, full)}, {1}, {full}},
    };
    for (const auto& r : rows) {
        SCOPED_TRACE(r.name);
        ASSERT_NO_FATAL_FAILURE(Restart());
        for (size_t i = 0; i < r.reads.size(); ++i) {
            EXPECT_EQ(static_cast<int>(r.reads[i].size()), Feed(r.reads[i]));
            EXPECT_EQ(r.delivered[i], report->Values().size() + empty->Values().size()) << "after read " << i;
        }
        EXPECT_EQ(r.values, report->Values());
    }
}

TEST_F(Framing, LengthBeyondTheBufferDropsTheInputAndReceptionGoesOn)
{
    // A single corrupted byte in a header on the line, then the module's next frames.
    EXPECT_EQ(11, Feed({0xA1, 0x7F, 0xFF, 0xFF, 0xFF, 0, 0, 0, 0, 0, 0}));
    Feed(Report(0x31, {1}));
    EXPECT_EQ((std::vector<Bytes>{{1}}), report->Values());
    // One byte more than the buffer holds: dropped as soon as its header is in.
    uint32_t tooLong = DATA_BUFFER_SIZE - 9 + 1;
    Feed(Bytes{0xA1, uint8_t(tooLong >> 24), uint8_t(tooLong >> 16), uint8_t(tooLong >> 8), uint8_t(tooLong), 0x31, 0,
               0, 0, 0} +
         Bytes(64, 0x55));
    Bytes filler(DATA_BUFFER_SIZE, 0x55);
    EXPECT_EQ(DATA_BUFFER_SIZE, Feed(filler));  // never fills up either
    Feed(Report(0x31, {2}));
    EXPECT_EQ((std::vector<Bytes>{{1}, {2}}), report->Values());
}

TEST_F(Framing, FramesWrittenInPiecesArriveWhole)
{
    module.SetSplitWrites(3);
    module.PushReport(0x31, {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11});
    module.PushReport(0x31, {12});
    ASSERT_TRUE(report->WaitForReports(2));
    EXPECT_EQ((std::vector<Bytes>{{1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11}, {12}}), report->Values());
}

TEST_F(Framing, RebootRequestIsTheSixteenBytesOnTheWire)
{
    SyncCommand cmd;
    cmd.SetTag(0x1004);
    unsigned char mode = 0x01;
    cmd.AddTLV(0x1004, 1, &mode);
    ASSERT_EQ(0, manager->Execute(&cmd, false));
    ASSERT_TRUE(module.WaitForRequests(1, 5000));
    EXPECT_EQ((Bytes{0x1A, 0x00, 0x00, 0x00, 0x07, 0x04, 0x10, 0x01, 0x00, 0x00, 0x00, 0x01, 0xD5, 0x3E, 0x0A, 0xBA}),
              ModuleSimulator::EncodeFrame(0x1A, module.Requests()[0].payload));
    EXPECT_EQ(0u, module.BadFrames());
}
