#pragma once
// The command line of aicam-sim.

#include <cstdint>
#include <string>
#include <vector>

namespace aicamsim {

struct SimOptions {
    std::string linkPath;
    bool forceLink = false;        // take --link over even when something else is there
    std::string ttyPath;           // serve this terminal device instead of a pseudo-terminal
    std::string libraryFile;
    std::string videoPath;
    bool makeFifo = false;
    int fps = 25;
    int width = 640, height = 480;
    long long frames = 0;          // 0: endless
    int reportIntervalMs = 1000;
    int rebootQuietMs = 1000;
    bool faceVisible = true;
    bool verbose = false;
    // Fault modes.
    int dropAnswers = 0;
    int answerDelayMs = 0;
    int corruptChecksums = 0;
    std::vector<uint8_t> garbage;
    int splitWrites = 0;
    int pacingBytesPerMs = 0;
    long long unplugAfter = 0;     // 0: never
};

enum class ParseResult { Run, Help, Version, Error };

// On Error, `error` holds one line that says what is wrong.
ParseResult ParseOptions(int argc, char** argv, SimOptions& options, std::string& error);
const char* UsageText();

}  // namespace aicamsim
