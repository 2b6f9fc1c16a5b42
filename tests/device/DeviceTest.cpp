#include "DeviceTest.h"

#include <stdio.h>

sim::Bytes Le32(uint32_t value)
{
    return {static_cast<uint8_t>(value), static_cast<uint8_t>(value >> 8), static_cast<uint8_t>(value >> 16),
            static_cast<uint8_t>(value >> 24)};
}

sim::Bytes Cat(std::initializer_list<sim::Bytes> pieces)
{
    sim::Bytes all;
    for (const sim::Bytes& piece : pieces)
        all.insert(all.end(), piece.begin(), piece.end());
    return all;
}

std::string Ptr(const void* p)
{
    char text[32];
    snprintf(text, sizeof text, "%p", p);
    return text;
}

NewRecords::NewRecords() : m_before(TraceLog::Read().size()) {}

std::vector<TraceEntry> NewRecords::Take() const
{
    std::vector<TraceEntry> all = TraceLog::Read();
    if (all.size() < m_before)
        return {};
    return std::vector<TraceEntry>(all.begin() + static_cast<std::ptrdiff_t>(m_before), all.end());
}

std::string NewRecords::Only(const std::string& function) const
{
    std::vector<TraceEntry> added = Take();
    EXPECT_EQ(1u, added.size()) << "records written by the call to " << function;
    if (added.empty())
        return std::string();
    EXPECT_EQ(function, added.back().function);
    return added.back().body;
}

void DeviceTest::AnswerPayload(uint16_t tag, const sim::Bytes& payload)
{
    sim::ModuleSimulator* module = &sim;
    sim.SetHandler(tag, [module, payload](const sim::Request&) {
        module->PushFrame(payload);
        return std::optional<sim::Bytes>();
    });
}

void DeviceTest::ExpectRefusal(const char* function, const std::string& text, const char* output,
                               const std::function<int()>& call)
{
    NewRecords records;
    EXPECT_EQ(-4, call()) << function << ": " << text;
    EXPECT_EQ(Refused(text) + Input(" invalid input") + output + "[RETURN] nRet : -4\n", records.Only(function));
}
