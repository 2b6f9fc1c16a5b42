// Throughput of the capture path (MJPEG decode and BGRA conversion on the
// capture thread) next to the ffmpeg tool on the same 1280x720 clip, and the
// cost of GetFrame's copy next to a bare memcpy of the same bytes, both beside the
// running capture thread and on an idle machine; and how soon a waiting
// WaitFrame returns once a picture has been converted, next to a GetFrame loop
// that polls at the 10 ms interval applications used, both against a GetFrame
// loop that never sleeps (which sees each picture the moment it is converted).
//
// Usage: bench_video [frames]   (run from a scratch directory; writes bench_clip.mjpeg)
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <time.h>
#include <fcntl.h>
#include <pthread.h>
#include <sched.h>
#include <unistd.h>
#include <sys/stat.h>

#include <algorithm>
#include <fstream>
#include <functional>
#include <iterator>
#include <chrono>
#include <string>
#include <thread>
#include <vector>

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavutil/frame.h>
#include <libswscale/swscale.h>
}

#include "AICamera/Video/CameraManager.h"

namespace {
const int kWidth = 1280;
const int kHeight = 720;
const int kFrameBytes = kWidth * kHeight * 4;
const char* const kClip = "bench_clip.mjpeg";

double Now()
{
    return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

double ProcessCpu()
{
    timespec t;
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &t);
    return t.tv_sec + t.tv_nsec / 1e9;
}

// Moving colour bars with a gradient, so that every picture differs and has
// texture like a camera picture; each frame carries its number as side text.
void MakeClip(int frames)
{
    const AVCodec* codec = avcodec_find_encoder(AV_CODEC_ID_MJPEG);
    AVCodecContext* ctx = avcodec_alloc_context3(codec);
    ctx->width = kWidth;
    ctx->height = kHeight;
    ctx->pix_fmt = AV_PIX_FMT_YUVJ422P;
    ctx->time_base = AVRational{1, 30};
    ctx->flags |= AV_CODEC_FLAG_BITEXACT | AV_CODEC_FLAG_QSCALE;
    ctx->global_quality = FF_QP2LAMBDA * 4;
    if (avcodec_open2(ctx, codec, nullptr) != 0) {
        fprintf(stderr, "no MJPEG encoder\n");
        exit(1);
    }
    AVFrame* frame = av_frame_alloc();
    frame->width = kWidth;
    frame->height = kHeight;
    frame->format = ctx->pix_fmt;
    av_frame_get_buffer(frame, 0);
    AVPacket* packet = av_packet_alloc();
    FILE* out = fopen(kClip, "wb");
    for (int i = 0; i < frames; ++i) {
        av_frame_make_writable(frame);
        for (int y = 0; y < kHeight; ++y)
            for (int x = 0; x < kWidth; ++x)
                frame->data[0][y * frame->linesize[0] + x] = static_cast<uint8_t>(((x + i * 8) / 160) * 30 + y / 8);
        for (int p = 1; p < 3; ++p)
            for (int y = 0; y < kHeight; ++y)
                for (int x = 0; x < kWidth / 2; ++x)
                    frame->data[p][y * frame->linesize[p] + x] = static_cast<uint8_t>(64 + p * 40 + ((x + i * 4) / 80) * 9);
        frame->pts = i;
        frame->quality = ctx->global_quality;
        avcodec_send_frame(ctx, frame);
        if (avcodec_receive_packet(ctx, packet) == 0) {
            char text[64];
            int n = snprintf(text, sizeof text, "{\"frame\":%d,\"bench\":true}", i);
            unsigned char com[4] = {0xFF, 0xFE, static_cast<unsigned char>((n + 2) >> 8), static_cast<unsigned char>(n + 2)};
            fwrite(packet->data, 1, 2, out);
            fwrite(com, 1, 4, out);
            fwrite(text, 1, static_cast<size_t>(n), out);
            fwrite(packet->data + 2, 1, static_cast<size_t>(packet->size) - 2, out);
            av_packet_unref(packet);
        }
    }
    fclose(out);
    av_packet_free(&packet);
    av_frame_free(&frame);
    avcodec_free_context(&ctx);
}

struct Run {
    double wall;
    double cpu;
};

// Plays the clip as fast as the pacing allows and waits, without copying
// pictures, for the last frame's side text.
Run CapturePath(int frames)
{
    CameraManager* manager = CameraManager::GetInstance();
    char last[64];
    snprintf(last, sizeof last, "{\"frame\":%d,", frames - 1);
    double wall0 = Now(), cpu0 = ProcessCpu();
    if (manager->StartPlayback(kClip, 1000) != 0) {
        fprintf(stderr, "StartPlayback failed\n");
        exit(1);
    }
    char verify[64];
    for (;;) {
        memset(verify, 0, sizeof verify);
        if (manager->GetFrame(nullptr, 0, verify, sizeof verify) == 0 && strncmp(verify, last, strlen(last)) == 0)
            break;
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    Run run = {Now() - wall0, ProcessCpu() - cpu0};
    manager->StopCamera();
    return run;
}

Run FfmpegTool()
{
    double wall0 = Now();
    pid_t pid = fork();
    if (pid == 0) {
        int null = open("/dev/null", O_WRONLY);
        dup2(null, 1);
        dup2(null, 2);
        execlp("ffmpeg", "ffmpeg", "-threads", "1", "-f", "mjpeg", "-i", kClip, "-pix_fmt", "bgra",
               "-sws_flags", "fast_bilinear", "-f", "null", "-", static_cast<char*>(nullptr));
        _exit(127);
    }
    int status = 0;
    struct rusage usage;
    wait4(pid, &status, 0, &usage);
    if (!WIFEXITED(status) || WEXITSTATUS(status) != 0) {
        fprintf(stderr, "ffmpeg failed\n");
        exit(1);
    }
    double cpu = usage.ru_utime.tv_sec + usage.ru_utime.tv_usec / 1e6 + usage.ru_stime.tv_sec +
                 usage.ru_stime.tv_usec / 1e6;
    return {Now() - wall0, cpu};
}

double Median(std::vector<double> v)
{
    std::sort(v.begin(), v.end());
    return v.empty() ? 0.0 : v[v.size() / 2];
}

struct CopyTimes {
    double getFrame;
    double memcpyAfter;
};

// Times each GetFrame that hands out a fresh picture during a paced playback,
// and right after it a bare memcpy of the same 3686400 bytes under the same
// conditions (the capture thread running beside it).
CopyTimes GetFrameCopySeconds(int samples)
{
    CameraManager* manager = CameraManager::GetInstance();
    manager->StartPlayback(kClip, 100);
    std::vector<char> image(kFrameBytes), copy(kFrameBytes);
    std::vector<double> getFrame, bare;
    // A short clip may end before enough pictures were taken: then fewer samples.
    double lastPicture = Now();
    while (static_cast<int>(getFrame.size()) < samples && Now() - lastPicture < 2.0) {
        double t0 = Now();
        int result = manager->GetFrame(image.data(), kFrameBytes, nullptr, 0);
        double t1 = Now();
        if (result != 0) {
            std::this_thread::sleep_for(std::chrono::microseconds(500));
            continue;
        }
        lastPicture = t1;
        memcpy(copy.data(), image.data(), image.size());
        double t2 = Now();
        getFrame.push_back(t1 - t0);
        bare.push_back(t2 - t1);
    }
    manager->StopCamera();
    return {Median(getFrame), Median(bare)};
}

// One picture of the clip, to be fed to a live FIFO.
std::vector<char> OnePicture()
{
    MakeClip(1);
    std::ifstream in(kClip, std::ios::binary);
    return std::vector<char>(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

// The median time from writing one picture into a FIFO that the camera plays
// to `take` returning with it on a thread that was already waiting for it;
// `take` gives 0 once it has the picture.
double HandOutSeconds(const std::vector<char>& picture, int samples, const std::function<int(char*)>& take)
{
    const char* const fifo = "bench_live.fifo";
    unlink(fifo);
    mkfifo(fifo, 0600);
    const int writer = open(fifo, O_RDWR | O_CLOEXEC);
    auto feed = [&] {
        for (size_t at = 0; at < picture.size();) {
            ssize_t put = write(writer, picture.data() + at, picture.size() - at);
            if (put <= 0)
                exit(1);
            at += static_cast<size_t>(put);
        }
    };
    CameraManager* manager = CameraManager::GetInstance();
    std::vector<char> image(kFrameBytes);
    feed();
    if (manager->StartPlayback(fifo, 30) != 0 || manager->WaitFrame(image.data(), kFrameBytes, nullptr, 0, 5000) != 0) {
        fprintf(stderr, "live FIFO playback failed\n");
        exit(1);
    }
    std::vector<double> times;
    for (int i = 0; i < samples; ++i) {
        double returned = 0;
        std::thread taker([&] {
            while (take(image.data()) != 0) {
            }
            returned = Now();
        });
        // Spread over a whole polling interval, so that the polling loop's phase is not always the same.
        std::this_thread::sleep_for(std::chrono::milliseconds(30 + i % 10));
        const double written = Now();
        feed();
        taker.join();
        times.push_back(returned - written);
    }
    manager->StopCamera();
    close(writer);
    unlink(fifo);
    return Median(times);
}

// Runs fn on another core than the caller's, as the capture thread runs beside
// the application's thread.
void PinTo(int core)
{
    cpu_set_t set;
    CPU_ZERO(&set);
    CPU_SET(core, &set);
    pthread_setaffinity_np(pthread_self(), sizeof set, &set);
}

template <typename Fn>
void OnAnotherCore(Fn fn)
{
    std::thread writer([&] {
        PinTo(1);
        fn();
    });
    writer.join();
}

// The baseline's source is made before each copy either with ordinary stores on
// this thread (warm in this core's cache), or exactly as the capture thread makes
// its picture: a BGRA conversion by sws_scale on the other core.
double MemcpySeconds(int samples, bool convertedElsewhere)
{
    cpu_set_t everyCore;
    pthread_getaffinity_np(pthread_self(), sizeof everyCore, &everyCore);
    PinTo(0);
    std::vector<char> source(kFrameBytes, 1), target(kFrameBytes);
    AVFrame* picture = av_frame_alloc();
    picture->width = kWidth;
    picture->height = kHeight;
    picture->format = AV_PIX_FMT_YUVJ422P;
    av_frame_get_buffer(picture, 0);
    for (int p = 0; p < 3; ++p)
        memset(picture->data[p], 90 + 40 * p, static_cast<size_t>(picture->linesize[p]) * kHeight);
    std::vector<double> times;
    for (int i = 0; i < samples; ++i) {
        if (convertedElsewhere) {
            OnAnotherCore([&] {
                SwsContext* scaler = sws_getContext(kWidth, kHeight, AV_PIX_FMT_YUVJ422P, kWidth, kHeight,
                                                    AV_PIX_FMT_BGRA, SWS_FAST_BILINEAR, nullptr, nullptr, nullptr);
                uint8_t* planes[4] = {reinterpret_cast<uint8_t*>(source.data()), nullptr, nullptr, nullptr};
                int strides[4] = {kWidth * 4, 0, 0, 0};
                sws_scale(scaler, picture->data, picture->linesize, 0, kHeight, planes, strides);
                sws_freeContext(scaler);
            });
        } else {
            for (size_t k = 0; k < source.size(); ++k)
                source[k] = static_cast<char>(k + i);
        }
        // The same pause as between GetFrame's polls, so that both copies start
        // from a thread that has just woken up.
        std::this_thread::sleep_for(std::chrono::microseconds(500));
        double t0 = Now();
        memcpy(target.data(), source.data(), source.size());
        double t1 = Now();
        times.push_back(t1 - t0);
    }
    av_frame_free(&picture);
    volatile char sink = target[kFrameBytes / 2];
    (void)sink;
    pthread_setaffinity_np(pthread_self(), sizeof everyCore, &everyCore);
    return Median(times);
}
}  // namespace

int main(int argc, char** argv)
{
    const int frames = argc > 1 ? atoi(argv[1]) : 300;
    CameraManager* manager = CameraManager::GetInstance();
    const std::vector<char> picture = OnePicture();
    const double waited = HandOutSeconds(picture, 40, [&](char* image) {
        return manager->WaitFrame(image, kFrameBytes, nullptr, 0, 5000);
    });
    const double polled = HandOutSeconds(picture, 40, [&](char* image) {
        int result = manager->GetFrame(image, kFrameBytes, nullptr, 0);
        if (result == -11)
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
        return result;
    });
    const double spun = HandOutSeconds(picture, 40, [&](char* image) {
        return manager->GetFrame(image, kFrameBytes, nullptr, 0);
    });
    printf("picture written into a live FIFO to the call returning with it, %dx%d (median of 40):\n", kWidth, kHeight);
    printf("  GetFrame never sleeping (sees the picture as it is converted): %.3f ms\n", spun * 1e3);
    printf("  WaitFrame                                                  : %.3f ms\n", waited * 1e3);
    printf("  GetFrame polling every 10 ms                               : %.3f ms\n", polled * 1e3);
    printf("conversion to return: WaitFrame %.3f ms, 10 ms polling %.3f ms (each minus the never-sleeping loop)\n",
           (waited - spun) * 1e3, (polled - spun) * 1e3);
    printf("hand-out latency ratio (WaitFrame / 10 ms polling): %.3f\n", waited / polled);
    MakeClip(frames);
    Run ours = {1e9, 1e9}, tool = {1e9, 1e9};
    // Best of three, interleaved, so that both see the same machine state.
    for (int i = 0; i < 3; ++i) {
        Run a = CapturePath(frames);
        Run b = FfmpegTool();
        ours = {std::min(ours.wall, a.wall), std::min(ours.cpu, a.cpu)};
        tool = {std::min(tool.wall, b.wall), std::min(tool.cpu, b.cpu)};
    }
    printf("clip: %d frames of %dx%d MJPEG (%s)\n", frames, kWidth, kHeight, kClip);
    printf("capture path : %7.1f frames/s, %6.2f ms CPU/frame\n", frames / ours.wall, ours.cpu * 1e3 / frames);
    printf("ffmpeg tool  : %7.1f frames/s, %6.2f ms CPU/frame\n", frames / tool.wall, tool.cpu * 1e3 / frames);
    printf("throughput ratio (capture / ffmpeg, goal >= 0.9): %.3f\n", tool.wall / ours.wall);
    printf("CPU per frame ratio (capture / ffmpeg): %.3f\n", ours.cpu / tool.cpu);
    CopyTimes copies = GetFrameCopySeconds(60);
    double copy = copies.getFrame;
    double warm = MemcpySeconds(60, false);
    double handed = MemcpySeconds(60, true);
    printf("GetFrame copy: %.3f ms (median)\n", copy * 1e3);
    printf("memcpy of the same %d bytes right after each GetFrame: %.3f ms (median)\n", kFrameBytes,
           copies.memcpyAfter * 1e3);
    printf("memcpy %d bytes, source written on this thread      : %.3f ms (median)\n", kFrameBytes, warm * 1e3);
    printf("memcpy %d bytes, source converted by sws_scale on the other core: %.3f ms (median)\n", kFrameBytes,
           handed * 1e3);
    printf("copy ratio (GetFrame / memcpy beside it, goal <= 1.5): %.3f\n", copy / copies.memcpyAfter);
    printf("copy ratio against an idle machine's memcpy: %.3f (converted source), %.3f (warm source)\n",
           copy / handed, copy / warm);
    return 0;
}
