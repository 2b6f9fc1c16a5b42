// A thousand mixed requests against a module that misbehaves now and then:
// every call returns the code its answer calls for, and writes its one record.
#include <algorithm>
#include <map>
#include <memory>
#include <mutex>
#include <random>
#include <set>
#include <thread>

#include "DeviceTest.h"
#include "ReportSink.h"

namespace {
// How a well-formed answer of a command lays out: [status] + tail, giving the
// status (signed or not) or 0 without one; `wrong` is one byte off the lengths it accepts.
struct Shape {
    bool status, isSigned;
    sim::Bytes tail, wrong;
};

Shape ShapeOf(const Command& command)
{
    const std::string name = command.function;
    if (command.output.empty())
        return {true, name == "AddFace", {}, {0, 0}};
    if (name == "GetDeviceFaceLibraryNum")
        return {true, true, {3, 0, 0, 0}, {0, 1, 0, 0}};
    if (name == "GetSingleRecognize")
        return {false, false, {4, 0, 0, 0, 'a', 'b', 'c', 'd'}, {4, 0, 0}};
    if (name == "GetDeviceFaceID")
        return {true, false, {1, 0, 0, 0, 0, 'i', 'd', 's'}, {0, 1, 0, 0, 0, 0}};
    return {true, false, {3, 0, 0, 0, 'i', 'm', 'g'}, {}};  // an image
}

// The answer of one step and what the module does around it.
struct Plan {
    std::mutex lock;
    sim::Bytes answer;
    bool malformed = false;         // a record that claims more than the frame holds
    bool corruptCopyFirst = false;  // a copy with a bad checksum goes out first
    int reportBefore = 0;           // a report of this tag goes out first (0: none)
};
}  // namespace

using Soak = ReportingDevice;

TEST_F(Soak, AThousandMixedRequestsUnderFaultsReturnTheirCodes)
{
    ReportSink::RegisterAll(dev);
    auto plan = std::make_shared<Plan>();
    sim::ModuleSimulator* module = &sim;
    sim.SetDefaultHandler([module, plan](const sim::Request& request) -> std::optional<sim::Bytes> {
        if (request.tag == 0x33)
            return std::nullopt;  // an image acknowledgement is not answered
        std::lock_guard<std::mutex> guard(plan->lock);
        if (plan->reportBefore)
            module->PushReport(static_cast<uint16_t>(plan->reportBefore), BytesOf("report"));
        if (plan->malformed) {
            module->PushFrame({static_cast<uint8_t>(request.tag), static_cast<uint8_t>(request.tag >> 8), 200, 0, 0, 0,
                               1});
            return std::nullopt;
        }
        if (plan->corruptCopyFirst) {
            module->CorruptNextChecksums(1);
            module->PushFrame(sim::ModuleSimulator::EncodeTLV(request.tag, plan->answer));
        }
        return plan->answer;
    });
    auto query = std::find_if(Commands().begin(), Commands().end(),
                              [](const Command& c) { return std::string(c.function) == "QueryRecognize"; });
    ASSERT_NE(Commands().end(), query);
    std::mt19937 random(20261121);
    std::map<std::string, size_t> calls;
    size_t reports = 0, imageReports = 0;
    bool recovering = false;
    int recoverySteps = 0;
    for (int step = 0; step < 1000; ++step) {
        // Three steps lose their answer on the way: dropped, a bad checksum, garbage before it.
        bool lost = step == 250 || step == 500 || step == 750;
        const Command& command = lost ? *query : Commands()[random() % Commands().size()];
        Shape shape = ShapeOf(command);
        uint8_t status = static_cast<uint8_t>(random());
        int expected = !shape.status ? 0 : shape.isSigned ? static_cast<signed char>(status) : status;
        unsigned kind = random() % 20;
        {
            std::lock_guard<std::mutex> guard(plan->lock);
            plan->answer = shape.status ? Cat({{status}, shape.tail}) : shape.tail;
            plan->malformed = !lost && kind == 0;
            if (!lost && (kind == 1 || kind == 2)) {
                plan->answer = shape.wrong;
                expected = -8;
            }
            if (plan->malformed)
                expected = -7;
            plan->corruptCopyFirst = !lost && kind >= 3 && kind < 5;
            plan->reportBefore = !lost && kind >= 5 && kind < 7 ? 0x30 + static_cast<int>(random() % 5) : 0;
            reports += plan->reportBefore != 0;
            imageReports += plan->reportBefore == 0x33;
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
    for (const auto& count : calls)
        EXPECT_EQ(count.second * (count.first == "DeleteFace" ? 2 : 1), records[count.first]) << count.first;
    // Every image report was acknowledged once.
    {
        std::lock_guard<std::mutex> guard(plan->lock);
        plan->answer = {0x00};
        plan->reportBefore = 0;
        plan->malformed = plan->corruptCopyFirst = false;
    }
    EXPECT_EQ(0, QueryRecognize(dev));
    EXPECT_EQ(imageReports, RequestCount(0x33));
}

TEST_F(Soak, TwoThreadsOnOneHandleEachGetTheirOwnAnswers)
{
    ReportSink::RegisterAll(dev);
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
    for (int i = 0; i < kEach; ++i)
        pauseWrong += PauseRecognize(dev) != 0x22;
    query.join();
    EXPECT_EQ(0, queryWrong);
    EXPECT_EQ(0, pauseWrong);
    EXPECT_TRUE(ReportSink::WaitFor(2 * kEach));
    EXPECT_EQ(size_t(kEach), TraceLog::Of("QueryRecognize").size());
    EXPECT_EQ(size_t(kEach), TraceLog::Of("PauseRecognize").size());
}
