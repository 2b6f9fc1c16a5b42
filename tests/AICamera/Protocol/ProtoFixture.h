// Shared pieces of the protocol tests: the simulator on a pty with the command
// manager started on it, the trace log of the case's scratch directory, and a
// report handler that records what reaches it.
#ifndef TESTS_PROTO_PROTOFIXTURE_H
#define TESTS_PROTO_PROTOFIXTURE_H

#include <dirent.h>

#include <chrono>
#include <fstream>
#include <functional>
#include <list>
#include <mutex>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "AICamera/Protocol/Command.h"
#include "AICamera/Protocol/CommandManager.h"
#include "AICamera/Log/Log.h"
#include "ModuleSimulator.h"

using sim::Bytes;

// Polls a condition until it holds or the deadline passes.
inline bool WaitUntil(const std::function<bool()>& condition, int timeoutMs = 5000)
{
    auto deadline = std::chrono::steady_clock::now() + std::chrono::milliseconds(timeoutMs);
    while (!condition()) {
        if (std::chrono::steady_clock::now() > deadline)
            return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
    return true;
}

// The names in dir but . and .., in no order.
inline std::vector<std::string> Entries(const std::string& dir)
{
    std::vector<std::string> names;
    if (DIR* listing = opendir(dir.c_str())) {
        while (struct dirent* entry = readdir(listing))
            if (entry->d_name[0] != '.')
                names.push_back(entry->d_name);
        closedir(listing);
    }
    return names;
}
inline size_t ThreadCount() { return Entries("/proc/self/task").size(); }
inline size_t FdCount() { return Entries("/proc/self/fd").size(); }

// Everything the logger wrote under Log/ in this case's scratch directory.
inline std::string ReadLog()
{
    std::ostringstream text;
    for (const std::string& name : Entries("Log"))
        text << std::ifstream("Log/" + name).rdbuf();
    return text.str();
}

inline bool WaitForLog(const std::string& text)
{
    return WaitUntil([&] { return ReadLog().find(text) != std::string::npos; });
}

inline void StartFileLog() { ASSERT_EQ(0, Log::GetInstance()->Init(LOG_LEVER_TRACE, LOG_TARGET_FILE, "Log", ".log")); }

// The value of a command's first record, empty when it has none.
template <class AnyCommand>
Bytes FirstValue(AnyCommand& cmd)
{
    TLVMessage record{};
    if (cmd.GetResult(&record) != 0 || !record.nLength)
        return Bytes();
    auto* value = static_cast<unsigned char*>(record.pValue);
    return Bytes(value, value + record.nLength);
}

class RecordingReport : public AsyncCommand {
public:
    explicit RecordingReport(unsigned short tag) { SetTag(tag); }
    int Process() override
    {
        {
            std::lock_guard<std::mutex> guard(m_lock);
            m_values.push_back(FirstValue(*this));
        }
        if (onReport)
            onReport();
        return 0;
    }
    std::vector<Bytes> Values()
    {
        std::lock_guard<std::mutex> guard(m_lock);
        return m_values;
    }
    bool WaitForReports(size_t n, int timeoutMs = 5000)
    {
        return WaitUntil([&] { return Values().size() >= n; }, timeoutMs);
    }
    // Runs on the listener thread after the report has been recorded.
    std::function<void()> onReport;

private:
    std::mutex m_lock;
    std::vector<Bytes> m_values;
};

inline sim::Handler Answer(const Bytes& value)
{
    return [value](const sim::Request&) { return std::optional<Bytes>(value); };
}

inline Bytes Report(unsigned short tag, const Bytes& value)
{
    return sim::ModuleSimulator::EncodeFrame(0xA1, sim::ModuleSimulator::EncodeTLV(tag, value));
}

// A simulator and the command manager, started on its pty by Start().
class LinkTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        StartFileLog();
        ASSERT_TRUE(module.Start());
    }
    void TearDown() override
    {
        manager->StopDataTransmit();
        module.Stop();
    }
    int Start()
    {
        std::string path = module.SlavePath();
        return manager->StartDataTransmit(&path[0]);
    }
    // One request through CommandManager::Execute with a one-record payload.
    int Run(unsigned short tag, const Bytes& value, Bytes* answer = nullptr, unsigned int timeoutMs = 5000)
    {
        SyncCommand cmd;
        cmd.SetTag(tag);
        cmd.AddTLV(tag, static_cast<unsigned int>(value.size()), const_cast<unsigned char*>(value.data()));
        cmd.SetTimeout(timeoutMs);
        int result = manager->Execute(&cmd, true);
        if (result == 0 && answer)
            *answer = FirstValue(cmd);
        return result;
    }
    // A handler that outlives the link, which is stopped in TearDown.
    RecordingReport& NewReport(unsigned short tag) { return reports.emplace_back(tag); }

    CommandManager* manager = CommandManager::GetInstance();
    sim::ModuleSimulator module;
    std::list<RecordingReport> reports;
};

#endif
