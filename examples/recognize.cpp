// recognize: runs one-to-many recognition for a few seconds, counting the
// module's reports (delivered to callbacks) and the video frames (taken with
// WaitFrame), then pauses recognition.
//   recognize /dev/ttyACM0 /dev/video0 5
//   recognize /dev/ttyACM0 recording.mjpeg 5     (a recorded stream, played back)
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include <atomic>
#include <chrono>
#include <mutex>
#include <string>
#include <vector>

#include <ai_camera.h>
#include <ai_camera_ext.h>

namespace {
// Callbacks run on the library's serial listener thread: they only copy and
// count, and never block.
std::atomic<int> g_recognitions{0};
std::atomic<int> g_tracks{0};
std::mutex g_lastLock;
std::string g_lastRecognition;

void OnRecognition(char* data, int len)
{
    std::lock_guard<std::mutex> hold(g_lastLock);
    g_lastRecognition.assign(data, len > 0 ? static_cast<size_t>(len) : 0);
    ++g_recognitions;
}

void OnTrack(char*, int) { ++g_tracks; }

int OpenVideo(void* dev, const char* source)
{
    if (strncmp(source, "/dev/video", 10) == 0)
        return ConnectCamera(dev, source);
    return ConnectCameraPlayback(dev, source);
}
}  // namespace

int main(int argc, char** argv)
{
    if (argc != 4) {
        fprintf(stderr, "usage: %s SERIAL-PORT VIDEO-NODE-OR-RECORDING SECONDS\n", argv[0]);
        return 2;
    }
    const int seconds = atoi(argv[3]);
    void* dev = Init();
    int result = ConnectSerial(dev, argv[1]);
    if (result == 0)
        result = OpenVideo(dev, argv[2]);
    if (result != 0) {
        fprintf(stderr, "cannot connect (%d)\n", result);
        DeInit(dev);
        return 1;
    }

    RegisterRecoReportCb(dev, OnRecognition);
    RegisterTrackReportCb(dev, OnTrack);
    result = StartOnetoNumRecognize(dev, 0, 0);
    if (result != 0) {
        fprintf(stderr, "recognition did not start (%d)\n", result);
        DeInit(dev);
        return 1;
    }

    int width = 0, height = 0;
    std::vector<char> picture;
    char sideText[1024];
    int frames = 0;
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(seconds);
    for (auto now = std::chrono::steady_clock::now(); now < end; now = std::chrono::steady_clock::now()) {
        const int leftMs = static_cast<int>(std::chrono::duration_cast<std::chrono::milliseconds>(end - now).count());
        if (GetResolution(dev, &width, &height) != 0 || width <= 0 || height <= 0)
            break;
        picture.resize(static_cast<size_t>(width) * height * 4);
        // Sleeps until the capture thread has the next picture; -11: none came in time.
        const int got = WaitFrame(dev, picture.data(), static_cast<int>(picture.size()), sideText, sizeof sideText, leftMs);
        if (got == 0)
            ++frames;
        else if (got != -11)
            break;
    }

    // The callbacks stay registered until DeInit stops the listener thread.
    result = PauseRecognize(dev);
    printf("%d frames of %dx%d, %d recognition and %d track reports\n", frames, width, height,
           g_recognitions.load(), g_tracks.load());
    {
        std::lock_guard<std::mutex> hold(g_lastLock);
        printf("last recognition: %s\n", g_lastRecognition.empty() ? "(none)" : g_lastRecognition.c_str());
    }
    DeInit(dev);
    return result == 0 ? 0 : 1;
}
