#include "ModuleChoice.h"

#include <stdio.h>
#include <unistd.h>

#include <algorithm>
#include <iostream>

#include "NodeAccess.h"
#include "ResultText.h"
#include "Session.h"

namespace {
// The module that owns a node given on the command line (a link such as
// /dev/aicam/SERIAL/control counts as its target); -1 for none.
int ModuleOwning(const std::vector<AI_CAMERA_MODULE>& modules, const std::string& node)
{
    const std::string target = ResolvedPath(node);
    for (size_t i = 0; i < modules.size(); ++i) {
        if (target == ResolvedPath(modules[i].serialNode) || target == ResolvedPath(modules[i].videoNode))
            return static_cast<int>(i);
    }
    return -1;
}

int AskUser(const std::vector<AI_CAMERA_MODULE>& modules)
{
    fprintf(stderr, "%s", ModuleTable(modules).c_str());
    fprintf(stderr, "aicam: %zu modules are attached; which one (# or serial number)? ", modules.size());
    std::string answer;
    std::getline(std::cin, answer);
    return FindModule(modules, answer);
}
}  // namespace

std::vector<AI_CAMERA_MODULE> AttachedModules(const UsbId& id, int flags)
{
    std::vector<AI_CAMERA_MODULE> modules;
    // A module plugged in between the two calls is left for the next listing.
    int count = EnumModules(nullptr, 0, id.vendorId, id.productId, flags);
    if (count <= 0)
        return modules;
    modules.resize(static_cast<size_t>(count));
    count = EnumModules(modules.data(), count, id.vendorId, id.productId, flags);
    modules.resize(static_cast<size_t>(std::max(0, std::min(count, static_cast<int>(modules.size())))));
    return modules;
}

int ChooseModule(const GlobalOptions& options, std::vector<AI_CAMERA_MODULE>& modules, int& index,
                 std::string& problem)
{
    modules = AttachedModules(options.usbId, 0);
    const std::string ids =
        options.usbId.vendorId ? " with USB id " + UsbIdText(options.usbId.vendorId, options.usbId.productId) : "";
    if (!options.module.empty()) {
        index = FindModule(modules, options.module);
        if (index >= 0)
            return 0;
        problem = "no module '" + options.module + "' is attached" + ids + "; `aicam list` shows what is attached";
        return kNoModule;
    }
    if (modules.empty()) {
        problem = "no module found" + ids +
                  ": no such device — is the module plugged in? `aicam list` shows what is attached";
        return kNoModule;
    }
    const std::string given = options.port.empty() ? options.video : options.port;
    index = given.empty() ? -1 : ModuleOwning(modules, given);
    if (index < 0 && modules.size() == 1)
        index = 0;
    if (index < 0 && isatty(STDIN_FILENO))
        index = AskUser(modules);
    if (index >= 0)
        return 0;
    problem = std::to_string(modules.size()) + " modules are attached" + ids +
              ": choose one with --module N|SERIAL (`aicam list` shows them)";
    return kSeveralModules;
}
