// Device handles against the simulator for the settings tests: one whose
// answers each test sets by hand, and one that talks to the module model.
#ifndef TESTS_SETTINGS_DEVICE_H
#define TESTS_SETTINGS_DEVICE_H

#include <stdint.h>

#include <string>

#include "ModuleModel.h"
#include "SimulatedDevice.h"

class SettingsDevice : public SimulatedDevice {
protected:
    void SetUp() override;

    // A record body: "[INPUT ] dev : 0x..<inputs>\n[OUTPUT]<outputs>\n[RETURN] nRet : n\n".
    std::string Body(const std::string& inputs, const std::string& outputs, int nRet) const;
    // The same with the failed condition on an "[ERROR] " line before it.
    std::string Failure(const std::string& error, const std::string& inputs, const std::string& outputs,
                        int nRet) const;
    // A refused argument: -4 with " invalid input".
    std::string Refusal(const std::string& error, const std::string& outputs = "") const;

    // Requests with this tag that reached the module, counted only after a later
    // exchange has completed, so that nothing refused can still be on its way.
    size_t SentCount(uint16_t tag);
};

class ModelDevice : public SettingsDevice {
protected:
    void SetUp() override;

    sim::ModuleModel model{sim};
};

// The 4 header bytes the module puts before the serial number and model texts.
sim::Bytes HeadedText(const std::string& text);

#endif
