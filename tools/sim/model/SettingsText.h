#pragma once
// The module's settings as lines "name<TAB>value", kept in the simulator's file
// beside the faces (whose lines have three fields, these two).

#include <string>

#include "ModuleSettings.h"

namespace sim {

// One line per setting, each ending in '\n'; text values escape their control
// bytes and backslashes as \xHH.
std::string SettingsLines(const ModuleSettings& settings);
// False when the name is unknown or the value is not one of its type.
bool ApplySettingLine(ModuleSettings& settings, const std::string& name, const std::string& value);

}  // namespace sim
