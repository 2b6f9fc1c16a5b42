// A thousand mixed requests against a module that misbehaves now and then:
// every call returns the code its answer calls for, and writes its one record.
#include <stdlib.h>

#include <iterator>
#include <map>
#include <memory>
#include <mutex>
#include <random>
#include <set>
#include <thread>

#include "DeviceTest.h"
#include "ReportSink.h"

namespace {
// How a well-formed answer of each command is laid out around its status byte.
enum class Shape { Status, SignedStatus, FaceCount, SingleText, Image, IdList };

struct SoakCommand {
    const char* function;
    uint16_t tag;
    Shape shape;
    int (*call)(void* dev);
};

const char kId[] = "alice";
const char kData[] = "data";

// Calls a command that hands out an image, and frees the image.
int WithImage(int (*call)(void* dev, void** image, unsigned int* length), void* dev)
{
    void* image = nullptr;
    unsigned int length = 0;
    int result = call(dev, &image, &length);
    free(image);
    return result;
}

const SoakCommand kCommands[] = {
    {"AddFace", 0x01, Shape::SignedStatus, [](void* d) { return AddFace(d, kId, 5); }},
    {"AddFaceByImage", 0x01, Shape::Status, [](void* d) { return AddFaceByImage(d, kId, 5, kData, 4); }},
    {"AddFaceSlice", 0x07, Shape::Status, [](void* d) { return AddFaceSlice(d, kId, 5, 8, 4, 1, kData, 4); }},
    {"DeleteFace", 0x02, Shape::Status, [](void* d) { return DeleteFace(d, 0, nullptr, 0); }},
    {"QueryFace", 0x03, Shape::Status, [](void* d) { return QueryFace(d, kId, 5, 0); }},
    {"StartOnetoNumRecognize", 0x10, Shape::Status, [](void* d) { return StartOnetoNumRecognize(d, 1, 0); }},
    {"StartOnetoOneRecognize", 0x24, Shape::Status, [](void* d) { return StartOnetoOneRecognize(d, 0, 1, kData, 4); }},
    {"ResumeRecognize", 0x14, Shape::Status, ResumeRecognize},
    {"PauseRecognize", 0x15, Shape::Status, PauseRecognize},
    {"QueryRecognize", 0x16, Shape::Status, QueryRecognize},
    {"GetDeviceFaceLibraryNum", 0x35, Shape::FaceCount,
     [](void* d) {
         unsigned int count = 0;
         return GetDeviceFaceLibraryNum(d, &count);
     }},
    {"GetSingleRecognize", 0x25, Shape::SingleText,
     [](void* d) {
         char text[8];
         return GetSingleRecognize(d, text, sizeof text);
     }},
    {"AddFaceReturnImage", 0x01, Shape::Image,
     [](void* d) {
         return WithImage([](void* d, void** i, unsigned int* n) { return AddFaceReturnImage(d, kId, 5, i, n); }, d);
     }},
    {"StaticFaceCompare", 0x04, Shape::Image, [](void* d) { return WithImage(StaticFaceCompare, d); }},
    {"GetDeviceFaceID", 0x08, Shape::IdList,
     [](void* d) {
         char list[8];
         return GetDeviceFaceID(d, list, sizeof list);
     }},
};
const size_t kQueryRecognize = 9;

// The answer of one step and what the module does around it.
struct Plan {
    std::mutex lock;
    sim::Bytes answer;
    bool malformed = false;         // a record that claims more than the frame holds
    bool corruptCopyFirst = false;  // a copy with a bad checksum goes out first
    int reportBefore = 0;           // a report of this tag goes out first (0: none)
};

// A well-formed answer carrying `status`, and the result it must give.
sim::Bytes WellFormed(Shape shape, uint8_t status, int* result)
{
    switch (shape) {
    case Shape::Status:
        *result = status;
        return {status};
    case Shape::SignedStatus:
        *result = static_cast<signed char>(status);
        return {status};
    case Shape::FaceCount:
        *result = static_cast<signed char>(status);
        return Cat({{status}, Le32(3)});
    case Shape::SingleText:
        *result = 0;
        return Cat({Le32(4), BytesOf("abcd")});
    case Shape::Image:
        *result = status;
        return Cat({{status}, Le32(3), BytesOf("img")});
    case Shape::IdList:
        *result = status;
        return Cat({{status, 0x01}, Le32(0), BytesOf("ids")});
    }
    return {};
}

// An answer one byte off the lengths the command accepts.
sim::Bytes WrongLength(Shape shape)
{
    switch (shape) {
    case Shape::Status:
    case Shape::SignedStatus:
        return {0x00, 0x00};
    case Shape::FaceCount:
        return {0x00, 0x01, 0x00, 0x00};
    case Shape::SingleText:
        return {0x04, 0x00, 0x00};
    case Shape::Image:
        return {};
    case Shape::IdList:
        return Cat({{0x00, 0x01}, Le32(0)});
    }
    return {};
}
}  // namespace

class Soak : public DeviceTest {
protected:
    void SetUp() override
    {
        DeviceTest::SetUp();
        ReportSink::Reset(&sim);
        RegisterTrackReportCb(dev, ReportSink::Track);
        RegisterRecoReportCb(dev, ReportSink::Reco);
        RegisterQRCodeReportCb(dev, ReportSink::QRCode);
        RegisterImageReportCb(dev, ReportSink::Image);
        RegisterFeatureReportCb(dev, ReportSink::Feature);
        sim::ModuleSimulator* module = &sim;
        std::shared_ptr<Plan> plan = m_plan;
        sim.SetDefaultHandler([module, plan](const sim::Request& request) -> std::optional<sim::Bytes> {
            if (request.tag == 0x33)
                return std::nullopt;  // an image acknowledgement is not answered
            std::lock_guard<std::mutex> guard(plan->lock);
            if (plan->reportBefore)
                module->PushReport(static_cast<uint16_t>(plan->reportBefore), BytesOf("report"));
            if (plan->malformed) {
                module->PushFrame({static_cast<uint8_t>(request.tag), static_cast<uint8_t>(request.tag >> 8), 200, 0,
                                   0, 0, 1});
                return std::nullopt;
            }
            if (plan->corruptCopyFirst) {
                module->CorruptNextChecksums(1);
                module->PushFrame(sim::ModuleSimulator::EncodeTLV(request.tag, plan->answer));
            }
            return plan->answer;
        });
    }
    void TearDown() override
    {
        DeviceTest::TearDown();
        ReportSink::Reset(nullptr);
    }

    std::shared_ptr<Plan> m_plan = std::make_shared<Plan>();
};

TEST_F(Soak, AThousandMixedRequestsUnderFaultsReturnTheirCodes)
{
    std::mt19937 random(20261121);
    std::map<std::string, size_t> calls;
    size_t reports = 0, imageReports = 0;
    bool recovering = false;
    int recoverySteps = 0;
    for (int step = 0; step < 1000; ++step) {
        // Three steps lose their answer on the way: dropped, a bad checksum, garbage before it.
        bool lost = step == 250 || step == 500 || step == 750;
        const SoakCommand& command = kCommands[lost ? kQueryRecognize : random() % std::size(kCommands)];
        int expected = 0;
        unsigned kind = random() % 20;
        {
            std::lock_guard<std::mutex> guard(m_plan->lock);
            m_plan->answer = WellFormed(command.shape, static_cast<uint8_t>(random()), &expected);
            m_plan->malformed = !lost && kind == 0;
            if (!lost && (kind == 1 || kind == 2)) {
                m_plan->answer = WrongLength(command.shape);
                expected = -8;
            }
            if (m_plan->malformed)
                expected = -7;
            m_plan->corruptCopyFirst = !lost && kind >= 3 && kind < 5;
            m_plan->reportBefore = !lost && kind >= 5 && kind < 7 ? 0x30 + static_cast<int>(random() % 5) : 0;
            reports += m_plan->reportBefore != 0;
            imageReports += m_plan->reportBefore == 0x33;
        }
        sim.SetSplitWrites(random() % 3 == 0 && !lost ? 1 + random() % 7 : 0);
        std::set<int> accepted = {expected};
        if (recovering)
            accepted.insert(-6);
        if (step == 250) {
            sim.DropNextAnswers(1);
            accepted = {-6};
        } else if (step == 500) {
            sim.CorruptNextChecksums(1);
            accepted = {-6};
        } else if (step == 750) {
            // Garbage read together with the answer throws the answer away too.
            sim.SetGarbageBeforeNext({0x00, 0x55, 0x13});
            accepted.insert(-6);
        }
        int result = command.call(dev);
        ++calls[command.function];
        // Fewer than ten bytes left over from garbage are kept, and spoil the
        // next frame read behind them; the link is itself again once one passes.
        if (step == 750 || recovering) {
            recovering = result == -6;
            recoverySteps += recovering;
        }
        EXPECT_EQ(1u, accepted.count(result)) << "step " << step << ": " << command.function << " returned " << result
                                              << ", expected " << expected;
    }
    sim.SetSplitWrites(0);
    EXPECT_GE(2, recoverySteps) << "requests lost after the garbage";
    EXPECT_LE(1000u, sim.Requests().size()) << "requests the module received";
    EXPECT_TRUE(ReportSink::WaitFor(reports)) << ReportSink::Received().size() << " of " << reports << " reports";
    // One record per call; DeleteFace's exported function adds its own.
    std::map<std::string, size_t> records;
    for (const TraceEntry& entry : TraceLog::Read())
        ++records[entry.function];
    for (const auto& count : calls) {
        size_t perCall = count.first == "DeleteFace" ? 2 : 1;
        EXPECT_EQ(count.second * perCall, records[count.first]) << count.first;
    }
    // Every image report was acknowledged once.
    {
        std::lock_guard<std::mutex> guard(m_plan->lock);
        m_plan->answer = {0x00};
        m_plan->reportBefore = 0;
        m_plan->malformed = m_plan->corruptCopyFirst = false;
    }
    EXPECT_EQ(0, QueryRecognize(dev));
    EXPECT_EQ(imageReports, RequestCount(0x33));
}

TEST_F(Soak, TwoThreadsOnOneHandleEachGetTheirOwnAnswers)
{
    // Each answer comes with a report pushed just before it.
    sim::ModuleSimulator* module = &sim;
    sim.SetDefaultHandler([module](const sim::Request& request) -> std::optional<sim::Bytes> {
        if (request.tag == 0x33)
            return std::nullopt;
        module->PushReport(0x30, BytesOf("track"));
        return sim::Bytes{static_cast<uint8_t>(request.tag == 0x16 ? 0x11 : 0x22)};
    });
    const int kEach = 200;
    int queryWrong = 0, pauseWrong = 0;
    std::thread query([&] {
        for (int i = 0; i < kEach; ++i)
            queryWrong += QueryRecognize(dev) != 0x11;
    });
    std::thread pause([&] {
        for (int i = 0; i < kEach; ++i)
            pauseWrong += PauseRecognize(dev) != 0x22;
    });
    query.join();
    pause.join();
    EXPECT_EQ(0, queryWrong);
    EXPECT_EQ(0, pauseWrong);
    EXPECT_TRUE(ReportSink::WaitFor(2 * kEach));
    EXPECT_EQ(size_t(kEach), TraceLog::Of("QueryRecognize").size());
    EXPECT_EQ(size_t(kEach), TraceLog::Of("PauseRecognize").size());
}
