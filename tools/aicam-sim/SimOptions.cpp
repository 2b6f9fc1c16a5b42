#include "SimOptions.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>

namespace aicamsim {
namespace {

const char kUsage[] =
    "Usage: aicam-sim [OPTION]...\n"
    "Runs a simulated AI camera module on a pseudo-terminal. The first line on\n"
    "standard output is the serial device it serves, written once that device is\n"
    "open; the simulator runs until it receives SIGINT or SIGTERM.\n"
    "\n"
    "  --tty PATH             serve this terminal device (such as a USB gadget's\n"
    "                         /dev/ttyGS0) in raw mode instead of a pseudo-terminal;\n"
    "                         when its host hangs up, it is opened again\n"
    "  --link PATH            also make PATH a symbolic link to the serial device;\n"
    "                         refused when PATH exists, unless it is a dangling link\n"
    "                         (removed at exit if it still names this module)\n"
    "  --force                replace whatever is at the --link PATH\n"
    "  --library FILE         keep the face library and the settings in FILE between\n"
    "                         runs (loaded at start when it exists, saved on every\n"
    "                         change; the simulator stops when FILE cannot be written)\n"
    "  --video PATH           write the camera's MJPEG stream to PATH (a file or a FIFO)\n"
    "  --fifo                 create PATH as a FIFO when it does not exist (removed at exit)\n"
    "  --fps N                video frames per second, 1 to 60 (default 25)\n"
    "  --size WxH             video frame size (default 640x480)\n"
    "  --frames N             stop the video after N frames (default: endless)\n"
    "  --report-interval MS   time between report rounds while recognition runs\n"
    "                         (default 1000; 0 sends none)\n"
    "  --reboot-quiet MS      how long the module stays silent after a reboot (default 1000)\n"
    "  --no-face              the camera sees nobody\n"
    "  -v, --verbose          print every request on standard error\n"
    "  -h, --help             print this help\n"
    "      --version          print the version\n"
    "\n"
    "Fault modes:\n"
    "  --drop N               send no answer to the next N requests\n"
    "  --delay MS             delay every answer by MS milliseconds\n"
    "  --corrupt N            corrupt the checksum of the next N frames\n"
    "  --garbage HEX          send these bytes (e.g. 00ff17) just before the next frame\n"
    "  --split N              write every frame in pieces of N bytes\n"
    "  --pace N               write at most N bytes per millisecond\n"
    "  --unplug-after N       hang up the serial link after N requests\n";

bool ParseNumber(const char* text, long long min, long long max, long long& out) {
    errno = 0;
    char* end = nullptr;
    long long v = std::strtoll(text, &end, 10);
    if (errno != 0 || end == text || *end != '\0' || v < min || v > max) return false;
    out = v;
    return true;
}

bool ParseHex(const std::string& text, std::vector<uint8_t>& out) {
    if (text.empty() || text.size() % 2 != 0) return false;
    out.clear();
    for (size_t i = 0; i < text.size(); i += 2) {
        char pair[3] = {text[i], text[i + 1], 0};
        char* end = nullptr;
        long v = std::strtol(pair, &end, 16);
        if (*end != '\0') return false;
        out.push_back(uint8_t(v));
    }
    return true;
}

bool ParseSize(const std::string& text, int& width, int& height) {
    const size_t x = text.find('x');
    long long w = 0, h = 0;
    if (x == std::string::npos || !ParseNumber(text.substr(0, x).c_str(), 16, 4096, w) ||
        !ParseNumber(text.substr(x + 1).c_str(), 16, 4096, h) || w % 2 != 0 || h % 2 != 0)
        return false;
    width = int(w);
    height = int(h);
    return true;
}

}  // namespace

const char* UsageText() { return kUsage; }

ParseResult ParseOptions(int argc, char** argv, SimOptions& o, std::string& error) {
    struct IntOption {
        const char* name;
        long long min, max;
        long long* wide;
        int* narrow;
    };
    long long frames = o.frames, unplug = o.unplugAfter;
    const IntOption ints[] = {
        {"--fps", 1, 60, nullptr, &o.fps},
        {"--frames", 1, 1LL << 40, &frames, nullptr},
        {"--report-interval", 0, 3600000, nullptr, &o.reportIntervalMs},
        {"--reboot-quiet", 0, 3600000, nullptr, &o.rebootQuietMs},
        {"--drop", 0, 1 << 30, nullptr, &o.dropAnswers},
        {"--delay", 0, 600000, nullptr, &o.answerDelayMs},
        {"--corrupt", 0, 1 << 30, nullptr, &o.corruptChecksums},
        {"--split", 1, 1 << 20, nullptr, &o.splitWrites},
        {"--pace", 1, 1 << 20, nullptr, &o.pacingBytesPerMs},
        {"--unplug-after", 1, 1LL << 40, &unplug, nullptr},
    };
    for (int i = 1; i < argc; ++i) {
        const std::string arg = argv[i];
        if (arg == "-h" || arg == "--help") return ParseResult::Help;
        if (arg == "--version") return ParseResult::Version;
        if (arg == "--force") { o.forceLink = true; continue; }
        if (arg == "-v" || arg == "--verbose") { o.verbose = true; continue; }
        if (arg == "--fifo") { o.makeFifo = true; continue; }
        if (arg == "--no-face") { o.faceVisible = false; continue; }
        if (i + 1 >= argc) {
            error = "unknown option or missing value: " + arg;
            return ParseResult::Error;
        }
        const char* value = argv[++i];
        bool ok = true;
        bool known = true;
        if (arg == "--link") o.linkPath = value;
        else if (arg == "--tty") o.ttyPath = value;
        else if (arg == "--library") o.libraryFile = value;
        else if (arg == "--video") o.videoPath = value;
        else if (arg == "--size") ok = ParseSize(value, o.width, o.height);
        else if (arg == "--garbage") ok = ParseHex(value, o.garbage);
        else {
            known = false;
            for (const IntOption& opt : ints) {
                if (arg != opt.name) continue;
                known = true;
                long long v = 0;
                ok = ParseNumber(value, opt.min, opt.max, v);
                if (ok && opt.wide) *opt.wide = v;
                if (ok && opt.narrow) *opt.narrow = int(v);
            }
        }
        if (!known) {
            error = "unknown option: " + arg;
            return ParseResult::Error;
        }
        if (!ok) {
            error = "invalid value for " + arg + ": " + value;
            return ParseResult::Error;
        }
    }
    o.frames = frames;
    o.unplugAfter = unplug;
    if (!o.ttyPath.empty() && !o.linkPath.empty()) {
        error = "--link names a pseudo-terminal, which --tty does not make";
        return ParseResult::Error;
    }
    if (o.forceLink && o.linkPath.empty()) {
        error = "--force needs --link PATH";
        return ParseResult::Error;
    }
    if (o.makeFifo && o.videoPath.empty()) {
        error = "--fifo needs --video PATH";
        return ParseResult::Error;
    }
    return ParseResult::Run;
}

}  // namespace aicamsim
