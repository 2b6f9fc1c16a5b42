#include "SettingsDevice.h"

#include "ai_camera.h"

namespace {
const uint16_t kTemperatureTag = 0x200F;

std::string Record(const std::string& error, const std::string& body)
{
    return error.empty() ? body : "[ERROR] " + error + "\n" + body;
}
}  // namespace

Call InBuffer(size_t size, std::function<int(void* dev, char* buffer)> call)
{
    return [size, call](void* dev, std::string& seen) {
        std::vector<char> buffer(size, 'Q');
        int code = call(dev, buffer.data());
        seen.assign(buffer.begin(), buffer.end());
        return code;
    };
}

void SettingsDevice::Walk(const std::vector<Exchange>& rows)
{
    for (size_t i = 0; i < rows.size(); ++i) {
        const Exchange& row = rows[i];
        SCOPED_TRACE("row " + std::to_string(i) + ": " + row.function + " " + row.error);
        if (row.tag)
            Answer(row.tag, row.answer);
        size_t before = RequestCount(row.tag);
        std::string seen;
        EXPECT_EQ(row.code, row.call(dev, seen));
        if (row.tag) {
            EXPECT_EQ(before + 1, RequestCount(row.tag));
            EXPECT_EQ(row.request, LastRequest(row.tag));
        }
        EXPECT_EQ(Record(row.error, Body(row.inputs, row.outputs, row.code)), LastRecord(row.function));
        EXPECT_EQ(row.seen, seen);
    }
}

void SettingsDevice::Walk(const std::vector<Unsent>& rows, bool portOpen)
{
    const size_t before = sim.Requests().size();
    std::vector<Exchange> unsent;
    for (const Unsent& row : rows)
        unsent.push_back({row.function, 0, {}, row.call, row.code, {}, row.inputs, row.outputs, row.error, row.seen});
    Walk(unsent);
    if (!portOpen)
        return;
    // A request sent by mistake would arrive before the answer to this one.
    Answer(kTemperatureTag, {0x15, 0x00, 0x00, 0x00});
    unsigned int temperature = 0;
    EXPECT_EQ(0, GetCpuTemperature(dev, &temperature));
    std::vector<sim::Request> requests = sim.Requests();
    ASSERT_EQ(before + 1, requests.size());
    EXPECT_EQ(kTemperatureTag, requests.back().tag);
}

void ModelDevice::SetUp()
{
    SettingsDevice::SetUp();
    if (HasFatalFailure())
        return;
    // A reboot answers, then the module goes quiet; the tests need no pause.
    model.SetRebootQuietMs(0);
    model.Install();
}
