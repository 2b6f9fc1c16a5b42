// The exported firmware upgrade in one call, traced like the other exported
// functions: one record for the whole call, besides those of its requests.
#include <errno.h>
#include <fcntl.h>
#include <limits.h>
#include <stdio.h>
#include <string.h>
#include <sys/stat.h>
#include <unistd.h>

#include <new>
#include <string>
#include <vector>

#include "AICamera/Device/AICamera.h"
#include "AICamera/Device/FirmwareUpgrade.h"
#include "AICamera/Log/Trace.h"
#include "ai_camera_ext.h"

#define TRACE_FILE "ai_camera"

namespace {
static_assert(AI_CAMERA_UPGRADE_CANCELLED == kUpgradeCancelled, "one code for a cancelled upgrade");

// The arguments both forms share, after the package.
struct UpgradeArguments {
    unsigned int sliceSize;
    const char* md5;
    AI_CAMERA_UPGRADE_PROGRESS progress;
    void* user;
    int* moduleStatus;
    char* errorText;
    int errorTextSize;
};

// What the record tells of a run besides its result.
struct UpgradeReport {
    unsigned int sent = 0;
    unsigned int retries = 0;
    UpgradeOutcome outcome;
};

const char* Refusal(const UpgradeArguments& args, std::string& md5)
{
    if (args.sliceSize == 0)
        return "sliceSize == 0";
    md5 = args.md5 ? args.md5 : "";
    if (!md5.empty() && !NormaliseMd5Text(md5))
        return "md5 is not 32 hexadecimal characters";
    if (args.errorTextSize < 0)
        return "errorTextSize < 0";
    if (!args.errorText && args.errorTextSize > 0)
        return "errorText == nullptr && errorTextSize > 0";
    return nullptr;
}

int RecordRefusal(const char* function, int line, void* dev, const char* refusal, int nRet)
{
    TraceRecord(LOG_LEVER_DEBUG, TRACE_FILE, function, line,
                "[ERROR] %s\n[INPUT ] dev : %p invalid input\n[OUTPUT] invalid output\n[RETURN] nRet : %d\n", refusal,
                dev, nRet);
    return nRet;
}

void HandOut(const UpgradeArguments& args, const UpgradeOutcome& outcome)
{
    if (args.moduleStatus)
        *args.moduleStatus = outcome.moduleStatus;
    if (args.errorTextSize > 0)
        snprintf(args.errorText, static_cast<size_t>(args.errorTextSize), "%s", outcome.errorText.c_str());
}

// `md5` empty: the package's own hash, which it then holds for the record.
int Upgrade(void* dev, const unsigned char* package, unsigned int length, const UpgradeArguments& args,
            std::string& md5, UpgradeReport& report)
{
    if (md5.empty())
        md5 = Md5Text(package, length);
    UpgradeProgress progress = [&](unsigned int sent, unsigned int total, unsigned int retries) {
        report.sent = sent;
        report.retries = retries;
        return args.progress && args.progress(sent, total, retries, args.user) != 0;
    };
    int nRet = RunFirmwareUpgrade(*static_cast<AICamera*>(dev), package, length, args.sliceSize, md5, progress,
                                  report.outcome);
    HandOut(args, report.outcome);
    return nRet;
}

// The record's output line after the inputs of each form.
#define UPGRADE_OUTPUTS                                                                                          \
    "\n[OUTPUT] sent : %u retries : %u moduleStatus : %d errorText : %s\n[RETURN] nRet : %d\n"
#define UPGRADE_OUTPUT_VALUES(report, nRet) \
    report.sent, report.retries, report.outcome.moduleStatus, report.outcome.errorText.c_str(), nRet

// The whole file, or false when it cannot be had: missing, not a regular file,
// empty, too large to count in an unsigned int, or failing to read.
bool ReadPackage(const char* path, std::vector<unsigned char>& data)
{
    int fd = open(path, O_RDONLY | O_CLOEXEC);
    if (fd < 0)
        return false;
    struct stat info;
    bool ok = fstat(fd, &info) == 0 && S_ISREG(info.st_mode) && info.st_size > 0 && info.st_size <= UINT_MAX;
    try {
        if (ok)
            data.resize(static_cast<size_t>(info.st_size));
    } catch (const std::bad_alloc&) {
        ok = false;
    }
    for (size_t got = 0; ok && got < data.size();) {
        ssize_t n = read(fd, data.data() + got, data.size() - got);
        if (n < 0 && errno == EINTR)
            continue;
        // A file that shrank while read is not the package it was.
        ok = n > 0;
        got += ok ? static_cast<size_t>(n) : 0;
    }
    close(fd);
    return ok;
}
}  // namespace

int UpgradeFirmware(void* dev, const void* package, unsigned int packageLength, unsigned int sliceSize,
                    const char* md5, AI_CAMERA_UPGRADE_PROGRESS progress, void* user, int* moduleStatus,
                    char* errorText, int errorTextSize)
{
    if (!dev)
        return RecordRefusal(__func__, __LINE__, dev, "dev == nullptr", -1);
    const UpgradeArguments args = {sliceSize, md5, progress, user, moduleStatus, errorText, errorTextSize};
    std::string hash;
    const char* refusal = !package ? "package == nullptr" : packageLength == 0 ? "packageLength == 0" : nullptr;
    if (refusal || (refusal = Refusal(args, hash)))
        return RecordRefusal(__func__, __LINE__, dev, refusal, -4);
    UpgradeReport report;
    int nRet = Upgrade(dev, static_cast<const unsigned char*>(package), packageLength, args, hash, report);
    TraceRecord(LOG_LEVER_DEBUG, TRACE_FILE, __func__, __LINE__,
                "[INPUT ] dev : %p package : %p packageLength : %u sliceSize : %u md5 : %s progress : %p user : %p "
                "errorTextSize : %d" UPGRADE_OUTPUTS,
                dev, package, packageLength, sliceSize, hash.c_str(), reinterpret_cast<void*>(progress), user,
                errorTextSize, UPGRADE_OUTPUT_VALUES(report, nRet));
    return nRet;
}

int UpgradeFirmwareFromFile(void* dev, const char* path, unsigned int sliceSize, const char* md5,
                            AI_CAMERA_UPGRADE_PROGRESS progress, void* user, int* moduleStatus, char* errorText,
                            int errorTextSize)
{
    if (!dev)
        return RecordRefusal(__func__, __LINE__, dev, "dev == nullptr", -1);
    const UpgradeArguments args = {sliceSize, md5, progress, user, moduleStatus, errorText, errorTextSize};
    std::string hash;
    const char* refusal = !path ? "path == nullptr" : !strlen(path) ? "!strlen(path)" : nullptr;
    if (refusal || (refusal = Refusal(args, hash)))
        return RecordRefusal(__func__, __LINE__, dev, refusal, -4);
    UpgradeReport report;
    std::vector<unsigned char> package;
    int nRet = AI_CAMERA_FILE_UNREADABLE;
    if (ReadPackage(path, package))
        nRet = Upgrade(dev, package.data(), static_cast<unsigned int>(package.size()), args, hash, report);
    else
        HandOut(args, report.outcome);
    TraceRecord(LOG_LEVER_DEBUG, TRACE_FILE, __func__, __LINE__,
                "%s[INPUT ] dev : %p path : %s packageLength : %zu sliceSize : %u md5 : %s progress : %p user : %p "
                "errorTextSize : %d" UPGRADE_OUTPUTS,
                nRet == AI_CAMERA_FILE_UNREADABLE ? "[ERROR] the package file cannot be read whole\n" : "", dev, path,
                package.size(), sliceSize, hash.c_str(), reinterpret_cast<void*>(progress), user, errorTextSize,
                UPGRADE_OUTPUT_VALUES(report, nRet));
    return nRet;
}
