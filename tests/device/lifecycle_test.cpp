// Handles, their release, the log configuration, device enumeration, and the
// null handle refused by every exported function.
#include <dirent.h>
#include <string.h>

#include <functional>

#include "DeviceTest.h"

using Lifecycle = DeviceTest;

namespace {
bool HeaderNamesFile(const TraceEntry& entry, const std::string& file)
{
    return entry.header.find("[FILE : " + file + "]") != std::string::npos;
}

// True when some entry of /dev has `part` in its name.
bool DevHasNodeWith(const char* part)
{
    DIR* dir = opendir("/dev/");
    if (!dir)
        return false;
    bool found = false;
    while (struct dirent* entry = readdir(dir))
        found = found || strstr(entry->d_name, part) != nullptr;
    closedir(dir);
    return found;
}
}  // namespace

TEST_F(Lifecycle, InitAndInitDevTraceTheNewHandle)
{
    for (void* (*make)(void) : {Init, InitDev}) {
        NewRecords records;
        void* handle = make();
        ASSERT_NE(nullptr, handle);
        EXPECT_NE(dev, handle);
        std::vector<TraceEntry> added = records.Take();
        ASSERT_EQ(1u, added.size());
        EXPECT_EQ(make == Init ? "Init" : "InitDev", added[0].function);
        EXPECT_TRUE(HeaderNamesFile(added[0], "ai_camera")) << added[0].header;
        EXPECT_EQ("[INPUT ]\n[OUTPUT]\n[RETURN] dev : " + Ptr(handle) + "\n", added[0].body);
        // A handle that never connected: its release stops nothing and still succeeds.
        ASSERT_EQ(0, DisconnectSerial(dev));
        EXPECT_EQ(0, DeInitDev(handle));
        ASSERT_EQ(0, ConnectSerial(dev, sim.SlavePath().c_str()));
    }
}

TEST_F(Lifecycle, DeInitAfterUseRecordsThenDisconnectsBoth)
{
    AnswerStatus(0x16, 0);
    ASSERT_EQ(0, QueryRecognize(dev));
    void* released = dev;
    NewRecords records;
    EXPECT_EQ(0, DeInit(dev));
    dev = nullptr;
    std::vector<TraceEntry> added = records.Take();
    ASSERT_EQ(3u, added.size());
    const std::string body = "[INPUT ] dev : " + Ptr(released) + "\n[OUTPUT]\n[RETURN] nRet : 0\n";
    EXPECT_EQ("DeInit", added[0].function);
    EXPECT_TRUE(HeaderNamesFile(added[0], "ai_camera"));
    EXPECT_EQ(body, added[0].body);
    EXPECT_EQ("DisconnectSerial", added[1].function);
    EXPECT_TRUE(HeaderNamesFile(added[1], "AICamera"));
    EXPECT_EQ(body, added[1].body);
    EXPECT_EQ("DisconnectCamera", added[2].function);
    EXPECT_EQ(body, added[2].body);
    // The link is closed: a new handle's command finds no executor.
    dev = Init();
    ASSERT_NE(nullptr, dev);
    EXPECT_EQ(-6, QueryRecognize(dev));
    EXPECT_EQ(1u, RequestCount(0x16));
}

TEST_F(Lifecycle, ReleasingANullHandleKeepsTwoDifferentTexts)
{
    NewRecords deInit;
    EXPECT_EQ(-1, DeInit(nullptr));
    EXPECT_EQ("[ERROR ] dev == nullptr[INPUT ] invalid input\n[OUTPUT]\n[RETURN] nRet : -1\n", deInit.Only("DeInit"));
    NewRecords deInitDev;
    EXPECT_EQ(-1, DeInitDev(nullptr));
    EXPECT_EQ("[ERROR ] dev == nullptr\n[INPUT ] invalid input\n[OUTPUT]\n[RETURN] nRet : -1\n",
              deInitDev.Only("DeInitDev"));
}

TEST_F(Lifecycle, LogConfigurationCodesAndTexts)
{
    NewRecords set;
    EXPECT_EQ(0, SetLogConfig(LOG_LEVER_DEBUG, LOG_TARGET_FILE));
    // The logger's own version record may come first.
    std::vector<TraceEntry> added = set.Take();
    ASSERT_FALSE(added.empty());
    EXPECT_EQ("SetLogConfig", added.back().function);
    EXPECT_EQ("[INPUT ] nLogLever : 1 nLogTatget : 1\n[OUTPUT]\n[RETURN] nRet : 0\n", added.back().body);
    int level = -1, target = -1;
    NewRecords get;
    EXPECT_EQ(0, GetLogConfig(&level, &target));
    EXPECT_EQ(LOG_LEVER_DEBUG, level);
    EXPECT_EQ(LOG_TARGET_FILE, target);
    EXPECT_EQ("[INPUT ]\n[OUTPUT] pLogLever : 1 pLogTarget : 1\n[RETURN] nRet : 0\n", get.Only("GetLogConfig"));
    struct Case {
        int level, target;
    } refused[] = {{7, 1}, {1, 3}, {-1, 1}};
    for (const Case& c : refused) {
        NewRecords records;
        EXPECT_EQ(-4, SetLogConfig(static_cast<LOG_LEVER>(c.level), static_cast<LOG_TARGET>(c.target)));
        EXPECT_EQ("[INPUT ] nLogLever : " + std::to_string(c.level) + " nLogTatget : " + std::to_string(c.target) +
                      "\n[OUTPUT]\n[RETURN] nRet : -4\n",
                  records.Only("SetLogConfig"));
        EXPECT_EQ(0, GetLogConfig(&level, &target));
        EXPECT_EQ(LOG_LEVER_DEBUG, level) << "a refused configuration is not kept";
        EXPECT_EQ(LOG_TARGET_FILE, target);
    }
}

TEST_F(Lifecycle, LevelOffWritesNothingMore)
{
    std::string before = TraceLog::Text();
    ASSERT_EQ(0, SetLogConfig(LOG_LEVER_OFF, LOG_TARGET_FILE));
    EXPECT_EQ(-1, AddFace(nullptr, "a", 1));
    EXPECT_EQ(-4, AddFace(dev, nullptr, 0));
    int level = 0, target = 0;
    EXPECT_EQ(0, GetLogConfig(&level, &target));
    EXPECT_EQ(LOG_LEVER_OFF, level);
    EXPECT_EQ(before, TraceLog::Text());
    ASSERT_EQ(0, SetLogConfig(LOG_LEVER_DEBUG, LOG_TARGET_FILE));
    EXPECT_NE(before, TraceLog::Text());
}

TEST_F(Lifecycle, EnumDeviceRefusesBadBuffersAndTouchesNeither)
{
    const std::string videoText =
        "[ERROR ] videoDevBuf == nullptr || videoDevSize <= 0[INPUT ] invalid input\n[OUTPUT] invalid output\n"
        "[RETURN] nRet : -4\n";
    const std::string serialText =
        "[ERROR ] serialBuf == nullptr || serialSize <= 0[INPUT ] invalid input\n[OUTPUT] invalid output\n"
        "[RETURN] nRet : -4\n";
    char video[16], serial[16];
    struct Case {
        char* video;
        int videoSize;
        char* serial;
        int serialSize;
        const std::string* text;
    } cases[] = {
        {nullptr, 16, serial, 16, &videoText}, {video, 0, serial, 16, &videoText},
        {video, -1, nullptr, 16, &videoText},  {video, 16, nullptr, 16, &serialText},
        {video, 16, serial, 0, &serialText},   {video, 16, serial, -5, &serialText},
    };
    for (const Case& c : cases) {
        memset(video, 'v', sizeof video);
        memset(serial, 's', sizeof serial);
        NewRecords records;
        EXPECT_EQ(-4, EnumDevice(c.video, c.videoSize, c.serial, c.serialSize));
        EXPECT_EQ(*c.text, records.Only("EnumDevice"));
        EXPECT_EQ(std::string(16, 'v'), std::string(video, sizeof video));
        EXPECT_EQ(std::string(16, 's'), std::string(serial, sizeof serial));
    }
}

TEST_F(Lifecycle, EnumDeviceWithoutAModuleListsNoSerialNode)
{
    if (DevHasNodeWith("ttyACM"))
        GTEST_SKIP() << "a serial module node is present on this machine";
    char video[256], serial[64];
    memset(video, 'v', sizeof video);
    memset(serial, 's', sizeof serial);
    NewRecords records;
    EXPECT_EQ(0, EnumDevice(video, sizeof video, serial, sizeof serial));
    EXPECT_STREQ("", serial);
    ASSERT_NE(nullptr, memchr(video, '\0', sizeof video));
    if (!DevHasNodeWith("video")) {
        EXPECT_STREQ("", video);
    }
    EXPECT_EQ("[INPUT ]videoDevSize : 256 serialSize : 64\n[OUTPUT] videoDevBuf : " + std::string(video) +
                  " serialBuf : \n[RETURN] nRet : 0\n",
              records.Only("EnumDevice"));
}

namespace {
struct NullHandleCall {
    const char* function;
    std::function<int()> call;
};

#define NULL_HANDLE(name, ...) NullHandleCall{#name, [] { return name(nullptr, ##__VA_ARGS__); }}

std::vector<NullHandleCall> ForwardingFunctions()
{
    static char text[8];
    static unsigned char byte;
    static unsigned int number;
    static int width, height;
    static void* image;
    return {
        NULL_HANDLE(GetFrame, text, 8, text, 8),
        NULL_HANDLE(GetResolution, &width, &height),
        NULL_HANDLE(AddFace, "a", 1),
        NULL_HANDLE(AddFaceByImage, "a", 1, "i", 1),
        NULL_HANDLE(AddFaceReturnImage, "a", 1, &image, &number),
        NULL_HANDLE(AddFaceSlice, "a", 1, 1, 0, 1, "i", 1),
        NULL_HANDLE(QueryFace, "a", 1, 0),
        NULL_HANDLE(StaticFaceCompare, &image, &number),
        NULL_HANDLE(StaticFaceCompareReturnImage, "i", 1, &image, &number),
        NULL_HANDLE(StaticFaceCompareSlice, 0, 1, 0, 1, "i", 1, &image, &number),
        NULL_HANDLE(AddFeature, "a", 1, "f", 1),
        NULL_HANDLE(QueryFeature, "a", 1, text, 8),
        NULL_HANDLE(StartOnetoNumRecognize, 0, 0),
        NULL_HANDLE(StartOnetoOneRecognize, 0, 0, "i", 1),
        NULL_HANDLE(StartOnetoOneRecognizeSlice, 0, 0, 1, 0, 1, "i", 1),
        NULL_HANDLE(ResumeRecognize),
        NULL_HANDLE(PauseRecognize),
        NULL_HANDLE(QueryRecognize),
        NULL_HANDLE(SetRecConfig, "c", 1, 0),
        NULL_HANDLE(GetRecConfig, text, 8, 0),
        NULL_HANDLE(OpenAutoUploadFaceInfoInFrame),
        NULL_HANDLE(CloseAutoUploadFaceInfoInFrame),
        NULL_HANDLE(GetDeviceFaceID, text, 8),
        NULL_HANDLE(SetRecognizeCount, 1, 1),
        NULL_HANDLE(GetRecognizeCount, &byte, &byte),
        NULL_HANDLE(SetTemplateUpdate, 1),
        NULL_HANDLE(GetTemplateUpdate, &byte),
        NULL_HANDLE(SetQRCodeSwitch, 1, 1),
        NULL_HANDLE(GetDeviceFaceLibraryNum, &number),
        NULL_HANDLE(GetSingleRecognize, text, 8),
        NULL_HANDLE(Ping, "p", 1),
        NULL_HANDLE(UploadPackageSlice, 0, "p", 1),
        NULL_HANDLE(ApplyUpgrade, "h", 1),
        NULL_HANDLE(GetDeviceVersion, text, 8),
        NULL_HANDLE(Reboot, 0),
        NULL_HANDLE(SetUmodeToEngin),
        NULL_HANDLE(Reset),
        NULL_HANDLE(Recovery, 0),
        NULL_HANDLE(GetDevSn, 0, text, 8),
        NULL_HANDLE(GetDevModel, text, 8),
        NULL_HANDLE(SetUvcSwitch, 0),
        NULL_HANDLE(SetCameraStream, 0, 0),
        NULL_HANDLE(GetCameraStream, 0, &byte),
        NULL_HANDLE(SwitchCamRgbIr, 0),
        NULL_HANDLE(SetStreamFormat, 0),
        NULL_HANDLE(GetDevModelAppVer, text, 8),
        NULL_HANDLE(GetLuminousSensitivityThreshold, &number),
        NULL_HANDLE(GetDeviceNoFlickerHz, 0, &byte, &byte),
        NULL_HANDLE(SetDeviceNoFlickerHz, 0, 0, 0),
        NULL_HANDLE(SetRotateAngle, 0),
        NULL_HANDLE(GetScreenDirection, &byte),
        NULL_HANDLE(SetScreenDirection, 1),
        NULL_HANDLE(SetResolution, 0),
        NULL_HANDLE(GetFrameRate, &number),
        NULL_HANDLE(SetFrameRate, 10),
        NULL_HANDLE(GetIRlight, &byte, &byte),
        NULL_HANDLE(SetIRlight, 0, 0),
        NULL_HANDLE(GetCpuTemperature, &number),
        NULL_HANDLE(GetAESensorModel, &number),
        NULL_HANDLE(CloseAutoUploadAiInfo),
        NULL_HANDLE(OpenAutoUploadAiInfo, 0, 0),
    };
}
}  // namespace

TEST_F(Lifecycle, EveryForwardingFunctionRefusesANullHandleWithOneRecord)
{
    std::vector<NullHandleCall> calls = ForwardingFunctions();
    EXPECT_EQ(61u, calls.size());  // the 62 of the interface but DeleteFace, which has its own test
    for (const NullHandleCall& c : calls) {
        NewRecords records;
        EXPECT_EQ(-1, c.call()) << c.function;
        std::vector<TraceEntry> added = records.Take();
        ASSERT_EQ(1u, added.size()) << c.function;
        EXPECT_EQ(c.function, added[0].function);
        EXPECT_TRUE(HeaderNamesFile(added[0], "ai_camera")) << c.function;
        EXPECT_EQ("[ERROR] dev == nullptr\n[INPUT ] invalid input\n[OUTPUT]\n[RETURN] nRet : -1\n", added[0].body)
            << c.function;
    }
    EXPECT_TRUE(sim.Requests().empty());
}

TEST_F(Lifecycle, DeleteFaceWithANullHandleWritesTwoRecords)
{
    const char id[] = "bob";
    NewRecords records;
    EXPECT_EQ(-1, DeleteFace(nullptr, 1, id, 3));
    std::vector<TraceEntry> added = records.Take();
    ASSERT_EQ(2u, added.size());
    EXPECT_EQ("DeleteFace", added[0].function);
    EXPECT_EQ("[ERROR] pID = " + Ptr(id) + "\n[INPUT ] invalid input\n[OUTPUT]\n[RETURN] nRet : 0\n", added[0].body);
    EXPECT_EQ("DeleteFace", added[1].function);
    EXPECT_EQ("[ERROR] dev == nullptr\n[INPUT ] invalid input\n[OUTPUT]\n[RETURN] nRet : -1\n", added[1].body);
}

TEST_F(Lifecycle, ConnectionFunctionsRefuseANullHandleWithTheirOwnTexts)
{
    struct Case {
        const char* function;
        std::function<int()> call;
        const char* tag;
    } cases[] = {
        {"ConnectSerial", [] { return ConnectSerial(nullptr, "/dev/ttyACM0"); }, "[ERROR ]"},
        {"DisconnectSerial", [] { return DisconnectSerial(nullptr); }, "[ERROR ]"},
        {"ConnectCamera", [] { return ConnectCamera(nullptr, "/dev/video0"); }, "[ERROR]"},
        {"DisconnectCamera", [] { return DisconnectCamera(nullptr); }, "[ERROR]"},
    };
    for (const Case& c : cases) {
        NewRecords records;
        EXPECT_EQ(-1, c.call()) << c.function;
        EXPECT_EQ(std::string(c.tag) + " dev == nullptr\n[INPUT ] invalid input\n[OUTPUT]\n[RETURN] nRet : -1\n",
                  records.Only(c.function));
    }
}
