// aicam: try, configure and upgrade an AI camera module from the shell.
#include <stdio.h>
#include <string.h>

#include <string>
#include <vector>

#include "Arguments.h"
#include "ResultText.h"
#include "Session.h"
#include "Verb.h"

namespace {
const char* const kLevelNames[] = {"trace", "debug", "info", "warn", "error", "fatal", "off"};

std::vector<Verb> TopLevelVerbs()
{
    std::vector<Verb> verbs = kDeviceVerbs;
    verbs.push_back({"faces", "faces ACTION ...", "the module's face library", "", nullptr, &kFaceVerbs});
    verbs.push_back(kRecognizeVerb);
    verbs.push_back({"config", "config ACTION ...", "recognition settings", "", nullptr, &kConfigVerbs});
    verbs.push_back({"settings", "settings ACTION ...", "camera, sensor and report settings", "", nullptr,
                     &kSettingsVerbs});
    verbs.push_back(kUpgradeVerb);
    verbs.push_back(kSnapshotVerb);
    verbs.push_back(kDoctorVerb);
    return verbs;
}

void PrintHelp(const std::vector<Verb>& verbs)
{
    printf(
        "usage: aicam [GLOBAL OPTIONS] COMMAND [ARGUMENTS]\n\n"
        "Drives an AI camera module through libai_camera. Every command takes --help.\n\n"
        "Global options:\n"
        "  --port PATH      serial node of the module (default: the chosen module's)\n"
        "  --video PATH     video node of the module (default: the chosen module's)\n"
        "  --module N|SERIAL  the module of 'aicam list' with that # or USB serial\n"
        "                   number (default: the only one attached; at a terminal,\n"
        "                   aicam asks which of several)\n"
        "  --usb-id VID:PID only modules with these USB ids (hexadecimal, as lsusb\n"
        "                   shows them)\n"
        "  --playback FILE  play a recorded MJPEG stream (file or FIFO) as the video\n"
        "  --log LEVEL      write the library's trace log at LEVEL (trace, debug, info,\n"
        "                   warn, error, fatal or 0..6) to Log/YYYYMMDD.log here\n"
        "  --log-dir DIR    write the trace log under DIR instead of Log\n"
        "  --help           this text\n\n"
        "Commands:\n%s\n%s",
        VerbList(verbs).c_str(), ExitStatusHelp().c_str());
}

bool ParseLevel(const std::string& text, int& level)
{
    for (int i = 0; i < 7; ++i) {
        if (text == kLevelNames[i]) {
            level = i;
            return true;
        }
    }
    long number = 0;
    if (!ParseNumber(text, 0, 6, number))
        return false;
    level = static_cast<int>(number);
    return true;
}

// Global options stand before the command; returns the index of the command.
int ParseGlobals(int argc, char** argv, GlobalOptions& options, bool& help)
{
    int i = 1;
    for (; i < argc && strncmp(argv[i], "--", 2) == 0; ++i) {
        const std::string option = argv[i];
        if (option == "--help") {
            help = true;
            continue;
        }
        if (i + 1 >= argc) {
            Fail("aicam", -4, option + " needs a value");
            return -1;
        }
        const std::string value = argv[++i];
        if (option == "--port") {
            options.port = value;
        } else if (option == "--video") {
            options.video = value;
        } else if (option == "--module") {
            options.module = value;
        } else if (option == "--usb-id") {
            if (!ParseUsbId(value, options.usbId)) {
                Fail("aicam", -4,
                     "--usb-id takes VID:PID, two hexadecimal numbers of four digits, not '" + value + "'");
                return -1;
            }
        } else if (option == "--log-dir") {
            options.logDirectory = value;
        } else if (option == "--playback") {
            options.playback = value;
        } else if (option == "--log") {
            if (!ParseLevel(value, options.logLevel)) {
                Fail("aicam", -4, "--log takes trace, debug, info, warn, error, fatal, off or 0..6, not '" +
                                      value + "'");
                return -1;
            }
        } else {
            Fail("aicam", -4, "unknown option '" + option + "'; see 'aicam --help'");
            return -1;
        }
    }
    return i;
}
}  // namespace

int main(int argc, char** argv)
{
    GlobalOptions options;
    bool help = false;
    int first = ParseGlobals(argc, argv, options, help);
    if (first < 0)
        return ExitStatus(-4);
    const std::vector<Verb> verbs = TopLevelVerbs();
    if (first >= argc) {
        PrintHelp(verbs);
        return help ? 0 : ExitStatus(-4);
    }
    std::vector<std::string> words(argv + first, argv + argc);
    if (help)
        words.push_back("--help");
    Arguments args(words);
    Session session(options);
    int result = RunVerbs(verbs, "", session, args);
    return ExitStatus(result);
}
