// list, info, ping, and the maintenance commands reboot, reset and recovery.
#include <stdio.h>
#include <string.h>

#include <string>

#include "ModuleChoice.h"
#include "MonotonicClock.h"
#include "ResultText.h"
#include "Session.h"
#include "Verb.h"
#include "ai_camera.h"

namespace {
const unsigned int kTextSize = 256;

void PrintNodes(const char* kind, const std::string& list)
{
    if (list.empty()) {
        printf("%s: none\n", kind);
        return;
    }
    size_t start = 0;
    while (start <= list.size()) {
        size_t end = list.find('|', start);
        if (end == std::string::npos)
            end = list.size();
        printf("%s: %s\n", kind, list.substr(start, end - start).c_str());
        start = end + 1;
    }
}

int RunList(Session& session, Arguments& args, const std::string& command)
{
    const bool all = args.Flag("--all");
    const bool nodes = args.Flag("--nodes");
    if (int result = args.Finish(command))
        return result;
    if (nodes) {
        DeviceNodes list;
        if (int result = ListDeviceNodes(list))
            return Fail(command, result);
        PrintNodes("serial", list.serial);
        PrintNodes("video", list.video);
        return 0;
    }
    const UsbId& id = session.Options().usbId;
    std::vector<AI_CAMERA_MODULE> modules = AttachedModules(id, all ? AI_CAMERA_MODULES_PARTIAL : 0);
    if (modules.empty()) {
        const std::string ids = id.vendorId ? " with USB id " + UsbIdText(id.vendorId, id.productId) : "";
        printf("no module attached%s%s\n", ids.c_str(), all ? "" : " (--all also shows devices with one of the nodes)");
        return 0;
    }
    printf("%s", ModuleTable(modules).c_str());
    return 0;
}

// The text queries copy without a terminator when the text fills the buffer:
// one byte more than offered keeps it terminated.
using TextQuery = int (*)(void* dev, void* text, unsigned int size);

int PrintText(const std::string& command, const char* label, void* dev, TextQuery query)
{
    char text[kTextSize + 1] = {0};
    if (int result = query(dev, text, kTextSize))
        return Fail(command, result, ResultText(result) + " (" + label + ")");
    printf("%-20s %s\n", (std::string(label) + ":").c_str(), text);
    return 0;
}

int RunInfo(Session& session, Arguments& args, const std::string& command)
{
    long snMode = 0;
    args.Number("--sn-mode", 0, 1, snMode);
    if (int result = ReadySerial(session, args, command))
        return result;
    void* dev = session.Dev();
    if (int result = PrintText(command, "firmware version", dev, GetDeviceVersion))
        return result;
    if (int result = PrintText(command, "model", dev, GetDevModel))
        return result;
    if (int result = PrintText(command, "application version", dev, GetDevModelAppVer))
        return result;
    char serial[kTextSize + 1] = {0};
    if (int result = GetDevSn(dev, static_cast<char>(snMode), serial, kTextSize))
        return Fail(command, result, ResultText(result) + " (serial number)");
    printf("%-20s %s\n", "serial number:", serial);
    unsigned int temperature = 0;
    if (int result = GetCpuTemperature(dev, &temperature))
        return Fail(command, result, ResultText(result) + " (temperature)");
    printf("%-20s %u\n", "temperature:", temperature);
    unsigned int sensor = 0;
    if (int result = GetAESensorModel(dev, &sensor))
        return Fail(command, result, ResultText(result) + " (sensor model)");
    printf("%-20s 0x%04X\n", "sensor model:", sensor);
    return 0;
}

int RunPing(Session& session, Arguments& args, const std::string& command)
{
    std::string text = "aicam";
    if (args.HasNext())
        args.Next("TEXT", text);
    if (int result = ReadySerial(session, args, command))
        return result;
    const long long start = MonotonicNs();
    int result = Ping(session.Dev(), text.c_str(), static_cast<unsigned int>(strlen(text.c_str())));
    const double milliseconds = (MonotonicNs() - start) / 1e6;
    if (result != 0)
        return Fail(command, result);
    printf("the module echoed \"%s\" in %.1f ms\n", text.c_str(), milliseconds);
    return 0;
}

// A restart of the module: an optional MODE in [low, high] (none when they are
// equal), then the call.
Verb::Run Maintenance(long low, long high, long fallback, int (*call)(void* dev, int mode), const char* done)
{
    return [=](Session& session, Arguments& args, const std::string& command) {
        long mode = fallback;
        if (low < high && args.HasNext())
            args.NextNumber("MODE", low, high, mode);
        if (int result = ReadySerial(session, args, command))
            return result;
        if (int result = call(session.Dev(), static_cast<int>(mode)))
            return Fail(command, result);
        printf("%s\n", done);
        return 0;
    };
}

int ResetModule(void* dev, int) { return Reset(dev); }
int EngineeringMode(void* dev, int) { return SetUmodeToEngin(dev); }
}  // namespace

const std::vector<Verb> kDeviceVerbs = {
    {"list", "list [--all] [--nodes]", "list the attached modules with their serial and video nodes",
     "A module is a USB device with both a CDC-ACM serial node and a UVC video\n"
     "capture node; the list is sorted by USB path (bus and ports), so a socket\n"
     "keeps its place. # is what --module takes. --usb-id narrows the list.\n"
     "--all also shows USB devices with only one of the two nodes (a modem, a\n"
     "webcam, a module missing a function); --nodes prints instead every node\n"
     "of /dev whose name holds ttyACM or video, as EnumDevice lists them.\n",
     RunList, nullptr},
    {"info", "info [--sn-mode 0|1]", "show versions, model, serial number, temperature, sensor",
     "Reads the firmware version, the model, the application version, the serial\n"
     "number (of the kind --sn-mode selects, default 0), the processor temperature\n"
     "and the exposure sensor model.\n",
     RunInfo, nullptr},
    {"ping", "ping [TEXT]", "check that the module echoes a text", "The default text is \"aicam\".\n", RunPing,
     nullptr},
    {"reboot", "reboot [MODE]", "restart the module (MODE 0..4, default 1)",
     "Mode 0 is the same as 'reset', mode 4 the same as 'engineering'; the\n"
     "meaning of the modes between is the module's.\n",
     Maintenance(0, 4, 1, Reboot, "the module is restarting"), nullptr},
    {"reset", "reset", "restart the module in mode 0", "", Maintenance(0, 0, 0, ResetModule, "the module is resetting"),
     nullptr},
    {"engineering", "engineering", "restart the module in its engineering USB mode", "",
     Maintenance(0, 0, 0, EngineeringMode, "the module is restarting in engineering USB mode"), nullptr},
    {"recovery", "recovery [MODE]", "put the module into recovery (MODE 0 or 1, default 0)", "",
     Maintenance(0, 1, 0, Recovery, "the module is recovering"), nullptr},
};
