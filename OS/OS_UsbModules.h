// Finds the attached camera modules in sysfs: a module is a USB device that
// carries both a CDC-ACM serial node and a UVC video capture node.
#ifndef OS_USB_MODULES_H
#define OS_USB_MODULES_H

#include <string>
#include <vector>

struct OS_UsbModule {
    std::string serialNode;  // "/dev/ttyACM0"
    std::string videoNode;   // "/dev/video0", the capture node
    int vendorId = 0;
    int productId = 0;
    std::string usbSerial;   // "" when the device has none
    std::string usbPath;     // bus-port chain, "1-1.2"
};

struct OS_ModuleQuery {
    std::string sysRoot = "/sys";
    std::string devRoot = "/dev";
    int vendorId = 0;        // 0: any
    int productId = 0;       // 0: any
    // Also USB devices with only one of the two nodes, the other left empty.
    bool partial = false;
};

// The modules sorted by USB path, so that a socket keeps its place across boots.
std::vector<OS_UsbModule> OS_EnumUsbModules(const OS_ModuleQuery& query);

#endif
