#include "SimulatedDevice.h"

#include <limits.h>
#include <stdio.h>
#include <stdlib.h>
#include <unistd.h>

void SimulatedDevice::SetUp()
{
    char cwd[PATH_MAX];
    ASSERT_NE(nullptr, getcwd(cwd, sizeof cwd));
    m_previousDir = cwd;
    char pattern[] = "/tmp/aicam-test-XXXXXX";
    ASSERT_NE(nullptr, mkdtemp(pattern));
    m_workDir = pattern;
    ASSERT_EQ(0, chdir(m_workDir.c_str()));
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
    if (!m_previousDir.empty() && chdir(m_previousDir.c_str()) != 0)
        ADD_FAILURE() << "cannot return to " << m_previousDir;
    if (!m_workDir.empty() && !HasFailure()) {
        std::string remove = "rm -rf '" + m_workDir + "'";
        if (system(remove.c_str()) != 0)
            ADD_FAILURE() << "cannot remove " << m_workDir;
    }
}

void SimulatedDevice::Answer(uint16_t tag, const sim::Bytes& value)
{
    sim.SetHandler(tag, [value](const sim::Request&) { return std::optional<sim::Bytes>(value); });
}

sim::Bytes SimulatedDevice::LastRequest(uint16_t tag) const
{
    sim::Bytes last;
    bool found = false;
    for (const sim::Request& request : sim.Requests()) {
        if (request.tag == tag) {
            last = request.value;
            found = true;
        }
    }
    EXPECT_TRUE(found) << "no request with tag " << tag;
    return last;
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

sim::Bytes BytesOf(const std::string& text) { return sim::Bytes(text.begin(), text.end()); }
