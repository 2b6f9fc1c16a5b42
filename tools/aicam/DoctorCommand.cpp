// doctor: checks, in order, what stands between this machine and the module,
// one line each, with a fix for what fails.
#include <dlfcn.h>
#include <stdio.h>
#include <string.h>
#include <sys/stat.h>

#include <string>
#include <vector>

#include "JsonWriter.h"
#include "ModuleChoice.h"
#include "MonotonicClock.h"
#include "NodeAccess.h"
#include "Picture.h"
#include "ResultText.h"
#include "Session.h"
#include "Verb.h"
#include "ai_camera.h"

namespace {
const long kFrameTimeoutS = 10;
const char kPingText[] = "aicam doctor";

// Each check prints a line as it ends (under --json an object: check,
// result "ok", "fail" or "skip", detail, and fix for a failure).
class Checks {
public:
    explicit Checks(bool json) : m_json(json) {}
    void Pass(const char* check, const std::string& detail) { Print(check, "ok", detail, ""); }
    void Failure(const char* check, const std::string& detail, const std::string& fix)
    {
        Print(check, "fail", detail, fix);
        ++m_failures;
    }
    void Skip(const char* check, const std::string& why) { Print(check, "skip", why, ""); }
    int Result(const std::string& command) const
    {
        return m_failures ? Fail(command, kDoctorFound, std::to_string(m_failures) + " check(s) failed") : 0;
    }

private:
    void Print(const char* check, const char* result, const std::string& detail, const std::string& fix) const
    {
        if (m_json) {
            JsonObject object;
            object.String("check", check).String("result", result).String("detail", detail);
            if (!fix.empty())
                object.String("fix", fix);
            object.PrintLine();
            return;
        }
        const std::string tag = std::string(result) == "ok" ? "[ ok ]" : std::string(result) == "fail" ? "[FAIL]" : "[skip]";
        printf("%s %s: %s\n", tag.c_str(), check, detail.c_str());
        if (!fix.empty())
            printf("       fix: %s\n", fix.c_str());
        fflush(stdout);
    }

    bool m_json;
    int m_failures = 0;
};

// What is attached with the ids but lacks one of the nodes, for the reason of a missing module.
std::string PartialDevices(const UsbId& id)
{
    std::vector<std::string> lines;
    for (const AI_CAMERA_MODULE& device : AttachedModules(id, AI_CAMERA_MODULES_PARTIAL)) {
        lines.push_back("USB " + std::string(device.usbPath) + " (" + UsbIdText(device.vendorId, device.productId) +
                        ") has " + (device.serialNode[0] ? "a serial node but no video capture node"
                                                         : "a video capture node but no serial node"));
    }
    return JoinWords(lines, "; ");
}

// Which nodes to check: the module's, or those given; false when there are none.
bool CheckModule(Checks& checks, const GlobalOptions& options, std::string& serial, std::string& video)
{
    std::vector<AI_CAMERA_MODULE> modules;
    int index = -1;
    std::string problem;
    int result = ChooseModule(options, modules, index, problem);
    if (result == kSeveralModules) {
        checks.Failure("module", problem, "name one with --module N|SERIAL");
    } else if (result != 0) {
        std::string partial = PartialDevices(options.usbId);
        checks.Failure("module", partial.empty() ? problem : problem + "; " + partial,
                       partial.empty() ? "plug the module in; `lsusb` must show it" +
                                             std::string(options.usbId.vendorId ? ", with the ids of --usb-id" : "")
                                       : "is the module's other USB function on, and are the drivers cdc_acm and "
                                         "uvcvideo loaded (lsmod)?");
    } else {
        checks.Pass("module", ModuleName(modules[index], index));
    }
    const AI_CAMERA_MODULE* module = result == 0 ? &modules[index] : nullptr;
    serial = !options.port.empty() ? options.port : module ? module->serialNode : "";
    video = !options.video.empty() ? options.video : module ? module->videoNode : "";
    return !serial.empty() && !video.empty();
}

bool IsCharacterDevice(const std::string& node)
{
    struct stat status;
    return stat(node.c_str(), &status) == 0 && S_ISCHR(status.st_mode);
}

void CheckNodes(Checks& checks, const GlobalOptions& options, const std::string& serial, const std::string& video)
{
    std::vector<std::string> missing;
    for (const std::string& node : {serial, video}) {
        if (!IsCharacterDevice(node))
            missing.push_back(node);
    }
    if (!missing.empty()) {
        checks.Failure("nodes", JoinWords(missing, " and ") + ": no such device node",
                       "plug the module in again; give --port and --video only for nodes that exist");
        return;
    }
    std::vector<AI_CAMERA_MODULE> modules = AttachedModules(options.usbId, 0);
    for (const AI_CAMERA_MODULE& module : modules) {
        const bool hasSerial = ResolvedPath(serial) == ResolvedPath(module.serialNode);
        const bool hasVideo = ResolvedPath(video) == ResolvedPath(module.videoNode);
        if (hasSerial && hasVideo) {
            checks.Pass("nodes", "serial " + serial + " and video " + video + " are one module's, on USB " +
                                     module.usbPath);
            return;
        }
        if (hasSerial || hasVideo) {
            checks.Failure("nodes", serial + " and " + video + " belong to different devices",
                           std::string("give the module's own pair: ") + module.serialNode + " and " +
                               module.videoNode);
            return;
        }
    }
    checks.Failure("nodes", serial + " and " + video + " are not the nodes of an attached module",
                   "leave out --port and --video, or see `aicam list`");
}

bool CheckPermissions(Checks& checks, const std::string& serial, const std::string& video)
{
    std::vector<std::string> problems;
    for (const std::string& problem : {OpenProblem(serial, kSerialGroup), OpenProblem(video, kVideoGroup)}) {
        if (!problem.empty())
            problems.push_back(problem);
    }
    if (problems.empty()) {
        checks.Pass("permissions", "this user may read and write " + serial + " and " + video);
        return true;
    }
    checks.Failure("permissions", JoinWords(problems, "; "),
                   "install the udev rule and join group plugdev (sudo usermod -aG plugdev $USER), or join "
                   "dialout and video; then log in again");
    return false;
}

void CheckHolders(Checks& checks, const std::string& serial, const std::string& video)
{
    std::vector<std::string> held;
    for (const std::string& node : {serial, video}) {
        std::vector<std::string> holders = NodeHolders(node);
        if (!holders.empty())
            held.push_back(node + " is held by " + JoinWords(holders, ", "));
        else if (LockedByOther(node))
            held.push_back(node + " is locked by a program this user cannot see");
    }
    if (held.empty())
        checks.Pass("in use", "no other program holds " + serial + " or " + video);
    else
        checks.Failure("in use", JoinWords(held, "; "), "close that program (or end it with kill PID)");
}

void CheckModemManager(Checks& checks, const std::string& serial)
{
    if (!ProcessRunning("ModemManager"))
        checks.Pass("ModemManager", "not running");
    else if (UdevProperty(serial, "ID_MM_DEVICE_IGNORE") == "1")
        checks.Pass("ModemManager", "runs, and leaves " + serial + " alone (ID_MM_DEVICE_IGNORE=1)");
    else
        checks.Failure("ModemManager", "runs, and may probe " + serial + " with AT commands",
                       "install the udev rule, which sets ID_MM_DEVICE_IGNORE=1, then sudo udevadm control "
                       "--reload && sudo udevadm trigger; or sudo systemctl stop ModemManager");
}

// False, with the reason, when the library could not open the node.
bool Connected(Checks& checks, const char* check, int result, const std::string& node, const char* group,
               const std::string& fix)
{
    if (result != 0)
        checks.Failure(check, ConnectProblem(node, group, result), fix);
    return result == 0;
}

void CheckPing(Checks& checks, void* dev, const std::string& serial)
{
    if (!Connected(checks, "ping", ConnectSerial(dev, serial.c_str()), serial, kSerialGroup, "see the lines above"))
        return;
    const long long start = MonotonicNs();
    int result = Ping(dev, kPingText, static_cast<unsigned int>(strlen(kPingText)));
    char detail[64];
    snprintf(detail, sizeof detail, "the module answered in %.1f ms", (MonotonicNs() - start) / 1e6);
    if (result == 0)
        checks.Pass("ping", detail);
    else
        checks.Failure("ping", ResultText(result) + " on " + serial,
                       "plug the module in again, or restart it; make sure no other program talks on " + serial);
}

void CheckFrame(Checks& checks, void* dev, const std::string& video)
{
    if (!Connected(checks, "frame", ConnectCamera(dev, video.c_str()), video, kVideoGroup,
                   "plug the module in again; give --video the capture node `aicam list` shows"))
        return;
    Picture picture;
    int result = TakePicture(dev, kFrameTimeoutS, picture);
    if (result == 0) {
        checks.Pass("frame", std::to_string(picture.width) + "x" + std::to_string(picture.height) + ", side text " +
                                 (picture.sideText[0] ? picture.sideText.data() : "(none)"));
        return;
    }
    checks.Failure("frame",
                   result == -11 ? "no picture arrived within " + std::to_string(kFrameTimeoutS) + " s from " + video
                                 : ResultText(result) + ": " + video,
                   "switch the module's video output on (aicam settings set uvc 1), or plug it in again");
}

void CheckLibrary(Checks& checks)
{
    char version[64] = {0};
    GetSdkVersion(version, sizeof version);
    Dl_info where;
    const bool found = dladdr(reinterpret_cast<void*>(&GetSdkVersion), &where) != 0 && where.dli_fname;
    checks.Pass("library", std::string(version) + " (" + (found ? where.dli_fname : "path unknown") + ")");
}

int RunDoctor(Session& session, Arguments& args, const std::string& command)
{
    Checks checks(args.Flag("--json"));
    if (int result = args.Finish(command))
        return result;
    std::string serial, video;
    if (CheckModule(checks, session.Options(), serial, video)) {
        CheckNodes(checks, session.Options(), serial, video);
        const bool usable = CheckPermissions(checks, serial, video);
        CheckHolders(checks, serial, video);
        CheckModemManager(checks, serial);
        if (usable) {
            CheckPing(checks, session.Dev(), serial);
            CheckFrame(checks, session.Dev(), video);
        } else {
            checks.Skip("ping", "the nodes cannot be opened");
            checks.Skip("frame", "the nodes cannot be opened");
        }
    } else {
        checks.Skip("nodes, permissions, ping, frame", "no module to check");
    }
    CheckLibrary(checks);
    return checks.Result(command);
}
}  // namespace

const Verb kDoctorVerb = {
    "doctor",
    "doctor [--json]",
    "check the module, its nodes, permissions and users, with a fix for each problem",
    "Checks in order: a module is attached (with --usb-id, with those ids);\n"
    "its serial and video nodes exist and are one module's; this user may open\n"
    "both; no other program holds them; ModemManager leaves the serial port\n"
    "alone; the module answers a ping; the camera gives a picture with its side\n"
    "text; and prints the library's version. --port, --video and --module\n"
    "choose the nodes as for the other commands. --json prints one object per\n"
    "check: check, result (ok, fail or skip), detail, and fix for a failure.\n",
    RunDoctor,
    nullptr,
};
