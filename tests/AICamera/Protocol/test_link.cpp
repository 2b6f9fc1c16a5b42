// Requests, answers and reports through the real serial port against the
// simulator, and starting and stopping the link.
#include <atomic>
#include <chrono>
#include <string>
#include <thread>

#include "ProtoFixture.h"

class Link : public LinkTest {};

TEST_F(Link, FastAnswersAreNeverLostAndSlowOnesArriveWhole)
{
    // The module answers at once: the request must be pending before its frame leaves.
    module.SetDefaultHandler([](const sim::Request& r) { return std::optional<Bytes>(r.value); });
    ASSERT_EQ(0, Start());
    for (unsigned int i = 0; i < 300; ++i) {
        Bytes value = {static_cast<unsigned char>(i), static_cast<unsigned char>(i >> 8)}, answer;
        ASSERT_EQ(0, Run(0x1004, value, &answer)) << "request " << i;
        ASSERT_EQ(value, answer);
    }
    std::string log = ReadLog();
    for (const char* text : {"[FILE : Command][FUNCTION : SetTag]", "Set Tag : 1004\n", "Recv Tag : 1004\n",
                             "Get Tag : 1004\n"})
        EXPECT_NE(std::string::npos, log.find(text)) << text;
    // A slow link hands the answer over in many small reads.
    module.SetPacing(8);
    Bytes big(600), answer;
    for (size_t i = 0; i < big.size(); ++i)
        big[i] = static_cast<unsigned char>(i * 7);
    ASSERT_EQ(0, Run(0x3001, big, &answer));
    EXPECT_EQ(big, answer);
}

TEST_F(Link, RequestTimesOutWhenAReportHandlerTakesItsAnswerOrTheAnswerIsNotForIt)
{
    module.SetHandler(0x31, Answer({0x09}));
    module.SetHandler(0x2002, [this](const sim::Request&) {
        module.PushReport(0x2001, {0x00});
        return std::optional<Bytes>();
    });
    module.SetHandler(0x1004, Answer({0x00}));
    ASSERT_EQ(0, Start());
    RecordingReport& report = NewReport(0x31);
    ASSERT_EQ(0, manager->Register(&report));
    EXPECT_EQ(-3, Run(0x31, {}, nullptr, 300));
    ASSERT_TRUE(report.WaitForReports(1));
    EXPECT_EQ(Bytes{0x09}, report.Values()[0]);
    EXPECT_EQ(-3, Run(0x2002, {}, nullptr, 300));
    EXPECT_TRUE(WaitForLog("Tag : 2001 isn't handle\n"));
    EXPECT_NE(std::string::npos, ReadLog().find("m_hSemaphore Wait Timeout: 300\n"));
    module.CorruptNextChecksums(1);
    EXPECT_EQ(-3, Run(0x1004, {}, nullptr, 300));
    EXPECT_EQ(0, Run(0x1004, {}));
    // The link's counters saw the three requests that timed out, the corrupt
    // answer, and the answer that was not for its request.
    const LinkCounters& counters = manager->Counters();
    EXPECT_EQ(3u, LinkCounters::Read(counters.requestsTimedOut));
    EXPECT_EQ(1u, LinkCounters::Read(counters.checksumErrors));
    EXPECT_EQ(1u, LinkCounters::Read(counters.lateAnswers));
    EXPECT_EQ(4u, LinkCounters::Read(counters.framesSent));
}

TEST_F(Link, LateAnswerDoesNotCompleteTheNextRequest)
{
    module.SetHandler(0x2001, Answer({0x01}));
    module.SetHandler(0x1000, Answer({0x00}));
    module.SetAnswerDelay(400);
    ASSERT_EQ(0, Start());
    EXPECT_EQ(-3, Run(0x2001, {}, nullptr, 100));
    ASSERT_TRUE(WaitForLog("Recv Tag : 2001\n"));  // the answer came after its request had gone
    module.SetAnswerDelay(0);
    // The listener logs the late answer before it looks for a request to give it
    // to; an answer read after it shows that it has been dealt with.
    EXPECT_EQ(0, Run(0x1000, {}));
    module.DropNextAnswers(1);
    EXPECT_EQ(-3, Run(0x2001, {}, nullptr, 300));
    module.SetHandler(0x2001, Answer({0x02}));
    Bytes answer;
    EXPECT_EQ(0, Run(0x2001, {}, &answer));
    EXPECT_EQ(Bytes{0x02}, answer);
    EXPECT_EQ(1u, LinkCounters::Read(manager->Counters().lateAnswers));
}

TEST_F(Link, ConcurrentRequestsAreSerialised)
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

TEST_F(Link, StartRefusesBadNamesAndMissingDevicesAndExecuteNeedsAStartedLink)
{
    SyncCommand cmd;
    cmd.AddTLV(0x1004, 0, nullptr);
    EXPECT_EQ(-1, manager->Execute(&cmd, true));
    EXPECT_EQ(-1, manager->Execute(&cmd, false));
    EXPECT_EQ(-1, manager->Execute(nullptr, true));
    EXPECT_EQ(-1, manager->StopDataTransmit());
    module.SetDefaultHandler(Answer({0}));
    ASSERT_EQ(0, Start());
    std::string empty, tooLong(255, 'x'), longest = "/dev/" + std::string(249, 'y');
    EXPECT_EQ(-4, manager->StartDataTransmit(nullptr));
    EXPECT_EQ(-4, manager->StartDataTransmit(&empty[0]));
    EXPECT_EQ(-4, manager->StartDataTransmit(&tooLong[0]));
    EXPECT_TRUE(WaitForLog("Port Name Too Long : 255\n"));
    EXPECT_EQ(0, Run(0x1004, {}));  // refused names leave the link running
    EXPECT_EQ(-2, manager->StartDataTransmit(&longest[0]));  // 254 characters: only the open fails
    EXPECT_TRUE(WaitForLog("open Return Fail | Errno: 2 No such file or directory\n"));
    EXPECT_NE(std::string::npos, ReadLog().find("Serial Open Fail\n"));
    EXPECT_EQ(-1, Run(0x1004, {}));
    EXPECT_EQ(-1, manager->StopDataTransmit());
}

TEST_F(Link, RegisterRefusesASecondHandlerAndARestartEmptiesTheRegistry)
{
    ASSERT_EQ(0, Start());
    RecordingReport &first = NewReport(0x31), &second = NewReport(0x31), &other = NewReport(0x32);
    EXPECT_EQ(-1, manager->Register(nullptr));
    EXPECT_EQ(0, manager->Register(&first));
    EXPECT_EQ(-9, manager->Register(&second));
    EXPECT_EQ(0, manager->Register(&other));
    EXPECT_EQ(&first, manager->GetCommand(0x31));
    EXPECT_EQ(&other, manager->GetCommand(0x32));
    EXPECT_EQ(nullptr, manager->GetCommand(0x33));
    ASSERT_EQ(0, Start());
    EXPECT_EQ(nullptr, manager->GetCommand(0x31));
    EXPECT_EQ(0, manager->Register(&second));
    module.PushReport(0x31, {8});
    ASSERT_TRUE(second.WaitForReports(1));
    EXPECT_TRUE(first.Values().empty());
}

TEST_F(Link, CallbackThatDisconnectsOrReconnectsTearsDownCleanly)
{
    size_t threads = ThreadCount(), fds = FdCount();
    module.SetDefaultHandler(Answer({0}));
    ASSERT_EQ(0, Start());
    RecordingReport& report = NewReport(0x31);
    report.onReport = [this] { EXPECT_EQ(0, manager->StopDataTransmit()); };
    ASSERT_EQ(0, manager->Register(&report));
    module.PushReport(0x31, {1});
    module.PushReport(0x31, {2});  // must not reach the stopped link, even in the same read
    ASSERT_TRUE(report.WaitForReports(1));
    EXPECT_TRUE(WaitUntil([&] { return ThreadCount() == threads && FdCount() == fds; }));
    EXPECT_EQ(1u, report.Values().size());
    ASSERT_EQ(0, Start());
    std::atomic<bool> reconnected{false};
    report.onReport = [&] {
        if (!reconnected) {
            EXPECT_EQ(0, Start());
            EXPECT_EQ(0, manager->Register(&report));
            reconnected = true;
        }
    };
    ASSERT_EQ(0, manager->Register(&report));
    module.PushReport(0x31, {3});
    // A report sent before the handler is registered again would be dropped.
    ASSERT_TRUE(WaitUntil([&] { return reconnected.load(); }));
    module.PushReport(0x31, {4});
    ASSERT_TRUE(report.WaitForReports(3));
    EXPECT_EQ(0, Run(0x1004, {}));
}

TEST_F(Link, ThousandConnectionsLeaveNoThreadOrDescriptorBehind)
{
    size_t threads = ThreadCount(), fds = FdCount();
    for (int i = 0; i < 1000; ++i) {
        ASSERT_EQ(0, Start()) << "cycle " << i;
        ASSERT_EQ(0, manager->StopDataTransmit());
    }
    EXPECT_EQ(threads, ThreadCount());
    EXPECT_EQ(fds, FdCount());
}
