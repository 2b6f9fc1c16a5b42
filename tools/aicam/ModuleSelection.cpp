#include "ModuleSelection.h"

#include <stdio.h>

#include <algorithm>

#include "Arguments.h"

bool ParseUsbId(const std::string& text, UsbId& id)
{
    size_t colon = text.find(':');
    if (colon != 4 || text.size() != 9)
        return false;
    long vendor = 0, product = 0;
    if (!ParseNumber("0x" + text.substr(0, 4), 0, 0xFFFF, vendor) ||
        !ParseNumber("0x" + text.substr(5), 0, 0xFFFF, product))
        return false;
    id.vendorId = static_cast<int>(vendor);
    id.productId = static_cast<int>(product);
    return true;
}

std::string UsbIdText(int vendorId, int productId)
{
    char text[16];
    snprintf(text, sizeof text, "%04x:%04x", vendorId & 0xFFFF, productId & 0xFFFF);
    return text;
}

int FindModule(const std::vector<AI_CAMERA_MODULE>& modules, const std::string& choice)
{
    for (size_t i = 0; i < modules.size(); ++i) {
        if (!choice.empty() && choice == modules[i].usbSerial)
            return static_cast<int>(i);
    }
    long index = 0;
    if (modules.empty() || !ParseNumber(choice, 0, static_cast<long>(modules.size()) - 1, index))
        return -1;
    return static_cast<int>(index);
}

namespace {
std::string OrDash(const char* text) { return *text ? text : "-"; }
}  // namespace

std::string ModuleTable(const std::vector<AI_CAMERA_MODULE>& modules)
{
    std::vector<std::vector<std::string>> rows = {{"#", "SERIAL NODE", "VIDEO NODE", "USB ID", "SERIAL NUMBER", "USB PATH"}};
    int number = 0;
    for (const AI_CAMERA_MODULE& module : modules) {
        // Only whole modules can be chosen, so only they are numbered.
        const bool whole = module.serialNode[0] && module.videoNode[0];
        rows.push_back({whole ? std::to_string(number++) : "-", OrDash(module.serialNode), OrDash(module.videoNode),
                        UsbIdText(module.vendorId, module.productId), OrDash(module.usbSerial), module.usbPath});
    }
    std::vector<size_t> widths(rows[0].size(), 0);
    for (const auto& row : rows) {
        for (size_t column = 0; column < row.size(); ++column)
            widths[column] = std::max(widths[column], row[column].size());
    }
    std::string table;
    for (const auto& row : rows) {
        std::string line;
        for (size_t column = 0; column < row.size(); ++column) {
            line += row[column];
            if (column + 1 < row.size())
                line += std::string(widths[column] - row[column].size() + 2, ' ');
        }
        table += line + "\n";
    }
    return table;
}

std::string ModuleName(const AI_CAMERA_MODULE& module, int index)
{
    return "module " + std::to_string(index) + " (" + UsbIdText(module.vendorId, module.productId) + ", serial " +
           OrDash(module.usbSerial) + ", USB " + module.usbPath + ")";
}
