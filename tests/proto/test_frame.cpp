// Frame format and checksum, and the executor's checks on received frames.
#include <string.h>

#include "ProtoFixture.h"

namespace {
Bytes Frame(const Bytes& payload) { return sim::ModuleSimulator::EncodeFrame(0xA1, payload); }

int Process(CommandExecutor& executor, Bytes frame)
{
    return executor.Process(frame.data(), static_cast<unsigned int>(frame.size()));
}
}  // namespace

TEST(Checksum, MatchesTheCatalogueCheckValueOnBothSides)
{
    unsigned char digits[] = "123456789";
    EXPECT_EQ(0x340BC6D9u, CommandExecutor::GetCheckSums(digits, 9));
    EXPECT_EQ(0x340BC6D9u, sim::ModuleSimulator::Crc(digits, 9));
    EXPECT_EQ(0xFFFFFFFFu, CommandExecutor::GetCheckSums(digits, 0));
}

TEST(Checksum, AgreesWithTheSimulatorOnManyInputs)
{
    Bytes data;
    unsigned int seed = 12345;
    for (int n = 0; n < 600; ++n) {
        EXPECT_EQ(sim::ModuleSimulator::Crc(data.data(), data.size()),
                  CommandExecutor::GetCheckSums(data.data(), static_cast<unsigned int>(data.size())))
            << "length " << n;
        seed = seed * 1103515245u + 12345u;
        data.push_back(static_cast<unsigned char>(seed >> 16));
    }
}

class FrameOnWire : public LinkTest {};

TEST_F(FrameOnWire, RebootRequestIsTheSixteenBytes)
{
    ASSERT_EQ(0, Start());
    SyncCommand cmd;
    cmd.SetTag(0x1004);
    unsigned char mode = 0x01;
    cmd.AddTLV(0x1004, 1, &mode);
    ASSERT_EQ(0, manager->Execute(&cmd, false));
    ASSERT_TRUE(module.WaitForRequests(1, 5000));
    Bytes payload = module.Requests()[0].payload;
    Bytes expected = {0x1A, 0x00, 0x00, 0x00, 0x07, 0x04, 0x10, 0x01, 0x00, 0x00, 0x00, 0x01, 0xD5, 0x3E, 0x0A, 0xBA};
    EXPECT_EQ(expected, sim::ModuleSimulator::EncodeFrame(0x1A, payload));
    EXPECT_EQ(0u, module.BadFrames());
}

TEST_F(FrameOnWire, ImageAcknowledgementIsSentWithoutWaiting)
{
    ASSERT_EQ(0, Start());
    SyncCommand ack;
    ack.AddTLV(0x33, 0, nullptr);
    ASSERT_EQ(0, manager->Execute(&ack, false));
    ASSERT_TRUE(module.WaitForRequests(1, 5000));
    EXPECT_EQ(0x33, module.Requests()[0].tag);
    EXPECT_EQ((Bytes{0x33, 0, 0, 0, 0, 0}), module.Requests()[0].payload);
}

class ExecutorChecks : public ::testing::Test {
protected:
    void SetUp() override
    {
        StartFileLog();
        manager.Register(&report);
    }
    CommandManager manager;
    CommandExecutor executor{&manager};
    RecordingReport report{0x31};
};

TEST_F(ExecutorChecks, RefusesEachKindOfBadFrame)
{
    Bytes good = Frame(sim::ModuleSimulator::EncodeTLV(0x31, {0x05}));
    EXPECT_EQ(-1, executor.Process(nullptr, 10));
    EXPECT_EQ(-1, executor.Process(good.data(), 0));
    Bytes host = good;
    host[0] = 0x1A;
    EXPECT_EQ(-2, Process(executor, host));
    Bytes wrongHigh = good;
    wrongHigh[0] = 0xB1;
    EXPECT_EQ(-3, Process(executor, wrongHigh));
    Bytes claimsTen = {0xA1, 0x00, 0x00, 0x00, 0x0A};
    claimsTen.resize(18, 0);  // 19 bytes would be needed
    EXPECT_EQ(-4, Process(executor, claimsTen));
    EXPECT_EQ(-4, Process(executor, Bytes{0xA1, 0x00, 0x00}));
    Bytes huge = {0xA1, 0xFF, 0xFF, 0xFF, 0xFF, 0, 0, 0, 0, 0};
    EXPECT_EQ(-4, Process(executor, huge));
    for (size_t bit = 0; bit < (good.size() - 9) * 8; ++bit) {
        Bytes flipped = good;
        flipped[5 + bit / 8] ^= static_cast<unsigned char>(1u << (bit % 8));
        EXPECT_EQ(-5, Process(executor, flipped)) << "bit " << bit;
    }
    EXPECT_TRUE(report.Values().empty());
    EXPECT_EQ(0, Process(executor, good));
    ASSERT_EQ(1u, report.Values().size());
    EXPECT_EQ(Bytes{0x05}, report.Values()[0]);
}

TEST_F(ExecutorChecks, FramesTooShortForATagStillPass)
{
    EXPECT_EQ(0, Process(executor, Frame({})));
    EXPECT_EQ(0, Process(executor, Frame({0x31})));
    EXPECT_NE(std::string::npos, ReadLog().find("Recv Tag : 0031\n"));
    // The one-byte payload has no record to hand out.
    ASSERT_EQ(1u, report.Values().size());
    EXPECT_TRUE(report.Values()[0].empty());
}
