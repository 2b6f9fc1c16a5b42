// A device handle connected over a pseudo-terminal to the module simulator,
// with the trace log written to a fresh directory of the test's own.
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

    sim::ModuleSimulator sim;
    void* dev = nullptr;

private:
    std::string m_previousDir;
    std::string m_workDir;
};

sim::Bytes BytesOf(const std::string& text);

#endif
