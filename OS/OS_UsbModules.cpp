#include "OS_UsbModules.h"

#include <ctype.h>
#include <stdlib.h>

#include <algorithm>
#include <fstream>
#include <map>

#include "OS_Sysfs.h"
#include "OS_VideoCaps.h"

namespace {
// A candidate node of one kind; the lowest rank wins when a device has several.
struct Node {
    std::string path;
    long rank = -1;
};

struct UsbDevice {
    Node serial, video;
};

long TrailingNumber(const std::string& text)
{
    size_t digits = text.find_last_not_of("0123456789") + 1;
    return digits < text.size() ? atol(text.c_str() + digits) : 0;
}

// The numbers of "1-1.2" in order, so that 1-1.10 sorts after 1-1.2.
std::vector<long> PathNumbers(const std::string& usbPath)
{
    std::vector<long> numbers;
    for (size_t at = 0; at < usbPath.size();) {
        if (!isdigit(static_cast<unsigned char>(usbPath[at]))) {
            ++at;
            continue;
        }
        size_t end = usbPath.find_first_not_of("0123456789", at);
        numbers.push_back(atol(usbPath.substr(at, end - at).c_str()));
        at = end == std::string::npos ? usbPath.size() : end;
    }
    return numbers;
}

std::string NodePath(const OS_ModuleQuery& query, const std::string& entry, const std::string& name)
{
    const std::string key = "DEVNAME=";
    std::ifstream uevent(entry + "/uevent");
    for (std::string line; std::getline(uevent, line);) {
        if (line.compare(0, key.size(), key) == 0)
            return query.devRoot + "/" + line.substr(key.size());
    }
    return query.devRoot + "/" + name;
}

// The sysfs directory of the USB device whose interface, bound to `driver`,
// carries the class entry; "" for any other entry.
std::string OwningUsbDevice(const std::string& entry, const char* driver)
{
    if (OS_LinkName(entry + "/device/driver") != driver)
        return "";
    std::string interface = OS_RealPath(entry + "/device");
    size_t slash = interface.rfind('/');
    if (slash == std::string::npos || slash == 0)
        return "";
    std::string device = interface.substr(0, slash);
    return OS_ReadAttribute(device + "/idVendor").empty() ? "" : device;
}

bool IsCaptureNode(const std::string& entry, const std::string& node)
{
    int capture = OS_IsVideoCaptureNode(node.c_str());
    if (capture >= 0)
        return capture == 1;
    // The node cannot be asked (no permission, or not there): uvcvideo registers
    // a stream's capture node before its metadata node, so it has index 0.
    return OS_ReadAttribute(entry + "/index") == "0";
}

void Offer(Node& node, const std::string& path, long rank)
{
    if (node.rank < 0 || rank < node.rank) {
        node.path = path;
        node.rank = rank;
    }
}

void CollectSerialNodes(const OS_ModuleQuery& query, std::map<std::string, UsbDevice>& devices)
{
    const std::string dir = query.sysRoot + "/class/tty/";
    for (const std::string& name : OS_ListDirectory(dir)) {
        std::string device = OwningUsbDevice(dir + name, "cdc_acm");
        if (!device.empty())
            Offer(devices[device].serial, NodePath(query, dir + name, name), TrailingNumber(name));
    }
}

void CollectCaptureNodes(const OS_ModuleQuery& query, std::map<std::string, UsbDevice>& devices)
{
    const std::string dir = query.sysRoot + "/class/video4linux/";
    for (const std::string& name : OS_ListDirectory(dir)) {
        std::string device = OwningUsbDevice(dir + name, "uvcvideo");
        if (device.empty())
            continue;
        std::string node = NodePath(query, dir + name, name);
        if (!IsCaptureNode(dir + name, node))
            continue;
        std::string index = OS_ReadAttribute(dir + name + "/index");
        Offer(devices[device].video, node, index.empty() ? TrailingNumber(name) : atol(index.c_str()));
    }
}

int HexAttribute(const std::string& path) { return static_cast<int>(strtol(OS_ReadAttribute(path).c_str(), nullptr, 16)); }

bool Wanted(const OS_ModuleQuery& query, const OS_UsbModule& module)
{
    bool complete = !module.serialNode.empty() && !module.videoNode.empty();
    return (complete || query.partial) && (!query.vendorId || query.vendorId == module.vendorId) &&
           (!query.productId || query.productId == module.productId);
}
}  // namespace

std::vector<OS_UsbModule> OS_EnumUsbModules(const OS_ModuleQuery& query)
{
    std::map<std::string, UsbDevice> devices;
    CollectSerialNodes(query, devices);
    CollectCaptureNodes(query, devices);
    std::vector<OS_UsbModule> modules;
    for (const auto& [dir, device] : devices) {
        OS_UsbModule module;
        module.serialNode = device.serial.path;
        module.videoNode = device.video.path;
        module.vendorId = HexAttribute(dir + "/idVendor");
        module.productId = HexAttribute(dir + "/idProduct");
        module.usbSerial = OS_ReadAttribute(dir + "/serial");
        module.usbPath = dir.substr(dir.rfind('/') + 1);
        if (Wanted(query, module))
            modules.push_back(module);
    }
    std::sort(modules.begin(), modules.end(), [](const OS_UsbModule& a, const OS_UsbModule& b) {
        return PathNumbers(a.usbPath) < PathNumbers(b.usbPath);
    });
    return modules;
}
