// recognize: start recognition, print the module's reports as they arrive,
// then pause it again.
#include <signal.h>
#include <stdio.h>

#include <sstream>
#include <string>
#include <vector>

#include "FileData.h"
#include "JsonWriter.h"
#include "MonotonicClock.h"
#include "RecognitionMode.h"
#include "ReportQueue.h"
#include "ResultText.h"
#include "Session.h"
#include "SignalWatch.h"
#include "Verb.h"
#include "ai_camera.h"

namespace {
const size_t kShortReport = 200;

struct RecognizeOptions {
    int recMode = 0;                 // 1: with liveness
    int mulMode = 0;                 // 1: several faces
    long count = 0;                  // stop after this many reports (0: no limit)
    long seconds = 0;                // stop after this long (0: no limit)
    bool full = false;
    bool json = false;
    std::vector<std::string> kinds;  // the reports to print
    std::string image;               // one-to-one reference image
    long slice = 0;                  // send that image in slices of this size
};

// The text of a report up to its first zero byte; what follows (an image
// report's JPEG) is only counted.
std::string Printable(const std::string& bytes, bool full)
{
    size_t end = bytes.find('\0');
    std::string text = bytes.substr(0, end);
    for (char& c : text) {
        if (static_cast<unsigned char>(c) < 0x20 || c == 0x7F)
            c = '?';
    }
    if (!full && text.size() > kShortReport)
        text = text.substr(0, kShortReport) + "... (" + std::to_string(text.size() - kShortReport) + " more)";
    if (end != std::string::npos)
        text += " [+" + std::to_string(bytes.size() - end - 1) + " bytes of binary data]";
    return text;
}

bool ParseKinds(Arguments& args, std::vector<std::string>& kinds)
{
    std::string list;
    kinds = ReportQueue::Kinds();
    if (!args.Option("--kinds", list))
        return true;
    kinds.clear();
    std::istringstream items(list);
    std::string kind;
    while (std::getline(items, kind, ',')) {
        bool known = false;
        for (const std::string& name : ReportQueue::Kinds())
            known = known || name == kind;
        if (!known)
            return args.Invalid("unknown report kind '" + kind + "'");
        kinds.push_back(kind);
    }
    return true;
}

int StartRecognition(Session& session, const RecognizeOptions& options, const ByteVector& image)
{
    void* dev = session.Dev();
    if (options.image.empty())
        return StartOnetoNumRecognize(dev, options.recMode, options.mulMode);
    const unsigned int total = static_cast<unsigned int>(image.size());
    if (options.slice == 0)
        return StartOnetoOneRecognize(dev, options.recMode, options.mulMode, image.data(), total);
    return SendInSlices(image, static_cast<unsigned int>(options.slice),
                        [&](unsigned int offset, const unsigned char* bytes, unsigned int size, bool isLast) {
                            return StartOnetoOneRecognizeSlice(dev, options.recMode, options.mulMode, total, offset,
                                                               isLast ? 1 : 0, bytes, size);
                        });
}

// One line: the kind and the text, or under --json an object with the text
// whole and the size of the binary data after it.
void PrintReport(const Report& report, const RecognizeOptions& options)
{
    if (!options.json) {
        printf("%-12s %s\n", report.kind, Printable(report.bytes, options.full).c_str());
        fflush(stdout);
        return;
    }
    const size_t end = report.bytes.find('\0');
    JsonObject object;
    object.String("kind", report.kind).String("text", report.bytes.substr(0, end));
    if (end != std::string::npos)
        object.Number("binaryBytes", static_cast<long long>(report.bytes.size() - end - 1));
    object.PrintLine();
}

// Prints reports until the count, the time limit or a signal; returns how many.
// Reports of the other recognition mode belong to an earlier run and are
// neither printed nor counted.
long PrintReports(ReportQueue& queue, const RecognizeOptions& options)
{
    const RecognitionMode started = options.image.empty() ? RecognitionMode::OneToMany : RecognitionMode::OneToOne;
    const long long deadline = options.seconds > 0 ? MonotonicMs() + options.seconds * 1000 : 0;
    long printed = 0;
    std::vector<Report> reports;
    for (;;) {
        int wait = -1;
        if (deadline) {
            long long left = deadline - MonotonicMs();
            if (left <= 0)
                return printed;
            wait = static_cast<int>(left);
        }
        bool running = queue.Wait(wait, reports);
        for (const Report& report : reports) {
            if (IsOfOtherMode(report.bytes, started))
                continue;
            // Line by line, for readers at the other end of a pipe.
            PrintReport(report, options);
            if (++printed >= options.count && options.count > 0)
                return printed;
        }
        if (!running)
            return printed;
    }
}

int RunRecognize(Session& session, Arguments& args, const std::string& command)
{
    RecognizeOptions options;
    options.recMode = args.Flag("--live") ? 1 : 0;
    options.mulMode = args.Flag("--multi") ? 1 : 0;
    options.full = args.Flag("--full");
    options.json = args.Flag("--json");
    args.Number("--count", 1, 1000000, options.count);
    args.Number("--seconds", 1, 86400, options.seconds);
    args.Number("--slice", 1, kMaxSliceBytes, options.slice);
    args.Option("--one-to-one", options.image);
    ParseKinds(args, options.kinds);
    if (int result = args.Finish(command))
        return result;
    ByteVector image;
    if (!options.image.empty()) {
        if (int result = ReadWholeFile(command, options.image, image))
            return result;
    }
    if (int result = session.ConnectSerial(command))
        return result;
    // Caught from before the start until after the pause, so that a signal
    // at any moment still leaves the recognition paused.
    SignalWatch watch;
    ReportQueue queue;
    queue.Start(session.Dev(), options.kinds);
    int result = StartRecognition(session, options, image);
    if (result != 0)
        return Fail(command, result, "recognition did not start: " + ResultText(result));
    fprintf(stderr, "recognition started (%s); Ctrl-C stops\n", options.image.empty() ? "one to many" : "one to one");
    long printed = PrintReports(queue, options);
    result = PauseRecognize(session.Dev());
    if (result != 0)
        return Fail(command, result, "recognition could not be paused: " + ResultText(result));
    fprintf(stderr, "%ld reports; recognition paused\n", printed);
    if (CaughtSignal())
        return Fail(command, kInterrupted, std::string("stopped by ") + (CaughtSignal() == SIGINT ? "SIGINT" : "SIGTERM"));
    return 0;
}
}  // namespace

const Verb kRecognizeVerb = {
    "recognize",
    "recognize [--one-to-one IMAGE] [--live] [--multi] [--count N] [--seconds S] [--json]",
    "run recognition and print the reports as they arrive",
    "Starts one-to-many recognition (or one-to-one against IMAGE, sent whole or in\n"
    "slices of --slice BYTES, at most 1 MiB), prints each report on a line (kind,\n"
    "then its text) until --count N reports, --seconds S, Ctrl-C or SIGTERM,\n"
    "then pauses recognition. Recognition reports of the other mode, left over from an\n"
    "earlier run, are skipped.\n"
    "  --live          recognition with liveness check\n"
    "  --multi         several faces at once\n"
    "  --kinds LIST    the reports to print, of recognition,track,image,feature,qrcode\n"
    "  --full          print long reports whole\n"
    "  --json          one object per report: kind, text (whole), and binaryBytes\n"
    "                  when binary data follows the text\n",
    RunRecognize,
    nullptr,
};
