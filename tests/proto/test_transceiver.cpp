// Cutting the module's byte stream into frames: in exact pieces through
// Transceiver::Receive, and through the real port with the simulator's faults.
#include "ProtoFixture.h"

namespace {
Bytes Report(unsigned short tag, const Bytes& value)
{
    return sim::ModuleSimulator::EncodeFrame(0xA1, sim::ModuleSimulator::EncodeTLV(tag, value));
}

Bytes Join(const Bytes& a, const Bytes& b)
{
    Bytes all = a;
    all.insert(all.end(), b.begin(), b.end());
    return all;
}
}  // namespace

class Cutting : public LinkTest {
protected:
    void SetUp() override
    {
        LinkTest::SetUp();
        ASSERT_EQ(0, Start());
        ASSERT_EQ(0, manager->Register(&report));
        ASSERT_EQ(0, manager->Register(&empty));
    }
    void Feed(const Bytes& bytes)
    {
        ASSERT_EQ(static_cast<int>(bytes.size()),
                  manager->GetTransceiver()->Receive(bytes.data(), static_cast<int>(bytes.size())));
    }
    RecordingReport report{0x31};
    RecordingReport empty{0x0000};
};

TEST_F(Cutting, TwoFramesInOneReadAreBothDeliveredInOrder)
{
    Feed(Join(Report(0x31, {1}), Report(0x31, {2})));
    EXPECT_EQ((std::vector<Bytes>{{1}, {2}}), report.Values());
}

TEST_F(Cutting, FrameSplitOverTwoReadsIsDeliveredAfterTheSecond)
{
    Bytes frame = Report(0x31, {1, 2, 3, 4});
    Feed(Bytes(frame.begin(), frame.begin() + 7));
    EXPECT_TRUE(report.Values().empty());
    Feed(Bytes(frame.begin() + 7, frame.end()));
    EXPECT_EQ((std::vector<Bytes>{{1, 2, 3, 4}}), report.Values());
}

TEST_F(Cutting, LoneNineByteFrameWaitsForATenthByte)
{
    Bytes nine = sim::ModuleSimulator::EncodeFrame(0xA1, {});
    ASSERT_EQ(9u, nine.size());
    Feed(nine);
    EXPECT_TRUE(empty.Values().empty());
    Bytes next = Report(0x31, {7});
    Feed(Bytes(next.begin(), next.begin() + 1));
    EXPECT_EQ(1u, empty.Values().size());
    Feed(Bytes(next.begin() + 1, next.end()));
    EXPECT_EQ((std::vector<Bytes>{{7}}), report.Values());
}

TEST_F(Cutting, GarbageDiscardsEverythingBuffered)
{
    Feed(Join(Bytes{0x00}, Join(Report(0x31, {1}), Report(0x31, {2}))));
    EXPECT_TRUE(report.Values().empty());
    Feed(Report(0x31, {3}));
    EXPECT_EQ((std::vector<Bytes>{{3}}), report.Values());
}

TEST_F(Cutting, OversizedLengthNeverCompletesAndNeverOverruns)
{
    Feed({0xA1, 0xFF, 0xFF, 0xFF, 0xF8, 0, 0, 0, 0, 0, 0});
    Bytes filler(DATA_BUFFER_SIZE, 0x55);
    int taken = manager->GetTransceiver()->Receive(filler.data(), static_cast<int>(filler.size()));
    EXPECT_EQ(DATA_BUFFER_SIZE - 11, taken);
    EXPECT_EQ(0, manager->GetTransceiver()->Receive(filler.data(), 1));
    EXPECT_TRUE(report.Values().empty());
    // Only a restart empties the buffer.
    ASSERT_EQ(0, Start());
    ASSERT_EQ(0, manager->Register(&report));
    Feed(Report(0x31, {4}));
    EXPECT_EQ((std::vector<Bytes>{{4}}), report.Values());
}

TEST_F(Cutting, FrameFillingTheWholeBufferIsDelivered)
{
    Bytes value(DATA_BUFFER_SIZE - 15, 0x3C);
    Feed(Report(0x31, value));
    ASSERT_EQ(1u, report.Values().size());
    EXPECT_EQ(value, report.Values()[0]);
}

class OverThePort : public Cutting {};

TEST_F(OverThePort, SplitWritesArriveWhole)
{
    module.SetSplitWrites(3);
    module.PushReport(0x31, {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11});
    module.PushReport(0x31, {12});
    ASSERT_TRUE(report.WaitForReports(2));
    EXPECT_EQ((std::vector<Bytes>{{1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11}, {12}}), report.Values());
}

TEST_F(OverThePort, TwoFramesInOneWrite)
{
    module.PushRaw(Join(Report(0x31, {1}), Report(0x31, {2})));
    ASSERT_TRUE(report.WaitForReports(2));
    EXPECT_EQ((std::vector<Bytes>{{1}, {2}}), report.Values());
}

TEST_F(OverThePort, NineByteFrameGoesOutWithTheNextOne)
{
    module.PushFrame({});
    module.PushReport(0x31, {5});
    ASSERT_TRUE(report.WaitForReports(1));
    EXPECT_EQ(1u, empty.Values().size());
}

TEST_F(OverThePort, GarbageBeforeAFrameLosesThatFrameAndTheLinkRecovers)
{
    module.SetGarbageBeforeNext({0x00});
    module.PushReport(0x31, {1, 1, 1, 1});
    // The port may cut the bytes anywhere, and junk left behind can take the
    // next frame with it; later frames get through.
    bool delivered = false;
    for (unsigned char i = 2; i < 50 && !delivered; ++i) {
        module.PushReport(0x31, {i, i, i, i});
        delivered = report.WaitForReports(1, 200);
    }
    ASSERT_TRUE(delivered);
    EXPECT_NE((Bytes{1, 1, 1, 1}), report.Values()[0]);
}

TEST_F(OverThePort, PacedStreamOfReportsArrivesInOrder)
{
    module.SetPacing(4);
    for (unsigned char i = 0; i < 20; ++i)
        module.PushReport(0x31, Bytes(i + 1u, i));
    ASSERT_TRUE(report.WaitForReports(20, 20000));
    std::vector<Bytes> values = report.Values();
    for (unsigned char i = 0; i < 20; ++i)
        EXPECT_EQ(Bytes(i + 1u, i), values[i]);
}
