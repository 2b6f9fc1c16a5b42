// Result texts, the log directory and the version, as applications ask for them.
#include <sys/stat.h>
#include <unistd.h>

#include <fstream>
#include <set>

#include "DeviceTest.h"
#include "ai_camera_ext.h"

using ResultsAndLog = DeviceTest;

TEST_F(ResultsAndLog, EveryCodeHasItsOwnStaticTextAndModuleStatusesAreNumbered)
{
    std::set<std::string> texts;
    for (int code = -14; code <= 0; ++code) {
        const char* text = GetResultText(code);
        ASSERT_NE(nullptr, text);
        EXPECT_NE("unknown result code", std::string(text)) << code;
        texts.insert(text);
        EXPECT_EQ(text, GetResultText(code)) << "the same static text every time";
    }
    EXPECT_EQ(15u, texts.size()) << "no two codes share a text";
    EXPECT_STREQ("success", GetResultText(0));
    EXPECT_STREQ("module status 1", GetResultText(1));
    EXPECT_STREQ("module status 128", GetResultText(128));
    EXPECT_STREQ("module status 255", GetResultText(255));
    EXPECT_STREQ("unknown result code", GetResultText(256));
    EXPECT_STREQ("unknown result code", GetResultText(-15));
    EXPECT_STREQ("the log directory cannot be created or written", GetResultText(AI_CAMERA_LOG_DIRECTORY_UNUSABLE));
    const char* text = GetResultText(-6);
    EXPECT_EQ("[INPUT ] code : -6\n[OUTPUT] text : " + std::string(text) + "\n[RETURN] text : " + Ptr(text) + "\n",
              LastRecord("GetResultText"));
}

namespace {
// The day's log file in `dir`.
std::string DayFile(const std::string& dir)
{
    char date[16];
    time_t now = time(nullptr);
    struct tm local;
    localtime_r(&now, &local);
    strftime(date, sizeof date, "%Y%m%d", &local);
    std::ifstream file(dir + "/" + date + ".log");
    return std::string(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
}

// The logger outlives the test: its directory goes back to the default.
struct DefaultLogDirectory {
    ~DefaultLogDirectory() { SetLogDirectory("Log"); }
};
}  // namespace

TEST_F(ResultsAndLog, LogFilesMoveToTheDirectoryGivenAndStayThereAcrossConfigurations)
{
    DefaultLogDirectory restore;
    Answer(0x16, {0x00});
    ASSERT_EQ(0, SetLogDirectory("service/logs"));
    ASSERT_EQ(0, QueryRecognize(dev));
    struct stat info;
    ASSERT_EQ(0, stat("service/logs", &info));
    EXPECT_TRUE(S_ISDIR(info.st_mode));
    std::string moved = DayFile("service/logs");
    EXPECT_NE(std::string::npos, moved.find("[FUNCTION : SetLogDirectory]"));
    EXPECT_NE(std::string::npos, moved.find("[FUNCTION : QueryRecognize]"));
    EXPECT_EQ(std::string::npos, TraceLog::Text().find("[FUNCTION : QueryRecognize]")) << "nothing more under Log/";
    // A new configuration keeps the directory and writes its version record there.
    ASSERT_EQ(0, SetLogConfig(LOG_LEVER_DEBUG, LOG_TARGET_FILE));
    EXPECT_NE(std::string::npos, DayFile("service/logs").find("SDK VERSION :" AI_CAMERA_VERSION_TEXT));

    EXPECT_EQ(-4, SetLogDirectory(nullptr));
    EXPECT_NE(std::string::npos,
              DayFile("service/logs").find("[ERROR] dir == nullptr\n[INPUT ] invalid input\n[OUTPUT]\n[RETURN] nRet : -4\n"));
    EXPECT_EQ(-4, SetLogDirectory(""));
    EXPECT_EQ(-4, SetLogDirectory(std::string(5000, 'd').c_str()));
    EXPECT_EQ(AI_CAMERA_LOG_DIRECTORY_UNUSABLE, SetLogDirectory("/proc/no-logs-here"));
}

TEST_F(ResultsAndLog, TheVersionTextIsThePackageVersion)
{
    char version[32];
    ASSERT_EQ(0, GetSdkVersion(version, sizeof version));
    EXPECT_EQ(std::string("V") + AI_CAMERA_VERSION_STRING, version);
    EXPECT_EQ(std::string(AICAM_PACKAGE_VERSION), AI_CAMERA_VERSION_STRING);
    char major[8];
    snprintf(major, sizeof major, "%d.", AI_CAMERA_VERSION_MAJOR);
    EXPECT_EQ(0u, std::string(AI_CAMERA_VERSION_STRING).find(major));
}
