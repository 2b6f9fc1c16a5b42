#include <unistd.h>

#include <fstream>
#include <string>
#include <utility>

#include <gtest/gtest.h>

#include "LogScratch.h"

namespace {

const char kStamp[] = "[20260115 10:20:30]";
const char kDay[] = "20260115";

// The version record that Init writes for levels 0 to 2, on the console and in
// the file alike; only its source line number is left open.
bool IsVersionRecord(const std::string& text)
{
    const std::string head = "[20260115 10:20:30][INFO ] [FILE : Log][FUNCTION : Init][LINE : ";
    const std::string tail = "]\nSDK VERSION :V4.2.0.2\n\n";
    if (text.size() <= head.size() + tail.size() || text.compare(0, head.size(), head) != 0 ||
        text.compare(text.size() - tail.size(), tail.size(), tail) != 0)
        return false;
    std::string line = text.substr(head.size(), text.size() - head.size() - tail.size());
    return line.find_first_not_of("0123456789") == std::string::npos;
}

// GetLogConfig hands out the stored pair and accepts it.
void ExpectConfig(int wantLevel, int wantTarget)
{
    int level = -1;
    int target = -1;
    EXPECT_EQ(Log::GetInstance()->GetLogConfig(&level, &target), 0);
    EXPECT_EQ(level, wantLevel);
    EXPECT_EQ(target, wantTarget);
}

class LogTest : public LogScratch {
protected:
    void SetUp() override
    {
        LogScratch::SetUp();
        SetLocalClock(2026, 1, 15, 10, 20, 30);
    }
    static Log* log() { return Log::GetInstance(); }
    static std::string DayFile(const std::string& dir, const std::string& suffix)
    {
        return dir + "/" + kDay + suffix;
    }
    // One fatal record through the given target: what reached the console and the file.
    static std::pair<std::string, std::string> WriteThrough(LOG_TARGET target)
    {
        EXPECT_EQ(log()->Init(LOG_LEVER_WARN, target, "logs", ".log"), 0);
        std::string console = CaptureConsole([] { EXPECT_EQ(log()->Fatal("%s %d", "record", 7), 1); });
        return std::make_pair(console, ReadFile(DayFile("logs", ".log")));
    }
};

TEST_F(LogTest, FreshLoggerIsOffAndWritesNothing)
{
    ExpectConfig(LOG_LEVER_OFF, LOG_TARGET_CONSOLE_FILE);
    std::string console = CaptureConsole([] {
        EXPECT_EQ(log()->Trace("t"), 0);
        EXPECT_EQ(log()->Debug("d"), 0);
        EXPECT_EQ(log()->Info("i"), 0);
        EXPECT_EQ(log()->Warn("w"), 0);
        EXPECT_EQ(log()->Error("e"), 0);
        EXPECT_EQ(log()->Fatal("f"), 0);
    });
    EXPECT_EQ(console, "");
}

TEST_F(LogTest, LevelThreeFiltersTraceDebugAndInfo)
{
    ASSERT_EQ(log()->Init(LOG_LEVER_WARN, LOG_TARGET_CONSOLE, "unused", ".log"), 0);
    std::string console = CaptureConsole([] {
        EXPECT_EQ(log()->Trace("trace %d", 0), 0);
        EXPECT_EQ(log()->Debug("debug %d", 1), 0);
        EXPECT_EQ(log()->Info("info %d", 2), 0);
        EXPECT_EQ(log()->Warn("warn %d", 3), 1);
        EXPECT_EQ(log()->Error("error %d", 4), 1);
        EXPECT_EQ(log()->Fatal("fatal %d", 5), 1);
    });
    EXPECT_EQ(console, std::string(kStamp) + "warn 3\n" + kStamp + "error 4\n" + kStamp + "fatal 5\n");
    EXPECT_FALSE(Exists("unused"));
}

TEST_F(LogTest, ConsoleTargetWritesStandardOutputOnly)
{
    std::pair<std::string, std::string> out = WriteThrough(LOG_TARGET_CONSOLE);
    EXPECT_EQ(out.first, std::string(kStamp) + "record 7\n");
    EXPECT_FALSE(Exists("logs"));
}

TEST_F(LogTest, FileTargetWritesTheDayFileOnly)
{
    std::pair<std::string, std::string> out = WriteThrough(LOG_TARGET_FILE);
    EXPECT_EQ(out.first, "");
    EXPECT_EQ(out.second, std::string(kStamp) + "record 7\n");
}

TEST_F(LogTest, ConsoleFileTargetWritesBoth)
{
    std::pair<std::string, std::string> out = WriteThrough(LOG_TARGET_CONSOLE_FILE);
    EXPECT_EQ(out.first, std::string(kStamp) + "record 7\n");
    EXPECT_EQ(out.second, std::string(kStamp) + "record 7\n");
}

TEST_F(LogTest, RecordsAreAppendedToTheDayFile)
{
    ASSERT_EQ(log()->Init(LOG_LEVER_WARN, LOG_TARGET_FILE, "logs", ".log"), 0);
    EXPECT_EQ(log()->Warn("one"), 1);
    EXPECT_EQ(log()->Error("two"), 1);
    EXPECT_EQ(ReadFile(DayFile("logs", ".log")), std::string(kStamp) + "one\n" + kStamp + "two\n");
}

TEST_F(LogTest, LongMessageIsCutTo2046Characters)
{
    ASSERT_EQ(log()->Init(LOG_LEVER_WARN, LOG_TARGET_FILE, "cut", ".log"), 0);
    std::string longText(3000, 'x');
    longText[2045] = 'L';  // the last character kept
    EXPECT_EQ(log()->Fatal("%s", longText.c_str()), 1);
    EXPECT_EQ(ReadFile(DayFile("cut", ".log")), std::string(kStamp) + longText.substr(0, 2046) + "\n");
}

TEST_F(LogTest, InitCreatesEveryDirectoryAlongARelativePath)
{
    ASSERT_EQ(log()->Init(LOG_LEVER_TRACE, LOG_TARGET_FILE, "a/b/c", ".log"), 0);
    EXPECT_TRUE(Exists("a/"));
    EXPECT_TRUE(Exists("a/b/"));
    EXPECT_TRUE(Exists("a/b/c/"));
    EXPECT_TRUE(IsVersionRecord(ReadFile(DayFile("a/b/c", ".log"))));
}

TEST_F(LogTest, MakedirHandlesDoubledSlashesEmptyPathsAndFiles)
{
    EXPECT_TRUE(log()->Makedir("x//y"));
    EXPECT_TRUE(Exists("x/y/"));
    EXPECT_TRUE(log()->Makedir(""));
    EXPECT_TRUE(log()->Makedir("x/y"));  // already there
    ASSERT_TRUE(log()->Makedir("plain"));
    ASSERT_EQ(rmdir("plain"), 0);
    { std::ofstream file("plain"); }
    EXPECT_FALSE(log()->Makedir("plain/sub"));
}

TEST_F(LogTest, RecordsBeforeAndAfterMidnightGoToTwoFiles)
{
    ASSERT_EQ(log()->Init(LOG_LEVER_WARN, LOG_TARGET_FILE, "days", ".log"), 0);
    SetLocalClock(2026, 1, 14, 23, 59, 59);
    EXPECT_EQ(log()->Warn("before"), 1);
    SetLocalClock(2026, 1, 15, 0, 0, 0);
    EXPECT_EQ(log()->Warn("after"), 1);
    EXPECT_EQ(ReadFile("days/20260114.log"), "[20260114 23:59:59]before\n");
    EXPECT_EQ(ReadFile("days/20260115.log"), "[20260115 00:00:00]after\n");
}

TEST_F(LogTest, DateAndTimeTextsArePaddedToTwoDigits)
{
    SetLocalClock(2026, 2, 5, 3, 4, 9);
    EXPECT_EQ(log()->GetCurrDate(), "20260205");
    EXPECT_EQ(log()->GetCurrTime(), "03:04:09");
    SetLocalClock(2026, 12, 31, 23, 59, 58);
    EXPECT_EQ(log()->GetCurrDate(), "20261231");
    EXPECT_EQ(log()->GetCurrTime(), "23:59:58");
}

// A refused Init keeps level, target and directory but has already replaced the suffix.
void ExpectRefusedInitOnlyReplacesTheSuffix(LOG_LEVER level, LOG_TARGET target, int code,
                                            const std::string& suffix)
{
    Log* log = Log::GetInstance();
    ASSERT_EQ(log->Init(LOG_LEVER_WARN, LOG_TARGET_FILE, "q", ".log"), 0);
    EXPECT_EQ(log->Init(level, target, "other", suffix), code);
    ExpectConfig(LOG_LEVER_WARN, LOG_TARGET_FILE);
    EXPECT_EQ(log->Warn("kept"), 1);
    EXPECT_EQ(LogScratch::ReadFile(std::string("q/") + kDay + suffix), std::string(kStamp) + "kept\n");
    EXPECT_FALSE(LogScratch::Exists(std::string("q/") + kDay + ".log"));
    EXPECT_FALSE(LogScratch::Exists("other"));
}

TEST_F(LogTest, RefusedLevelStillReplacesTheSuffix)
{
    ExpectRefusedInitOnlyReplacesTheSuffix(static_cast<LOG_LEVER>(7), LOG_TARGET_CONSOLE, -1, ".bad");
}

TEST_F(LogTest, RefusedTargetStillReplacesTheSuffix)
{
    ExpectRefusedInitOnlyReplacesTheSuffix(LOG_LEVER_TRACE, static_cast<LOG_TARGET>(3), -2, ".worse");
}

TEST_F(LogTest, InitOffWritesNoVersionAndCreatesNoDirectory)
{
    std::string console = CaptureConsole(
        [] { EXPECT_EQ(log()->Init(LOG_LEVER_OFF, LOG_TARGET_CONSOLE_FILE, "never", ".log"), 0); });
    EXPECT_EQ(console, "");
    EXPECT_FALSE(Exists("never"));
    EXPECT_EQ(log()->Fatal("off"), 0);
}

TEST_F(LogTest, InitInfoToConsolePrintsTheVersionRecordOnly)
{
    std::string console = CaptureConsole(
        [] { EXPECT_EQ(log()->Init(LOG_LEVER_INFO, LOG_TARGET_CONSOLE, "consoleonly", ".log"), 0); });
    EXPECT_TRUE(IsVersionRecord(console)) << console;
    EXPECT_FALSE(Exists("consoleonly"));
}

TEST_F(LogTest, InitToBothTargetsWritesTheVersionRecordTwice)
{
    std::string console = CaptureConsole(
        [] { EXPECT_EQ(log()->Init(LOG_LEVER_DEBUG, LOG_TARGET_CONSOLE_FILE, "Log", ".log"), 0); });
    EXPECT_TRUE(IsVersionRecord(console)) << console;
    EXPECT_TRUE(IsVersionRecord(ReadFile(DayFile("Log", ".log"))));
}

TEST_F(LogTest, InitAboveInfoCreatesTheDirectoryButWritesNoVersion)
{
    std::string console = CaptureConsole(
        [] { EXPECT_EQ(log()->Init(LOG_LEVER_WARN, LOG_TARGET_CONSOLE_FILE, "quiet", ".log"), 0); });
    EXPECT_EQ(console, "");
    EXPECT_TRUE(Exists("quiet/"));
    EXPECT_FALSE(Exists(DayFile("quiet", ".log")));
}

TEST_F(LogTest, GetLogConfigReportsWhatInitStored)
{
    ASSERT_EQ(log()->Init(LOG_LEVER_ERROR, LOG_TARGET_FILE, "cfg", ".log"), 0);
    ExpectConfig(LOG_LEVER_ERROR, LOG_TARGET_FILE);
}

}  // namespace
