#include "SimulatedDevice.h"

#include <stdio.h>

// The test runner has already moved into a scratch directory of this case's own.
void SimulatedDevice::SetUp()
{
    ASSERT_EQ(0, SetLogConfig(LOG_LEVER_DEBUG, LOG_TARGET_FILE));
    ASSERT_TRUE(sim.Start());
    dev = Init();
    ASSERT_NE(nullptr, dev);
    ASSERT_EQ(0, ConnectSerial(dev, sim.SlavePath().c_str()));
}

void SimulatedDevice::TearDown()
{
    if (dev)
        DeInit(dev);
    sim.Stop();
    SetLogConfig(LOG_LEVER_OFF, LOG_TARGET_CONSOLE_FILE);
}

void SimulatedDevice::Answer(uint16_t tag, const sim::Bytes& value)
{
    sim.SetHandler(tag, [value](const sim::Request&) { return std::optional<sim::Bytes>(value); });
}

sim::Bytes SimulatedDevice::LastRequest(uint16_t tag) const
{
    std::vector<sim::Request> requests = sim.Requests();
    for (auto it = requests.rbegin(); it != requests.rend(); ++it)
        if (it->tag == tag)
            return it->value;
    ADD_FAILURE() << "no request with tag " << tag;
    return {};
}

size_t SimulatedDevice::RequestCount(uint16_t tag) const
{
    size_t count = 0;
    for (const sim::Request& request : sim.Requests())
        count += request.tag == tag;
    return count;
}

std::string SimulatedDevice::LastRecord(const std::string& function) const
{
    std::vector<TraceEntry> records = TraceLog::Of(function);
    EXPECT_FALSE(records.empty()) << "no record of " << function;
    return records.empty() ? std::string() : records.back().body;
}

std::string SimulatedDevice::DevText() const
{
    char text[40];
    snprintf(text, sizeof text, "dev : %p", dev);
    return text;
}

std::string SimulatedDevice::Body(const std::string& inputs, const std::string& outputs, int nRet) const
{
    return "[INPUT ] " + DevText() + inputs + "\n[OUTPUT]" + outputs + "\n[RETURN] nRet : " + std::to_string(nRet) +
           "\n";
}

std::string SimulatedDevice::Failure(const std::string& error, const std::string& inputs, const std::string& outputs,
                                     int nRet) const
{
    return "[ERROR] " + error + "\n" + Body(inputs, outputs, nRet);
}

std::string SimulatedDevice::Refusal(const std::string& error, const std::string& outputs) const
{
    return Failure(error, " invalid input", outputs, -4);
}

std::vector<TraceEntry> NewRecords::Take() const
{
    std::vector<TraceEntry> all = TraceLog::Read();
    return all.size() < m_before ? std::vector<TraceEntry>() : std::vector<TraceEntry>(all.begin() + m_before, all.end());
}

void SimulatedDevice::Check(const std::vector<Row>& rows)
{
    for (size_t i = 0; i < rows.size(); ++i) {
        const Row& row = rows[i];
        SCOPED_TRACE("row " + std::to_string(i) + ": " + row.function);
        if (row.tag)
            Answer(row.tag, row.answer);
        size_t sent = sim.Requests().size(), tagged = RequestCount(row.tag);
        NewRecords records;
        EXPECT_EQ(row.result, row.call());
        std::string bodies;
        std::vector<TraceEntry> added = records.Take();
        for (const TraceEntry& entry : added) {
            EXPECT_EQ(row.function, entry.function);
            bodies += entry.body;
        }
        size_t count = 0;
        for (size_t at = 0; (at = row.records.find("[RETURN]", at)) != std::string::npos; ++at)
            ++count;
        EXPECT_EQ(count, added.size());
        EXPECT_EQ(row.records, bodies);
        if (row.tag) {
            EXPECT_EQ(tagged + 1, RequestCount(row.tag));
            EXPECT_EQ(row.request, LastRequest(row.tag));
        } else
            EXPECT_EQ(sent, sim.Requests().size()) << "sent a request";
    }
}

sim::Bytes BytesOf(const std::string& text) { return sim::Bytes(text.begin(), text.end()); }
