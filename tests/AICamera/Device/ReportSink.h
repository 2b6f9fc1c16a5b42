// Collects what the report callbacks receive. Callbacks are plain functions,
// so the sink is one per process; each test starts it afresh.
#ifndef TESTS_DEVICE_REPORT_SINK_H
#define TESTS_DEVICE_REPORT_SINK_H

#include <stdint.h>

#include <condition_variable>
#include <mutex>
#include <vector>

#include "ModuleSimulator.h"

struct ReceivedReport {
    uint16_t kind;       // the tag of the report kind whose callback ran
    sim::Bytes value;
    int callback;        // which of the two callbacks of that kind (1 or 2)
    size_t acksBefore;   // image only: acknowledgements the module had seen on entry
};

class ReportSink {
public:
    // Starts afresh; image callbacks consult `module` for acknowledgements.
    static void Reset(const sim::ModuleSimulator* module);
    // Registers the first callback of each of the five kinds on `dev`.
    static void RegisterAll(void* dev);
    static std::vector<ReceivedReport> Received();
    // Waits until `count` reports have arrived, with a generous deadline.
    static bool WaitFor(size_t count);

    // The callbacks, two of each kind so that replacing one can be seen.
    static void Track(char* data, int len);
    static void Reco(char* data, int len);
    static void QRCode(char* data, int len);
    static void Image(char* data, int len);
    static void Feature(char* data, int len);
    static void Track2(char* data, int len);
    static void Reco2(char* data, int len);

private:
    static void Add(uint16_t kind, int callback, const char* data, int len);
};

#endif
