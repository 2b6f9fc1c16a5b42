// Round trip of a small request against the simulator next to a bare pty
// echo, and the receive path's throughput next to a bare CRC pass.
#include <fcntl.h>
#include <poll.h>
#include <stdio.h>
#include <stdlib.h>
#include <termios.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <string>
#include <thread>
#include <vector>

#include "AICamera/Protocol/CommandManager.h"
#include "ModuleSimulator.h"

namespace {
using Clock = std::chrono::steady_clock;
using sim::Bytes;

double Seconds(Clock::time_point start) { return std::chrono::duration<double>(Clock::now() - start).count(); }

bool ReadExactly(int fd, unsigned char* buf, size_t len)
{
    size_t got = 0;
    while (got < len) {
        struct pollfd in = {fd, POLLIN, 0};
        if (poll(&in, 1, 5000) <= 0)
            return false;
        ssize_t n = read(fd, buf + got, len - got);
        if (n > 0)
            got += static_cast<size_t>(n);
    }
    return true;
}

// Mean microseconds per 16-byte write-and-echo on a raw pty pair.
double PtyEchoMicros(int rounds)
{
    int master = posix_openpt(O_RDWR | O_NOCTTY);
    if (master < 0 || grantpt(master) || unlockpt(master))
        return -1;
    int slave = open(ptsname(master), O_RDWR | O_NOCTTY);
    struct termios raw;
    tcgetattr(slave, &raw);
    cfmakeraw(&raw);
    tcsetattr(slave, TCSANOW, &raw);
    std::thread echo([&] {
        unsigned char buf[16];
        for (int i = 0; i < rounds; ++i) {
            if (!ReadExactly(master, buf, sizeof buf) || write(master, buf, sizeof buf) != 16)
                return;
        }
    });
    unsigned char frame[16] = {0x1A, 0, 0, 0, 7, 4, 0x10, 1, 0, 0, 0, 1, 0xD5, 0x3E, 0x0A, 0xBA};
    unsigned char back[16];
    Clock::time_point start = Clock::now();
    for (int i = 0; i < rounds; ++i) {
        if (write(slave, frame, sizeof frame) != 16 || !ReadExactly(slave, back, sizeof back))
            break;
    }
    double micros = Seconds(start) * 1e6 / rounds;
    echo.join();
    close(slave);
    close(master);
    return micros;
}

double ExecuteMicros(CommandManager* manager, int rounds)
{
    unsigned char mode = 1;
    Clock::time_point start = Clock::now();
    for (int i = 0; i < rounds; ++i) {
        SyncCommand cmd;
        cmd.SetTag(0x1004);
        cmd.AddTLV(0x1004, 1, &mode);
        if (manager->Execute(&cmd, true) != 0) {
            fprintf(stderr, "request %d failed\n", i);
            return -1;
        }
    }
    return Seconds(start) * 1e6 / rounds;
}

class CountingReport : public AsyncCommand {
public:
    CountingReport() { SetTag(0x31); }
    int Process() override
    {
        TLVMessage record{};
        if (GetResult(&record) == 0)
            bytes += record.nLength;
        ++count;
        return 0;
    }
    std::atomic<long> count{0};
    long bytes = 0;
};

void PrintRate(const char* what, double seconds, size_t frames, size_t bytes)
{
    printf("%-44s %10.0f frames/s %8.1f MB/s\n", what, frames / seconds, bytes / seconds / 1e6);
}
}  // namespace

int main(int argc, char** argv)
{
    int rounds = argc > 1 ? atoi(argv[1]) : 5000;
    size_t frames = argc > 2 ? static_cast<size_t>(atol(argv[2])) : 200000;

    sim::ModuleSimulator module;
    if (!module.Start())
        return 1;
    module.SetHandler(0x1004, [](const sim::Request&) { return std::optional<Bytes>(Bytes{0}); });
    std::string path = module.SlavePath();
    CommandManager* manager = CommandManager::GetInstance();
    if (manager->StartDataTransmit(&path[0]) != 0)
        return 1;

    ExecuteMicros(manager, rounds / 10 + 1);  // warm-up
    double floor = PtyEchoMicros(rounds);
    double request = ExecuteMicros(manager, rounds);
    printf("round trip, %d rounds\n", rounds);
    printf("  raw pty echo (16 bytes)                 %8.1f us\n", floor);
    printf("  CommandManager::Execute vs simulator     %8.1f us\n", request);
    printf("  ratio request / floor                    %8.2f\n\n", request / floor);

    // A stream of small reports: 8-byte values, 23-byte frames.
    Bytes stream;
    for (size_t i = 0; i < frames; ++i) {
        Bytes value(8, static_cast<unsigned char>(i));
        Bytes frame = sim::ModuleSimulator::EncodeFrame(0xA1, sim::ModuleSimulator::EncodeTLV(0x31, value));
        stream.insert(stream.end(), frame.begin(), frame.end());
    }
    const size_t frameSize = stream.size() / frames;
    const size_t chunk = 4096;
    printf("receive path, %zu frames of %zu bytes, fed in %zu-byte reads\n", frames, frameSize, chunk);

    Clock::time_point start = Clock::now();
    unsigned int sink = 0;
    for (size_t at = 0; at < stream.size(); at += frameSize)
        sink += CommandExecutor::GetCheckSums(&stream[at], static_cast<unsigned int>(frameSize - 4));
    double crcSeconds = Seconds(start);

    CountingReport report;
    manager->Register(&report);
    Transceiver* transceiver = manager->GetTransceiver();
    start = Clock::now();
    for (size_t at = 0; at < stream.size(); at += chunk) {
        int len = static_cast<int>(std::min(chunk, stream.size() - at));
        transceiver->Receive(&stream[at], len);
    }
    double receiveSeconds = Seconds(start);
    long inMemory = report.count;

    report.count = 0;
    start = Clock::now();
    module.PushRaw(stream);
    while (report.count < static_cast<long>(frames) && Seconds(start) < 60)
        std::this_thread::yield();
    double ptySeconds = Seconds(start);
    long overPty = report.count;

    PrintRate("  bare CRC pass over the same bytes", crcSeconds, frames, stream.size());
    PrintRate("  Transceiver+CommandExecutor::Process", receiveSeconds, static_cast<size_t>(inMemory), stream.size());
    PrintRate("  same, through the pty from the simulator", ptySeconds, static_cast<size_t>(overPty), stream.size());
    printf("  ratio receive / CRC (time)               %8.2f\n", receiveSeconds / crcSeconds);
    printf("  ratio pty receive / CRC (time)           %8.2f\n", ptySeconds / crcSeconds);
    printf("  delivered: %ld in memory, %ld over the pty (of %zu); crc sink %08X\n", inMemory, overPty, frames, sink);
    manager->StopDataTransmit();
    module.Stop();
    return inMemory == static_cast<long>(frames) && overPty == static_cast<long>(frames) ? 0 : 2;
}
