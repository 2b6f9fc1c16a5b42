#include <stdio.h>

#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "AICamera/Trace.h"
#include "FunctionThread.h"
#include "LogScratch.h"
#include "OS/OS_Semaphore.h"

#define TRACE_FILE "trace_unit"

namespace {

const std::string kStamp = "[20260115 10:20:30]";
const std::string kFile = "logs/20260115.log";

class TraceTest : public LogScratch {
protected:
    void SetUp() override
    {
        LogScratch::SetUp();
        SetLocalClock(2026, 1, 15, 10, 20, 30);
    }
    static void LogToFileFrom(LOG_LEVER level)
    {
        ASSERT_EQ(Log::GetInstance()->Init(level, LOG_TARGET_FILE, "logs", ".log"), 0);
        remove(kFile.c_str());  // drops the version record, when there is one
    }
};

TEST_F(TraceTest, RecordIsTheCallSiteHeaderThenTheBodyThenAnEmptyLine)
{
    LogToFileFrom(LOG_LEVER_DEBUG);
    EXPECT_EQ(TraceRecord(LOG_LEVER_DEBUG, "DeviceUnit", "Reboot", 3589,
                          "[ERROR] mode %d\n[RETURN] %d\n", 5, -4),
              1);
    EXPECT_EQ(ReadFile(kFile), kStamp +
                                   "[DEBUG] [FILE : DeviceUnit][FUNCTION : Reboot][LINE : 3589]\n"
                                   "[ERROR] mode 5\n[RETURN] -4\n\n");
}

TEST_F(TraceTest, EachLevelHasItsTagAndWarnHasNone)
{
    LogToFileFrom(LOG_LEVER_TRACE);
    const LOG_LEVER levels[] = {LOG_LEVER_TRACE, LOG_LEVER_DEBUG, LOG_LEVER_INFO,
                                LOG_LEVER_WARN, LOG_LEVER_ERROR, LOG_LEVER_FATAL};
    for (LOG_LEVER level : levels)
        EXPECT_EQ(TraceRecord(level, "f", "g", 1, "%d\n", static_cast<int>(level)), 1);
    const std::string header = "[FILE : f][FUNCTION : g][LINE : 1]\n";
    EXPECT_EQ(ReadFile(kFile), kStamp + "[TRACE] " + header + "0\n\n" +
                                   kStamp + "[DEBUG] " + header + "1\n\n" +
                                   kStamp + "[INFO ] " + header + "2\n\n" +
                                   kStamp + header + "3\n\n" +
                                   kStamp + "[ERROR] " + header + "4\n\n" +
                                   kStamp + "[FATAL] " + header + "5\n\n");
}

TEST_F(TraceTest, RecordBelowTheLevelIsDropped)
{
    LogToFileFrom(LOG_LEVER_ERROR);
    EXPECT_EQ(TraceRecord(LOG_LEVER_DEBUG, "f", "g", 1, "dropped\n"), 0);
    EXPECT_EQ(TraceRecord(LOG_LEVER_ERROR, "f", "g", 2, "kept\n"), 1);
    EXPECT_EQ(ReadFile(kFile), kStamp + "[ERROR] [FILE : f][FUNCTION : g][LINE : 2]\nkept\n\n");
}

TEST_F(TraceTest, TraceAtNamesTheUnitFunctionAndLine)
{
    LogToFileFrom(LOG_LEVER_DEBUG);
    int line = __LINE__ + 1;
    EXPECT_EQ(TRACE_AT(LOG_LEVER_DEBUG, "[INPUT ] id = %s\n", "abc"), 1);
    EXPECT_EQ(ReadFile(kFile), kStamp + "[DEBUG] [FILE : trace_unit][FUNCTION : TestBody][LINE : " +
                                   std::to_string(line) + "]\n[INPUT ] id = abc\n\n");
}

TEST_F(TraceTest, TheRecordLockIsReadyAndFreeAfterFirstUse)
{
    Log::GetInstance();
    ASSERT_TRUE(_mtx.TryAcquire());
    _mtx.Unlock();
}

TEST_F(TraceTest, RecordsFromManyThreadsStayWhole)
{
    LogToFileFrom(LOG_LEVER_DEBUG);
    const int kThreads = 6;
    const int kRecords = 200;
    // Long bodies and a common start make unserialised writers overlap.
    const std::string padding(600, '.');
    OS_Semaphore start;
    ASSERT_EQ(start.Init(0), 0);
    std::vector<std::unique_ptr<FunctionThread>> threads;
    for (int t = 0; t < kThreads; ++t) {
        threads.emplace_back(new FunctionThread([t, &start, &padding] {
            start.Wait(10000);
            for (int r = 0; r < kRecords; ++r)
                TraceRecord(LOG_LEVER_DEBUG, "f", "g", t, "[OUTPUT] thread %d record %d %s\n[RETURN] 0\n",
                            t, r, padding.c_str());
        }));
        ASSERT_EQ(threads.back()->Run(), 0);
    }
    for (int t = 0; t < kThreads; ++t)
        start.Post();
    for (auto& thread : threads)
        OS_Thread::Join(thread.get());
    std::string text = ReadFile(kFile);
    size_t total = 0;
    for (int t = 0; t < kThreads; ++t) {
        for (int r = 0; r < kRecords; ++r) {
            std::string record = kStamp + "[DEBUG] [FILE : f][FUNCTION : g][LINE : " + std::to_string(t) +
                                 "]\n[OUTPUT] thread " + std::to_string(t) + " record " +
                                 std::to_string(r) + " " + padding + "\n[RETURN] 0\n\n";
            ASSERT_NE(text.find(record), std::string::npos) << record;
            total += record.size();
        }
    }
    EXPECT_EQ(text.size(), total);
}

}  // namespace
