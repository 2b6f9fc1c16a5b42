// Internal state of the simulator, shared by its reader and writer threads.
#ifndef SIM_SIMSTATE_H
#define SIM_SIMSTATE_H

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <deque>
#include <map>
#include <mutex>
#include <random>
#include <thread>

#include "FrameParser.h"
#include "ModuleSimulator.h"

namespace sim {
using Clock = std::chrono::steady_clock;

// One piece of output with the way it must be written.
struct OutItem {
    Clock::time_point due;
    Bytes bytes;
    size_t chunk = 0;
    int bytesPerMs = 0;
};

struct ModuleSimulator::State {
    int master = -1;
    int slave = -1;
    int wakePipe[2] = {-1, -1};
    std::string slavePath;
    std::atomic<bool> running{false};
    std::atomic<bool> hungUp{false};
    std::thread reader;
    std::thread writer;

    mutable std::mutex lock;
    mutable std::condition_variable changed;
    std::map<uint16_t, Handler> handlers;
    Handler defaultHandler;
    std::vector<Request> requests;
    FrameParser parser;

    std::deque<OutItem> output;
    size_t splitChunk = 0;
    Bytes garbage;
    int corruptFrames = 0;
    int answerDelayMs = 0;
    int dropAnswers = 0;
    int bytesPerMs = 0;
    int readBytesPerMs = 0;
    bool writing = false;  // an item taken from `output` is being written
    FaultRates rates;
    std::mt19937 random;
    int unplugTag = -1;
    long requestsBeforeUnplug = 0;  // 0: no unplug planned

    void ReadLoop();
    void WriteLoop();
    // False when the request made the module hang up.
    bool HandleRequest(const Request& request);
    // Drawn under the lock: true in ppm parts per million of the calls.
    bool Chance(int ppm);
    // Counts a handled request toward a planned unplug; true (once the answers
    // are out) for the last one.
    bool LastRequestBeforeUnplug();
    // The reader's own hang-up: ends the writer and closes both sides.
    void HangUp();
    // Queues a frame (fault modes apply) or raw bytes, due after delayMs.
    void Queue(Bytes bytes, bool isFrame, int delayMs);
    bool WriteItem(const OutItem& item);
    bool WriteAll(const uint8_t* data, size_t len);
    void Shutdown();
    // With master open: makes it non-blocking and starts both threads.
    bool Begin();
};
}  // namespace sim

#endif
