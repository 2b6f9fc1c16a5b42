// Shared pieces of the device tests: byte builders, the trace records one call
// writes, and a simulated device with a few more ways for the module to answer.
#ifndef TESTS_DEVICE_DEVICE_TEST_H
#define TESTS_DEVICE_DEVICE_TEST_H

#include <stdint.h>

#include <functional>
#include <initializer_list>
#include <string>
#include <vector>

#include "SimulatedDevice.h"

// A 32-bit little-endian field.
sim::Bytes Le32(uint32_t value);
// The pieces one after the other.
sim::Bytes Cat(std::initializer_list<sim::Bytes> pieces);
// A pointer as the records print it ("(nil)" for null).
std::string Ptr(const void* p);

// The trace records written between its construction and Take().
class NewRecords {
public:
    NewRecords();
    // Every record written since construction.
    std::vector<TraceEntry> Take() const;
    // Expects exactly one new record, written by `function`, and returns its body.
    std::string Only(const std::string& function) const;

private:
    size_t m_before;
};

class DeviceTest : public SimulatedDevice {
protected:
    // The module answers requests with this tag with a payload of its own making
    // (not wrapped into a record), for answers without a usable record.
    void AnswerPayload(uint16_t tag, const sim::Bytes& payload);
    // The module answers with the status byte alone.
    void AnswerStatus(uint16_t tag, uint8_t status) { Answer(tag, {status}); }
    // The first line of the record of a refused argument: "[ERROR] text\n".
    static std::string Refused(const std::string& text) { return "[ERROR] " + text + "\n"; }
    // "[INPUT ] dev : 0x..." followed by `inputs`.
    std::string Input(const std::string& inputs) const { return "[INPUT ] " + DevText() + inputs + "\n"; }
    // Expects `call` to be refused with -4 and one record of `function` naming
    // `text`, with " invalid input" and the output line `output`.
    void ExpectRefusal(const char* function, const std::string& text, const char* output,
                       const std::function<int()>& call);
};

#endif
