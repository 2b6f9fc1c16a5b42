#include "ModuleSimulator.h"

#include <fcntl.h>
#include <stdlib.h>
#include <termios.h>
#include <unistd.h>

#include "SimState.h"

namespace sim {
namespace {
void CloseFd(int* fd)
{
    if (*fd >= 0)
        close(*fd);
    *fd = -1;
}

// No echo, no line editing, no translation: every byte as it is.
bool MakeRaw(int fd)
{
    struct termios raw;
    if (tcgetattr(fd, &raw) != 0)
        return false;
    cfmakeraw(&raw);
    return tcsetattr(fd, TCSANOW, &raw) == 0;
}
}  // namespace

ModuleSimulator::ModuleSimulator() : m_state(new State) {}

ModuleSimulator::~ModuleSimulator() { Stop(); }

bool ModuleSimulator::Start()
{
    State& s = *m_state;
    if (s.running)
        return true;
    s.Shutdown();  // what a hang-up left behind
    s.master = posix_openpt(O_RDWR | O_NOCTTY);
    if (s.master < 0)
        return false;
    char name[128];
    bool ok = grantpt(s.master) == 0 && unlockpt(s.master) == 0 && ptsname_r(s.master, name, sizeof name) == 0;
    if (ok) {
        s.slavePath = name;
        // Held open so that the master never reads a hang-up between host sessions.
        s.slave = open(name, O_RDWR | O_NOCTTY);
        ok = s.slave >= 0;
    }
    ok = ok && MakeRaw(s.slave);
    if (!ok) {
        s.Shutdown();
        return false;
    }
    return s.Begin();
}

bool ModuleSimulator::StartOnDevice(const std::string& path)
{
    State& s = *m_state;
    if (s.running)
        return true;
    s.master = open(path.c_str(), O_RDWR | O_NOCTTY | O_NONBLOCK);
    if (s.master < 0 || !MakeRaw(s.master)) {
        s.Shutdown();
        return false;
    }
    s.slavePath = path;
    return s.Begin();
}

bool ModuleSimulator::State::Begin()
{
    if (fcntl(master, F_SETFL, fcntl(master, F_GETFL) | O_NONBLOCK) != 0 || pipe(wakePipe) != 0) {
        Shutdown();
        return false;
    }
    hungUp = false;
    running = true;
    reader = std::thread(&State::ReadLoop, this);
    writer = std::thread(&State::WriteLoop, this);
    return true;
}

void ModuleSimulator::State::Shutdown()
{
    {
        std::lock_guard<std::mutex> guard(lock);
        running = false;
        output.clear();
    }
    changed.notify_all();
    if (wakePipe[1] >= 0) {
        ssize_t woken = write(wakePipe[1], "x", 1);
        (void)woken;
    }
    if (reader.joinable())
        reader.join();
    if (writer.joinable())
        writer.join();
    CloseFd(&master);
    CloseFd(&slave);
    CloseFd(&wakePipe[0]);
    CloseFd(&wakePipe[1]);
}

void ModuleSimulator::Stop() { m_state->Shutdown(); }

bool ModuleSimulator::IsRunning() const { return m_state->running; }

void ModuleSimulator::Unplug() { m_state->Shutdown(); }

std::string ModuleSimulator::SlavePath() const { return m_state->slavePath; }

bool ModuleSimulator::HungUp() const { return m_state->hungUp; }

void ModuleSimulator::SetHandler(uint16_t tag, Handler h)
{
    std::lock_guard<std::mutex> guard(m_state->lock);
    if (h)
        m_state->handlers[tag] = std::move(h);
    else
        m_state->handlers.erase(tag);
}

void ModuleSimulator::SetDefaultHandler(Handler h)
{
    std::lock_guard<std::mutex> guard(m_state->lock);
    m_state->defaultHandler = std::move(h);
}

std::vector<Request> ModuleSimulator::Requests() const
{
    std::lock_guard<std::mutex> guard(m_state->lock);
    return m_state->requests;
}

void ModuleSimulator::ClearRequests()
{
    std::lock_guard<std::mutex> guard(m_state->lock);
    m_state->requests.clear();
}

bool ModuleSimulator::WaitForRequests(size_t n, int timeoutMs) const
{
    std::unique_lock<std::mutex> guard(m_state->lock);
    return m_state->changed.wait_for(guard, std::chrono::milliseconds(timeoutMs),
                                     [&] { return m_state->requests.size() >= n; });
}

size_t ModuleSimulator::BadFrames() const
{
    std::lock_guard<std::mutex> guard(m_state->lock);
    return m_state->parser.BadFrames();
}

void ModuleSimulator::PushReport(uint16_t tag, const Bytes& value)
{
    m_state->Queue(EncodeFrame(0xA1, EncodeTLV(tag, value)), true, 0);
}

void ModuleSimulator::PushFrame(const Bytes& payload) { m_state->Queue(EncodeFrame(0xA1, payload), true, 0); }

void ModuleSimulator::PushRaw(const Bytes& bytes) { m_state->Queue(bytes, false, 0); }

void ModuleSimulator::SetSplitWrites(size_t chunk)
{
    std::lock_guard<std::mutex> guard(m_state->lock);
    m_state->splitChunk = chunk;
}

void ModuleSimulator::SetGarbageBeforeNext(const Bytes& g)
{
    std::lock_guard<std::mutex> guard(m_state->lock);
    m_state->garbage = g;
}

void ModuleSimulator::CorruptNextChecksums(int n)
{
    std::lock_guard<std::mutex> guard(m_state->lock);
    m_state->corruptFrames = n;
}

void ModuleSimulator::SetAnswerDelay(int ms)
{
    std::lock_guard<std::mutex> guard(m_state->lock);
    m_state->answerDelayMs = ms;
}

void ModuleSimulator::DropNextAnswers(int n)
{
    std::lock_guard<std::mutex> guard(m_state->lock);
    m_state->dropAnswers = n;
}

void ModuleSimulator::SetFaultRates(const FaultRates& rates)
{
    std::lock_guard<std::mutex> guard(m_state->lock);
    m_state->rates = rates;
    m_state->random.seed(rates.seed);
}

void ModuleSimulator::UnplugOnRequest(uint16_t tag)
{
    std::lock_guard<std::mutex> guard(m_state->lock);
    m_state->unplugTag = tag;
}

void ModuleSimulator::SetReadPacing(int bytesPerMs)
{
    std::lock_guard<std::mutex> guard(m_state->lock);
    m_state->readBytesPerMs = bytesPerMs;
}

void ModuleSimulator::UnplugAfterRequests(long n)
{
    std::lock_guard<std::mutex> guard(m_state->lock);
    m_state->requestsBeforeUnplug = n;
}

void ModuleSimulator::SetPacing(int bytesPerMs)
{
    std::lock_guard<std::mutex> guard(m_state->lock);
    m_state->bytesPerMs = bytesPerMs;
}
}  // namespace sim
