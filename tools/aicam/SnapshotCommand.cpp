// snapshot: one picture of the video to a PNG file, and its side text.
#include <stdio.h>

#include <string>

#include "Picture.h"
#include "PngWriter.h"
#include "ResultText.h"
#include "Session.h"
#include "Verb.h"

namespace {
const long kDefaultTimeoutS = 10;

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
