// Mixed device commands from several threads against the simulated module while
// every fault mode runs at a steady rate: dropped, delayed and corrupted
// answers, garbage on the line, reports with acknowledgements, and now and then
// a hang-up (between requests or in the middle of one), a disconnect from
// another thread and one from inside a report callback, each followed by a
// reconnect. Prints, per result code, the count and the worst call time over
// the call's timeout, and whether the link recovered after every fault.
#include <limits.h>
#include <stdio.h>
#include <stdlib.h>

#include <atomic>
#include <chrono>
#include <functional>
#include <map>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "ModuleModel.h"
#include "ModuleSimulator.h"
#include "ProcessCounts.h"
#include "ai_camera.h"

namespace {
using Clock = std::chrono::steady_clock;

const unsigned int kTimeoutMs = 10000;
const unsigned int kEnrolTimeoutMs = 15000;
const int kFaultEveryMs = 3000;
const int kRecoveryLimitMs = 30000;
const uint16_t kQueryRecognizeTag = 0x16;
// An application backs off after a failure that came at once (the link is down).
const long long kQuickFailureMs = 50;
const int kBackOffMs = 20;

long long MsSince(Clock::time_point start)
{
    return std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - start).count();
}

struct Call {
    const char* name;
    unsigned int timeoutMs;
    std::function<int(void*)> run;
};

std::vector<Call> MixedCalls()
{
    return {
        {"QueryRecognize", kTimeoutMs, [](void* dev) { return QueryRecognize(dev); }},
        {"Ping", kTimeoutMs, [](void* dev) { return Ping(dev, "soak", 4); }},
        {"GetDeviceVersion", kTimeoutMs,
         [](void* dev) {
             char text[64];
             return GetDeviceVersion(dev, text, sizeof text);
         }},
        {"GetCpuTemperature", kTimeoutMs,
         [](void* dev) {
             unsigned int value = 0;
             return GetCpuTemperature(dev, &value);
         }},
        {"GetFrameRate", kTimeoutMs,
         [](void* dev) {
             unsigned int value = 0;
             return GetFrameRate(dev, &value);
         }},
        {"GetDeviceFaceLibraryNum", kTimeoutMs,
         [](void* dev) {
             unsigned int value = 0;
             return GetDeviceFaceLibraryNum(dev, &value);
         }},
        {"GetRecognizeCount", kTimeoutMs,
         [](void* dev) {
             unsigned char a = 0, b = 0;
             return GetRecognizeCount(dev, &a, &b);
         }},
        {"GetDevSn", kTimeoutMs,
         [](void* dev) {
             char text[64];
             return GetDevSn(dev, 0, text, sizeof text);
         }},
        {"QueryFace", kTimeoutMs, [](void* dev) { return QueryFace(dev, "soak", 4, 0); }},
        {"AddFace", kEnrolTimeoutMs, [](void* dev) { return AddFace(dev, "soak", 4); }},
        {"DeleteFace", kTimeoutMs, [](void* dev) { return DeleteFace(dev, 1, "soak", 4); }},
    };
}

struct Outcome {
    long count = 0;
    long long worstOverMs = LLONG_MIN;
    const char* worstCall = "";
};

class Tally {
public:
    void Add(int code, long long overMs, const char* name)
    {
        std::lock_guard<std::mutex> guard(m_lock);
        Outcome& outcome = m_outcomes[code];
        ++outcome.count;
        if (overMs > outcome.worstOverMs) {
            outcome.worstOverMs = overMs;
            outcome.worstCall = name;
        }
    }
    void Print() const
    {
        printf("%8s %9s  %s\n", "result", "count", "worst time over its timeout");
        for (const auto& entry : m_outcomes)
            printf("%8d %9ld  %+lld ms (%s)\n", entry.first, entry.second.count, entry.second.worstOverMs,
                   entry.second.worstCall);
    }
    long long WorstOverMs() const
    {
        long long worst = LLONG_MIN;
        for (const auto& entry : m_outcomes)
            worst = entry.second.worstOverMs > worst ? entry.second.worstOverMs : worst;
        return worst;
    }

private:
    mutable std::mutex m_lock;
    std::map<int, Outcome> m_outcomes;
};

std::atomic<void*> g_disconnectFromCallback{nullptr};
std::atomic<long> g_reports{0};

void OnReport(char*, int)
{
    ++g_reports;
    void* dev = g_disconnectFromCallback.exchange(nullptr);
    if (dev)
        DisconnectSerial(dev);
}

class Soak {
public:
    Soak(long requests, int threads) : m_requests(requests), m_threads(threads), m_model(m_module) {}

    int Run()
    {
        sim::FaultRates rates;
        rates.dropPpm = 100;
        rates.corruptPpm = 100;
        rates.garbagePpm = 100;
        rates.delayPpm = 1000;
        rates.delayMaxMs = 3000;
        rates.seed = 20261123;
        m_model.Install();
        m_model.SetReportInterval(200);
        m_module.SetFaultRates(rates);
        if (!m_module.Start()) {
            fprintf(stderr, "link_soak: cannot start the simulator\n");
            return 1;
        }
        m_dev = Init();
        m_other = Init();
        for (auto reg : {RegisterRecoReportCb, RegisterTrackReportCb, RegisterImageReportCb, RegisterFeatureReportCb,
                         RegisterQRCodeReportCb})
            reg(m_dev, OnReport);
        if (!Connect()) {
            fprintf(stderr, "link_soak: cannot connect\n");
            return 1;
        }
        size_t threadsBefore = ThreadCount(), descriptorsBefore = DescriptorCount();
        Clock::time_point start = Clock::now();
        std::vector<std::thread> workers;
        for (int i = 0; i < m_threads; ++i)
            workers.emplace_back([this, i] { Work(i); });
        std::thread faults([this] { InjectFaults(); });
        for (std::thread& worker : workers)
            worker.join();
        m_done = true;
        faults.join();
        double seconds = MsSince(start) / 1000.0;

        printf("link_soak: %ld requests from %d threads in %.1f s; steady faults: drop %d ppm, delay %d ppm "
               "(up to %d ms), corrupt %d ppm, garbage %d ppm; %ld reports\n",
               m_requests, m_threads, seconds, rates.dropPpm, rates.delayPpm, rates.delayMaxMs, rates.corruptPpm,
               rates.garbagePpm, g_reports.load());
        m_tally.Print();
        printf("faults: %d hang-ups between requests, %d in the middle of one, %d disconnects from another "
               "thread, %d from a report callback\n",
               m_faultKinds[0], m_faultKinds[1], m_faultKinds[2], m_faultKinds[3]);
        printf("link recovered after %d of %d faults; longest recovery %.1f s\n", m_recovered, m_faults,
               m_longestRecoveryMs / 1000.0);
        m_module.SetFaultRates(sim::FaultRates());
        int clean = 0;
        for (int i = 0; i < 100; ++i)
            clean += Ping(m_dev, "soak", 4) == 0;
        printf("after the faults stop: %d of 100 requests answered\n", clean);
        printf("threads %zu -> %zu, descriptors %zu -> %zu (the link was replaced %d times)\n", threadsBefore,
               ThreadCount(), descriptorsBefore, DescriptorCount(), m_faults);
        DeInit(m_other);
        DeInit(m_dev);
        bool bounded = m_tally.WorstOverMs() <= 1000;
        return bounded && m_recovered == m_faults && clean == 100 ? 0 : 2;
    }

private:
    // Connects and has the module recognise and send all its reports.
    bool Connect()
    {
        return ConnectSerial(m_dev, m_module.SlavePath().c_str()) == 0 && StartOnetoNumRecognize(m_dev, 1, 1) == 0 &&
               OpenAutoUploadAiInfo(m_dev, 4, 0) == 0 && SetQRCodeSwitch(m_dev, 1, 1) == 0;
    }

    void Work(int index)
    {
        std::vector<Call> calls = MixedCalls();
        unsigned int seed = 7919u * static_cast<unsigned int>(index + 1);
        while (m_issued.fetch_add(1) < m_requests) {
            seed = seed * 1103515245u + 12345u;
            const Call& call = calls[(seed >> 16) % calls.size()];
            Clock::time_point begin = Clock::now();
            int code = call.run(m_dev);
            long long ms = MsSince(begin);
            m_tally.Add(code, ms - call.timeoutMs, call.name);
            if (code == -6 && ms < kQuickFailureMs)
                std::this_thread::sleep_for(std::chrono::milliseconds(kBackOffMs));
        }
    }

    // One fault of each kind in turn, every few seconds, each followed by a reconnect.
    void InjectFaults()
    {
        for (int kind = 0; !m_done; kind = (kind + 1) % 4) {
            for (int waited = 0; waited < kFaultEveryMs && !m_done; waited += 50)
                std::this_thread::sleep_for(std::chrono::milliseconds(50));
            if (m_done)
                return;
            Inject(kind);
            ++m_faults;
            ++m_faultKinds[kind];
            Clock::time_point begin = Clock::now();
            bool recovered = false;
            while (!recovered && MsSince(begin) < kRecoveryLimitMs)
                recovered = Ping(m_dev, "back", 4) == 0;
            m_recovered += recovered;
            m_longestRecoveryMs = std::max(m_longestRecoveryMs, MsSince(begin));
        }
    }

    void Inject(int kind)
    {
        switch (kind) {
        case 0:
            m_module.Unplug();
            break;
        case 1: {
            m_module.UnplugOnRequest(kQueryRecognizeTag);
            Clock::time_point begin = Clock::now();
            while (m_module.IsRunning() && MsSince(begin) < kRecoveryLimitMs)
                std::this_thread::sleep_for(std::chrono::milliseconds(5));
            break;
        }
        case 2:
            DisconnectSerial(m_other);
            break;
        default: {
            g_disconnectFromCallback = m_dev;
            Clock::time_point begin = Clock::now();
            while (g_disconnectFromCallback.load() && MsSince(begin) < kRecoveryLimitMs)
                std::this_thread::sleep_for(std::chrono::milliseconds(5));
            g_disconnectFromCallback = nullptr;
        }
        }
        if (!m_module.IsRunning())
            m_module.Start();  // plugged in again: a new port
        Connect();
    }

    const long m_requests;
    const int m_threads;
    sim::ModuleSimulator m_module;
    sim::ModuleModel m_model;
    void* m_dev = nullptr;
    void* m_other = nullptr;
    Tally m_tally;
    std::atomic<long> m_issued{0};
    std::atomic<bool> m_done{false};
    int m_faults = 0, m_recovered = 0, m_faultKinds[4] = {0, 0, 0, 0};
    long long m_longestRecoveryMs = 0;
};
}  // namespace

int main(int argc, char** argv)
{
    long requests = argc > 1 ? atol(argv[1]) : 100000;
    int threads = argc > 2 ? atoi(argv[2]) : 4;
    SetLogConfig(LOG_LEVER_OFF, LOG_TARGET_CONSOLE);
    Soak soak(requests, threads > 0 ? threads : 1);
    return soak.Run();
}
