// Measurements of the library through the kernel's real USB drivers, inside
// the test machine (see scripts/test-real-device.sh):
//   ../shared/vm/run-in-vm.sh --mode 1280x720@30 -- build/bench/realdevice/bench_realdevice
// The emulated machine decodes slowly: for the latency, give the camera a rate
// it keeps up with (such as --mode 320x240@10), or pictures queue in the driver.
// Every figure is set beside a baseline measured in the same run.
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include "Measures.h"
#include "Rig.h"
#include "Statistics.h"

int main(int argc, char** argv)
{
    int seconds = argc > 1 ? atoi(argv[1]) : 10;
    if (argc > 1 && (!strcmp(argv[1], "--help") || seconds <= 0)) {
        printf("usage: bench_realdevice [SECONDS]  (inside the test machine; default 10 per CPU phase)\n");
        return argc > 1 && !strcmp(argv[1], "--help") ? 0 : 2;
    }
    if (!rig::Inside()) {
        fprintf(stderr, "bench_realdevice: runs only inside the test machine (IN_TEST_VM is not set)\n");
        return 2;
    }
    const double start = SecondsNow();
    printf("camera sizes advertised: %s\n", rig::AdvertisedSizes().c_str());
    MeasureSerialRoundTrip(100);
    MeasureConnectCamera(10);
    MeasureCaptureCpu(seconds, 3);
    MeasureIdleCapture(5);
    MeasureFrameLatency(100);
    printf("all measurements: %.0f s\n", SecondsNow() - start);
    return 0;
}
