// The exported module enumeration and version query, traced like the other
// exported functions.
#include <stdio.h>

#include <string>
#include <vector>

#include "AICamera/Log/Log.h"
#include "AICamera/Log/Trace.h"
#include "OS/OS_UsbModules.h"
#include "ai_camera_ext.h"

#define TRACE_FILE "ai_camera"
#define TRACE(...) TRACE_AT(LOG_LEVER_DEBUG, __VA_ARGS__)

namespace {
const int kMaxUsbId = 0xFFFF;

template <size_t N>
void CopyText(char (&field)[N], const std::string& text)
{
    snprintf(field, N, "%s", text.c_str());
}

// "1-1 /dev/ttyACM0 /dev/video0 1d6b:0104 SIM0001", joined by "|".
std::string Describe(const std::vector<OS_UsbModule>& modules)
{
    std::string text;
    for (const OS_UsbModule& module : modules) {
        char ids[16];
        snprintf(ids, sizeof ids, "%04x:%04x", module.vendorId, module.productId);
        text += (text.empty() ? "" : "|") + module.usbPath + " " + module.serialNode + " " + module.videoNode + " " +
                ids + " " + module.usbSerial;
    }
    return text;
}

const char* Refusal(const AI_CAMERA_MODULE* modules, int capacity, int vendorId, int productId, int flags)
{
    if (capacity < 0)
        return "capacity < 0";
    if (!modules && capacity > 0)
        return "modules == nullptr && capacity > 0";
    if (vendorId < 0 || vendorId > kMaxUsbId || productId < 0 || productId > kMaxUsbId)
        return "vendorId or productId outside 0..0xFFFF";
    if (flags & ~AI_CAMERA_MODULES_PARTIAL)
        return "unknown flags";
    return nullptr;
}
}  // namespace

int EnumModules(AI_CAMERA_MODULE* modules, int capacity, int vendorId, int productId, int flags)
{
    if (const char* refusal = Refusal(modules, capacity, vendorId, productId, flags)) {
        TRACE("[ERROR] %s\n[INPUT ] invalid input\n[OUTPUT] invalid output\n[RETURN] nRet : %d\n", refusal, -4);
        return -4;
    }
    OS_ModuleQuery query;
    query.vendorId = vendorId;
    query.productId = productId;
    query.partial = (flags & AI_CAMERA_MODULES_PARTIAL) != 0;
    std::vector<OS_UsbModule> found = OS_EnumUsbModules(query);
    for (size_t i = 0; i < found.size() && i < static_cast<size_t>(capacity); ++i) {
        AI_CAMERA_MODULE& entry = modules[i];
        CopyText(entry.serialNode, found[i].serialNode);
        CopyText(entry.videoNode, found[i].videoNode);
        entry.vendorId = found[i].vendorId;
        entry.productId = found[i].productId;
        CopyText(entry.usbSerial, found[i].usbSerial);
        CopyText(entry.usbPath, found[i].usbPath);
    }
    int nRet = static_cast<int>(found.size());
    TRACE("[INPUT ] capacity : %d vendorId : 0x%04X productId : 0x%04X flags : %d\n[OUTPUT] modules : %s\n[RETURN] "
          "nRet : %d\n",
          capacity, vendorId, productId, flags, Describe(found).c_str(), nRet);
    return nRet;
}

int GetSdkVersion(char* versionBuf, int versionSize)
{
    if (!versionBuf || versionSize <= 0) {
        TRACE("[ERROR] versionBuf == nullptr || versionSize <= 0\n[INPUT ] invalid input\n[OUTPUT] invalid "
              "output\n[RETURN] nRet : %d\n",
              -4);
        return -4;
    }
    snprintf(versionBuf, static_cast<size_t>(versionSize), "%s", SDK_VERSION_TEXT);
    TRACE("[INPUT ] versionSize : %d\n[OUTPUT] versionBuf : %s\n[RETURN] nRet : %d\n", versionSize, versionBuf, 0);
    return 0;
}
