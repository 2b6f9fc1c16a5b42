#include "FakeSysfs.h"

#include <stdio.h>
#include <sys/stat.h>
#include <unistd.h>

#include <fstream>

namespace {
void MakeDirs(const std::string& path)
{
    for (size_t at = path.find('/', 1); at != std::string::npos; at = path.find('/', at + 1))
        mkdir(path.substr(0, at).c_str(), 0755);
    mkdir(path.c_str(), 0755);
}

void Write(const std::string& path, const std::string& text) { std::ofstream(path) << text; }

void Link(const std::string& target, const std::string& path)
{
    if (symlink(target.c_str(), path.c_str()) != 0)
        perror(path.c_str());
}

std::string Hex(int value)
{
    char text[8];
    snprintf(text, sizeof text, "%04x", value);
    return text;
}
}  // namespace

FakeSysfs::FakeSysfs(const std::string& root) : m_root(root)
{
    MakeDirs(SysRoot() + "/class/tty");
    MakeDirs(SysRoot() + "/class/video4linux");
    MakeDirs(DevRoot());
}

std::string FakeSysfs::DeviceDir(const std::string& usbPath) const
{
    const std::string bus = usbPath.substr(0, usbPath.find('-'));
    return SysRoot() + "/devices/pci0000:00/0000:00:14.0/usb" + bus + "/" + usbPath;
}

void FakeSysfs::AddUsbDevice(const std::string& usbPath, int vendorId, int productId, const std::string& serial)
{
    const std::string dir = DeviceDir(usbPath);
    MakeDirs(dir);
    Write(dir + "/idVendor", Hex(vendorId) + "\n");
    Write(dir + "/idProduct", Hex(productId) + "\n");
    if (!serial.empty())
        Write(dir + "/serial", serial + "\n");
}

void FakeSysfs::AddNode(const std::string& usbPath, int interface, const std::string& driver,
                        const std::string& className, const std::string& name)
{
    const std::string iface = DeviceDir(usbPath) + "/" + usbPath + ":1." + std::to_string(interface);
    const std::string node = iface + "/" + className + "/" + name;
    MakeDirs(node);
    MakeDirs(SysRoot() + "/bus/usb/drivers/" + driver);
    unlink((iface + "/driver").c_str());
    Link(SysRoot() + "/bus/usb/drivers/" + driver, iface + "/driver");
    Link(iface, node + "/device");
    Link(node, SysRoot() + "/class/" + className + "/" + name);
    Write(node + "/uevent", "MAJOR=1\nMINOR=1\nDEVNAME=" + name + "\n");
    // A plain file: not a device, so its capabilities cannot be asked.
    Write(DevRoot() + "/" + name, "");
}

void FakeSysfs::AddTty(const std::string& usbPath, int interface, const std::string& name, const std::string& driver)
{
    AddNode(usbPath, interface, driver, "tty", name);
}

void FakeSysfs::AddVideo(const std::string& usbPath, int interface, const std::string& name, int index,
                         const std::string& driver)
{
    AddNode(usbPath, interface, driver, "video4linux", name);
    Write(SysRoot() + "/class/video4linux/" + name + "/index", std::to_string(index) + "\n");
}
