// Requests and answers through the real serial port against the simulator.
#include <atomic>
#include <chrono>
#include <thread>

#include "ProtoFixture.h"

namespace {
sim::Handler Answer(Bytes value)
{
    return [value](const sim::Request&) { return std::optional<Bytes>(value); };
}

sim::Handler Echo()
{
    return [](const sim::Request& r) { return std::optional<Bytes>(r.value); };
}
}  // namespace

class Executor : public LinkTest {};

TEST_F(Executor, RoundTripCarriesRequestAndAnswer)
{
    module.SetHandler(0x1004, Answer({0x00, 0x42}));
    ASSERT_EQ(0, Start());
    Bytes answer;
    ASSERT_EQ(0, Run(0x1004, {0x01}, &answer));
    EXPECT_EQ((Bytes{0x00, 0x42}), answer);
    ASSERT_EQ(1u, module.Requests().size());
    EXPECT_EQ(0x1004, module.Requests()[0].tag);
    EXPECT_EQ(Bytes{0x01}, module.Requests()[0].value);
    std::string log = ReadLog();
    EXPECT_NE(std::string::npos, log.find("[FILE : Command][FUNCTION : SetTag]"));
    EXPECT_NE(std::string::npos, log.find("Set Tag : 1004\n"));
    EXPECT_NE(std::string::npos, log.find("Recv Tag : 1004\n"));
    EXPECT_NE(std::string::npos, log.find("Get Tag : 1004\n"));
}

TEST_F(Executor, ManyFastAnswersAreNeverLost)
{
    // The module answers at once: the request must be pending before its frame leaves.
    module.SetDefaultHandler(Echo());
    ASSERT_EQ(0, Start());
    for (unsigned int i = 0; i < 300; ++i) {
        Bytes value = {static_cast<unsigned char>(i), static_cast<unsigned char>(i >> 8)};
        Bytes answer;
        ASSERT_EQ(0, Run(0x2000, value, &answer, 5000)) << "request " << i;
        ASSERT_EQ(value, answer);
    }
}

TEST_F(Executor, ReportHandlerWinsOverPendingCommandOfSameTag)
{
    module.SetHandler(0x31, Answer({0x09}));
    ASSERT_EQ(0, Start());
    RecordingReport& report = NewReport(0x31);
    ASSERT_EQ(0, manager->Register(&report));
    EXPECT_EQ(-3, Run(0x31, {}, nullptr, 300));
    ASSERT_TRUE(report.WaitForReports(1));
    EXPECT_EQ(Bytes{0x09}, report.Values()[0]);
}

TEST_F(Executor, AnswerForAnotherTagLeavesRequestToTimeOut)
{
    module.SetHandler(0x2002, [this](const sim::Request&) {
        module.PushReport(0x2001, {0x00});
        return std::optional<Bytes>();
    });
    ASSERT_EQ(0, Start());
    EXPECT_EQ(-3, Run(0x2002, {}, nullptr, 300));
    EXPECT_TRUE(WaitForLog("Tag : 2001 isn't handle\n"));
    EXPECT_NE(std::string::npos, ReadLog().find("m_hSemaphore Wait Timeout: 300\n"));
}

TEST_F(Executor, LateAnswerDoesNotCompleteTheNextRequest)
{
    module.SetHandler(0x2001, Answer({0x01}));
    module.SetAnswerDelay(400);
    ASSERT_EQ(0, Start());
    EXPECT_EQ(-3, Run(0x2001, {}, nullptr, 100));
    // The late answer reaches the host after its request has gone.
    ASSERT_TRUE(WaitForLog("Recv Tag : 2001\n"));
    module.SetAnswerDelay(0);
    module.DropNextAnswers(1);
    EXPECT_EQ(-3, Run(0x2001, {}, nullptr, 300));
    module.SetHandler(0x2001, Answer({0x02}));
    Bytes answer;
    EXPECT_EQ(0, Run(0x2001, {}, &answer));
    EXPECT_EQ(Bytes{0x02}, answer);
}

TEST_F(Executor, ConcurrentRequestsAreSerialised)
{
    using Clock = std::chrono::steady_clock;
    Clock::time_point firstSeen;
    std::atomic<long long> gapMs{-1};
    module.SetHandler(0x1001, [&](const sim::Request&) {
        firstSeen = Clock::now();
        return std::optional<Bytes>(Bytes{0x01});
    });
    module.SetHandler(0x1002, [&](const sim::Request&) {
        // The first answer leaves no sooner than 300 ms after its request came in.
        gapMs = std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - firstSeen).count();
        return std::optional<Bytes>(Bytes{0x02});
    });
    module.SetAnswerDelay(300);
    ASSERT_EQ(0, Start());
    int first = -100, second = -100;
    std::thread t1([&] { first = Run(0x1001, {}); });
    ASSERT_TRUE(module.WaitForRequests(1, 5000));
    std::thread t2([&] { second = Run(0x1002, {}); });
    t1.join();
    t2.join();
    EXPECT_EQ(0, first);
    EXPECT_EQ(0, second);
    ASSERT_EQ(2u, module.Requests().size());
    EXPECT_EQ(0x1002, module.Requests()[1].tag);
    EXPECT_GE(gapMs.load(), 300);
}

TEST_F(Executor, CorruptAnswerIsDroppedAndTheRequestTimesOut)
{
    module.SetHandler(0x1004, Answer({0x00}));
    module.CorruptNextChecksums(1);
    ASSERT_EQ(0, Start());
    EXPECT_EQ(-3, Run(0x1004, {}, nullptr, 300));
    Bytes answer;
    EXPECT_EQ(0, Run(0x1004, {}, &answer));
    EXPECT_EQ(Bytes{0x00}, answer);
}

TEST_F(Executor, SlowPacedLinkStillDeliversWholeAnswers)
{
    Bytes big(600);
    for (size_t i = 0; i < big.size(); ++i)
        big[i] = static_cast<unsigned char>(i * 7);
    module.SetDefaultHandler(Echo());
    module.SetPacing(8);
    ASSERT_EQ(0, Start());
    for (int i = 0; i < 3; ++i) {
        Bytes answer;
        ASSERT_EQ(0, Run(0x3001, big, &answer));
        EXPECT_EQ(big, answer);
    }
}
