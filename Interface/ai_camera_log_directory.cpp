// Where the daily log files go.
#include <string.h>

#include <string>

#include "AICamera/Log/Log.h"
#include "AICamera/Log/Trace.h"
#include "ai_camera_ext.h"

#define TRACE_FILE "ai_camera"

namespace {
const size_t kMaxDirectoryLength = 4095;
}  // namespace

int SetLogDirectory(const char* dir)
{
    const char* refusal = nullptr;
    if (!dir)
        refusal = "dir == nullptr";
    else if (!dir[0])
        refusal = "!strlen(dir)";
    else if (strnlen(dir, kMaxDirectoryLength + 1) > kMaxDirectoryLength)
        refusal = "strlen(dir) > 4095";
    if (refusal) {
        TRACE_AT(LOG_LEVER_DEBUG, "[ERROR] %s\n[INPUT ] invalid input\n[OUTPUT]\n[RETURN] nRet : %d\n", refusal, -4);
        return -4;
    }
    int nRet = Log::GetInstance()->SetDirectory(dir) ? 0 : AI_CAMERA_LOG_DIRECTORY_UNUSABLE;
    TRACE_AT(LOG_LEVER_DEBUG, "[INPUT ] dir : %s\n[OUTPUT]\n[RETURN] nRet : %d\n", dir, nRet);
    return nRet;
}
