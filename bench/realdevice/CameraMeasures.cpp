// The camera path through uvcvideo: ConnectCamera's time next to FFmpeg's own
// v4l2 open to its first packet, the capture thread's CPU per frame next to
// the ffmpeg tool's on the same stream, and a picture's way from the feeder to
// GetFrame next to the same pictures played from a FIFO without USB.
#include <signal.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <fstream>
#include <set>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

extern "C" {
#include <libavdevice/avdevice.h>
#include <libavformat/avformat.h>
}

#include "Measures.h"
#include "ModuleEnd.h"
#include "Rig.h"
#include "Statistics.h"
#include "ai_camera.h"
#include "ai_camera_ext.h"

namespace {
const int kFfmpegWarmUpSeconds = 4;
// Slow enough for the test machine's emulated CPU to decode every picture,
// so that the latency is the path's and not a queue's.
const int kLatencyFeedRate = 10;

std::string SizeText()
{
    int width, height;
    rig::StreamedSize(&width, &height);
    return std::to_string(width) + "x" + std::to_string(height);
}

std::vector<char> ImageBuffer()
{
    int width, height;
    rig::StreamedSize(&width, &height);
    return std::vector<char>(static_cast<size_t>(width) * height * 4);
}

// FFmpeg's v4l2 input alone, with the library's options: open, then the first packet.
double FfmpegFirstPacketMs(const std::string& node)
{
    avdevice_register_all();
    AVDictionary* options = nullptr;
    av_dict_set(&options, "input_format", "mjpeg", 0);
    av_dict_set(&options, "framerate", "30", 0);
    av_dict_set(&options, "video_size", "1280x720", 0);
    AVFormatContext* context = nullptr;
    AVPacket* packet = av_packet_alloc();
    const double start = SecondsNow();
    int result = avformat_open_input(&context, node.c_str(), av_find_input_format("v4l2"), &options);
    if (result >= 0)
        result = av_read_frame(context, packet);
    const double ms = (SecondsNow() - start) * 1000;
    av_packet_free(&packet);
    avformat_close_input(&context);
    av_dict_free(&options);
    return result >= 0 ? ms : -1;
}

std::set<int> Threads()
{
    std::set<int> tids;
    for (const std::string& name : rig::Entries("/proc/self/task"))
        tids.insert(atoi(name.c_str()));
    return tids;
}

// CPU seconds, user and system, of these threads of this process.
double ThreadsCpu(const std::set<int>& tids)
{
    double ticks = 0;
    for (int tid : tids) {
        std::ifstream in("/proc/self/task/" + std::to_string(tid) + "/stat");
        std::string stat((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
        const size_t close = stat.rfind(')');
        if (close == std::string::npos)
            continue;
        // After the name: state, then fields 4 to 13, then utime and stime.
        std::istringstream fields(stat.substr(close + 2));
        std::string skip;
        for (int i = 3; i <= 13; ++i)
            fields >> skip;
        double user = 0, system = 0;
        fields >> user >> system;
        ticks += user + system;
    }
    return ticks / static_cast<double>(sysconf(_SC_CLK_TCK));
}

std::set<int> NewThreads(const std::set<int>& before)
{
    std::set<int> added;
    for (int tid : Threads())
        if (!before.count(tid))
            added.insert(tid);
    return added;
}

// CPU spent and frames decoded in one run of a decoder.
struct CpuRun {
    double cpuSeconds = 0;
    long frames = 0;
};

// The library's capture thread for `seconds`, every picture taken as it comes.
CpuRun RunCapture(const std::string& node, int seconds)
{
    CpuRun run;
    std::vector<char> image = ImageBuffer();
    void* dev = Init();
    const std::set<int> before = Threads();
    if (ConnectCamera(dev, node.c_str()) == 0) {
        const std::set<int> capture = NewThreads(before);
        const double cpuStart = ThreadsCpu(capture);
        const double end = SecondsNow() + seconds;
        while (SecondsNow() < end) {
            char text[1024];
            if (GetFrame(dev, image.data(), static_cast<int>(image.size()), text, sizeof text) == 0)
                ++run.frames;
            else
                usleep(1000);
        }
        run.cpuSeconds = ThreadsCpu(capture) - cpuStart;
    }
    DisconnectCamera(dev);
    DeInit(dev);
    return run;
}

// The ffmpeg tool decoding the node to BGRA for `seconds`, with the library's size and rate.
CpuRun RunFfmpeg(const std::string& node, int seconds)
{
    CpuRun run;
    int output[2];
    if (pipe(output) != 0)
        return run;
    const std::string size = SizeText();
    const std::string duration = std::to_string(seconds);
    pid_t child = fork();
    if (child == 0) {
        dup2(output[1], 1);
        close(output[0]);
        execlp("ffmpeg", "ffmpeg", "-hide_banner", "-nostdin", "-loglevel", "error", "-progress", "pipe:1",
               "-nostats", "-f", "v4l2", "-input_format", "mjpeg", "-video_size", size.c_str(), "-framerate", "30",
               "-i", node.c_str(), "-t", duration.c_str(), "-pix_fmt", "bgra", "-f", "null", "-", (char*)nullptr);
        _exit(127);
    }
    close(output[1]);
    std::string progress;
    char buffer[4096];
    ssize_t got;
    while ((got = read(output[0], buffer, sizeof buffer)) > 0)
        progress.append(buffer, static_cast<size_t>(got));
    close(output[0]);
    int status = 0;
    struct rusage usage;
    if (child > 0 && wait4(child, &status, 0, &usage) == child && WIFEXITED(status) && WEXITSTATUS(status) == 0) {
        run.cpuSeconds = usage.ru_utime.tv_sec + usage.ru_stime.tv_sec +
                         (usage.ru_utime.tv_usec + usage.ru_stime.tv_usec) / 1e6;
        const size_t last = progress.rfind("frame=");
        run.frames = last == std::string::npos ? 0 : atol(progress.c_str() + last + 6);
    }
    return run;
}

// The "seq" and "sent_us" of a feeder's side text; false when it has none.
bool FeederText(const char* text, long long* seq, long long* sentUs)
{
    return sscanf(text, "{\"seq\":%lld,\"sent_us\":%lld}", seq, sentUs) == 2;
}

// Latencies in ms of `pictures` distinct pictures fed into `fifo` while the
// handle's camera (already connected) hands them out.
std::vector<double> Latencies(void* dev, int pictures)
{
    std::vector<char> image = ImageBuffer();
    std::vector<double> ms;
    long long lastSeq = -1;
    const double end = SecondsNow() + 120;
    while (static_cast<int>(ms.size()) < pictures && SecondsNow() < end) {
        char text[1024] = {0};
        if (GetFrame(dev, image.data(), static_cast<int>(image.size()), text, sizeof text) != 0) {
            usleep(500);
            continue;
        }
        const long long now = FrameFeeder::NowUs();
        long long seq, sentUs;
        if (FeederText(text, &seq, &sentUs) && seq > lastSeq) {
            ms.push_back((now - sentUs) / 1000.0);
            lastSeq = seq;
        }
    }
    return ms;
}
}  // namespace

void MeasureConnectCamera(int opens)
{
    const std::string node = rig::CaptureNode();
    void* dev = Init();
    std::vector<double> library, ffmpeg;
    for (int i = 0; i < opens; ++i) {
        double start = SecondsNow();
        if (ConnectCamera(dev, node.c_str()) == 0)
            library.push_back((SecondsNow() - start) * 1000);
        DisconnectCamera(dev);
        double first = FfmpegFirstPacketMs(node);
        if (first >= 0)
            ffmpeg.push_back(first);
    }
    DeInit(dev);
    PrintBeside("ConnectCamera (open, probe to the first decoded picture, thread start)", library,
                "FFmpeg's v4l2 open to its first packet, same options", ffmpeg, "ms");
}

void MeasureCaptureCpu(int seconds, int rounds)
{
    const std::string node = rig::CaptureNode();
    printf("stream: %s MJPEG from %s through uvcvideo; ffmpeg -f v4l2 -input_format mjpeg -video_size %s "
           "-framerate 30 -i %s -pix_fmt bgra -f null - (its %d s run's start-up taken off)\n",
           SizeText().c_str(), node.c_str(), SizeText().c_str(), node.c_str(), kFfmpegWarmUpSeconds);
    // Alternating rounds, so that both see the same load of the emulated machine.
    std::vector<double> library, tool, ratios;
    for (int round = 0; round < rounds; ++round) {
        const CpuRun capture = RunCapture(node, seconds);
        const CpuRun shortRun = RunFfmpeg(node, kFfmpegWarmUpSeconds);
        const CpuRun longRun = RunFfmpeg(node, kFfmpegWarmUpSeconds + seconds);
        const long toolFrames = longRun.frames - shortRun.frames;
        const double toolCpu = longRun.cpuSeconds - shortRun.cpuSeconds;
        if (capture.frames <= 0 || toolFrames <= 0) {
            printf("  round %d: no frames (capture %ld, ffmpeg %ld)\n", round + 1, capture.frames, toolFrames);
            continue;
        }
        library.push_back(capture.cpuSeconds * 1000 / capture.frames);
        tool.push_back(toolCpu * 1000 / toolFrames);
        ratios.push_back(library.back() / tool.back());
        printf("  round %d: capture thread %.2f ms CPU per frame (%ld frames), ffmpeg %.2f ms (%ld frames)\n",
               round + 1, library.back(), capture.frames, tool.back(), toolFrames);
    }
    printf("capture thread, CPU per frame: %s\n", Summary(library, "ms").c_str());
    printf("ffmpeg tool, CPU per frame:    %s\n", Summary(tool, "ms").c_str());
    printf("  capture thread / ffmpeg, per round: %s\n", Summary(ratios, "").c_str());
}

void MeasureIdleCapture(int seconds)
{
    void* dev = Init();
    const std::set<int> before = Threads();
    if (ConnectCamera(dev, rig::CaptureNode().c_str()) != 0) {
        printf("idle capture: the camera did not open\n");
        DeInit(dev);
        return;
    }
    const std::set<int> capture = NewThreads(before);
    rig::SetCameraSilent(true);
    // The pictures the driver still holds are decoded first.
    std::vector<char> image = ImageBuffer();
    char text[1024];
    const double drainStart = SecondsNow();
    double lastPicture = drainStart;
    while (SecondsNow() - lastPicture < 2 && SecondsNow() - drainStart < 60) {
        if (GetFrame(dev, image.data(), static_cast<int>(image.size()), text, sizeof text) == 0)
            lastPicture = SecondsNow();
        usleep(1000);
    }
    const double start = ThreadsCpu(capture);
    std::this_thread::sleep_for(std::chrono::seconds(seconds));
    const double cpu = ThreadsCpu(capture) - start;
    rig::SetCameraSilent(false);
    DisconnectCamera(dev);
    DeInit(dev);
    printf("capture thread while the camera sends nothing: %.3f s CPU in %d s (%.1f %% of a CPU)\n", cpu, seconds,
           cpu * 100 / seconds);
}

void MeasureFrameLatency(int pictures)
{
    int width, height;
    rig::StreamedSize(&width, &height);
    void* dev = Init();
    std::vector<double> usb, fifo;
    {
        FrameFeeder feeder(rig::Var("VM_UVC_FIFO"), width, height, kLatencyFeedRate);
        if (feeder.Start() && ConnectCamera(dev, rig::CaptureNode().c_str()) == 0)
            usb = Latencies(dev, pictures);
        DisconnectCamera(dev);
    }
    {
        const char* local = "/tmp/bench-latency.fifo";
        unlink(local);
        mkfifo(local, 0600);
        FrameFeeder feeder(local, width, height, kLatencyFeedRate);
        std::thread start([&] { feeder.Start(); });  // its open waits for the reader
        if (ConnectCameraPlayback(dev, local) == 0)
            fifo = Latencies(dev, pictures);
        start.join();
        DisconnectCamera(dev);
        feeder.Stop();
        unlink(local);
    }
    DeInit(dev);
    PrintBeside("picture from the feeder to GetFrame, through the gadget, USB and uvcvideo", usb,
                "the same pictures played from a FIFO (ConnectCameraPlayback, no USB)", fifo, "ms");
}
