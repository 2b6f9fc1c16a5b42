#include "Rig.h"

#include <dirent.h>
#include <fcntl.h>
#include <stdio.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <fstream>
#include <sstream>
#include <thread>
#include <vector>

namespace rig {
namespace {
const int kPlugTimeoutMs = 30000;

std::string FirstLine(const std::string& path)
{
    std::string line;
    std::ifstream in(path);
    std::getline(in, line);
    return line;
}

// The module's interfaces in sysfs, such as /sys/bus/usb/devices/1-1:1.0.
std::vector<std::string> Interfaces()
{
    std::vector<std::string> found;
    const std::string device = Var("VM_USB_DEVICE");
    if (device.empty())
        return found;
    for (const std::string& name : Entries("/sys/bus/usb/devices"))
        if (name.compare(0, device.size() + 1, device + ":") == 0)
            found.push_back("/sys/bus/usb/devices/" + name);
    return found;
}

// The video node of the module whose "index" is `index` (0 capture, 1 metadata).
std::string VideoNode(const char* index)
{
    for (const std::string& interface : Interfaces())
        for (const std::string& node : Entries(interface + "/video4linux"))
            if (FirstLine(interface + "/video4linux/" + node + "/index") == index)
                return "/dev/" + node;
    return "";
}

bool Exists(const std::string& path) { return !path.empty() && access(path.c_str(), F_OK) == 0; }

bool WaitUntil(bool (*done)())
{
    const auto end = std::chrono::steady_clock::now() + std::chrono::milliseconds(kPlugTimeoutMs);
    while (!done()) {
        if (std::chrono::steady_clock::now() > end)
            return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
    }
    return true;
}
}  // namespace

bool Inside() { return getenv("IN_TEST_VM") != nullptr; }

std::vector<std::string> Entries(const std::string& directory)
{
    std::vector<std::string> names;
    if (DIR* dir = opendir(directory.c_str())) {
        while (struct dirent* entry = readdir(dir))
            if (entry->d_name[0] != '.')
                names.push_back(entry->d_name);
        closedir(dir);
    }
    return names;
}

std::string Var(const char* name)
{
    const char* value = getenv(name);
    return value ? value : "";
}

std::string SerialNode()
{
    for (const std::string& interface : Interfaces())
        for (const std::string& tty : Entries(interface + "/tty"))
            return "/dev/" + tty;
    return "";
}

std::string CaptureNode() { return VideoNode("0"); }

std::string MetadataNode() { return VideoNode("1"); }

bool SetPlugged(bool plugged)
{
    const std::string path = "/sys/bus/usb/devices/" + Var("VM_USB_DEVICE") + "/authorized";
    FILE* file = fopen(path.c_str(), "w");
    if (!file)
        return false;
    const bool written = fputs(plugged ? "1\n" : "0\n", file) >= 0;
    if (fclose(file) != 0 || !written)
        return false;
    if (plugged)
        return WaitUntil([] { return Exists(SerialNode()) && Exists(CaptureNode()) && Exists(MetadataNode()); });
    return WaitUntil([] { return SerialNode().empty() && CaptureNode().empty(); });
}

void SetCameraSilent(bool silent)
{
    const std::string path = Var("VM_UVC_SILENT");
    if (silent)
        close(open(path.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0644));
    else
        unlink(path.c_str());
}

std::string AdvertisedSizes()
{
    const std::string frames = Var("VM_GADGET") + "/functions/uvc.cam/streaming/mjpeg/m";
    std::string sizes;
    for (int n = 1;; ++n) {
        const std::string frame = frames + "/f" + std::to_string(n);
        if (!Exists(frame))
            break;
        sizes += (sizes.empty() ? "" : " ") + FirstLine(frame + "/wWidth") + "x" + FirstLine(frame + "/wHeight");
    }
    return sizes;
}

void StreamedSize(int* width, int* height)
{
    const long long wantedWidth = 1280, wantedHeight = 720;
    std::istringstream sizes(AdvertisedSizes());
    long long best = -1;
    long long w, h;
    char x;
    *width = *height = 0;
    while (sizes >> w >> x >> h) {
        long long overlap = std::min(w, wantedWidth) * std::min(h, wantedHeight);
        long long distance = w * h + wantedWidth * wantedHeight - 2 * overlap;
        if (best < 0 || distance < best) {
            best = distance;
            *width = static_cast<int>(w);
            *height = static_cast<int>(h);
        }
    }
}

}  // namespace rig
