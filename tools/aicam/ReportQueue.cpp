#include "ReportQueue.h"

#include <poll.h>

#include <algorithm>
#include <mutex>

#include "SignalWatch.h"
#include "ai_camera.h"

namespace {
// The callbacks carry no user pointer, so their destination is process-wide.
std::mutex g_lock;
std::vector<Report> g_queue;
template <const char* const* Kind>
void Queue(char* data, int len)
{
    std::string bytes = data && len > 0 ? std::string(data, static_cast<size_t>(len)) : std::string();
    {
        std::lock_guard<std::mutex> hold(g_lock);
        g_queue.push_back({*Kind, std::move(bytes)});
    }
    SignalWatch::Wake();
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

void ReportQueue::Start(void* dev, const std::vector<std::string>& kinds)
{
    for (const Registration& entry : kRegistrations) {
        if (std::find(kinds.begin(), kinds.end(), *entry.kind) != kinds.end())
            entry.registerCb(dev, entry.handler);
    }
}

// The callbacks stay registered: the listener thread reads their slots without
// a lock, so changing one while reports may arrive would race. Until DeInit
// ends that thread they only fill the queue.
bool ReportQueue::Wait(int timeoutMs, std::vector<Report>& out)
{
    out.clear();
    struct pollfd wake = {SignalWatch::WakeFd(), POLLIN, 0};
    if (!CaughtSignal() && poll(&wake, 1, timeoutMs) > 0)
        SignalWatch::Drain();
    {
        std::lock_guard<std::mutex> hold(g_lock);
        out.swap(g_queue);
    }
    return !CaughtSignal();
}
