// Shared pieces of the device tests: byte builders and the records a call
// writes.
#ifndef TESTS_DEVICE_DEVICE_TEST_H
#define TESTS_DEVICE_DEVICE_TEST_H

#include <initializer_list>
#include <string>
#include <vector>

#include "ReportSink.h"
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

class DeviceTest : public SimulatedDevice {
protected:
    // The module answers this tag with a payload of its own making, not wrapped into a record.
    void AnswerPayload(uint16_t tag, const sim::Bytes& payload);
    // The record DeleteFace's exported function writes before every call.
    static std::string DeleteFaceNote(const void* id)
    {
        return "[ERROR] pID = " + Ptr(id) + "\n[INPUT ] invalid input\n[OUTPUT]\n[RETURN] nRet : 0\n";
    }
    // The same for any function: empty but for DeleteFace.
    static std::string NoteOf(const std::string& function, const void* id)
    {
        return function == "DeleteFace" ? DeleteFaceNote(id) : "";
    }
};

// With the report sink started afresh for each case.
class ReportingDevice : public DeviceTest {
protected:
    void SetUp() override
    {
        DeviceTest::SetUp();
        ReportSink::Reset(&sim);
    }
    void TearDown() override
    {
        DeviceTest::TearDown();
        ReportSink::Reset(nullptr);
    }
};

#endif
