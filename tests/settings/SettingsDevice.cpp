#include "SettingsDevice.h"

#include "ai_camera.h"

namespace {
// The exchange that SentCount waits for; the module answers it with a temperature.
const uint16_t kTemperatureTag = 0x200F;
}  // namespace

void SettingsDevice::SetUp()
{
    SimulatedDevice::SetUp();
    if (HasFatalFailure())
        return;
    Answer(kTemperatureTag, {0x15, 0x00, 0x00, 0x00});
}

std::string SettingsDevice::Body(const std::string& inputs, const std::string& outputs, int nRet) const
{
    return "[INPUT ] " + DevText() + inputs + "\n[OUTPUT]" + outputs + "\n[RETURN] nRet : " + std::to_string(nRet) +
           "\n";
}

std::string SettingsDevice::Failure(const std::string& error, const std::string& inputs,
                                    const std::string& outputs, int nRet) const
{
    return "[ERROR] " + error + "\n" + Body(inputs, outputs, nRet);
}

std::string SettingsDevice::Refusal(const std::string& error, const std::string& outputs) const
{
    return Failure(error, " invalid input", outputs, -4);
}

size_t SettingsDevice::SentCount(uint16_t tag)
{
    unsigned int temperature = 0;
    EXPECT_EQ(0, GetCpuTemperature(dev, &temperature));
    return RequestCount(tag);
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

sim::Bytes HeadedText(const std::string& text)
{
    sim::Bytes value = BytesOf(std::string(4, '\0') + text);
    value[0] = static_cast<uint8_t>(text.size());
    return value;
}
