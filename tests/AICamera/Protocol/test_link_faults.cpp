// The link under faults, through the real serial code against the simulator:
// a stop from a report callback, acknowledgements sent while a large request
// goes out, answers arriving while a request is written, hang-ups and corrupt headers.
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <thread>
#include <vector>

#include "ProtoFixture.h"
#include "TimedCall.h"

namespace {
using Clock = std::chrono::steady_clock;

Bytes Pattern(size_t size)
{
    Bytes bytes(size);
    for (size_t i = 0; i < size; ++i)
        bytes[i] = static_cast<unsigned char>(i * 131 + (i >> 9));
    return bytes;
}
}  // namespace

using LinkFaults = LinkTest;

// A stop from an application thread is tested through DisconnectSerial and DeInit.
TEST_F(LinkFaults, StopFromAReportCallbackFailsTheWaitingRequestAtOnce)
{
    module.SetDefaultHandler(Answer({0x00}));
    module.DropNextAnswers(1);
    size_t threads = ThreadCount(), fds = FdCount();  // with no link
    ASSERT_EQ(0, Start());
    RecordingReport& report = NewReport(0x31);
    std::atomic<int> stopped{1000};
    report.onReport = [&] { stopped = manager->StopDataTransmit(); };
    ASSERT_EQ(0, manager->Register(&report));
    TimedCall inFlight([this] { return Run(0x1005, {}, nullptr, 10000); });
    ASSERT_TRUE(module.WaitForRequests(1, 5000));
    module.PushReport(0x31, {1});
    inFlight.Join();
    ASSERT_TRUE(WaitUntil([&] { return stopped.load() != 1000; }));  // the stop returns after failing the request
    EXPECT_EQ(0, stopped.load());
    EXPECT_NE(0, inFlight.result.load());
    EXPECT_LT(inFlight.ms.load(), 1500);
    // The thread of the stopped link goes once the callback has returned.
    EXPECT_TRUE(WaitUntil([&] { return ThreadCount() == threads && FdCount() == fds; }))
        << "threads " << ThreadCount() << " of " << threads << ", fds " << FdCount() << " of " << fds;
    ASSERT_EQ(0, Start());
    EXPECT_EQ(0, Run(0x1006, {}));
}

TEST_F(LinkFaults, AcknowledgementsNeverLandInsideALargeRequest)
{
    const Bytes big = Pattern(300 * 1024);
    module.SetHandler(0x01, [](const sim::Request& r) { return std::optional<Bytes>(Bytes{uint8_t(r.value.size() >> 16)}); });
    ASSERT_EQ(0, Start());
    RecordingReport& images = NewReport(0x33);
    images.onReport = [this] {
        SyncCommand ack;
        ack.AddTLV(0x33, 0, nullptr);
        manager->Execute(&ack, false);
    };
    ASSERT_EQ(0, manager->Register(&images));
    module.SetReadPacing(2000);  // the request takes about 150 ms to go out, while the reports come in
    std::thread reports([this] {
        for (int i = 0; i < 40; ++i) {
            module.PushReport(0x33, Bytes(64, uint8_t(i)));
            std::this_thread::sleep_for(std::chrono::milliseconds(3));
        }
    });
    Bytes answer;
    EXPECT_EQ(0, Run(0x01, big, &answer, 15000));
    reports.join();
    ASSERT_TRUE(images.WaitForReports(40));
    ASSERT_TRUE(module.WaitForRequests(41, 5000));
    EXPECT_EQ(0u, module.BadFrames());
    size_t acks = 0, large = 0;
    for (const sim::Request& r : module.Requests()) {
        acks += r.tag == 0x33;
        large += r.tag == 0x01 && r.value == big;
    }
    EXPECT_EQ(40u, acks);
    EXPECT_EQ(1u, large);
}

TEST_F(LinkFaults, AnswersArrivingWhileARequestIsWrittenNeverChangeWhatGoesOut)
{
    const Bytes request = Pattern(4 << 20);
    module.SetHandler(0x2001, Answer({0x00}));
    ASSERT_EQ(0, Start());
    std::atomic<bool> sending{true};
    std::thread noise([&] {
        while (sending) {
            module.PushReport(0x2001, Bytes(32, 0x77));  // same tag as the request: taken as its answer
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
    });
    Run(0x2001, request, nullptr, 10000);
    ASSERT_TRUE(module.WaitForRequests(1, 10000));
    sending = false;
    noise.join();
    EXPECT_EQ(0u, module.BadFrames());
    ASSERT_EQ(1u, module.Requests().size());
    EXPECT_TRUE(module.Requests()[0].value == request) << "the request went out changed";
}

TEST_F(LinkFaults, AHugeLengthFromOneCorruptByteDoesNotWedgeTheLink)
{
    module.SetDefaultHandler(Answer({0x00}));
    ASSERT_EQ(0, Start());
    module.PushRaw({0xA1, 0x7F, 0xFF, 0xFF, 0xFF, 0x31, 0x00, 0x01, 0x00, 0x00, 0x00, 0x05});
    // An answer read together with the broken header goes with it; the next ones come through.
    int first = Run(0x1004, {}, nullptr, 500);
    EXPECT_TRUE(first == 0 || first == -3);
    for (int i = 0; i < 3; ++i)
        EXPECT_EQ(0, Run(0x1004, {})) << "request " << i;
}

TEST_F(LinkFaults, SteadyFaultsCostSingleRequestsNeverTheLink)
{
    module.SetDefaultHandler([](const sim::Request& r) { return std::optional<Bytes>(r.value); });
    module.SetFaultRates(sim::FaultRates::Uniform(50000, 300, 7));
    ASSERT_EQ(0, Start());
    int answered = 0, failed = 0;
    for (int i = 0; i < 150; ++i) {
        Bytes value = {uint8_t(i), uint8_t(i >> 8)}, answer;
        Clock::time_point start = Clock::now();
        int result = Run(0x3000 + (i % 16), value, &answer, 200);
        EXPECT_LT(MsSince(start), 200 + 1000) << "request " << i;
        if (result == 0)
            ++answered;
        else
            ++failed;
    }
    EXPECT_GT(answered, 100);
    EXPECT_GT(failed, 0);
    module.SetFaultRates(sim::FaultRates());
    // Once the line is clean (late answers may still be on their way), every request is answered again.
    int inARow = 0;
    for (int i = 0; i < 100 && inARow < 20; ++i) {
        Bytes value = {uint8_t(i), 0xEE}, answer;
        inARow = Run(0x3100, value, &answer, 1000) == 0 && answer == value ? inARow + 1 : 0;
    }
    EXPECT_EQ(20, inARow);
}

namespace {
// The link events heard, and what to do on each.
struct EventRecorder : LinkObserver {
    void OnLinkEvent(int event) override
    {
        {
            std::lock_guard<std::mutex> guard(lock);
            events.push_back(event);
        }
        changed.notify_all();
        if (then)
            then(event);
    }
    bool WaitFor(size_t count)
    {
        std::unique_lock<std::mutex> guard(lock);
        return changed.wait_for(guard, std::chrono::seconds(5), [&] { return events.size() >= count; });
    }
    std::mutex lock;
    std::condition_variable changed;
    std::vector<int> events;
    std::function<void(int)> then;
};
}  // namespace

TEST_F(LinkFaults, AnObserverHearsTheLossAndConnectsAgainFromInsideTheEvent)
{
    module.SetDefaultHandler(Answer({0x00}));
    module.UnplugOnRequest(0x1004);
    EventRecorder recorder;
    std::string newPath;
    recorder.then = [&](int event) {
        if (event != LINK_EVENT_LOST)
            return;
        // The module comes back on a new port, and the application connects again at once.
        ASSERT_TRUE(module.Start());
        module.SetDefaultHandler(Answer({0x00}));
        newPath = module.SlavePath();
        EXPECT_EQ(0, manager->StartDataTransmit(&newPath[0], &recorder));
    };
    std::string path = module.SlavePath();
    ASSERT_EQ(0, manager->StartDataTransmit(&path[0], &recorder));
    ASSERT_TRUE(recorder.WaitFor(1));
    Clock::time_point start = Clock::now();
    EXPECT_NE(0, Run(0x1004, {}, nullptr, 10000));
    EXPECT_LT(MsSince(start), 2000) << "a hang-up fails the request in flight at once";
    ASSERT_TRUE(recorder.WaitFor(4));
    EXPECT_EQ(0, Run(0x1003, {}));
    recorder.then = nullptr;
    EXPECT_EQ(0, manager->StopDataTransmit());
    std::lock_guard<std::mutex> guard(recorder.lock);
    EXPECT_EQ(std::vector<int>({LINK_EVENT_UP, LINK_EVENT_LOST, LINK_EVENT_CLOSED, LINK_EVENT_UP, LINK_EVENT_CLOSED}),
              recorder.events);
}
