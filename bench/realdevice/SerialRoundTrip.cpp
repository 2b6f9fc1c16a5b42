// Ping through the library over cdc_acm, and a raw echo of a ping frame's
// bytes through the same two terminals: what the protocol adds to the link.
#include <fcntl.h>
#include <poll.h>
#include <stdio.h>
#include <termios.h>
#include <unistd.h>

#include <atomic>
#include <thread>
#include <vector>

#include "Measures.h"
#include "ModuleEnd.h"
#include "Rig.h"
#include "Statistics.h"
#include "ai_camera.h"

namespace {
const char kText[] = "0123456789";
const unsigned int kTextLength = sizeof kText - 1;
// A ping's frame: marker, length, record tag and length, the text, checksum.
const size_t kFrameBytes = 1 + 4 + 2 + 4 + kTextLength + 4;
const int kWaitMs = 5000;

int OpenRaw(const std::string& path)
{
    int fd = open(path.c_str(), O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC);
    struct termios raw;
    if (fd >= 0 && tcgetattr(fd, &raw) == 0) {
        cfmakeraw(&raw);
        tcsetattr(fd, TCSANOW, &raw);
    }
    return fd;
}

// Reads or writes exactly `size` bytes, waiting for each piece; false on failure.
bool Transfer(int fd, unsigned char* data, size_t size, bool reading)
{
    for (size_t done = 0; done < size;) {
        struct pollfd p = {fd, static_cast<short>(reading ? POLLIN : POLLOUT), 0};
        if (poll(&p, 1, kWaitMs) <= 0)
            return false;
        ssize_t n = reading ? read(fd, data + done, size - done) : write(fd, data + done, size - done);
        if (n > 0)
            done += static_cast<size_t>(n);
        else if (n == 0)
            return false;
    }
    return true;
}

std::vector<double> LibraryPings(int pings)
{
    std::vector<double> ms;
    ModuleEnd module;
    void* dev = Init();
    if (!module.Start() || ConnectSerial(dev, rig::SerialNode().c_str()) != 0 || Ping(dev, kText, kTextLength) != 0) {
        printf("Ping: the module did not answer\n");
        DeInit(dev);
        return ms;
    }
    for (int i = 0; i < pings; ++i) {
        const double start = SecondsNow();
        if (Ping(dev, kText, kTextLength) == 0)
            ms.push_back((SecondsNow() - start) * 1000);
    }
    DeInit(dev);
    return ms;
}

std::vector<double> RawEchoes(int echoes)
{
    std::vector<double> ms;
    const int host = OpenRaw(rig::SerialNode());
    const int gadget = OpenRaw(rig::Var("VM_ACM_GADGET"));
    std::atomic<bool> stop(false);
    std::thread echo([&] {
        unsigned char buffer[kFrameBytes];
        while (!stop)
            if (Transfer(gadget, buffer, sizeof buffer, true))
                Transfer(gadget, buffer, sizeof buffer, false);
    });
    unsigned char frame[kFrameBytes] = {0x1A};
    unsigned char back[kFrameBytes];
    for (int i = 0; host >= 0 && gadget >= 0 && i < echoes; ++i) {
        const double start = SecondsNow();
        if (Transfer(host, frame, sizeof frame, false) && Transfer(host, back, sizeof back, true))
            ms.push_back((SecondsNow() - start) * 1000);
    }
    stop = true;
    echo.join();
    close(host);
    close(gadget);
    return ms;
}
}  // namespace

void MeasureSerialRoundTrip(int pings)
{
    const std::vector<double> library = LibraryPings(pings);
    const std::vector<double> raw = RawEchoes(pings);
    const std::string echo = "raw echo of its " + std::to_string(kFrameBytes) + " bytes through the same two ttys";
    PrintBeside("Ping over cdc_acm", library, echo.c_str(), raw, "ms");
}
