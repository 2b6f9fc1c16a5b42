// list, info, ping, and the maintenance commands reboot, reset and recovery.
#include <stdio.h>
#include <string.h>

#include <string>

#include "JsonWriter.h"
#include "ModuleChoice.h"
#include "ModuleWait.h"
#include "MonotonicClock.h"
#include "ResultText.h"
#include "Session.h"
#include "Verb.h"
#include "ai_camera.h"

namespace {
const unsigned int kTextSize = 256;

void PrintNodes(const char* kind, const std::string& list, bool json)
{
    if (list.empty()) {
        if (!json)
            printf("%s: none\n", kind);
        return;
    }
    size_t start = 0;
    while (start <= list.size()) {
        size_t end = list.find('|', start);
        if (end == std::string::npos)
            end = list.size();
        const std::string node = list.substr(start, end - start);
        if (json)
            JsonObject().String("kind", kind).String("node", node).PrintLine();
        else
            printf("%s: %s\n", kind, node.c_str());
        start = end + 1;
    }
}

void PrintModulesJson(const std::vector<AI_CAMERA_MODULE>& modules)
{
    for (size_t i = 0; i < modules.size(); ++i) {
        const AI_CAMERA_MODULE& module = modules[i];
        JsonObject()
            .Number("index", static_cast<long long>(i))
            .String("serialNode", module.serialNode)
            .String("videoNode", module.videoNode)
            .String("usbId", UsbIdText(module.vendorId, module.productId))
            .String("serialNumber", module.usbSerial)
            .String("usbPath", module.usbPath)
            .PrintLine();
    }
}

int RunList(Session& session, Arguments& args, const std::string& command)
{
    const bool all = args.Flag("--all");
    const bool nodes = args.Flag("--nodes");
    const bool json = args.Flag("--json");
    if (int result = args.Finish(command))
        return result;
    if (nodes) {
        DeviceNodes list;
        if (int result = ListDeviceNodes(list))
            return Fail(command, result);
        PrintNodes("serial", list.serial, json);
        PrintNodes("video", list.video, json);
        return 0;
    }
    const UsbId& id = session.Options().usbId;
    std::vector<AI_CAMERA_MODULE> modules = AttachedModules(id, all ? AI_CAMERA_MODULES_PARTIAL : 0);
    if (json) {
        PrintModulesJson(modules);
        return 0;
    }
    if (modules.empty()) {
        const std::string ids = id.vendorId ? " with USB id " + UsbIdText(id.vendorId, id.productId) : "";
        printf("no module attached%s%s\n", ids.c_str(), all ? "" : " (--all also shows devices with one of the nodes)");
        return 0;
    }
    printf("%s", ModuleTable(modules).c_str());
    return 0;
}

// The lines of 'info', printed when all are read: as text, or as one object.
class InfoLines {
public:
    explicit InfoLines(bool json) : m_json(json) {}
    void Add(const char* label, const char* key, const std::string& text, const std::string& json = "")
    {
        m_object.Raw(key, json.empty() ? JsonString(text) : json);
        m_text += FormatLine(label, text);
    }
    void Print() const
    {
        if (m_json)
            m_object.PrintLine();
        else
            printf("%s", m_text.c_str());
    }

private:
    static std::string FormatLine(const char* label, const std::string& text)
    {
        char line[kTextSize + 64];
        snprintf(line, sizeof line, "%-20s %s\n", (std::string(label) + ":").c_str(), text.c_str());
        return line;
    }
    bool m_json;
    JsonObject m_object;
    std::string m_text;
};

// The text queries copy without a terminator when the text fills the buffer:
// one byte more than offered keeps it terminated.
using TextQuery = int (*)(void* dev, void* text, unsigned int size);

int ReadText(const std::string& command, const char* label, const char* key, void* dev, TextQuery query,
             InfoLines& lines)
{
    char text[kTextSize + 1] = {0};
    if (int result = query(dev, text, kTextSize))
        return Fail(command, result, ResultText(result) + " (" + label + ")");
    lines.Add(label, key, text);
    return 0;
}

int RunInfo(Session& session, Arguments& args, const std::string& command)
{
    long snMode = 0;
    args.Number("--sn-mode", 0, 1, snMode);
    InfoLines lines(args.Flag("--json"));
    if (int result = ReadySerial(session, args, command))
        return result;
    void* dev = session.Dev();
    if (int result = ReadText(command, "firmware version", "firmwareVersion", dev, GetDeviceVersion, lines))
        return result;
    if (int result = ReadText(command, "model", "model", dev, GetDevModel, lines))
        return result;
    if (int result = ReadText(command, "application version", "applicationVersion", dev, GetDevModelAppVer, lines))
        return result;
    char serial[kTextSize + 1] = {0};
    if (int result = GetDevSn(dev, static_cast<char>(snMode), serial, kTextSize))
        return Fail(command, result, ResultText(result) + " (serial number)");
    lines.Add("serial number", "serialNumber", serial);
    unsigned int temperature = 0;
    if (int result = GetCpuTemperature(dev, &temperature))
        return Fail(command, result, ResultText(result) + " (temperature)");
    lines.Add("temperature", "temperature", std::to_string(temperature), std::to_string(temperature));
    unsigned int sensor = 0;
    if (int result = GetAESensorModel(dev, &sensor))
        return Fail(command, result, ResultText(result) + " (sensor model)");
    char hex[16];
    snprintf(hex, sizeof hex, "0x%04X", sensor);
    lines.Add("sensor model", "sensorModel", hex, std::to_string(sensor));
    lines.Print();
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

const long kDefaultWaitS = 30;

// A restart of the module: an optional MODE in [low, high] (none when they are
// equal), then the call; with `canWait`, --wait [SECONDS] waits for the module.
Verb::Run Maintenance(long low, long high, long fallback, int (*call)(void* dev, int mode), const char* done,
                      bool canWait = false)
{
    return [=](Session& session, Arguments& args, const std::string& command) {
        long mode = fallback;
        long waitS = 0;
        std::string wait;
        if (canWait && args.Option("--wait", wait)) {
            waitS = kDefaultWaitS;
            if (!wait.empty() && !ParseNumber(wait, 1, 3600, waitS))
                args.Invalid("--wait takes a number of seconds from 1 to 3600, not '" + wait + "'");
        }
        if (low < high && args.HasNext())
            args.NextNumber("MODE", low, high, mode);
        if (int result = ReadySerial(session, args, command))
            return result;
        if (int result = call(session.Dev(), static_cast<int>(mode)))
            return Fail(command, result);
        printf("%s\n", done);
        fflush(stdout);
        return waitS > 0 ? WaitUntilAnswering(session, waitS, command) : 0;
    };
}

int ResetModule(void* dev, int) { return Reset(dev); }
int EngineeringMode(void* dev, int) { return SetUmodeToEngin(dev); }
}  // namespace

const std::vector<Verb> kDeviceVerbs = {
    {"list", "list [--all] [--nodes] [--json]", "list the attached modules with their serial and video nodes",
     "A module is a USB device with both a CDC-ACM serial node and a UVC video\n"
     "capture node; the list is sorted by USB path (bus and ports), so a socket\n"
     "keeps its place. # is what --module takes. --usb-id narrows the list.\n"
     "--all also shows USB devices with only one of the two nodes (a modem, a\n"
     "webcam, a module missing a function); --nodes prints instead every node\n"
     "of /dev whose name holds ttyACM or video, as EnumDevice lists them.\n"
     "--json prints one object per module (index, serialNode, videoNode, usbId,\n"
     "serialNumber, usbPath), or per node with --nodes (kind, node).\n",
     RunList, nullptr},
    {"info", "info [--sn-mode 0|1] [--json]", "show versions, model, serial number, temperature, sensor",
     "Reads the firmware version, the model, the application version, the serial\n"
     "number (of the kind --sn-mode selects, default 0), the processor temperature\n"
     "and the exposure sensor model. --json prints them as one object\n"
     "(firmwareVersion, model, applicationVersion, serialNumber, temperature,\n"
     "sensorModel).\n",
     RunInfo, nullptr},
    {"ping", "ping [TEXT]", "check that the module echoes a text", "The default text is \"aicam\".\n", RunPing,
     nullptr},
    {"reboot", "reboot [MODE] [--wait [SECONDS]]", "restart the module (MODE 0..4, default 1)",
     "Mode 0 is the same as 'reset', mode 4 the same as 'engineering'; the\n"
     "meaning of the modes between is the module's. With --wait, aicam then\n"
     "waits up to SECONDS (default 30) until the module answers a ping again,\n"
     "opening its serial node again when it went away; a ping under way when the\n"
     "time is up may take 10 s more.\n",
     Maintenance(0, 4, 1, Reboot, "the module is restarting", true), nullptr},
    {"reset", "reset", "restart the module in mode 0", "", Maintenance(0, 0, 0, ResetModule, "the module is resetting"),
     nullptr},
    {"engineering", "engineering", "restart the module in its engineering USB mode", "",
     Maintenance(0, 0, 0, EngineeringMode, "the module is restarting in engineering USB mode"), nullptr},
    {"recovery", "recovery [MODE]", "put the module into recovery (MODE 0 or 1, default 0)", "",
     Maintenance(0, 1, 0, Recovery, "the module is recovering"), nullptr},
};
