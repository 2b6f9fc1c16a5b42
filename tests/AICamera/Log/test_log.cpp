// The logger and the trace records composed on top of it, with a clock the
// test sets; each case runs in a scratch directory of its own.
#include <stdio.h>
#include <time.h>
#include <unistd.h>

#include <fstream>
#include <functional>
#include <sstream>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "AICamera/Log/Log.h"
#include "AICamera/Log/Trace.h"
#include "OS/OS_Semaphore.h"

#define TRACE_FILE "trace_unit"

namespace {

const std::string kStamp = "[20260115 10:20:30]";
const std::string kToday = "/20260115.log";
struct timeval g_now;

void FixedClock(struct timeval* now) { *now = g_now; }

// Makes the logger's clock read this local time, given as "YYYYMMDD HH:MM:SS".
void SetLocalClock(const char* text)
{
    struct tm local = {};
    ASSERT_NE(strptime(text, "%Y%m%d %H:%M:%S", &local), nullptr);
    local.tm_isdst = -1;
    g_now.tv_sec = mktime(&local);
    g_now.tv_usec = 0;
    Log::GetInstance()->SetClock(&FixedClock);
}

std::string ReadFile(const std::string& path)
{
    std::ostringstream text;
    text << std::ifstream(path).rdbuf();
    return text.str();
}

bool Exists(const std::string& path) { return access(path.c_str(), F_OK) == 0; }

std::string Console(const std::function<void()>& body)
{
    testing::internal::CaptureStdout();
    body();
    return testing::internal::GetCapturedStdout();
}

// The version record Init writes for levels 0 to 2; only its line number is left open.
bool IsVersionRecord(const std::string& text)
{
    const std::string head = kStamp + "[INFO ] [FILE : Log][FUNCTION : Init][LINE : ";
    const std::string tail = "]\nSDK VERSION :V4.2.0.2\n\n";
    if (text.size() <= head.size() + tail.size())
        return false;
    size_t end = text.size() - tail.size();
    return text.compare(0, head.size(), head) == 0 && text.compare(end, tail.size(), tail) == 0 &&
           text.find_first_not_of("0123456789", head.size()) == end;
}

// GetLogConfig's level and target; it must accept the pair it hands out.
std::pair<int, int> Config()
{
    int level = -1, target = -1;
    EXPECT_EQ(Log::GetInstance()->GetLogConfig(&level, &target), 0);
    return {level, target};
}

class LogTest : public ::testing::Test {
protected:
    void SetUp() override { SetLocalClock("20260115 10:20:30"); }
    // Leaves the process-wide logger off and on the wall clock for the next case.
    void TearDown() override
    {
        log()->Init(LOG_LEVER_OFF, LOG_TARGET_CONSOLE_FILE, "", "");
        log()->SetClock(nullptr);
    }
    static Log* log() { return Log::GetInstance(); }
    // Trace records go to logs/, without the version record.
    static void TraceToFileFrom(LOG_LEVER level)
    {
        ASSERT_EQ(log()->Init(level, LOG_TARGET_FILE, "logs", ".log"), 0);
        remove(("logs" + kToday).c_str());
    }
};

TEST_F(LogTest, FreshLoggerIsOffAndLevelThreeFiltersTheLowerMethods)
{
    EXPECT_EQ(Config(), std::make_pair(6, 2));
    EXPECT_EQ(Console([] { EXPECT_EQ(log()->Fatal("f"), 0); }), "");
    ASSERT_EQ(log()->Init(LOG_LEVER_WARN, LOG_TARGET_CONSOLE, "unused", ".log"), 0);
    std::string console = Console([] {
        EXPECT_EQ(log()->Trace("trace %d", 0), 0);
        EXPECT_EQ(log()->Debug("debug %d", 1), 0);
        EXPECT_EQ(log()->Info("info %d", 2), 0);
        EXPECT_EQ(log()->Warn("warn %d", 3), 1);
        EXPECT_EQ(log()->Error("error %d", 4), 1);
        EXPECT_EQ(log()->Fatal("fatal %d", 5), 1);
        EXPECT_EQ(TraceRecord(LOG_LEVER_INFO, "f", "g", 1, "dropped\n"), 0);
    });
    EXPECT_EQ(console, kStamp + "warn 3\n" + kStamp + "error 4\n" + kStamp + "fatal 5\n");
    EXPECT_FALSE(Exists("unused"));
}

TEST_F(LogTest, EachTargetWritesWhereItSaysAndCutsAt2046Characters)
{
    std::string longText(3000, 'x');
    longText[2045] = 'L';  // the last character kept
    const std::string records = kStamp + "one 7\n" + kStamp + longText.substr(0, 2046) + "\n";
    const struct { LOG_TARGET target; bool console, file; } rows[] = {
        {LOG_TARGET_CONSOLE, true, false}, {LOG_TARGET_FILE, false, true}, {LOG_TARGET_CONSOLE_FILE, true, true}};
    for (const auto& r : rows) {
        SCOPED_TRACE(testing::Message() << "target " << r.target);
        std::string dir = "t" + std::to_string(r.target);
        ASSERT_EQ(log()->Init(LOG_LEVER_WARN, r.target, dir, ".log"), 0);
        std::string console = Console([&] {
            EXPECT_EQ(log()->Fatal("%s %d", "one", 7), 1);
            EXPECT_EQ(log()->Warn("%s", longText.c_str()), 1);
        });
        EXPECT_EQ(console, r.console ? records : "");
        EXPECT_EQ(ReadFile(dir + kToday), r.file ? records : "");
    }
}

TEST_F(LogTest, InitWritesTheVersionRecordUpToInfoAndMakesTheWholePath)
{
    const struct { LOG_LEVER level; LOG_TARGET target; const char* dir; bool console, file, made; } rows[] = {
        {LOG_LEVER_OFF, LOG_TARGET_CONSOLE_FILE, "off", false, false, false},
        {LOG_LEVER_INFO, LOG_TARGET_CONSOLE, "info", true, false, false},
        {LOG_LEVER_TRACE, LOG_TARGET_FILE, "a/b/c", false, true, true},
        {LOG_LEVER_DEBUG, LOG_TARGET_CONSOLE_FILE, "debug", true, true, true},
        {LOG_LEVER_WARN, LOG_TARGET_CONSOLE_FILE, "warn", false, false, true}};
    for (const auto& r : rows) {
        SCOPED_TRACE(r.dir);
        std::string console = Console([&] { EXPECT_EQ(log()->Init(r.level, r.target, r.dir, ".log"), 0); });
        EXPECT_EQ(Config(), (std::pair<int, int>(r.level, r.target)));
        EXPECT_TRUE(r.console ? IsVersionRecord(console) : console.empty()) << console;
        EXPECT_EQ(IsVersionRecord(ReadFile(r.dir + kToday)), r.file);
        EXPECT_EQ(Exists(std::string(r.dir) + "/"), r.made);
    }
    EXPECT_TRUE(log()->Makedir("x//y"));
    EXPECT_TRUE(Exists("x/y/"));
    EXPECT_TRUE(log()->Makedir("x/y"));  // already there
    { std::ofstream file("plain"); }
    EXPECT_FALSE(log()->Makedir("plain/sub"));
}

TEST_F(LogTest, RefusedInitStillReplacesTheSuffix)
{
    const struct { LOG_LEVER level; LOG_TARGET target; int code; std::string suffix; } rows[] = {
        {static_cast<LOG_LEVER>(7), LOG_TARGET_CONSOLE, -1, ".bad"},
        {LOG_LEVER_TRACE, static_cast<LOG_TARGET>(3), -2, ".worse"}};
    for (const auto& r : rows) {
        SCOPED_TRACE(r.suffix);
        std::string dir = "q" + r.suffix;
        ASSERT_EQ(log()->Init(LOG_LEVER_WARN, LOG_TARGET_FILE, dir, ".log"), 0);
        EXPECT_EQ(log()->Init(r.level, r.target, "other", r.suffix), r.code);
        EXPECT_EQ(Config(), (std::pair<int, int>(LOG_LEVER_WARN, LOG_TARGET_FILE)));
        EXPECT_EQ(log()->Warn("kept"), 1);
        EXPECT_EQ(ReadFile(dir + "/20260115" + r.suffix), kStamp + "kept\n");
        EXPECT_FALSE(Exists(dir + kToday));
        EXPECT_FALSE(Exists("other"));
    }
}

TEST_F(LogTest, RecordsBeforeAndAfterMidnightGoToTwoFiles)
{
    ASSERT_EQ(log()->Init(LOG_LEVER_WARN, LOG_TARGET_FILE, "days", ".log"), 0);
    SetLocalClock("20260114 23:59:59");
    EXPECT_EQ(log()->Warn("before"), 1);
    SetLocalClock("20260115 00:00:00");
    EXPECT_EQ(log()->Warn("after"), 1);
    EXPECT_EQ(ReadFile("days/20260114.log"), "[20260114 23:59:59]before\n");
    EXPECT_EQ(ReadFile("days/20260115.log"), "[20260115 00:00:00]after\n");
}

TEST_F(LogTest, TraceRecordIsHeaderBodyAndEmptyLineWithEachLevelsTag)
{
    TraceToFileFrom(LOG_LEVER_TRACE);
    EXPECT_EQ(TraceRecord(LOG_LEVER_DEBUG, "DeviceUnit", "Reboot", 3589, "[ERROR] mode %d\n[RETURN] %d\n", 5, -4), 1);
    for (LOG_LEVER level : {LOG_LEVER_TRACE, LOG_LEVER_INFO, LOG_LEVER_WARN, LOG_LEVER_ERROR, LOG_LEVER_FATAL})
        EXPECT_EQ(TraceRecord(level, "f", "g", 1, "%d\n", static_cast<int>(level)), 1);
    int line = __LINE__ + 1;
    EXPECT_EQ(TRACE_AT(LOG_LEVER_DEBUG, "[INPUT ] id = %s\n", "abc"), 1);
    const std::string at = "[FILE : f][FUNCTION : g][LINE : 1]\n";
    EXPECT_EQ(ReadFile("logs" + kToday),
              kStamp + "[DEBUG] [FILE : DeviceUnit][FUNCTION : Reboot][LINE : 3589]\n[ERROR] mode 5\n[RETURN] -4\n\n" +
                  kStamp + "[TRACE] " + at + "0\n\n" + kStamp + "[INFO ] " + at + "2\n\n" + kStamp + at + "3\n\n" +
                  kStamp + "[ERROR] " + at + "4\n\n" + kStamp + "[FATAL] " + at + "5\n\n" + kStamp +
                  "[DEBUG] [FILE : trace_unit][FUNCTION : TestBody][LINE : " + std::to_string(line) +
                  "]\n[INPUT ] id = abc\n\n");
}

TEST_F(LogTest, TraceRecordsFromManyThreadsStayWhole)
{
    TraceToFileFrom(LOG_LEVER_DEBUG);
    const int kThreads = 6, kRecords = 200;
    // Long bodies and a common start make unserialised writers overlap.
    const std::string padding(600, '.');
    auto record = [&](int t, int r) {
        return kStamp + "[DEBUG] [FILE : f][FUNCTION : g][LINE : " + std::to_string(t) + "]\n" + std::to_string(r) +
               padding + "\n\n";
    };
    OS_Semaphore start;
    ASSERT_EQ(start.Init(0), 0);
    std::vector<std::thread> threads;
    for (int t = 0; t < kThreads; ++t)
        threads.emplace_back([t, &start, &padding] {
            start.Wait(10000);
            for (int r = 0; r < kRecords; ++r)
                TraceRecord(LOG_LEVER_DEBUG, "f", "g", t, "%d%s\n", r, padding.c_str());
        });
    for (int t = 0; t < kThreads; ++t)
        start.Post();
    for (std::thread& thread : threads)
        thread.join();
    std::string text = ReadFile("logs" + kToday);
    size_t total = 0;
    for (int t = 0; t < kThreads; ++t) {
        for (int r = 0; r < kRecords; ++r) {
            ASSERT_NE(text.find(record(t, r)), std::string::npos) << record(t, r);
            total += record(t, r).size();
        }
    }
    EXPECT_EQ(text.size(), total);
    ASSERT_TRUE(_mtx.TryAcquire());  // the record lock is left free
    _mtx.Unlock();
}

}  // namespace
