// A device handle connected over a pseudo-terminal to the module simulator,
// tracing at debug level into the log file of the test's scratch directory.
#ifndef TESTS_SIMULATED_DEVICE_H
#define TESTS_SIMULATED_DEVICE_H

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "ModuleSimulator.h"
#include "TraceLog.h"
#include "ai_camera.h"

// The trace records written since construction.
class NewRecords {
public:
    NewRecords() : m_before(TraceLog::Read().size()) {}
    std::vector<TraceEntry> Take() const;

private:
    size_t m_before;
};

// One call and what it must give: its result, and the bodies of the records
// it writes (one per "[RETURN]"), all under `function`. With a tag, the module
// first answers that tag with `answer` and must receive `request` once;
// without one, the call must send nothing.
struct Row {
    std::string function;
    std::function<int()> call;
    int result;
    std::string records;
    uint16_t tag = 0;
    sim::Bytes answer = {};
    sim::Bytes request = {};
};

class SimulatedDevice : public ::testing::Test {
protected:
    void SetUp() override;
    void TearDown() override;

    // The module answers every request with this tag with `value`.
    void Answer(uint16_t tag, const sim::Bytes& value);
    // The value of the last request the module received with this tag.
    sim::Bytes LastRequest(uint16_t tag) const;
    size_t RequestCount(uint16_t tag) const;
    // The body of the last record written by `function`.
    std::string LastRecord(const std::string& function) const;
    // "dev : 0x..." as the records print this handle.
    std::string DevText() const;
    // A record body: "[INPUT ] dev : 0x..<inputs>\n[OUTPUT]<outputs>\n[RETURN] nRet : n\n",
    // and the same after the "[ERROR] " line of a failed condition.
    std::string Body(const std::string& inputs, const std::string& outputs, int nRet) const;
    std::string Failure(const std::string& error, const std::string& inputs, const std::string& outputs,
                        int nRet) const;
    // A refused argument: -4 with " invalid input".
    std::string Refusal(const std::string& error, const std::string& outputs = "") const;

    // Walks a table of calls.
    void Check(const std::vector<Row>& rows);

    sim::ModuleSimulator sim;
    void* dev = nullptr;
};

sim::Bytes BytesOf(const std::string& text);

#endif
