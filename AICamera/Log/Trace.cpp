#include "Trace.h"

#include "Log.h"

int TraceRecordV(LOG_LEVER level, const char* file, const char* function, int line,
                 const char* body, va_list args)
{
    return Log::GetInstance()->Record(level, file, function, line, body, args);
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
