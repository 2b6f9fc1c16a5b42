// The simulator's reader and writer threads.
#include <errno.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>

#include "SimState.h"

namespace sim {
namespace {
const size_t kPacedPiece = 16;
const int kPollSliceMs = 50;
}  // namespace

void ModuleSimulator::State::ReadLoop()
{
    uint8_t chunk[4096];
    while (running) {
        struct pollfd fds[2] = {{master, POLLIN, 0}, {wakePipe[0], POLLIN, 0}};
        if (poll(fds, 2, -1) < 0) {
            if (errno == EINTR)
                continue;
            return;
        }
        if (fds[1].revents)
            return;
        if (!(fds[0].revents & (POLLIN | POLLHUP | POLLERR)))
            continue;
        ssize_t got = read(master, chunk, sizeof chunk);
        if (got == 0 || (got < 0 && errno != EAGAIN && errno != EINTR)) {
            // A terminal device whose host went away reads end-of-file for good.
            hungUp = true;
            return;
        }
        if (got < 0)
            continue;
        std::vector<Request> found;
        int readRate = 0;
        {
            std::lock_guard<std::mutex> guard(lock);
            found = parser.Feed(chunk, static_cast<size_t>(got));
            readRate = readBytesPerMs;
        }
        if (readRate > 0)  // a slow line: the next bytes are taken only after these went by
            std::this_thread::sleep_for(std::chrono::microseconds(got * 1000 / readRate));
        for (const Request& request : found) {
            if (!HandleRequest(request) || LastRequestBeforeUnplug()) {
                HangUp();
                return;
            }
        }
    }
}

void ModuleSimulator::State::HangUp()
{
    {
        std::lock_guard<std::mutex> guard(lock);
        running = false;
        output.clear();
    }
    changed.notify_all();
    if (writer.joinable())
        writer.join();
    close(master);
    close(slave);
    master = slave = -1;
}

bool ModuleSimulator::State::LastRequestBeforeUnplug()
{
    std::unique_lock<std::mutex> guard(lock);
    if (requestsBeforeUnplug == 0 || --requestsBeforeUnplug > 0)
        return false;
    // Its answer, queued by now, goes out before the line does, and is read by
    // the host: a hang-up throws away what the host has not read yet.
    changed.wait_for(guard, std::chrono::seconds(5), [this] { return (output.empty() && !writing) || !running; });
    guard.unlock();
    // Written bytes reach the host's side of a pseudo-terminal through a kernel
    // work item, so an empty input queue right after the write may only mean
    // they are still on their way: the queue must stay empty for a while.
    const int kStepMs = 5, kSettledMs = 150, kGiveUpMs = 3000;
    int emptyFor = 0;
    for (int waited = 0; slave >= 0 && waited < kGiveUpMs && emptyFor < kSettledMs; waited += kStepMs) {
        int unread = 0;
        if (ioctl(slave, FIONREAD, &unread) != 0)
            break;
        emptyFor = unread == 0 ? emptyFor + kStepMs : 0;
        std::this_thread::sleep_for(std::chrono::milliseconds(kStepMs));
    }
    return true;
}

bool ModuleSimulator::State::Chance(int ppm)
{
    return ppm > 0 && static_cast<int>(random() % 1000000) < ppm;
}

bool ModuleSimulator::State::HandleRequest(const Request& request)
{
    Handler handler;
    {
        std::lock_guard<std::mutex> guard(lock);
        requests.push_back(request);
        if (request.tag == unplugTag) {
            unplugTag = -1;
            return false;
        }
        auto it = handlers.find(request.tag);
        handler = it != handlers.end() ? it->second : defaultHandler;
    }
    changed.notify_all();
    if (!handler)
        return true;
    std::optional<Bytes> answer = handler(request);
    if (!answer)
        return true;
    int delayMs;
    {
        std::lock_guard<std::mutex> guard(lock);
        if (dropAnswers > 0) {
            --dropAnswers;
            return true;
        }
        if (Chance(rates.dropPpm))
            return true;
        delayMs = answerDelayMs;
        if (rates.delayMaxMs > 0 && Chance(rates.delayPpm))
            delayMs += static_cast<int>(random() % static_cast<uint32_t>(rates.delayMaxMs + 1));
    }
    Queue(EncodeFrame(0xA1, EncodeTLV(request.tag, *answer)), true, delayMs);
    return true;
}

void ModuleSimulator::State::Queue(Bytes bytes, bool isFrame, int delayMs)
{
    std::lock_guard<std::mutex> guard(lock);
    OutItem item;
    item.due = Clock::now() + std::chrono::milliseconds(delayMs);
    if (isFrame) {
        if ((corruptFrames > 0 || Chance(rates.corruptPpm)) && bytes.size() >= 4) {
            corruptFrames = corruptFrames > 0 ? corruptFrames - 1 : 0;
            bytes.back() ^= 0x01;
        }
        if (Chance(rates.garbagePpm)) {
            Bytes noise(1 + random() % 16);
            for (uint8_t& byte : noise)
                byte = static_cast<uint8_t>(random());
            bytes.insert(bytes.begin(), noise.begin(), noise.end());
        }
        if (!garbage.empty()) {
            bytes.insert(bytes.begin(), garbage.begin(), garbage.end());
            garbage.clear();
        }
    }
    item.bytes = std::move(bytes);
    item.chunk = splitChunk;
    item.bytesPerMs = bytesPerMs;
    output.push_back(std::move(item));
    changed.notify_all();
}

void ModuleSimulator::State::WriteLoop()
{
    std::unique_lock<std::mutex> guard(lock);
    while (running) {
        if (output.empty()) {
            changed.wait(guard);
            continue;
        }
        // Items go out in order; a delayed answer holds back what follows it.
        Clock::time_point due = output.front().due;
        if (Clock::now() < due) {
            changed.wait_until(guard, due);
            continue;
        }
        OutItem item = std::move(output.front());
        output.pop_front();
        writing = true;
        guard.unlock();
        bool written = WriteItem(item);
        guard.lock();
        writing = false;
        changed.notify_all();
        if (!written)
            return;
    }
}

bool ModuleSimulator::State::WriteItem(const OutItem& item)
{
    size_t piece = item.chunk ? item.chunk : item.bytes.size();
    if (item.bytesPerMs > 0)
        piece = std::min(piece, kPacedPiece);
    Clock::time_point start = Clock::now();
    for (size_t at = 0; at < item.bytes.size(); at += piece) {
        if (item.bytesPerMs > 0) {
            // Pieces leave on a schedule, not faster than the set rate.
            auto offset = std::chrono::microseconds(at * 1000 / static_cast<size_t>(item.bytesPerMs));
            std::this_thread::sleep_until(start + offset);
        }
        if (!WriteAll(item.bytes.data() + at, std::min(piece, item.bytes.size() - at)))
            return false;
    }
    return true;
}

bool ModuleSimulator::State::WriteAll(const uint8_t* data, size_t len)
{
    while (len > 0) {
        ssize_t put = write(master, data, len);
        if (put > 0) {
            data += put;
            len -= static_cast<size_t>(put);
            continue;
        }
        if (put < 0 && errno != EAGAIN && errno != EINTR)
            return false;
        // The host has not read yet: wait for room, but notice a stop.
        struct pollfd out = {master, POLLOUT, 0};
        poll(&out, 1, kPollSliceMs);
        if (!running)
            return false;
    }
    return true;
}
}  // namespace sim
