#include "ReportQueue.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <unistd.h>

#include <algorithm>
#include <mutex>

#include "ai_camera.h"

namespace {
// The callbacks carry no user pointer, so their destination is process-wide.
std::mutex g_lock;
std::vector<Report> g_queue;
int g_wake[2] = {-1, -1};
volatile sig_atomic_t g_interrupted = 0;
struct sigaction g_previous;

void Wake()
{
    char byte = 1;
    // A full pipe already means "wake up".
    ssize_t ignored = write(g_wake[1], &byte, 1);
    (void)ignored;
}

void OnInterrupt(int)
{
    g_interrupted = 1;
    Wake();
}

template <const char* const* Kind>
void Queue(char* data, int len)
{
    std::string bytes = data && len > 0 ? std::string(data, static_cast<size_t>(len)) : std::string();
    {
        std::lock_guard<std::mutex> hold(g_lock);
        g_queue.push_back({*Kind, std::move(bytes)});
    }
    Wake();
}

const char* const kRecognition = "recognition";
const char* const kTrack = "track";
const char* const kImage = "image";
const char* const kFeature = "feature";
const char* const kQrCode = "qrcode";

struct Registration {
    const char* const* kind;
    void (*registerCb)(void* dev, AI_CAMERA_REPORT_FUNC handler);
    AI_CAMERA_REPORT_FUNC handler;
};

const Registration kRegistrations[] = {
    {&kRecognition, RegisterRecoReportCb, Queue<&kRecognition>},
    {&kTrack, RegisterTrackReportCb, Queue<&kTrack>},
    {&kImage, RegisterImageReportCb, Queue<&kImage>},
    {&kFeature, RegisterFeatureReportCb, Queue<&kFeature>},
    {&kQrCode, RegisterQRCodeReportCb, Queue<&kQrCode>},
};

}  // namespace

const std::vector<std::string>& ReportQueue::Kinds()
{
    static const std::vector<std::string> kinds = {kRecognition, kTrack, kImage, kFeature, kQrCode};
    return kinds;
}

bool ReportQueue::Start(void* dev, const std::vector<std::string>& kinds)
{
    if (g_wake[0] < 0 && pipe2(g_wake, O_CLOEXEC | O_NONBLOCK) != 0)
        return false;
    struct sigaction action = {};
    action.sa_handler = OnInterrupt;
    sigemptyset(&action.sa_mask);
    sigaction(SIGINT, &action, &g_previous);
    for (const Registration& entry : kRegistrations) {
        if (std::find(kinds.begin(), kinds.end(), *entry.kind) != kinds.end())
            entry.registerCb(dev, entry.handler);
    }
    return true;
}

void ReportQueue::Stop()
{
    // The callbacks stay registered: the listener thread reads their slots
    // without a lock, so changing one while reports may arrive would race.
    // Until DeInit ends that thread they only fill the queue, and the pipe
    // stays open for them.
    sigaction(SIGINT, &g_previous, nullptr);
}

bool ReportQueue::Wait(int timeoutMs, std::vector<Report>& out)
{
    out.clear();
    struct pollfd wake = {g_wake[0], POLLIN, 0};
    if (!g_interrupted && poll(&wake, 1, timeoutMs) > 0) {
        char drain[64];
        while (read(g_wake[0], drain, sizeof drain) > 0) {
        }
    }
    {
        std::lock_guard<std::mutex> hold(g_lock);
        out.swap(g_queue);
    }
    return !g_interrupted;
}
