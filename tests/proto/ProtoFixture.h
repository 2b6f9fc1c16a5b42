// Shared pieces of the protocol tests: a simulator on a pty, the command
// manager started on it, the trace log in the scratch directory, and a
// report handler that records what reaches it.
#ifndef TESTS_PROTO_PROTOFIXTURE_H
#define TESTS_PROTO_PROTOFIXTURE_H

#include <gtest/gtest.h>

#include <condition_variable>
#include <functional>
#include <list>
#include <mutex>
#include <string>
#include <vector>

#include "AICamera/Command.h"
#include "AICamera/CommandManager.h"
#include "ModuleSimulator.h"

using sim::Bytes;

// Polls a condition until it holds or the deadline passes.
bool WaitUntil(const std::function<bool()>& condition, int timeoutMs = 5000);
size_t CountEntries(const char* dir);
inline size_t ThreadCount() { return CountEntries("/proc/self/task"); }
inline size_t FdCount() { return CountEntries("/proc/self/fd"); }

// Everything the logger wrote to its file in this test's scratch directory.
std::string ReadLog();
void StartFileLog();
bool WaitForLog(const std::string& text, int timeoutMs = 5000);

class RecordingReport : public AsyncCommand {
public:
    explicit RecordingReport(unsigned short tag) { SetTag(tag); }
    int Process() override;
    bool WaitForReports(size_t n, int timeoutMs = 5000);
    std::vector<Bytes> Values();
    // Runs on the listener thread after the report has been recorded.
    std::function<void()> onReport;

private:
    std::mutex m_lock;
    std::condition_variable m_changed;
    std::vector<Bytes> m_values;
};

// A simulator and the command manager started on its pty.
class LinkTest : public ::testing::Test {
protected:
    void SetUp() override;
    void TearDown() override;
    int Start();
    // One request through CommandManager::Execute with a one-record payload.
    int Run(unsigned short tag, const Bytes& value, Bytes* answer = nullptr, unsigned int timeoutMs = 5000);

    // A handler that outlives the link, which is stopped in TearDown.
    RecordingReport& NewReport(unsigned short tag) { return reports.emplace_back(tag); }

    CommandManager* manager = CommandManager::GetInstance();
    sim::ModuleSimulator module;
    std::list<RecordingReport> reports;
};

#endif
