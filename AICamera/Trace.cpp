#include "Trace.h"

#include <stdio.h>

#include <string>

#include "Log.h"

namespace {
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

int TraceRecordV(LOG_LEVER level, const char* file, const char* function, int line,
                 const char* body, va_list args)
{
    Log* log = Log::GetInstance();
    // A filtered record is not composed at all: the receive path traces every frame.
    if (!log->Enabled(level))
        return 0;
    _mtx.Lock();
    char lineText[16];
    snprintf(lineText, sizeof lineText, "%d", line);
    std::string format = std::string(LevelTag(level)) + "[" + "FILE : " + file + "]" + "[" +
                         "FUNCTION : " + function + "]" + "[" + "LINE : " + lineText + "]\n" +
                         body;
    int written = log->VLog(level, format.c_str(), args);
    _mtx.Unlock();
    return written;
}

int TraceRecord(LOG_LEVER level, const char* file, const char* function, int line,
                const char* body, ...)
{
    va_list args;
    va_start(args, body);
    int written = TraceRecordV(level, file, function, line, body, args);
    va_end(args);
    return written;
}
