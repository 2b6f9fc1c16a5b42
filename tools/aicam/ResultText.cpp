#include "ResultText.h"

#include <stdio.h>

#include "SignalWatch.h"
#include "ai_camera_ext.h"

namespace {
struct CodeText {
    int code;
    const char* text;
};

// The library's codes that the tool meets, in the order of the help text.
const int kLibraryCodes[] = {-1, -2, -4, -5, -6, -7, -8, -9, -10, -11, AI_CAMERA_LOG_DIRECTORY_UNUSABLE,
                             AI_CAMERA_UPGRADE_CANCELLED, AI_CAMERA_FILE_UNREADABLE};

// The tool's own failures, beyond the library's codes.
const CodeText kToolTexts[] = {
    {kFileUnreadable, "a file could not be read"},
    {kFileUnwritable, "a file could not be written"},
    {kEncoderFailed, "the PNG encoder failed"},
    {kNoModule, "no module is attached (none with the ids or serial number asked for)"},
    {kSeveralModules, "several modules are attached and none was chosen"},
    {kDoctorFound, "aicam doctor found a problem"},
};
}  // namespace

std::string ResultText(int code)
{
    if (code > 0)
        return "the module refused";
    if (code == kUsage)
        return "wrong command line";
    if (code == kInterrupted)
        return "interrupted";
    for (const CodeText& entry : kToolTexts) {
        if (entry.code == code)
            return entry.text;
    }
    return GetResultText(code);
}

int Fail(const std::string& what, int code) { return Fail(what, code, ResultText(code)); }

int Fail(const std::string& what, int code, const std::string& text)
{
    const std::string where = what.empty() ? "" : what + ": ";
    if (code == kUsage || code == kInterrupted)
        fprintf(stderr, "aicam: %s%s\n", where.c_str(), text.c_str());
    else if (code > 0)
        fprintf(stderr, "aicam: %s%s (module status %d)\n", where.c_str(), text.c_str(), code);
    else
        fprintf(stderr, "aicam: %s%s (%d)\n", where.c_str(), text.c_str(), code);
    return code;
}

int ExitStatus(int code)
{
    if (code == 0)
        return kExitSuccess;
    if (code == kUsage)
        return kExitUsage;
    if (code == kInterrupted)
        return 128 + CaughtSignal();
    return code > 0 ? kExitRefused : kExitFailure;
}

std::string ExitStatusHelp()
{
    std::string help =
        "Exit status:\n"
        "  0    success\n"
        "  1    a failure of the library or of aicam; the message ends with its code\n"
        "  2    a wrong command line (unknown command or option, missing or bad value)\n"
        "  3    the module refused; the message ends with (module status N)\n"
        "  130  stopped by SIGINT (Ctrl-C), 143 by SIGTERM; recognition is paused\n"
        "       again, an upgrade stops between slices without applying the package\n\n"
        "The codes at the end of failure messages:\n";
    auto add = [&help](int code) {
        char line[160];
        snprintf(line, sizeof line, "  %4d  %s\n", code, ResultText(code).c_str());
        help += line;
    };
    for (int code : kLibraryCodes)
        add(code);
    for (const CodeText& entry : kToolTexts)
        add(entry.code);
    return help;
}
