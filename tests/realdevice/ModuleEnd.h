// The module's side of the USB link inside the test machine: the simulated
// module serving the gadget's serial node, and a feeder of MJPEG pictures
// into the gadget's camera.
#ifndef TESTS_REALDEVICE_MODULE_END_H
#define TESTS_REALDEVICE_MODULE_END_H

#include <atomic>
#include <mutex>
#include <string>
#include <thread>

#include "MjpegClip.h"
#include "ModuleModel.h"
#include "ModuleSimulator.h"

class ModuleEnd {
public:
    ModuleEnd();
    ~ModuleEnd();

    // Opens the gadget's serial node; false when it cannot be opened.
    bool Start();
    // After the host hung up (an unplug), opens the node again for the next host.
    bool ServeAgain();

    sim::ModuleSimulator simulator;
    sim::ModuleModel model{simulator};

private:
    std::string m_path;
};

// Writes pictures of one colour into the camera's FIFO at a steady rate, each
// with its side text {"seq":N,"sent_us":T}: T is the monotonic clock, in
// microseconds, when the picture left.
class FrameFeeder {
public:
    FrameFeeder(int width, int height, int framesPerSecond);
    ~FrameFeeder();

    bool Start();
    void Stop();
    void SetColour(Rgb colour);
    long long Sent() const { return m_sent; }
    static long long NowUs();

private:
    void Run();
    Bytes Picture(long long seq);

    const int m_width, m_height, m_fps;
    int m_fd = -1;
    std::mutex m_mutex;
    Bytes m_plain;  // the current colour, without side text
    std::atomic<bool> m_stop{false};
    std::atomic<long long> m_sent{0};
    std::thread m_thread;
};

#endif
