// A sysfs tree of USB devices in a directory, laid out as the kernel lays out
// its own: devices with their interfaces under devices/, class entries as links
// to the nodes, each interface linked to its driver; and a dev/ beside it.
#ifndef TESTS_FAKE_SYSFS_H
#define TESTS_FAKE_SYSFS_H

#include <string>

class FakeSysfs {
public:
    // Makes root/sys and root/dev.
    explicit FakeSysfs(const std::string& root);

    std::string SysRoot() const { return m_root + "/sys"; }
    std::string DevRoot() const { return m_root + "/dev"; }

    // A USB device at the bus-port chain `usbPath` ("1-1.2"); an empty serial
    // leaves the attribute out, as for a device without one.
    void AddUsbDevice(const std::string& usbPath, int vendorId, int productId, const std::string& serial);
    // A tty node on interface number `interface` of the device.
    void AddTty(const std::string& usbPath, int interface, const std::string& name,
                const std::string& driver = "cdc_acm");
    // A V4L2 node with the driver's per-device `index` (uvcvideo: 0 for the
    // capture node, 1 for the metadata node of the same stream).
    void AddVideo(const std::string& usbPath, int interface, const std::string& name, int index,
                  const std::string& driver = "uvcvideo");

private:
    std::string DeviceDir(const std::string& usbPath) const;
    void AddNode(const std::string& usbPath, int interface, const std::string& driver, const std::string& className,
                 const std::string& name);

    std::string m_root;
};

#endif
