// snapshot: one picture of the video to a PNG file, and its side text.
#include <stdio.h>
#include <time.h>

#include <string>
#include <vector>

#include "PngWriter.h"
#include "ResultText.h"
#include "Session.h"
#include "Verb.h"
#include "ai_camera.h"

namespace {
const int kSideTextSize = 1024;
const long kDefaultTimeoutS = 10;
const long kPollMs = 10;
const int kMaxSide = 16384;

void SleepMs(long ms)
{
    timespec pause = {ms / 1000, (ms % 1000) * 1000000};
    nanosleep(&pause, nullptr);
}

struct Picture {
    int width = 0, height = 0;
    std::vector<unsigned char> bgra;
    std::vector<char> sideText = std::vector<char>(kSideTextSize + 1, 0);
};

// Asks for a picture every few milliseconds until one is ready: the library
// hands each picture out once and has no way to wait for the next.
int TakePicture(void* dev, long timeoutS, Picture& picture)
{
    int result = -11;
    for (long waited = 0; waited <= timeoutS * 1000; waited += kPollMs) {
        result = GetResolution(dev, &picture.width, &picture.height);
        if (result != 0)
            return result;
        if (picture.width > 0 && picture.height > 0 && picture.width <= kMaxSide && picture.height <= kMaxSide) {
            const size_t size = static_cast<size_t>(picture.width) * static_cast<size_t>(picture.height) * 4;
            picture.bgra.resize(size);
            result = GetFrame(dev, reinterpret_cast<char*>(picture.bgra.data()), static_cast<int>(size),
                              picture.sideText.data(), kSideTextSize);
            if (result != -11)
                return result;
        }
        SleepMs(kPollMs);
    }
    return result;
}

int RunSnapshot(Session& session, Arguments& args, const std::string& command)
{
    std::string out;
    long timeoutS = kDefaultTimeoutS;
    args.Number("--timeout", 1, 3600, timeoutS);
    args.Next("OUT.png", out);
    if (int result = args.Finish(command))
        return result;
    if (int result = session.ConnectVideo(command))
        return result;
    Picture picture;
    int result = TakePicture(session.Dev(), timeoutS, picture);
    if (result == -11)
        return Fail(command, result, "no picture arrived within " + std::to_string(timeoutS) + " s");
    if (result != 0)
        return Fail(command, result);
    if (int written = WritePng(command, out, picture.bgra.data(), picture.width, picture.height))
        return written;
    printf("snapshot: %s (%dx%d)\n", out.c_str(), picture.width, picture.height);
    printf("side text: %s\n", picture.sideText[0] ? picture.sideText.data() : "(none)");
    return 0;
}
}  // namespace

const Verb kSnapshotVerb = {
    "snapshot",
    "snapshot OUT.png [--timeout S]",
    "save one picture of the video as PNG and print its side text",
    "Opens the video (--video or --playback), waits up to --timeout S seconds\n"
    "(default 10) for a picture, writes it to OUT.png and prints the side text\n"
    "that the module embedded in it.\n",
    RunSnapshot,
    nullptr,
};
