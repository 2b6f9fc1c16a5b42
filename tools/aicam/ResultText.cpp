#include "ResultText.h"

#include <stdio.h>

namespace {
struct CodeText {
    int code;
    const char* text;
};

// -1 means a missing handle or a missing connection, depending on the call.
const CodeText kTable[] = {
    {0, "success"},
    {-1, "the device is not connected (no handle, no serial link or no camera)"},
    {-2, "the serial port could not be opened"},
    {-4, "an argument was refused as invalid"},
    {-5, "the stored log configuration is out of range"},
    {-6, "the module did not answer within 10 s"},
    {-7, "the module's answer was missing or unusable"},
    {-8, "the module's answer had the wrong length"},
    {-9, "a report handler for this kind of report exists already"},
    {-10, "the video stream could not be opened"},
    {-11, "no new picture arrived from the video stream"},
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
    for (const CodeText& entry : kTable) {
        if (entry.code == code)
            return entry.text;
    }
    if (code > 0) {
        char text[64];
        snprintf(text, sizeof text, "the module refused the request with status %d (0x%02X)", code, code & 0xFF);
        return text;
    }
    return "the library failed with an unknown code";
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
    for (const CodeText& entry : kTable) {
        if (entry.code == 0)
            continue;
        char line[160];
        snprintf(line, sizeof line, "  %3d  %s\n", ExitStatus(entry.code), entry.text);
        help += line;
    }
    help += "  1..255 otherwise: the module's status byte\n";
    return help;
}
