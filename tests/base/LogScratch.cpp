#include "LogScratch.h"

#include <ftw.h>
#include <limits.h>
#include <stdio.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <time.h>
#include <unistd.h>

#include <fstream>
#include <sstream>

namespace {
struct timeval g_fixedNow;

void FixedClock(struct timeval* now) { *now = g_fixedNow; }

int RemoveEntry(const char* path, const struct stat*, int, struct FTW*) { return remove(path); }
}  // namespace

void LogScratch::SetUp()
{
    char home[PATH_MAX];
    ASSERT_NE(getcwd(home, sizeof home), nullptr);
    m_home = home;
    char scratch[] = "logscratch.XXXXXX";
    ASSERT_NE(mkdtemp(scratch), nullptr);
    m_scratch = m_home + "/" + scratch;
    ASSERT_EQ(chdir(m_scratch.c_str()), 0);
}

void LogScratch::TearDown()
{
    Log::GetInstance()->Init(LOG_LEVER_OFF, LOG_TARGET_CONSOLE_FILE, "", "");
    Log::GetInstance()->SetClock(nullptr);
    ASSERT_EQ(chdir(m_home.c_str()), 0);
    nftw(m_scratch.c_str(), RemoveEntry, 16, FTW_DEPTH | FTW_PHYS);
}

void LogScratch::SetLocalClock(int year, int month, int day, int hour, int minute, int second)
{
    struct tm local = {};
    local.tm_year = year - 1900;
    local.tm_mon = month - 1;
    local.tm_mday = day;
    local.tm_hour = hour;
    local.tm_min = minute;
    local.tm_sec = second;
    local.tm_isdst = -1;
    g_fixedNow.tv_sec = mktime(&local);
    g_fixedNow.tv_usec = 0;
    Log::GetInstance()->SetClock(&FixedClock);
}

std::string LogScratch::CaptureConsole(const std::function<void()>& body)
{
    testing::internal::CaptureStdout();
    body();
    return testing::internal::GetCapturedStdout();
}

std::string LogScratch::ReadFile(const std::string& path)
{
    std::ifstream in(path.c_str());
    std::ostringstream text;
    text << in.rdbuf();
    return text.str();
}

bool LogScratch::Exists(const std::string& path) { return access(path.c_str(), F_OK) == 0; }
