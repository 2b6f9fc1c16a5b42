#include "ModuleEnd.h"

#include <fcntl.h>
#include <signal.h>
#include <unistd.h>

#include <chrono>

#include "Rig.h"

namespace {
const int kReopenTimeoutMs = 10000;
}  // namespace

ModuleEnd::ModuleEnd() : m_path(rig::Var("VM_ACM_GADGET")) {}

ModuleEnd::~ModuleEnd() { simulator.Stop(); }

bool ModuleEnd::Start()
{
    model.Install();
    model.SetRebootQuietMs(0);
    return simulator.StartOnDevice(m_path);
}

bool ModuleEnd::ServeAgain()
{
    const auto end = std::chrono::steady_clock::now() + std::chrono::milliseconds(kReopenTimeoutMs);
    while (!simulator.HungUp() && std::chrono::steady_clock::now() < end)
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
    simulator.Stop();
    while (!simulator.StartOnDevice(m_path)) {
        if (std::chrono::steady_clock::now() > end)
            return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
    }
    return true;
}

FrameFeeder::FrameFeeder(int width, int height, int framesPerSecond)
    : m_width(width), m_height(height), m_fps(framesPerSecond), m_plain(EncodeSolid(width, height, kGreen))
{
}

FrameFeeder::~FrameFeeder() { Stop(); }

long long FrameFeeder::NowUs()
{
    return std::chrono::duration_cast<std::chrono::microseconds>(std::chrono::steady_clock::now().time_since_epoch())
        .count();
}

bool FrameFeeder::Start()
{
    signal(SIGPIPE, SIG_IGN);
    m_fd = open(rig::Var("VM_UVC_FIFO").c_str(), O_WRONLY | O_CLOEXEC);
    if (m_fd < 0)
        return false;
    m_thread = std::thread(&FrameFeeder::Run, this);
    return true;
}

void FrameFeeder::Stop()
{
    m_stop = true;
    if (m_thread.joinable())
        m_thread.join();
    if (m_fd >= 0)
        close(m_fd);
    m_fd = -1;
}

void FrameFeeder::SetColour(Rgb colour)
{
    Bytes plain = EncodeSolid(m_width, m_height, colour);
    std::lock_guard<std::mutex> guard(m_mutex);
    m_plain.swap(plain);
}

Bytes FrameFeeder::Picture(long long seq)
{
    std::lock_guard<std::mutex> guard(m_mutex);
    const std::string text = "{\"seq\":" + std::to_string(seq) + ",\"sent_us\":" + std::to_string(NowUs()) + "}";
    return WithSegment(m_plain, 0xFE, text);
}

void FrameFeeder::Run()
{
    const auto period = std::chrono::microseconds(1000000 / m_fps);
    auto next = std::chrono::steady_clock::now();
    for (long long seq = 0; !m_stop; ++seq) {
        const Bytes picture = Picture(seq);
        for (size_t at = 0; at < picture.size();) {
            ssize_t put = write(m_fd, picture.data() + at, picture.size() - at);
            if (put <= 0)
                return;
            at += size_t(put);
        }
        m_sent = seq + 1;
        next += period;
        std::this_thread::sleep_until(next);
    }
}
