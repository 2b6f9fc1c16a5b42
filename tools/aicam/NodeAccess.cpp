#include "NodeAccess.h"

#include <dirent.h>
#include <errno.h>
#include <fcntl.h>
#include <limits.h>
#include <stdlib.h>
#include <string.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <unistd.h>

#include <fstream>

#include "ResultText.h"

const char* const kSerialGroup = "dialout";
const char* const kVideoGroup = "video";

namespace {
std::string InUse(const std::string& node) { return node + " is in use by another program"; }

std::string FirstLine(const std::string& path)
{
    std::ifstream file(path);
    std::string line;
    std::getline(file, line);
    return line;
}

std::vector<std::string> ProcessIds()
{
    std::vector<std::string> ids;
    DIR* proc = opendir("/proc");
    while (struct dirent* entry = proc ? readdir(proc) : nullptr) {
        if (strspn(entry->d_name, "0123456789") == strlen(entry->d_name))
            ids.push_back(entry->d_name);
    }
    if (proc)
        closedir(proc);
    return ids;
}

bool HoldsOpen(const std::string& pid, const std::string& target)
{
    const std::string fds = "/proc/" + pid + "/fd";
    DIR* dir = opendir(fds.c_str());
    bool holds = false;
    while (struct dirent* entry = !holds && dir ? readdir(dir) : nullptr) {
        char link[PATH_MAX];
        ssize_t length = readlink((fds + "/" + entry->d_name).c_str(), link, sizeof link - 1);
        holds = length > 0 && target == std::string(link, static_cast<size_t>(length));
    }
    if (dir)
        closedir(dir);
    return holds;
}
}  // namespace

std::string ResolvedPath(const std::string& path)
{
    char* real = realpath(path.c_str(), nullptr);
    std::string text = real ? real : path;
    free(real);
    return text;
}

std::string JoinWords(const std::vector<std::string>& words, const std::string& separator)
{
    std::string text;
    for (const std::string& word : words)
        text += (text.empty() ? "" : separator) + word;
    return text;
}

std::string OpenProblem(const std::string& node, const char* group)
{
    int fd = open(node.c_str(), O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC);
    if (fd >= 0) {
        close(fd);
        return "";
    }
    switch (errno) {
    case EACCES:
    case EPERM:
        return "permission denied on " + node + ": add yourself to group " + group +
               " (or install the udev rule) and log in again";
    case EBUSY:
        return InUse(node);
    case ENOENT:
    case ENODEV:
    case ENXIO:
        return node + ": no such device — is the module plugged in? `aicam list` shows what is attached";
    default:
        return node + ": " + strerror(errno);
    }
}

std::vector<std::string> NodeHolders(const std::string& node)
{
    const std::string target = ResolvedPath(node);
    const std::string self = std::to_string(getpid());
    std::vector<std::string> holders;
    for (const std::string& pid : ProcessIds()) {
        if (pid != self && HoldsOpen(pid, target))
            holders.push_back(pid + " (" + FirstLine("/proc/" + pid + "/comm") + ")");
    }
    return holders;
}

bool LockedByOther(const std::string& node)
{
    int fd = open(node.c_str(), O_RDONLY | O_NOCTTY | O_NONBLOCK | O_CLOEXEC);
    if (fd < 0)
        return false;
    const bool locked = flock(fd, LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK;
    close(fd);
    return locked;
}

std::string ConnectProblem(const std::string& node, const char* group, int result)
{
    std::string problem = OpenProblem(node, group);
    if (!problem.empty() && problem != InUse(node))
        return problem;
    std::vector<std::string> holders = NodeHolders(node);
    if (!holders.empty())
        return InUse(node) + ": " + JoinWords(holders, ", ");
    if (!problem.empty() || LockedByOther(node))
        return InUse(node);
    return ResultText(result) + ": " + node;
}

std::string UdevProperty(const std::string& node, const std::string& key)
{
    struct stat status;
    if (stat(node.c_str(), &status) != 0 || !S_ISCHR(status.st_mode))
        return "";
    std::ifstream record("/run/udev/data/c" + std::to_string(major(status.st_rdev)) + ":" +
                         std::to_string(minor(status.st_rdev)));
    const std::string prefix = "E:" + key + "=";
    for (std::string line; std::getline(record, line);) {
        if (line.compare(0, prefix.size(), prefix) == 0)
            return line.substr(prefix.size());
    }
    return "";
}

bool ProcessRunning(const std::string& name)
{
    for (const std::string& pid : ProcessIds()) {
        if (FirstLine("/proc/" + pid + "/comm") == name)
            return true;
    }
    return false;
}
