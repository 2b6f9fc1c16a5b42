#include "ProtoFixture.h"

#include <dirent.h>
#include <unistd.h>

#include <chrono>
#include <fstream>
#include <sstream>
#include <thread>

#include "AICamera/Log.h"

namespace {
const char kLogDir[] = "Log";
}

bool WaitUntil(const std::function<bool()>& condition, int timeoutMs)
{
    auto deadline = std::chrono::steady_clock::now() + std::chrono::milliseconds(timeoutMs);
    while (!condition()) {
        if (std::chrono::steady_clock::now() > deadline)
            return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
    return true;
}

size_t CountEntries(const char* dir)
{
    size_t count = 0;
    DIR* listing = opendir(dir);
    if (!listing)
        return 0;
    while (struct dirent* entry = readdir(listing)) {
        if (entry->d_name[0] != '.')
            ++count;
    }
    closedir(listing);
    return count;
}

std::string ReadLog()
{
    std::string text;
    DIR* listing = opendir(kLogDir);
    if (!listing)
        return text;
    while (struct dirent* entry = readdir(listing)) {
        if (entry->d_name[0] == '.')
            continue;
        std::ifstream file(std::string(kLogDir) + "/" + entry->d_name);
        std::stringstream content;
        content << file.rdbuf();
        text += content.str();
    }
    closedir(listing);
    return text;
}

void StartFileLog()
{
    ASSERT_EQ(0, Log::GetInstance()->Init(LOG_LEVER_TRACE, LOG_TARGET_FILE, kLogDir, ".log"));
    // Each test reads only its own records.
    if (DIR* listing = opendir(kLogDir)) {
        while (struct dirent* entry = readdir(listing)) {
            if (entry->d_name[0] != '.')
                unlink((std::string(kLogDir) + "/" + entry->d_name).c_str());
        }
        closedir(listing);
    }
}

bool WaitForLog(const std::string& text, int timeoutMs)
{
    return WaitUntil([&] { return ReadLog().find(text) != std::string::npos; }, timeoutMs);
}

int RecordingReport::Process()
{
    TLVMessage record{};
    Bytes value;
    if (GetResult(&record) == 0 && record.nLength)
        value.assign(static_cast<unsigned char*>(record.pValue),
                     static_cast<unsigned char*>(record.pValue) + record.nLength);
    {
        std::lock_guard<std::mutex> guard(m_lock);
        m_values.push_back(value);
    }
    m_changed.notify_all();
    if (onReport)
        onReport();
    return 0;
}

bool RecordingReport::WaitForReports(size_t n, int timeoutMs)
{
    std::unique_lock<std::mutex> guard(m_lock);
    return m_changed.wait_for(guard, std::chrono::milliseconds(timeoutMs), [&] { return m_values.size() >= n; });
}

std::vector<Bytes> RecordingReport::Values()
{
    std::lock_guard<std::mutex> guard(m_lock);
    return m_values;
}

void LinkTest::SetUp()
{
    StartFileLog();
    ASSERT_TRUE(module.Start());
}

void LinkTest::TearDown()
{
    manager->StopDataTransmit();
    module.Stop();
}

int LinkTest::Start()
{
    std::string path = module.SlavePath();
    return manager->StartDataTransmit(&path[0]);
}

int LinkTest::Run(unsigned short tag, const Bytes& value, Bytes* answer, unsigned int timeoutMs)
{
    SyncCommand cmd;
    cmd.SetTag(tag);
    cmd.AddTLV(tag, static_cast<unsigned int>(value.size()), const_cast<unsigned char*>(value.data()));
    cmd.SetTimeout(timeoutMs);
    int result = manager->Execute(&cmd, true);
    TLVMessage record{};
    if (result == 0 && answer && cmd.GetResult(&record) == 0)
        answer->assign(static_cast<unsigned char*>(record.pValue),
                       static_cast<unsigned char*>(record.pValue) + record.nLength);
    return result;
}
