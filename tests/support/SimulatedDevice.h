// A device handle connected over a pseudo-terminal to the module simulator,
// tracing at debug level into the log file of the test's scratch directory.
#ifndef TESTS_SIMULATED_DEVICE_H
#define TESTS_SIMULATED_DEVICE_H

#include <gtest/gtest.h>

#include <string>

#include "ModuleSimulator.h"
#include "TraceLog.h"
#include "ai_camera.h"

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

    sim::ModuleSimulator sim;
    void* dev = nullptr;
};

sim::Bytes BytesOf(const std::string& text);

#endif
