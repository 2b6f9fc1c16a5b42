// aicam-sim: the simulated module as a program of its own.
#include <signal.h>

#include <cstdio>
#include <ctime>

#include "SimOptions.h"
#include "ai_camera_version.h"
#include "SimulatedModule.h"

namespace {

// Blocked in every thread, taken by the main loop with sigtimedwait.
sigset_t StopSignals() {
    sigset_t set;
    sigemptyset(&set);
    sigaddset(&set, SIGINT);
    sigaddset(&set, SIGTERM);
    return set;
}

}  // namespace

int main(int argc, char** argv) {
    aicamsim::SimOptions options;
    std::string error;
    switch (aicamsim::ParseOptions(argc, argv, options, error)) {
    case aicamsim::ParseResult::Help:
        std::fputs(aicamsim::UsageText(), stdout);
        return 0;
    case aicamsim::ParseResult::Version:
        std::printf("aicam-sim %d.%d.%d.%d\n", AI_CAMERA_VERSION_MAJOR, AI_CAMERA_VERSION_MINOR,
                    AI_CAMERA_VERSION_PATCH, AI_CAMERA_VERSION_TWEAK);
        return 0;
    case aicamsim::ParseResult::Error:
        std::fprintf(stderr, "aicam-sim: %s (see aicam-sim --help)\n", error.c_str());
        return 2;
    case aicamsim::ParseResult::Run:
        break;
    }

    const sigset_t stopSignals = StopSignals();
    pthread_sigmask(SIG_BLOCK, &stopSignals, nullptr);
    signal(SIGPIPE, SIG_IGN);   // a FIFO reader that goes away is handled where we write

    aicamsim::SimulatedModule module(options);
    if (!module.Start(error)) {
        std::fprintf(stderr, "aicam-sim: %s\n", error.c_str());
        return 1;
    }
    std::printf("%s\n", module.SerialPath().c_str());
    std::fflush(stdout);
    std::fprintf(stderr, "aicam-sim: module ready on %s%s%s\n", module.SerialPath().c_str(),
                 options.linkPath.empty() ? "" : ", linked as ", options.linkPath.c_str());

    std::string reportedVideoError;
    const timespec tick{0, 50 * 1000 * 1000};
    int signalNumber = -1;
    while (signalNumber < 0) {
        signalNumber = sigtimedwait(&stopSignals, nullptr, &tick);
        module.Poll();
        // A library that can no longer be kept would lose the next change: stop rather than pretend.
        const std::string saveError = module.SaveError();
        if (!saveError.empty()) {
            module.Stop();
            std::fprintf(stderr, "aicam-sim: %s; stopping\n", saveError.c_str());
            return 1;
        }
        const std::string videoError = module.VideoError();
        if (videoError != reportedVideoError) {
            std::fprintf(stderr, "aicam-sim: video stopped: %s\n", videoError.c_str());
            reportedVideoError = videoError;
        }
    }
    module.Stop();
    std::fprintf(stderr, "aicam-sim: stopped on signal %d\n", signalNumber);
    return 0;
}
