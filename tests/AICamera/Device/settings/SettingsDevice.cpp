#include "SettingsDevice.h"

#include "ai_camera.h"

namespace {
const uint16_t kTemperatureTag = 0x200F;
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
    std::vector<Row> checked;
    for (const Exchange& row : rows) {
        auto call = [this, row] {
            std::string seen;
            int code = row.call(dev, seen);
            EXPECT_EQ(row.seen, seen) << row.function;
            return code;
        };
        std::string body = Body(row.inputs, row.outputs, row.code);
        checked.push_back({row.function, call, row.code, row.error.empty() ? body : "[ERROR] " + row.error + "\n" + body,
                           row.tag, row.answer, row.request});
    }
    Check(checked);
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
