// What a handle does when the link or the caller misbehaves: a disconnect while
// requests wait, callers queued past their deadline, outputs that are null, a
// face list that never ends, and ports that are not ours to open.
#include <fcntl.h>
#include <string.h>
#include <sys/file.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <thread>
#include <vector>

#include "DeviceTest.h"
#include "TimedCall.h"

namespace {
using Clock = std::chrono::steady_clock;
const char* const kId = kCommandId;
}  // namespace

using LinkFaults = DeviceTest;

TEST_F(LinkFaults, DisconnectOrDeInitWhileRequestsWaitFailsThemPromptlyAndFreesNothingInUse)
{
    sim.SetAnswerDelay(3000);
    Answer(0x1003, BytesOf("V1.0"));
    for (bool deInit : {false, true}) {
        SCOPED_TRACE(deInit ? "DeInit of another handle" : "DisconnectSerial");
        void* other = Init();
        ASSERT_NE(nullptr, other);
        char version[3][32];
        size_t before = sim.Requests().size();
        std::vector<std::unique_ptr<TimedCall>> calls;
        for (int i = 0; i < 3; ++i)  // one in flight, two queued behind it
            calls.emplace_back(new TimedCall([&, i] { return GetDeviceVersion(dev, version[i], sizeof version[i]); }));
        ASSERT_TRUE(sim.WaitForRequests(before + 1, 5000));
        // Give the other two time to queue up; the outcome is the same if they come after the stop.
        std::this_thread::sleep_for(std::chrono::milliseconds(100));
        Clock::time_point stop = Clock::now();
        EXPECT_EQ(0, deInit ? DeInit(other) : DisconnectSerial(other));
        long long stopMs = MsSince(stop);
        for (auto& call : calls) {
            call->Join();
            EXPECT_EQ(-6, call->result.load());
            EXPECT_LT(call->ms.load(), 2500) << "waited for the late answer";
        }
        EXPECT_LT(stopMs, 1000);
        EXPECT_EQ(before + 1, sim.Requests().size()) << "a queued request went out after the stop";
        // A command that starts after the stop fails at once; a new connection works.
        EXPECT_EQ(-6, GetDeviceVersion(dev, version[0], sizeof version[0]));
        if (!deInit)
            DeInit(other);  // disconnects the shared link too
        // A fresh module: the late answer still on its way would complete the next request.
        sim.Stop();
        sim.SetAnswerDelay(0);
        ASSERT_TRUE(sim.Start());
        ASSERT_EQ(0, ConnectSerial(dev, sim.SlavePath().c_str()));
        EXPECT_EQ(0, GetDeviceVersion(dev, version[0], sizeof version[0]));
        sim.SetAnswerDelay(3000);
    }
}

TEST_F(LinkFaults, QueuedCallersReturnAtTheirDeadlineHavingSentNothing)
{
    // The module answers the first request only after 12.5 s: it holds the turn
    // for its whole 15 s, while the 10 s of the callers behind it run out.
    sim.SetAnswerDelay(12500);
    Answer(0x01, {0x00});
    Answer(0x16, {0x00});
    TimedCall enrol([&] { return AddFace(dev, kId, 5); });
    ASSERT_TRUE(sim.WaitForRequests(1, 5000));
    Clock::time_point queued = Clock::now();
    std::vector<std::unique_ptr<TimedCall>> waiting;
    for (int i = 0; i < 3; ++i)
        waiting.emplace_back(new TimedCall([&] { return QueryRecognize(dev); }));
    for (auto& call : waiting) {
        call->Join();
        EXPECT_EQ(-6, call->result.load());
        EXPECT_GE(call->ms.load(), 9900);
        EXPECT_LT(call->ms.load(), 11000) << "the deadline must bound the wait for the turn";
    }
    EXPECT_GE(MsSince(queued), 9900);
    EXPECT_EQ(0u, RequestCount(0x16));
    EXPECT_EQ(Failure("m_pCommandManager->Execute(&syncCommand) != 0", "", "", -6), LastRecord("QueryRecognize"));
    enrol.Join();
    EXPECT_EQ(0, enrol.result.load());
}

TEST_F(LinkFaults, NullOutputsAreRefusedBeforeAnythingIsSent)
{
    unsigned char byte = 0;
    unsigned int length = 0;
    void* image = nullptr;
    const char data[] = "data";
    const std::string out = " invalid output";
    const std::string slice = " nMode : 0 nImageTotalLength : 8 nPosition : 0 isLastSlice : 0 pSliceData : " +
                              Ptr(data) + " nSliceDataLength : 4";
    Check({
        {"GetCameraStream", [&] { return GetCameraStream(dev, 0, nullptr); }, -4, Refusal("isOpenCamera == nullptr", out)},
        {"GetLuminousSensitivityThreshold", [&] { return GetLuminousSensitivityThreshold(dev, nullptr); }, -4,
         Refusal("nThreshold == nullptr", out)},
        {"GetDeviceNoFlickerHz", [&] { return GetDeviceNoFlickerHz(dev, 0, nullptr, &byte); }, -4,
         Refusal("pHz == nullptr", out)},
        {"GetDeviceNoFlickerHz", [&] { return GetDeviceNoFlickerHz(dev, 0, &byte, nullptr); }, -4,
         Refusal("isEnable == nullptr", out)},
        {"GetScreenDirection", [&] { return GetScreenDirection(dev, nullptr); }, -4, Refusal("pMode == nullptr", out)},
        {"GetFrameRate", [&] { return GetFrameRate(dev, nullptr); }, -4, Refusal("pFrameRate == nullptr", out)},
        {"GetIRlight", [&] { return GetIRlight(dev, nullptr, &byte); }, -4, Refusal("pLuminance == nullptr", out)},
        {"GetIRlight", [&] { return GetIRlight(dev, &byte, nullptr); }, -4, Refusal("pCloseTime == nullptr", out)},
        {"GetCpuTemperature", [&] { return GetCpuTemperature(dev, nullptr); }, -4,
         Refusal("nTemperature == nullptr", out)},
        {"GetAESensorModel", [&] { return GetAESensorModel(dev, nullptr); }, -4, Refusal("pSensorModel == nullptr", out)},
        {"AddFaceReturnImage", [&] { return AddFaceReturnImage(dev, kId, 5, nullptr, &length); }, -4,
         Refusal("ppImage == nullptr", out)},
        {"AddFaceReturnImage", [&] { return AddFaceReturnImage(dev, kId, 5, &image, nullptr); }, -4,
         Refusal("pImageLength == nullptr", out)},
        {"GetDeviceFaceLibraryNum", [&] { return GetDeviceFaceLibraryNum(dev, nullptr); }, -4,
         Refusal("nFaceNum == nullptr", out)},
        {"StaticFaceCompare", [&] { return StaticFaceCompare(dev, nullptr, &length); }, -4,
         Refusal("ppResImage == nullptr", out)},
        {"StaticFaceCompareReturnImage", [&] { return StaticFaceCompareReturnImage(dev, data, 4, &image, nullptr); }, -4,
         Refusal("pResImageLength == nullptr", out)},
        {"StaticFaceCompareSlice", [&] { return StaticFaceCompareSlice(dev, 0, 8, 0, 0, data, 4, nullptr, &length); },
         -4, Failure("ppResImage == nullptr", slice, out, -4)},
        {"GetRecognizeCount", [&] { return GetRecognizeCount(dev, &byte, nullptr); }, -4,
         Refusal("pLivingCount == nullptr", out)},
        {"GetTemplateUpdate", [&] { return GetTemplateUpdate(dev, nullptr); }, -4, Refusal("isUpdate == nullptr", out)},
    });
    EXPECT_TRUE(sim.Requests().empty());
    // Inputs are checked before outputs.
    EXPECT_EQ(-4, GetCameraStream(dev, 2, nullptr));
    EXPECT_EQ(Refusal("nCameraType != 0x00 && nCameraType != 0x01", out), LastRecord("GetCameraStream"));
}

TEST_F(LinkFaults, FaceListThatNeverEndsStopsWithMinusSeven)
{
    // Chunks of text without the last-slice mark: the list stops at 16 MiB.
    const sim::Bytes chunk(60000, 'a');
    sim.SetHandler(0x08, [&](const sim::Request&) { return std::optional<sim::Bytes>(Cat({{0x00, 0x00}, Le32(0), chunk})); });
    std::vector<char> list(64);
    EXPECT_EQ(-7, GetDeviceFaceID(dev, list.data(), static_cast<unsigned int>(list.size())));
    EXPECT_EQ(Failure("offset + chunk > 0x1000000", " nIDListLength : 64", " invalid output", -7),
              LastRecord("GetDeviceFaceID"));
    EXPECT_EQ(16u * 1024 * 1024 / chunk.size() + 1, RequestCount(0x08));
    EXPECT_EQ(std::string(63, 'a'), std::string(list.data()));
    // A pass that brings no text and is not the last.
    sim.ClearRequests();
    sim.SetHandler(0x08, [](const sim::Request&) {
        return std::optional<sim::Bytes>(Cat({{0x00, 0x00}, Le32(0), {0x00}}));
    });
    EXPECT_EQ(-7, GetDeviceFaceID(dev, list.data(), static_cast<unsigned int>(list.size())));
    EXPECT_EQ(Failure("strnlen(chunk) == 0 && isLastSlice == 0", " nIDListLength : 64", " invalid output", -7),
              LastRecord("GetDeviceFaceID"));
    EXPECT_EQ(1u, RequestCount(0x08));
}

TEST_F(LinkFaults, ConnectRefusesWhatIsNotATerminalOrIsHeldElsewhere)
{
    const char kText[] = "keep me";
    int file = open("user-file.txt", O_CREAT | O_WRONLY | O_TRUNC, 0644);
    ASSERT_EQ(static_cast<ssize_t>(sizeof kText), write(file, kText, sizeof kText));
    close(file);
    for (const char* path : {"user-file.txt", "/dev/null"}) {
        SCOPED_TRACE(path);
        Clock::time_point start = Clock::now();
        EXPECT_EQ(-2, ConnectSerial(dev, path));
        EXPECT_LT(MsSince(start), 1000);
        EXPECT_EQ(-6, QueryRecognize(dev));
    }
    EXPECT_NE(std::string::npos, TraceLog::Text().find("tcgetattr Return Fail | Errno: 25 Inappropriate ioctl for device"));
    char kept[sizeof kText] = {};
    int reread = open("user-file.txt", O_RDONLY);
    EXPECT_EQ(static_cast<ssize_t>(sizeof kText), read(reread, kept, sizeof kept));
    close(reread);
    EXPECT_STREQ(kText, kept);
    // Another holder of the port: refused as busy, and the port is ours once it lets go.
    int holder = open(sim.SlavePath().c_str(), O_RDWR | O_NOCTTY);
    ASSERT_EQ(0, flock(holder, LOCK_EX | LOCK_NB));
    EXPECT_EQ(-2, ConnectSerial(dev, sim.SlavePath().c_str()));
    EXPECT_NE(std::string::npos, TraceLog::Text().find("flock Return Fail | Errno: 16 Device or resource busy"));
    close(holder);
    ASSERT_EQ(0, ConnectSerial(dev, sim.SlavePath().c_str()));
    // While we hold it, another process cannot take it.
    pid_t other = fork();
    if (other == 0) {
        int fd = open(sim.SlavePath().c_str(), O_RDWR | O_NOCTTY);
        _exit(fd >= 0 && flock(fd, LOCK_EX | LOCK_NB) != 0 ? 0 : 1);
    }
    int status = -1;
    ASSERT_EQ(other, waitpid(other, &status, 0));
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << "another process took the port";
    Answer(0x16, {0x00});
    EXPECT_EQ(0, QueryRecognize(dev));
}
