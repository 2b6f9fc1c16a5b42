// The simulator's reader and writer threads.
#include <errno.h>
#include <poll.h>
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
        {
            std::lock_guard<std::mutex> guard(lock);
            found = parser.Feed(chunk, static_cast<size_t>(got));
        }
        for (const Request& request : found)
            HandleRequest(request);
    }
}

void ModuleSimulator::State::HandleRequest(const Request& request)
{
    Handler handler;
    {
        std::lock_guard<std::mutex> guard(lock);
        requests.push_back(request);
        auto it = handlers.find(request.tag);
        handler = it != handlers.end() ? it->second : defaultHandler;
    }
    changed.notify_all();
    if (!handler)
        return;
    std::optional<Bytes> answer = handler(request);
    if (!answer)
        return;
    int delayMs;
    {
        std::lock_guard<std::mutex> guard(lock);
        if (dropAnswers > 0) {
            --dropAnswers;
            return;
        }
        delayMs = answerDelayMs;
    }
    Queue(EncodeFrame(0xA1, EncodeTLV(request.tag, *answer)), true, delayMs);
}

void ModuleSimulator::State::Queue(Bytes bytes, bool isFrame, int delayMs)
{
    std::lock_guard<std::mutex> guard(lock);
    OutItem item;
    item.due = Clock::now() + std::chrono::milliseconds(delayMs);
    if (isFrame) {
        if (corruptFrames > 0 && bytes.size() >= 4) {
            --corruptFrames;
            bytes.back() ^= 0x01;
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
        guard.unlock();
        bool written = WriteItem(item);
        guard.lock();
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
