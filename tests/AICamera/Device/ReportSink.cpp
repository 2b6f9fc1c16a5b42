#include "ReportSink.h"

#include <chrono>

#include "ai_camera.h"

namespace {
const int kDeadlineMs = 10000;
const uint16_t kImageReport = 0x33;

struct SinkState {
    std::mutex lock;
    std::condition_variable changed;
    std::vector<ReceivedReport> received;
    const sim::ModuleSimulator* module = nullptr;
    size_t acksAtLastImage = 0;  // touched on the listener thread only, and by Reset
};

SinkState& State()
{
    static SinkState state;
    return state;
}

size_t AcknowledgementsSeen(const sim::ModuleSimulator* module)
{
    size_t count = 0;
    for (const sim::Request& request : module->Requests())
        count += request.tag == kImageReport;
    return count;
}
}  // namespace

void ReportSink::Reset(const sim::ModuleSimulator* module)
{
    std::lock_guard<std::mutex> guard(State().lock);
    State().received.clear();
    State().module = module;
    State().acksAtLastImage = 0;
}

void ReportSink::RegisterAll(void* dev)
{
    RegisterTrackReportCb(dev, Track);
    RegisterRecoReportCb(dev, Reco);
    RegisterQRCodeReportCb(dev, QRCode);
    RegisterImageReportCb(dev, Image);
    RegisterFeatureReportCb(dev, Feature);
}

std::vector<ReceivedReport> ReportSink::Received()
{
    std::lock_guard<std::mutex> guard(State().lock);
    return State().received;
}

bool ReportSink::WaitFor(size_t count)
{
    std::unique_lock<std::mutex> guard(State().lock);
    return State().changed.wait_for(guard, std::chrono::milliseconds(kDeadlineMs),
                                    [count] { return State().received.size() >= count; });
}

void ReportSink::Add(uint16_t kind, int callback, const char* data, int len)
{
    ReceivedReport report{kind, sim::Bytes(), callback, 0};
    if (data && len > 0)
        report.value.assign(data, data + len);
    const sim::ModuleSimulator* module = State().module;
    if (kind == kImageReport && module) {
        // The acknowledgement leaves before this callback is entered; give the
        // module time to read one more than it had at the last image report.
        size_t expected = State().acksAtLastImage + 1;
        auto deadline = std::chrono::steady_clock::now() + std::chrono::milliseconds(kDeadlineMs);
        while (AcknowledgementsSeen(module) < expected && std::chrono::steady_clock::now() < deadline)
            module->WaitForRequests(module->Requests().size() + 1, kDeadlineMs / 10);
        report.acksBefore = AcknowledgementsSeen(module);
        State().acksAtLastImage = report.acksBefore;
    }
    {
        std::lock_guard<std::mutex> guard(State().lock);
        State().received.push_back(report);
    }
    State().changed.notify_all();
}

void ReportSink::Track(char* data, int len) { Add(0x30, 1, data, len); }
void ReportSink::Reco(char* data, int len) { Add(0x31, 1, data, len); }
void ReportSink::QRCode(char* data, int len) { Add(0x32, 1, data, len); }
void ReportSink::Image(char* data, int len) { Add(0x33, 1, data, len); }
void ReportSink::Feature(char* data, int len) { Add(0x34, 1, data, len); }
void ReportSink::Track2(char* data, int len) { Add(0x30, 2, data, len); }
void ReportSink::Reco2(char* data, int len) { Add(0x31, 2, data, len); }
