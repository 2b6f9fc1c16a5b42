#include "Log.h"

#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/stat.h>
#include <time.h>
#include <unistd.h>

#include <iostream>
#include <mutex>


OS_Mutex _mtx;

namespace {
const int kFormatBufferSize = 2048;

void WallClock(struct timeval* now) { gettimeofday(now, nullptr); }

std::string TwoDigits(int value)
{
    std::string text = num2str<int>(value);
    return value < 10 ? "0" + text : text;
}
const char* LevelTag(LOG_LEVER level)
{
    switch (level) {
    case LOG_LEVER_TRACE: return "[TRACE] ";
    case LOG_LEVER_DEBUG: return "[DEBUG] ";
    case LOG_LEVER_INFO: return "[INFO ] ";
    case LOG_LEVER_ERROR: return "[ERROR] ";
    case LOG_LEVER_FATAL: return "[FATAL] ";
    default: return "";
    }
}
}  // namespace

Log::Log() : m_strDirectory("Log"), m_nLever(LOG_LEVER_OFF), m_nTarget(LOG_TARGET_CONSOLE_FILE), m_pClock(&WallClock) {}

Log* Log::GetInstance()
{
    static Log* instance = nullptr;
    static std::once_flag once;
    std::call_once(once, [] {
        _mtx.Init();
        instance = new Log();
    });
    return instance;
}

int Log::Init(LOG_LEVER level, LOG_TARGET target, const std::string& path, const std::string& name)
{
    // The suffix is replaced even when the call is then refused.
    m_strName = name;
    if (static_cast<unsigned int>(level) > LOG_LEVER_OFF)
        return -1;
    if (static_cast<unsigned int>(target) > LOG_TARGET_CONSOLE_FILE)
        return -2;
    m_nLever = level;
    m_nTarget = target;
    if (level == LOG_LEVER_OFF)
        return 0;
    if (target == LOG_TARGET_FILE || target == LOG_TARGET_CONSOLE_FILE) {
        m_strPath = path;
        Makedir(path);
    }
    RecordAt(LOG_LEVER_INFO, "Log", "Init", __LINE__, "SDK VERSION :%s\n", SDK_VERSION_TEXT);
    return 0;
}

bool Log::SetDirectory(const std::string& path)
{
    bool usable = Makedir(path) && access(path.c_str(), W_OK | X_OK) == 0;
    // Records are written under _mtx: none goes half to the old directory.
    _mtx.Lock();
    m_strDirectory = path;
    if (m_nLever != LOG_LEVER_OFF && (m_nTarget == LOG_TARGET_FILE || m_nTarget == LOG_TARGET_CONSOLE_FILE))
        m_strPath = path;
    _mtx.Unlock();
    return usable;
}

std::string Log::Directory()
{
    _mtx.Lock();
    std::string directory = m_strDirectory;
    _mtx.Unlock();
    return directory;
}

int Log::Record(LOG_LEVER level, const char* file, const char* function, int line, const char* body,
                va_list args)
{
    // A filtered record is not composed at all: the receive path traces every frame.
    if (!Enabled(level))
        return 0;
    _mtx.Lock();
    char lineText[16];
    snprintf(lineText, sizeof lineText, "%d", line);
    std::string format = std::string(LevelTag(level)) + "[" + "FILE : " + file + "]" + "[" +
                         "FUNCTION : " + function + "]" + "[" + "LINE : " + lineText + "]\n" +
                         body;
    int written = VLog(level, format.c_str(), args);
    _mtx.Unlock();
    return written;
}

int Log::RecordAt(LOG_LEVER level, const char* file, const char* function, int line, const char* body, ...)
{
    va_list args;
    va_start(args, body);
    int written = Record(level, file, function, line, body, args);
    va_end(args);
    return written;
}

int Log::GetLogConfig(int* level, int* target)
{
    *level = m_nLever;
    *target = m_nTarget;
    if (static_cast<unsigned int>(m_nLever) > LOG_LEVER_OFF)
        return -1;
    if (static_cast<unsigned int>(m_nTarget) > LOG_TARGET_CONSOLE_FILE)
        return -2;
    return 0;
}

int Log::VLog(LOG_LEVER method, const char* format, va_list args)
{
    if (m_nLever > method)
        return 0;
    char* buffer = static_cast<char*>(calloc(kFormatBufferSize, 1));
    if (!buffer)
        return 0;
    vsnprintf(buffer, kFormatBufferSize - 1, format, args);
    WriteLog(std::string(buffer));
    free(buffer);
    return 1;
}

#define LOG_LEVEL_METHOD(NAME, LEVEL)                \
    int Log::NAME(const char* format, ...)           \
    {                                                \
        va_list args;                                \
        va_start(args, format);                      \
        int written = VLog(LEVEL, format, args);     \
        va_end(args);                                \
        return written;                              \
    }

LOG_LEVEL_METHOD(Trace, LOG_LEVER_TRACE)
LOG_LEVEL_METHOD(Debug, LOG_LEVER_DEBUG)
LOG_LEVEL_METHOD(Info, LOG_LEVER_INFO)
LOG_LEVEL_METHOD(Warn, LOG_LEVER_WARN)
LOG_LEVEL_METHOD(Error, LOG_LEVER_ERROR)
LOG_LEVEL_METHOD(Fatal, LOG_LEVER_FATAL)

int Log::WriteLog(const std::string& message)
{
    std::string time = GetCurrTime();
    std::string date = GetCurrDate();
    std::string record = "[" + date + " " + time + "]" + message;
    if (m_nTarget == LOG_TARGET_CONSOLE || m_nTarget == LOG_TARGET_CONSOLE_FILE) {
        printf("%s", record.c_str());
        std::cout << std::endl;
    }
    if (m_nTarget == LOG_TARGET_FILE || m_nTarget == LOG_TARGET_CONSOLE_FILE)
        WriteFile(record);
    return 1;
}

int Log::WriteFile(const std::string& record)
{
    std::string file = m_strPath + "/" + GetCurrDate() + m_strName;
    m_file.open(file.c_str(), std::ios::out | std::ios::app);
    m_file << record << std::endl;
    m_file.flush();
    m_file.close();
    m_file.clear();
    return 1;
}

bool Log::Makedir(const std::string& path)
{
    std::istringstream pieces(path);
    std::string piece;
    std::string prefix;
    while (std::getline(pieces, piece, '/')) {
        prefix += piece + "/";
        if (access(prefix.c_str(), F_OK) == 0)
            continue;
        if (mkdir(prefix.c_str(), 0777) != 0)
            return false;
    }
    return true;
}

struct tm Log::LocalNow()
{
    struct timeval now;
    m_pClock(&now);
    time_t seconds = now.tv_sec;
    struct tm local;
    localtime_r(&seconds, &local);
    return local;
}

std::string Log::GetCurrDate()
{
    struct tm now = LocalNow();
    return num2str<int>(now.tm_year + 1900) + TwoDigits(now.tm_mon + 1) + TwoDigits(now.tm_mday);
}

std::string Log::GetCurrTime()
{
    struct tm now = LocalNow();
    return TwoDigits(now.tm_hour) + ":" + TwoDigits(now.tm_min) + ":" + TwoDigits(now.tm_sec);
}

void Log::SetClock(ClockFunc clock) { m_pClock = clock ? clock : &WallClock; }
