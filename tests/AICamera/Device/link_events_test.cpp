// What applications watch beyond the module's commands: link-state events,
// the link's counters, report callbacks with a context pointer.
#include <pthread.h>

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <thread>

#include "DeviceTest.h"
#include "ai_camera_ext.h"

namespace {
const uint16_t kReco = 0x31, kImage = 0x33, kQueryRecognize = 0x16;

// Everything a callback was told, with the thread it ran on.
struct Journal {
    std::mutex lock;
    std::condition_variable changed;
    std::vector<int> states;
    std::vector<pthread_t> threads;
    std::vector<std::string> reports;
    std::vector<void*> users;

    bool WaitFor(size_t states_, size_t reports_)
    {
        std::unique_lock<std::mutex> guard(lock);
        return changed.wait_for(guard, std::chrono::seconds(5),
                                [&] { return states.size() >= states_ && reports.size() >= reports_; });
    }
};

void OnLinkState(int state, void* user)
{
    Journal* journal = static_cast<Journal*>(user);
    std::lock_guard<std::mutex> guard(journal->lock);
    journal->states.push_back(state);
    journal->threads.push_back(pthread_self());
    journal->changed.notify_all();
}

void OnReport(char* data, int len, void* user)
{
    Journal* journal = static_cast<Journal*>(user);
    std::lock_guard<std::mutex> guard(journal->lock);
    journal->reports.emplace_back(data, static_cast<size_t>(len));
    journal->users.push_back(user);
    journal->changed.notify_all();
}

int g_plainCalls = 0;
void PlainReport(char*, int) { ++g_plainCalls; }

AI_CAMERA_LINK_STATS Stats(void* dev)
{
    AI_CAMERA_LINK_STATS stats;
    memset(&stats, 0xFF, sizeof stats);
    EXPECT_EQ(0, GetLinkStats(dev, &stats));
    return stats;
}

// Marker, length and checksum around one record: tag (2 bytes), length (4), value.
size_t FrameSize(size_t valueLength) { return 9 + 6 + valueLength; }
}  // namespace

class LinkWatch : public DeviceTest {
protected:
    void Reconnect()
    {
        ASSERT_EQ(0, DisconnectSerial(dev));
        ASSERT_EQ(0, ConnectSerial(dev, sim.SlavePath().c_str()));
    }
    Journal journal;
};

TEST_F(LinkWatch, UpLostAndClosedComeOnceEachInOrderWithTheirUserPointer)
{
    ASSERT_EQ(0, DisconnectSerial(dev));
    ASSERT_EQ(0, RegisterLinkStateCb(dev, OnLinkState, &journal));
    EXPECT_EQ(Body(" handler_func : " + Ptr(reinterpret_cast<void*>(&OnLinkState)) + " user : " + Ptr(&journal), "",
                   0),
              LastRecord("RegisterLinkStateCb"));
    ASSERT_EQ(0, ConnectSerial(dev, sim.SlavePath().c_str()));
    ASSERT_TRUE(journal.WaitFor(1, 0));
    sim.Unplug();
    ASSERT_TRUE(journal.WaitFor(2, 0));
    Answer(kQueryRecognize, {0x00});
    auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(-6, QueryRecognize(dev));
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(2)) << "a lost link fails at once";
    ASSERT_EQ(0, DisconnectSerial(dev));
    ASSERT_EQ(-1, DisconnectSerial(dev));
    std::lock_guard<std::mutex> guard(journal.lock);
    EXPECT_EQ(std::vector<int>({AI_CAMERA_LINK_UP, AI_CAMERA_LINK_LOST, AI_CAMERA_LINK_CLOSED}), journal.states);
    ASSERT_EQ(3u, journal.threads.size());
    EXPECT_FALSE(pthread_equal(pthread_self(), journal.threads[0])) << "UP comes on the listener thread";
    EXPECT_TRUE(pthread_equal(journal.threads[0], journal.threads[1])) << "LOST too";
    EXPECT_TRUE(pthread_equal(pthread_self(), journal.threads[2])) << "CLOSED on the thread that closed";
}

TEST_F(LinkWatch, AReplacedLinkClosesBeforeTheNewOneComesUpAndDeInitClosesTheLast)
{
    ASSERT_EQ(0, DisconnectSerial(dev));
    ASSERT_EQ(0, RegisterLinkStateCb(dev, OnLinkState, &journal));
    ASSERT_EQ(0, ConnectSerial(dev, sim.SlavePath().c_str()));
    ASSERT_EQ(0, ConnectSerial(dev, sim.SlavePath().c_str()));  // replaces the first
    ASSERT_TRUE(journal.WaitFor(3, 0));
    ASSERT_EQ(0, DeInit(dev));
    dev = nullptr;
    std::lock_guard<std::mutex> guard(journal.lock);
    EXPECT_EQ(std::vector<int>({AI_CAMERA_LINK_UP, AI_CAMERA_LINK_CLOSED, AI_CAMERA_LINK_UP, AI_CAMERA_LINK_CLOSED}),
              journal.states);
}

TEST_F(LinkWatch, ReportCallbacksWithAUserPointerShareTheSlotWithThePlainOnes)
{
    ASSERT_EQ(0, RegisterRecoReportCbEx(dev, OnReport, &journal));
    EXPECT_EQ(Body(" handler_func : " + Ptr(reinterpret_cast<void*>(&OnReport)) + " user : " + Ptr(&journal), "", 0),
              LastRecord("RegisterRecoReportCbEx"));
    sim.PushReport(kReco, BytesOf("first"));
    ASSERT_TRUE(journal.WaitFor(0, 1));
    g_plainCalls = 0;
    RegisterRecoReportCb(dev, PlainReport);  // replaces the form with a user pointer
    sim.PushReport(kReco, BytesOf("second"));
    Answer(kQueryRecognize, {0x00});
    ASSERT_EQ(0, QueryRecognize(dev));  // the report, sent before the answer, has been handled
    EXPECT_EQ(1, g_plainCalls);
    ASSERT_EQ(0, RegisterRecoReportCbEx(dev, OnReport, &journal));  // and back
    sim.PushReport(kReco, BytesOf("third"));
    ASSERT_TRUE(journal.WaitFor(0, 2));
    EXPECT_EQ(1, g_plainCalls);
    {
        std::lock_guard<std::mutex> guard(journal.lock);
        EXPECT_EQ(std::vector<std::string>({"first", "third"}), journal.reports);
        EXPECT_EQ(std::vector<void*>({&journal, &journal}), journal.users);
    }
    EXPECT_EQ(-1, RegisterTrackReportCbEx(nullptr, OnReport, &journal));
    EXPECT_EQ(-1, RegisterLinkStateCb(nullptr, OnLinkState, &journal));
    EXPECT_EQ("[ERROR] dev == nullptr\n[INPUT ] invalid input\n[OUTPUT]\n[RETURN] nRet : -1\n",
              LastRecord("RegisterTrackReportCbEx"));
}

TEST_F(LinkWatch, CountersMatchWhatWasSentReceivedCorruptedAndDropped)
{
    ASSERT_EQ(0, RegisterRecoReportCbEx(dev, OnReport, &journal));
    ASSERT_EQ(0, RegisterImageReportCbEx(dev, OnReport, &journal));
    Reconnect();  // counters start again with the link
    AI_CAMERA_LINK_STATS fresh = Stats(dev);
    EXPECT_EQ(0u, fresh.framesSent + fresh.bytesReceived + fresh.reports[AI_CAMERA_REPORT_RECO]);

    Answer(kQueryRecognize, {0x00});
    for (int i = 0; i < 3; ++i)
        ASSERT_EQ(0, QueryRecognize(dev));
    sim.PushReport(kReco, BytesOf("seen"));
    sim.CorruptNextChecksums(1);
    sim.PushReport(kReco, BytesOf("corrupt"));
    sim.PushReport(kImage, {0xFF, 0xD8, 0xFF, 0xD9});
    sim.PushReport(kQueryRecognize, {0x00});  // an answer nobody waits for
    ASSERT_TRUE(journal.WaitFor(0, 2));
    ASSERT_EQ(0, QueryRecognize(dev));  // everything above has been read by now
    // Garbage is dropped with whatever came with it, so the next request waits until it has gone.
    sim.PushRaw(BytesOf("garbage before a frame"));
    for (int waited = 0; Stats(dev).resyncs == 0 && waited < 5000; waited += 10)
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    ASSERT_EQ(0, QueryRecognize(dev));
    size_t acknowledgements = RequestCount(kImage);

    AI_CAMERA_LINK_STATS stats = Stats(dev);
    EXPECT_EQ(5u + acknowledgements, stats.framesSent);
    EXPECT_EQ(5 * FrameSize(1) + acknowledgements * FrameSize(0), stats.bytesSent);
    EXPECT_EQ(1u, acknowledgements);
    EXPECT_EQ(1u, stats.imageAcks);
    EXPECT_EQ(1u, stats.checksumErrors);
    EXPECT_EQ(1u, stats.lateAnswers);
    EXPECT_EQ(1u, stats.reports[AI_CAMERA_REPORT_RECO]);
    EXPECT_EQ(1u, stats.reports[AI_CAMERA_REPORT_IMAGE]);
    EXPECT_EQ(0u, stats.reports[AI_CAMERA_REPORT_TRACK] + stats.reports[AI_CAMERA_REPORT_QRCODE]);
    EXPECT_EQ(0u, stats.requestsTimedOut);
    EXPECT_EQ(1u, stats.resyncs);
    const size_t before = 4 * FrameSize(1) + FrameSize(4) + FrameSize(7) + FrameSize(4) + FrameSize(1);
    EXPECT_EQ(before + BytesOf("garbage before a frame").size() + FrameSize(1), stats.bytesReceived);
    EXPECT_EQ(9u, stats.framesReceived);

    EXPECT_EQ(-4, GetLinkStats(dev, nullptr));
    EXPECT_EQ(-1, GetLinkStats(nullptr, &stats));
}
