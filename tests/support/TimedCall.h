// How long since a start, and a call on a thread of its own with its result and
// how long it took: for callers that must come back within their deadline
// while the link misbehaves.
#ifndef TESTS_TIMED_CALL_H
#define TESTS_TIMED_CALL_H

#include <atomic>
#include <chrono>
#include <functional>
#include <thread>

inline long long MsSince(std::chrono::steady_clock::time_point start)
{
    return std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now() - start).count();
}

inline double SecondsSince(std::chrono::steady_clock::time_point start)
{
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

struct TimedCall {
    std::atomic<int> result{1000};
    std::atomic<long long> ms{-1};
    std::thread thread;

    explicit TimedCall(std::function<int()> call)
        : thread([this, call] {
              std::chrono::steady_clock::time_point start = std::chrono::steady_clock::now();
              int r = call();
              ms = MsSince(start);
              result = r;
          })
    {
    }
    ~TimedCall()
    {
        if (thread.joinable())
            thread.join();
    }
    void Join() { thread.join(); }
};

#endif
