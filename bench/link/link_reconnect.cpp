// Connects and disconnects the serial link many times, with one request on each
// connection, and prints the process's threads and descriptors before and after.
#include <stdio.h>
#include <stdlib.h>

#include <optional>

#include "ModuleSimulator.h"
#include "ProcessCounts.h"
#include "ai_camera.h"

int main(int argc, char** argv)
{
    const int cycles = argc > 1 ? atoi(argv[1]) : 1000;
    sim::ModuleSimulator module;
    if (!module.Start()) {
        fprintf(stderr, "link_reconnect: cannot start the simulator\n");
        return 1;
    }
    module.SetDefaultHandler([](const sim::Request&) { return std::optional<sim::Bytes>(sim::Bytes{0x00}); });
    void* dev = Init();
    size_t threads = ThreadCount(), descriptors = DescriptorCount();
    int failed = 0;
    for (int i = 0; i < cycles; ++i) {
        failed += ConnectSerial(dev, module.SlavePath().c_str()) != 0;
        failed += QueryRecognize(dev) != 0;
        failed += DisconnectSerial(dev) != 0;
    }
    printf("link_reconnect: %d cycles (connect, one request, disconnect), %d calls failed\n", cycles, failed);
    printf("threads:     %zu before, %zu after\n", threads, ThreadCount());
    printf("descriptors: %zu before, %zu after\n", descriptors, DescriptorCount());
    DeInit(dev);
    return failed == 0 && threads == ThreadCount() && descriptors == DescriptorCount() ? 0 : 1;
}
