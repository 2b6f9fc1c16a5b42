// Which attached module a command line means: --usb-id VID:PID narrows the
// list, --module N|SERIAL picks one; and the table that `aicam list` prints.
#ifndef AICAM_MODULESELECTION_H
#define AICAM_MODULESELECTION_H

#include <string>
#include <vector>

#include "ai_camera_ext.h"

struct UsbId {
    int vendorId = 0;   // 0: any
    int productId = 0;  // 0: any
};

// "1d6b:0104", hexadecimal as lsusb prints it; false for anything else.
bool ParseUsbId(const std::string& text, UsbId& id);
std::string UsbIdText(int vendorId, int productId);

// The entry `choice` names: a serial number first, else an index; -1 for none.
int FindModule(const std::vector<AI_CAMERA_MODULE>& modules, const std::string& choice);

// A header line and one line per module, numbered as --module counts them;
// "-" for a missing node or serial (and as the number of a partial device).
std::string ModuleTable(const std::vector<AI_CAMERA_MODULE>& modules);
// "module 0 (1d6b:0104, serial SIM0001, USB 1-1)".
std::string ModuleName(const AI_CAMERA_MODULE& module, int index);

#endif
