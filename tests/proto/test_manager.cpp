// Starting and stopping transmission, and the report registry.
#include <atomic>
#include <string>

#include "ProtoFixture.h"

class Manager : public LinkTest {};

TEST_F(Manager, ExecuteBeforeStartFails)
{
    SyncCommand cmd;
    cmd.AddTLV(0x1004, 0, nullptr);
    EXPECT_EQ(-1, manager->Execute(&cmd, true));
    EXPECT_EQ(-1, manager->Execute(&cmd, false));
    EXPECT_EQ(-1, manager->Execute(nullptr, true));
    EXPECT_EQ(-1, manager->StopDataTransmit());
}

TEST_F(Manager, BadNamesAreRefusedWithoutStoppingARunningLink)
{
    module.SetDefaultHandler([](const sim::Request&) { return std::optional<Bytes>(Bytes{0}); });
    ASSERT_EQ(0, Start());
    char emptyName[] = "";
    EXPECT_EQ(-4, manager->StartDataTransmit(nullptr));
    EXPECT_EQ(-4, manager->StartDataTransmit(emptyName));
    std::string longName(255, 'x');
    EXPECT_EQ(-4, manager->StartDataTransmit(&longName[0]));
    EXPECT_TRUE(WaitForLog("Port Name Too Long : 255\n"));
    std::string almost = "/dev/" + std::string(249, 'y');  // 254 characters: only the open fails
    EXPECT_EQ(-2, manager->StartDataTransmit(&almost[0]));
    EXPECT_EQ(0, Start());
    EXPECT_EQ(0, Run(0x1004, {}));
}

TEST_F(Manager, MissingDeviceLeavesTransmissionStopped)
{
    ASSERT_EQ(0, Start());
    char missing[] = "/dev/ttyACM_not_here";
    EXPECT_EQ(-2, manager->StartDataTransmit(missing));
    EXPECT_TRUE(WaitForLog("open Return Fail | Errno: 2 No such file or directory\n"));
    EXPECT_NE(std::string::npos, ReadLog().find("Serial Open Fail\n"));
    EXPECT_EQ(-1, Run(0x1004, {}));
    EXPECT_EQ(-1, manager->StopDataTransmit());
}

TEST_F(Manager, RestartEmptiesTheRegistry)
{
    ASSERT_EQ(0, Start());
    RecordingReport& first = NewReport(0x31);
    RecordingReport& second = NewReport(0x31);
    RecordingReport& other = NewReport(0x32);
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

TEST_F(Manager, CallbackThatDisconnectsTearsDownCleanly)
{
    size_t threads = ThreadCount();
    size_t fds = FdCount();
    ASSERT_EQ(0, Start());
    RecordingReport& report = NewReport(0x31);
    report.onReport = [this] { EXPECT_EQ(0, manager->StopDataTransmit()); };
    ASSERT_EQ(0, manager->Register(&report));
    module.PushReport(0x31, {1});
    // A second frame in the same read must not reach the stopped link.
    module.PushReport(0x31, {2});
    ASSERT_TRUE(report.WaitForReports(1));
    EXPECT_TRUE(WaitUntil([&] { return ThreadCount() == threads && FdCount() == fds; }));
    EXPECT_EQ(1u, report.Values().size());
    module.SetDefaultHandler([](const sim::Request&) { return std::optional<Bytes>(Bytes{0}); });
    ASSERT_EQ(0, Start());
    EXPECT_EQ(0, Run(0x1004, {}));
}

TEST_F(Manager, CallbackThatReconnectsKeepsWorking)
{
    ASSERT_EQ(0, Start());
    RecordingReport& report = NewReport(0x31);
    std::string path = module.SlavePath();
    std::atomic<int> calls{0};
    std::atomic<bool> reconnected{false};
    report.onReport = [&] {
        if (calls++ == 0) {
            EXPECT_EQ(0, manager->StartDataTransmit(&path[0]));
            EXPECT_EQ(0, manager->Register(&report));
            reconnected = true;
        }
    };
    ASSERT_EQ(0, manager->Register(&report));
    module.PushReport(0x31, {1});
    // A report sent before the handler is registered again would be dropped.
    ASSERT_TRUE(WaitUntil([&] { return reconnected.load(); }));
    module.PushReport(0x31, {2});
    ASSERT_TRUE(report.WaitForReports(2));
    module.SetDefaultHandler([](const sim::Request&) { return std::optional<Bytes>(Bytes{0}); });
    EXPECT_EQ(0, Run(0x1004, {}));
}

TEST_F(Manager, ThousandConnectionsLeaveNoThreadOrDescriptorBehind)
{
    size_t threads = ThreadCount();
    size_t fds = FdCount();
    for (int i = 0; i < 1000; ++i) {
        ASSERT_EQ(0, Start()) << "cycle " << i;
        ASSERT_EQ(0, manager->StopDataTransmit());
    }
    EXPECT_EQ(threads, ThreadCount());
    EXPECT_EQ(fds, FdCount());
}
