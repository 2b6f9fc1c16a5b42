// aicam: try, configure and upgrade an AI camera module from the shell.
#include <stdio.h>
#include <string.h>

#include <string>
#include <vector>

#include "Arguments.h"
#include "CommandLine.h"
#include "ResultText.h"
#include "Session.h"
#include "Verb.h"
#include "ai_camera_ext.h"
#include "ai_camera_version.h"

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
        "usage: aicam [GLOBAL OPTIONS] COMMAND [ARGUMENTS] [OPTIONS]\n\n"
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
        "  -q, --quiet      no progress on stderr (upgrade, reboot --wait)\n"
        "  --version        print the versions of aicam and of the library it runs on\n"
        "  -h, --help       this text; after a command, that command's help\n\n"
        "Options take their value as --opt VALUE or --opt=VALUE and may stand before or\n"
        "after the command; -- ends the options. list, info, faces list, settings get,\n"
        "config get, recognize and doctor take --json: one JSON object per line.\n"
        "Progress is drawn only when stderr is a terminal; otherwise one line tells\n"
        "the start and one the end.\n\n"
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

// Applies the global options; false after a usage failure has been printed.
bool ApplyGlobals(const OptionList& globals, GlobalOptions& options, bool& version)
{
    for (const auto& option : globals) {
        const std::string& name = option.first;
        const std::string& value = option.second;
        if (name == "--port") {
            options.port = value;
        } else if (name == "--video") {
            options.video = value;
        } else if (name == "--module") {
            options.module = value;
        } else if (name == "--usb-id") {
            if (!ParseUsbId(value, options.usbId)) {
                Fail("", kUsage,
                     "--usb-id takes VID:PID, two hexadecimal numbers of four digits, not '" + value + "'");
                return false;
            }
        } else if (name == "--log-dir") {
            options.logDirectory = value;
        } else if (name == "--playback") {
            options.playback = value;
        } else if (name == "--log") {
            if (!ParseLevel(value, options.logLevel)) {
                Fail("", kUsage, "--log takes trace, debug, info, warn, error, fatal, off or 0..6, not '" + value + "'");
                return false;
            }
        } else if (name == "--quiet") {
            options.quiet = true;
        } else if (name == "--version") {
            version = true;
        }
    }
    return true;
}

void PrintVersion()
{
    char library[64] = {0};
    GetSdkVersion(library, sizeof library);
    printf("aicam %s (libai_camera %s)\n", AI_CAMERA_VERSION_STRING, library);
}
}  // namespace

int main(int argc, char** argv)
{
    ParsedCommandLine line = ParseCommandLine(argc, argv);
    if (!line.error.empty())
        return ExitStatus(Fail("", kUsage, line.error + "; see 'aicam --help'"));
    GlobalOptions options;
    bool version = false;
    const OptionList globals =
        TakeOptions(line.options, {"port", "video", "module", "usb-id", "playback", "log", "log-dir", "quiet", "version"});
    if (!ApplyGlobals(globals, options, version))
        return kExitUsage;
    if (version) {
        PrintVersion();
        return kExitSuccess;
    }
    const std::vector<Verb> verbs = TopLevelVerbs();
    if (line.words.empty()) {
        const bool help = !TakeOptions(line.options, {"help"}).empty();
        if (help && line.options.empty()) {
            PrintHelp(verbs);
            return kExitSuccess;
        }
        return ExitStatus(Fail("", kUsage, help ? line.options.front().first + " needs a command; see 'aicam --help'"
                                                : "no command given; see 'aicam --help'"));
    }
    Arguments args(line.words, line.options);
    Session session(options);
    return ExitStatus(RunVerbs(verbs, "", session, args));
}
