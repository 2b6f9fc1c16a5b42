// The firmware upgrade in one call, against the module's firmware store: slices
// sent again after failures, giving up, cancelling, the module's refusal with its
// text, and the argument checks of both forms.
#include <string.h>

#include <map>
#include <memory>
#include <mutex>
#include <random>

#include "DeviceTest.h"
#include "ModuleModel.h"
#include "ai_camera_ext.h"

namespace {
const uint16_t kSliceTag = 0x0020;
const uint16_t kApplyTag = 0x0021;
const unsigned int kSliceSize = 1024;

sim::Bytes RandomPackage(size_t size)
{
    std::mt19937 random(4242);
    sim::Bytes package(size);
    for (uint8_t& byte : package)
        byte = static_cast<uint8_t>(random());
    return package;
}

struct ProgressCall {
    unsigned int sent, total, retries;
};

// Keeps every progress call; cancels once `cancelAt` bytes are sent (-1: never).
struct ProgressLog {
    std::vector<ProgressCall> calls;
    long cancelAt = -1;
};

int Progress(unsigned int sent, unsigned int total, unsigned int retries, void* user)
{
    ProgressLog& log = *static_cast<ProgressLog*>(user);
    log.calls.push_back({sent, total, retries});
    return log.cancelAt >= 0 && sent >= static_cast<unsigned long>(log.cancelAt);
}

uint32_t PositionOf(const sim::Request& request)
{
    return request.value[0] | request.value[1] << 8 | request.value[2] << 16 | uint32_t(request.value[3]) << 24;
}
}  // namespace

class Upgrade : public DeviceTest {
protected:
    void SetUp() override
    {
        DeviceTest::SetUp();
        if (HasFatalFailure())
            return;
        model.Install();
        std::shared_ptr<Failures> failures = m_failures;
        sim::ModuleModel* module = &model;
        sim.SetHandler(kSliceTag, [failures, module](const sim::Request& request) {
            std::unique_lock<std::mutex> lock(failures->mutex);
            auto failure = failures->left.find(PositionOf(request));
            if (failure != failures->left.end() && failure->second != 0) {
                --failure->second;
                return std::optional<sim::Bytes>(sim::Bytes{3});
            }
            lock.unlock();
            return module->Handle(request);
        });
    }

    // The slice at `position` is refused with status 3 its first `times` tries (-1: always).
    void FailSlice(uint32_t position, int times)
    {
        std::lock_guard<std::mutex> lock(m_failures->mutex);
        m_failures->left[position] = times;
    }

    // Positions of the slices the module received, in order.
    std::vector<uint32_t> SlicePositions() const
    {
        std::vector<uint32_t> positions;
        for (const sim::Request& request : sim.Requests())
            if (request.tag == kSliceTag)
                positions.push_back(PositionOf(request));
        return positions;
    }

    int Run(const sim::Bytes& package, const char* md5, ProgressLog& progress, int* status, char* text, int size)
    {
        return UpgradeFirmware(dev, package.data(), static_cast<unsigned int>(package.size()), kSliceSize, md5,
                               Progress, &progress, status, text, size);
    }

    sim::ModuleModel model{sim};

private:
    // Shared with the handler on the simulator's reader thread.
    struct Failures {
        std::mutex mutex;
        std::map<uint32_t, int> left;
    };
    std::shared_ptr<Failures> m_failures = std::make_shared<Failures>();
};

TEST_F(Upgrade, FailedSlicesAreSentAgainAndThePackageArrivesWhole)
{
    const sim::Bytes package = RandomPackage(10 * kSliceSize + 100);
    FailSlice(2 * kSliceSize, 3);  // succeeds on its last allowed try
    FailSlice(7 * kSliceSize, 1);
    ProgressLog progress;
    int status = 77;
    char text[64];
    memset(text, 'Q', sizeof text);
    NewRecords records;
    ASSERT_EQ(0, Run(package, nullptr, progress, &status, text, sizeof text));
    EXPECT_EQ(0, status);
    EXPECT_STREQ("", text);

    const std::string md5 = sim::FirmwareStore::Md5Hex(package);
    const sim::AppliedPackage applied = model.FirmwareApplied();
    EXPECT_EQ(1u, applied.count);
    EXPECT_EQ(package.size(), applied.size);
    EXPECT_EQ(md5, applied.md5);
    EXPECT_EQ(15u, SlicePositions().size());  // 11 slices, 4 sent again

    // Once at 0, then after each of the 11 slices, with the resends counted as they happened.
    ASSERT_EQ(12u, progress.calls.size());
    EXPECT_EQ(0u, progress.calls[0].sent);
    EXPECT_EQ(0u, progress.calls[0].retries);
    EXPECT_EQ(3u, progress.calls[3].retries);
    EXPECT_EQ(3u * kSliceSize, progress.calls[3].sent);
    EXPECT_EQ(4u, progress.calls.back().retries);
    EXPECT_EQ(package.size(), progress.calls.back().sent);
    for (const ProgressCall& call : progress.calls)
        EXPECT_EQ(package.size(), call.total);

    std::vector<TraceEntry> own = TraceLog::Of("UpgradeFirmware");
    ASSERT_EQ(1u, own.size());
    EXPECT_EQ(Body(" package : " + Ptr(package.data()) + " packageLength : 10340 sliceSize : 1024 md5 : " + md5 +
                       " progress : " + Ptr(reinterpret_cast<void*>(Progress)) + " user : " + Ptr(&progress) +
                       " errorTextSize : 64",
                   " sent : 10340 retries : 4 moduleStatus : 0 errorText : ", 0),
              own[0].body);
    // Besides its own, the records of its 15 slices and of the apply request.
    EXPECT_EQ(17u, records.Take().size());
}

TEST_F(Upgrade, ASliceFailingFourTimesEndsTheUpgrade)
{
    const sim::Bytes package = RandomPackage(4 * kSliceSize);
    FailSlice(kSliceSize, -1);
    ProgressLog progress;
    int status = 77;
    char text[8] = "QQQQQQQ";
    EXPECT_EQ(3, Run(package, nullptr, progress, &status, text, sizeof text));
    EXPECT_EQ(-1, status);
    EXPECT_STREQ("", text);
    EXPECT_EQ((std::vector<uint32_t>{0, kSliceSize, kSliceSize, kSliceSize, kSliceSize}), SlicePositions());
    EXPECT_EQ(0u, RequestCount(kApplyTag));
    ASSERT_EQ(2u, progress.calls.size());
    EXPECT_EQ(kSliceSize, progress.calls.back().sent);
    EXPECT_EQ(0u, model.FirmwareApplied().count);
}

TEST_F(Upgrade, CancellingFromTheProgressSendsNothingMore)
{
    const sim::Bytes package = RandomPackage(5 * kSliceSize);
    int status = 77;
    char text[8];
    // Before the first slice, in the middle, and before the apply request.
    for (long cancelAt : {0L, 2L * kSliceSize, 5L * kSliceSize}) {
        SCOPED_TRACE(cancelAt);
        sim.ClearRequests();
        ProgressLog progress;
        progress.cancelAt = cancelAt;
        EXPECT_EQ(AI_CAMERA_UPGRADE_CANCELLED, Run(package, nullptr, progress, &status, text, sizeof text));
        EXPECT_EQ(cancelAt / kSliceSize, static_cast<long>(SlicePositions().size()));
        EXPECT_EQ(0u, RequestCount(kApplyTag));
        EXPECT_EQ(static_cast<size_t>(cancelAt / kSliceSize + 1), progress.calls.size());
        EXPECT_EQ(-1, status);
    }
    EXPECT_EQ(0u, model.FirmwareApplied().count);
}

TEST_F(Upgrade, TheModulesRefusalComesWithItsTextCutToTheBuffer)
{
    const sim::Bytes package = RandomPackage(3 * kSliceSize);
    const std::string md5 = sim::FirmwareStore::Md5Hex(package);
    const std::string wrong = "0123456789ABCDEF0123456789abcdef";
    const std::string reason = "upgrade package MD5 mismatch: expected 0123456789abcdef0123456789abcdef, received "
                               "package has " + md5;
    ProgressLog progress;
    int status = 0;
    char text[256];
    int result = Run(package, wrong.c_str(), progress, &status, text, sizeof text);
    EXPECT_GT(result, 0);
    EXPECT_EQ(result, status);
    EXPECT_EQ(reason, text);
    // The record carries the text too, after the hash as sent (in lower case).
    EXPECT_NE(std::string::npos, LastRecord("UpgradeFirmware").find("moduleStatus : " + std::to_string(result) +
                                                                    " errorText : " + reason + "\n"));

    char small[10];
    status = 0;
    EXPECT_EQ(result, Run(package, wrong.c_str(), progress, &status, small, sizeof small));
    EXPECT_EQ(result, status);
    EXPECT_EQ(reason.substr(0, 9), small);
    EXPECT_EQ(0u, model.FirmwareApplied().count);

    // The published hash in upper case is the package's own.
    std::string upper = md5;
    for (char& c : upper)
        c = static_cast<char>(toupper(static_cast<unsigned char>(c)));
    EXPECT_EQ(0, Run(package, upper.c_str(), progress, nullptr, nullptr, 0));
    EXPECT_EQ(md5, model.FirmwareApplied().md5);
}

TEST_F(Upgrade, RefusedArgumentsSendNothingAndLeaveTheOutputs)
{
    const unsigned char byte = 1;
    char text[4] = "QQQ";
    int status = 77;
    auto upgrade = [&](void* handle, const void* package, unsigned int length, unsigned int slice, const char* md5,
                       char* errorText, int size) {
        return UpgradeFirmware(handle, package, length, slice, md5, nullptr, nullptr, &status, errorText, size);
    };
    auto fromFile = [&](const char* path, unsigned int slice) {
        return UpgradeFirmwareFromFile(dev, path, slice, nullptr, nullptr, nullptr, &status, text, sizeof text);
    };
    const std::string none = "[ERROR] dev == nullptr\n[INPUT ] dev : (nil) invalid input\n[OUTPUT] invalid output\n"
                             "[RETURN] nRet : -1\n";
    const std::string invalid = " invalid output";
    Check({
        {"UpgradeFirmware", [&] { return upgrade(nullptr, &byte, 1, 1, nullptr, text, 4); }, -1, none},
        {"UpgradeFirmware", [&] { return upgrade(dev, nullptr, 1, 1, nullptr, text, 4); }, -4,
         Refusal("package == nullptr", invalid)},
        {"UpgradeFirmware", [&] { return upgrade(dev, &byte, 0, 1, nullptr, text, 4); }, -4,
         Refusal("packageLength == 0", invalid)},
        {"UpgradeFirmware", [&] { return upgrade(dev, &byte, 1, 0, nullptr, text, 4); }, -4,
         Refusal("sliceSize == 0", invalid)},
        {"UpgradeFirmware", [&] { return upgrade(dev, &byte, 1, 1, "0123456789abcdef0123456789abcdeg", text, 4); },
         -4, Refusal("md5 is not 32 hexadecimal characters", invalid)},
        {"UpgradeFirmware", [&] { return upgrade(dev, &byte, 1, 1, nullptr, text, -1); }, -4,
         Refusal("errorTextSize < 0", invalid)},
        {"UpgradeFirmware", [&] { return upgrade(dev, &byte, 1, 1, nullptr, nullptr, 1); }, -4,
         Refusal("errorText == nullptr && errorTextSize > 0", invalid)},
        {"UpgradeFirmwareFromFile", [&] { return fromFile(nullptr, 1); }, -4, Refusal("path == nullptr", invalid)},
        {"UpgradeFirmwareFromFile", [&] { return fromFile("", 1); }, -4, Refusal("!strlen(path)", invalid)},
        // The file is not looked at before the other arguments are accepted.
        {"UpgradeFirmwareFromFile", [&] { return fromFile("missing.pkg", 0); }, -4,
         Refusal("sliceSize == 0", invalid)},
    });
    EXPECT_EQ(77, status);
    EXPECT_STREQ("QQQ", text);
}

TEST_F(Upgrade, FromAFile)
{
    int status = 77;
    char text[4] = "QQQ";
    const std::string inputs = " path : %s packageLength : 0 sliceSize : 1024 md5 :  progress : (nil) user : (nil) "
                               "errorTextSize : 4";
    // A missing file and a directory cannot be read; the outputs say nothing was applied.
    for (const char* path : {"missing.pkg", "."}) {
        SCOPED_TRACE(path);
        status = 77;
        memset(text, 'Q', sizeof text);
        EXPECT_EQ(AI_CAMERA_FILE_UNREADABLE,
                  UpgradeFirmwareFromFile(dev, path, kSliceSize, nullptr, nullptr, nullptr, &status, text, 4));
        EXPECT_EQ(-1, status);
        EXPECT_STREQ("", text);
        std::string expected = Failure("the package file cannot be read whole", inputs,
                                       " sent : 0 retries : 0 moduleStatus : -1 errorText : ", AI_CAMERA_FILE_UNREADABLE);
        expected.replace(expected.find("%s"), 2, path);
        EXPECT_EQ(expected, LastRecord("UpgradeFirmwareFromFile"));
    }
    EXPECT_EQ(0u, sim.Requests().size());

    const sim::Bytes package = RandomPackage(2 * kSliceSize + 1);
    FILE* file = fopen("firmware.pkg", "wb");
    ASSERT_NE(nullptr, file);
    ASSERT_EQ(package.size(), fwrite(package.data(), 1, package.size(), file));
    fclose(file);
    ProgressLog progress;
    EXPECT_EQ(0, UpgradeFirmwareFromFile(dev, "firmware.pkg", kSliceSize, nullptr, Progress, &progress, &status, text,
                                         4));
    EXPECT_EQ(0, status);
    EXPECT_EQ(4u, progress.calls.size());
    EXPECT_EQ(sim::FirmwareStore::Md5Hex(package), model.FirmwareApplied().md5);
    EXPECT_EQ(package.size(), model.FirmwareApplied().size);
}
