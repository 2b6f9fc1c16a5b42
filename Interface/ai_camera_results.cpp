// The words for every result code, shared by applications and aicam.
#include <stdio.h>

#include <mutex>

#include "AICamera/Log/Trace.h"
#include "ai_camera_ext.h"

#define TRACE_FILE "ai_camera"

namespace {
struct CodeText {
    int code;
    const char* text;
};

const CodeText kLibraryTexts[] = {
    {0, "success"},
    {-1, "no device handle, or the serial link is not connected"},
    {-2, "the serial port could not be opened"},
    {-3, "the module did not answer in time"},
    {-4, "an argument was refused as invalid"},
    {-5, "the stored log configuration is out of range"},
    {-6, "the request failed: the serial link is down or the module did not answer in time"},
    {-7, "the module's answer was missing or unusable"},
    {-8, "the module's answer had the wrong length"},
    {-9, "a report handler for this kind of report exists already"},
    {-10, "the video stream could not be opened or is gone"},
    {-11, "no new picture from the video stream"},
    {AI_CAMERA_LOG_DIRECTORY_UNUSABLE, "the log directory cannot be created or written"},
    {AI_CAMERA_UPGRADE_CANCELLED, "the upgrade was cancelled by its progress callback"},
    {AI_CAMERA_FILE_UNREADABLE, "the file cannot be read whole"},
};

const int kModuleStatusCount = 256;
const size_t kModuleStatusTextSize = sizeof "module status 255";

// "module status 1" .. "module status 255", made once and kept for the process.
const char* ModuleStatusText(int status)
{
    static char texts[kModuleStatusCount][kModuleStatusTextSize];
    static std::once_flag made;
    std::call_once(made, [] {
        for (int i = 0; i < kModuleStatusCount; ++i)
            snprintf(texts[i], kModuleStatusTextSize, "module status %d", i);
    });
    return texts[status];
}

const char* TextOf(int code)
{
    for (const CodeText& entry : kLibraryTexts)
        if (entry.code == code)
            return entry.text;
    if (code > 0 && code < kModuleStatusCount)
        return ModuleStatusText(code);
    return "unknown result code";
}
}  // namespace

const char* GetResultText(int code)
{
    const char* text = TextOf(code);
    TRACE_AT(LOG_LEVER_DEBUG, "[INPUT ] code : %d\n[OUTPUT] text : %s\n[RETURN] text : %p\n", code, text,
             static_cast<const void*>(text));
    return text;
}
