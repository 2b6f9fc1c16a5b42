// Shared pieces of the device tests: byte builders, the records a call writes,
// and a walker for tables of calls against the simulated module.
#ifndef TESTS_DEVICE_DEVICE_TEST_H
#define TESTS_DEVICE_DEVICE_TEST_H

#include <functional>
#include <initializer_list>
#include <string>
#include <vector>

#include "SimulatedDevice.h"

sim::Bytes Le32(uint32_t value);
sim::Bytes Cat(std::initializer_list<sim::Bytes> pieces);
// A pointer as the records print it ("(nil)" for null).
std::string Ptr(const void* p);

// A command of this interface called with valid arguments, the inputs of its
// records after "dev : %p", and its output line after "[OUTPUT]"; images it
// hands out are freed.
struct Command {
    const char* function;
    int (*call)(void* dev);
    std::string inputs, output;
};
const std::vector<Command>& Commands();
extern const char kCommandId[];  // "alice", the identifier the commands pass

// The trace records written since construction.
class NewRecords {
public:
    NewRecords() : m_before(TraceLog::Read().size()) {}
    std::vector<TraceEntry> Take() const;

private:
    size_t m_before;
};

// One call and what it must give: its result, and the bodies of the `count`
// records it writes, all under `function`. With a tag, the module first
// answers that tag with `answer` and must receive `request`; without one, the
// call must send nothing.
struct Row {
    std::string function;
    std::function<int()> call;
    int result;
    std::string records;
    uint16_t tag = 0;
    sim::Bytes answer = {};
    sim::Bytes request = {};
    size_t count = 1;
};

class DeviceTest : public SimulatedDevice {
protected:
    void Check(const std::vector<Row>& rows);
    // The module answers this tag with a payload of its own making, not wrapped into a record.
    void AnswerPayload(uint16_t tag, const sim::Bytes& payload);
    // The record DeleteFace's exported function writes before every call.
    static std::string DeleteFaceNote(const void* id)
    {
        return "[ERROR] pID = " + Ptr(id) + "\n[INPUT ] invalid input\n[OUTPUT]\n[RETURN] nRet : 0\n";
    }
};

#endif
