// Handles, their release, the log configuration, device enumeration, and the
// null handle refused by every exported function.
#include <dirent.h>
#include <string.h>

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
    bool found = false;
    while (struct dirent* entry = dir ? readdir(dir) : nullptr)
        found = found || strstr(entry->d_name, part) != nullptr;
    if (dir)
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
    Answer(0x16, {0x00});
    ASSERT_EQ(0, QueryRecognize(dev));
    void* released = dev;
    NewRecords records;
    EXPECT_EQ(0, DeInit(dev));
    dev = nullptr;
    std::vector<TraceEntry> added = records.Take();
    ASSERT_EQ(3u, added.size());
    const char* functions[] = {"DeInit", "DisconnectSerial", "DisconnectCamera"};
    const char* files[] = {"ai_camera", "AICamera", "AICamera"};
    for (size_t i = 0; i < 3; ++i) {
        EXPECT_EQ(functions[i], added[i].function);
        EXPECT_TRUE(HeaderNamesFile(added[i], files[i])) << added[i].header;
        EXPECT_EQ("[INPUT ] dev : " + Ptr(released) + "\n[OUTPUT]\n[RETURN] nRet : 0\n", added[i].body);
    }
    // The link is closed: a new handle's command finds no executor.
    dev = Init();
    ASSERT_NE(nullptr, dev);
    EXPECT_EQ(-6, QueryRecognize(dev));
    EXPECT_EQ(1u, RequestCount(0x16));
}

TEST_F(Lifecycle, LogConfigurationCodesAndTexts)
{
    int level = -1, target = -1;
    auto set = [](int l, int t) {
        return Row{"SetLogConfig", [=] { return SetLogConfig(static_cast<LOG_LEVER>(l), static_cast<LOG_TARGET>(t)); },
                   -4,
                   "[INPUT ] nLogLever : " + std::to_string(l) + " nLogTatget : " + std::to_string(t) +
                       "\n[OUTPUT]\n[RETURN] nRet : -4\n"};
    };
    ASSERT_EQ(0, SetLogConfig(LOG_LEVER_DEBUG, LOG_TARGET_FILE));
    EXPECT_EQ("[INPUT ] nLogLever : 1 nLogTatget : 1\n[OUTPUT]\n[RETURN] nRet : 0\n", LastRecord("SetLogConfig"));
    // A refused configuration is not kept.
    Check({set(7, 1), set(1, 3), set(-1, 1),
           {"GetLogConfig", [&] { return GetLogConfig(&level, &target); }, 0,
            "[INPUT ]\n[OUTPUT] pLogLever : 1 pLogTarget : 1\n[RETURN] nRet : 0\n"}});
    EXPECT_EQ(LOG_LEVER_DEBUG, level);
    EXPECT_EQ(LOG_TARGET_FILE, target);
    // Level off writes nothing more.
    std::string before = TraceLog::Text();
    ASSERT_EQ(0, SetLogConfig(LOG_LEVER_OFF, LOG_TARGET_FILE));
    EXPECT_EQ(-1, AddFace(nullptr, "a", 1));
    EXPECT_EQ(-4, AddFace(dev, nullptr, 0));
    EXPECT_EQ(0, GetLogConfig(&level, &target));
    EXPECT_EQ(LOG_LEVER_OFF, level);
    EXPECT_EQ(before, TraceLog::Text());
}

TEST_F(Lifecycle, EnumDeviceRefusesBadBuffersAndTouchesNeither)
{
    const std::string video = "[ERROR ] videoDevBuf == nullptr || videoDevSize <= 0[INPUT ] invalid input\n"
                              "[OUTPUT] invalid output\n[RETURN] nRet : -4\n";
    const std::string serial = "[ERROR ] serialBuf == nullptr || serialSize <= 0[INPUT ] invalid input\n"
                               "[OUTPUT] invalid output\n[RETURN] nRet : -4\n";
    char v[16], s[16];
    memset(v, 'v', sizeof v);
    memset(s, 's', sizeof s);
    auto row = [](char* a, int an, char* b, int bn, const std::string& text) {
        return Row{"EnumDevice", [=] { return EnumDevice(a, an, b, bn); }, -4, text};
    };
    Check({row(nullptr, 16, s, 16, video), row(v, 0, s, 16, video), row(v, -1, nullptr, 16, video),
           row(v, 16, nullptr, 16, serial), row(v, 16, s, 0, serial), row(v, 16, s, -5, serial)});
    EXPECT_EQ(std::string(16, 'v'), std::string(v, sizeof v));
    EXPECT_EQ(std::string(16, 's'), std::string(s, sizeof s));
}

TEST_F(Lifecycle, EnumDeviceWithoutAModuleListsNoSerialNode)
{
    if (DevHasNodeWith("ttyACM"))
        GTEST_SKIP() << "a serial module node is present on this machine";
    char video[256], serial[64];
    memset(video, 'v', sizeof video);
    memset(serial, 's', sizeof serial);
    EXPECT_EQ(0, EnumDevice(video, sizeof video, serial, sizeof serial));
    EXPECT_STREQ("", serial);
    ASSERT_NE(nullptr, memchr(video, '\0', sizeof video));
    if (!DevHasNodeWith("video")) {
        EXPECT_STREQ("", video);
    }
    EXPECT_EQ("[INPUT ]videoDevSize : 256 serialSize : 64\n[OUTPUT] videoDevBuf : " + std::string(video) +
                  " serialBuf : \n[RETURN] nRet : 0\n",
              LastRecord("EnumDevice"));
}

TEST_F(Lifecycle, EveryExportedFunctionRefusesANullHandle)
{
    static char text[8];
    static unsigned char byte;
    static unsigned int number;
    static int width, height;
    static void* image;
    static const char kBob[] = "bob";
    const std::string refused = "dev == nullptr\n[INPUT ] invalid input\n[OUTPUT]\n[RETURN] nRet : -1\n";
#define NULL_HANDLE(name, ...) Row{#name, [] { return name(nullptr, ##__VA_ARGS__); }, -1, "[ERROR] " + refused}
    std::vector<Row> rows = {
        NULL_HANDLE(GetFrame, text, 8, text, 8), NULL_HANDLE(GetResolution, &width, &height),
        NULL_HANDLE(AddFace, "a", 1), NULL_HANDLE(AddFaceByImage, "a", 1, "i", 1),
        NULL_HANDLE(AddFaceReturnImage, "a", 1, &image, &number), NULL_HANDLE(AddFaceSlice, "a", 1, 1, 0, 1, "i", 1),
        NULL_HANDLE(QueryFace, "a", 1, 0), NULL_HANDLE(StaticFaceCompare, &image, &number),
        NULL_HANDLE(StaticFaceCompareReturnImage, "i", 1, &image, &number),
        NULL_HANDLE(StaticFaceCompareSlice, 0, 1, 0, 1, "i", 1, &image, &number),
        NULL_HANDLE(AddFeature, "a", 1, "f", 1), NULL_HANDLE(QueryFeature, "a", 1, text, 8),
        NULL_HANDLE(StartOnetoNumRecognize, 0, 0), NULL_HANDLE(StartOnetoOneRecognize, 0, 0, "i", 1),
        NULL_HANDLE(StartOnetoOneRecognizeSlice, 0, 0, 1, 0, 1, "i", 1), NULL_HANDLE(ResumeRecognize),
        NULL_HANDLE(PauseRecognize), NULL_HANDLE(QueryRecognize), NULL_HANDLE(SetRecConfig, "c", 1, 0),
        NULL_HANDLE(GetRecConfig, text, 8, 0), NULL_HANDLE(OpenAutoUploadFaceInfoInFrame),
        NULL_HANDLE(CloseAutoUploadFaceInfoInFrame), NULL_HANDLE(GetDeviceFaceID, text, 8),
        NULL_HANDLE(SetRecognizeCount, 1, 1), NULL_HANDLE(GetRecognizeCount, &byte, &byte),
        NULL_HANDLE(SetTemplateUpdate, 1), NULL_HANDLE(GetTemplateUpdate, &byte), NULL_HANDLE(SetQRCodeSwitch, 1, 1),
        NULL_HANDLE(GetDeviceFaceLibraryNum, &number), NULL_HANDLE(GetSingleRecognize, text, 8),
        NULL_HANDLE(Ping, "p", 1), NULL_HANDLE(UploadPackageSlice, 0, "p", 1), NULL_HANDLE(ApplyUpgrade, "h", 1),
        NULL_HANDLE(GetDeviceVersion, text, 8), NULL_HANDLE(Reboot, 0), NULL_HANDLE(SetUmodeToEngin),
        NULL_HANDLE(Reset), NULL_HANDLE(Recovery, 0), NULL_HANDLE(GetDevSn, 0, text, 8),
        NULL_HANDLE(GetDevModel, text, 8), NULL_HANDLE(SetUvcSwitch, 0), NULL_HANDLE(SetCameraStream, 0, 0),
        NULL_HANDLE(GetCameraStream, 0, &byte), NULL_HANDLE(SwitchCamRgbIr, 0), NULL_HANDLE(SetStreamFormat, 0),
        NULL_HANDLE(GetDevModelAppVer, text, 8), NULL_HANDLE(GetLuminousSensitivityThreshold, &number),
        NULL_HANDLE(GetDeviceNoFlickerHz, 0, &byte, &byte), NULL_HANDLE(SetDeviceNoFlickerHz, 0, 0, 0),
        NULL_HANDLE(SetRotateAngle, 0), NULL_HANDLE(GetScreenDirection, &byte), NULL_HANDLE(SetScreenDirection, 1),
        NULL_HANDLE(SetResolution, 0), NULL_HANDLE(GetFrameRate, &number), NULL_HANDLE(SetFrameRate, 10),
        NULL_HANDLE(GetIRlight, &byte, &byte), NULL_HANDLE(SetIRlight, 0, 0), NULL_HANDLE(GetCpuTemperature, &number),
        NULL_HANDLE(GetAESensorModel, &number), NULL_HANDLE(CloseAutoUploadAiInfo),
        NULL_HANDLE(OpenAutoUploadAiInfo, 0, 0),
        // The connection functions and DeInitDev write "[ERROR ]", the camera's "[ERROR]", DeInit no newline.
        {"ConnectSerial", [] { return ConnectSerial(nullptr, "/dev/ttyACM0"); }, -1, "[ERROR ] " + refused},
        {"DisconnectSerial", [] { return DisconnectSerial(nullptr); }, -1, "[ERROR ] " + refused},
        {"ConnectCamera", [] { return ConnectCamera(nullptr, "/dev/video0"); }, -1, "[ERROR] " + refused},
        {"DisconnectCamera", [] { return DisconnectCamera(nullptr); }, -1, "[ERROR] " + refused},
        {"DeInitDev", [] { return DeInitDev(nullptr); }, -1, "[ERROR ] " + refused},
        {"DeInit", [] { return DeInit(nullptr); }, -1, "[ERROR ] dev == nullptr" + refused.substr(15)},
        {"DeleteFace", [] { return DeleteFace(nullptr, 1, kBob, 3); }, -1,
         DeleteFaceNote(kBob) + "[ERROR] " + refused},
    };
#undef NULL_HANDLE
    EXPECT_EQ(68u, rows.size());  // all that take a handle but the registrations and the playback extension
    NewRecords records;
    Check(rows);
    for (const TraceEntry& entry : records.Take())
        EXPECT_TRUE(HeaderNamesFile(entry, "ai_camera")) << entry.function;
}
