// One trace record: the call-site header, then the caller's body, composed
// and written under _mtx so that records from different threads never mix.
#ifndef AICAMERA_TRACE_H
#define AICAMERA_TRACE_H

#include <stdarg.h>

#include "../../Interface/ai_camera.h"  // LOG_LEVER

// The level picks both the tag ("[DEBUG] ", "[ERROR] ", ...) and the Log
// method that filters the record. Returns what that method returns.
int TraceRecord(LOG_LEVER level, const char* file, const char* function, int line,
                const char* body, ...) __attribute__((format(printf, 5, 6)));
int TraceRecordV(LOG_LEVER level, const char* file, const char* function, int line,
                 const char* body, va_list args);

// Record at the call site; TRACE_FILE names the source unit in the header.
#define TRACE_AT(level, ...) TraceRecord(level, TRACE_FILE, __func__, __LINE__, __VA_ARGS__)

#endif
