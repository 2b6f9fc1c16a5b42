// The process-wide logger: levels, console/file targets and one file a day.
#ifndef AICAMERA_LOG_H
#define AICAMERA_LOG_H

#include <stdarg.h>
#include <sys/time.h>

#include <atomic>
#include <fstream>
#include <sstream>
#include <string>

#include "../../Interface/ai_camera.h"  // LOG_LEVER, LOG_TARGET
#include "../../OS/OS_Mutex.h"
#include "ai_camera_version.h"

// Held by every caller while it composes and emits one record.
extern OS_Mutex _mtx;

#define SDK_VERSION_TEXT AI_CAMERA_VERSION_TEXT

template <typename T>
std::string num2str(const T& value)
{
    std::ostringstream out;
    out << value;
    return out.str();
}

class Log {
public:
    typedef void (*ClockFunc)(struct timeval* now);

    static Log* GetInstance();

    int Init(LOG_LEVER level, LOG_TARGET target, const std::string& path, const std::string& name);
    int GetLogConfig(int* level, int* target);
    // The directory that the next Init is given ("Log" until changed). When
    // records go to files now, they go to the new directory from the next one
    // on. False when the directory cannot be made or written.
    bool SetDirectory(const std::string& path);
    std::string Directory();

    int Trace(const char* format, ...) __attribute__((format(printf, 2, 3)));
    int Debug(const char* format, ...) __attribute__((format(printf, 2, 3)));
    int Info(const char* format, ...) __attribute__((format(printf, 2, 3)));
    int Warn(const char* format, ...) __attribute__((format(printf, 2, 3)));
    int Error(const char* format, ...) __attribute__((format(printf, 2, 3)));
    int Fatal(const char* format, ...) __attribute__((format(printf, 2, 3)));
    // The level methods' shared body, for callers that hold a va_list.
    int VLog(LOG_LEVER method, const char* format, va_list args);
    // One trace record: the call-site header ("[DEBUG] [FILE : f][FUNCTION : g]
    // [LINE : n]"), then the body, composed and written under _mtx so that
    // records from different threads never mix.
    int Record(LOG_LEVER level, const char* file, const char* function, int line, const char* body,
               va_list args);
    int RecordAt(LOG_LEVER level, const char* file, const char* function, int line, const char* body, ...)
        __attribute__((format(printf, 6, 7)));
    // Whether a method of this level would write: callers skip composing otherwise.
    bool Enabled(LOG_LEVER method) const { return m_nLever <= method; }

    int WriteLog(const std::string& message);
    int WriteFile(const std::string& record);
    bool Makedir(const std::string& path);
    std::string GetCurrDate();
    std::string GetCurrTime();

    // Replaces the wall clock (null restores it) so that tests can cross midnight.
    void SetClock(ClockFunc clock);

private:
    Log();
    struct tm LocalNow();

    std::string m_strPath;
    std::string m_strDirectory;  // guarded by _mtx
    std::string m_strName;
    std::ofstream m_file;
    // Read by every thread that traces, written by Init.
    std::atomic<int> m_nLever;
    std::atomic<int> m_nTarget;
    ClockFunc m_pClock;
};

#endif
