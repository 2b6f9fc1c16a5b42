#include "ResultText.h"

#include <stdio.h>

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
    for (const CodeText& entry : kToolTexts) {
        if (entry.code == code)
            return entry.text;
    }
    return GetResultText(code);
}

int Fail(const std::string& what, int code) { return Fail(what, code, ResultText(code)); }

int Fail(const std::string& what, int code, const std::string& text)
{
    fprintf(stderr, "aicam: %s: %s (%d)\n", what.c_str(), text.c_str(), code);
    return code;
}

int ExitStatus(int code)
{
    if (code < 0)
        return -code & 0xFF;
    return code & 0xFF;
}

std::string ExitStatusHelp()
{
    std::string help =
        "Exit status: 0 on success; for a failure of the library or of the tool its\n"
        "negative result code negated; for a refusal by the module its status byte\n"
        "(1..255; enrolment and face counting give statuses of 0x80 and above as\n"
        "negative codes, as the library does). The codes:\n";
    auto add = [&help](int code) {
        char line[160];
        snprintf(line, sizeof line, "  %3d  %s\n", ExitStatus(code), ResultText(code).c_str());
        help += line;
    };
    for (int code : kLibraryCodes)
        add(code);
    for (const CodeText& entry : kToolTexts)
        add(entry.code);
    help += "  1..255 otherwise: the module's status byte (\"module status N\")\n";
    return help;
}
