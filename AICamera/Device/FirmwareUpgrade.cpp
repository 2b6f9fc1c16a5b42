#include "FirmwareUpgrade.h"

#include <ctype.h>
#include <stdio.h>

extern "C" {
#include <libavutil/md5.h>
}

#include "AICamera.h"

namespace {
const size_t kMd5Bytes = 16;

// One slice, sent again while it fails, at most kSliceResends times.
int SendSlice(AICamera& camera, unsigned int offset, const unsigned char* bytes, unsigned int size,
              unsigned int& retries)
{
    int result = camera.UploadPackageSlice(offset, bytes, size);
    for (unsigned int resent = 0; result != 0 && resent < kSliceResends; ++resent) {
        ++retries;
        result = camera.UploadPackageSlice(offset, bytes, size);
    }
    return result;
}
}  // namespace

std::string Md5Text(const unsigned char* data, size_t size)
{
    uint8_t digest[kMd5Bytes];
    av_md5_sum(digest, data, size);
    char text[kMd5TextLength + 1];
    for (size_t i = 0; i < kMd5Bytes; ++i)
        snprintf(text + 2 * i, 3, "%02x", digest[i]);
    return text;
}

bool NormaliseMd5Text(std::string& text)
{
    if (text.size() != kMd5TextLength)
        return false;
    for (char& c : text) {
        if (!isxdigit(static_cast<unsigned char>(c)))
            return false;
        c = static_cast<char>(tolower(static_cast<unsigned char>(c)));
    }
    return true;
}

int RunFirmwareUpgrade(AICamera& camera, const unsigned char* package, unsigned int length, unsigned int sliceSize,
                       const std::string& md5, const UpgradeProgress& progress, UpgradeOutcome& outcome)
{
    outcome = UpgradeOutcome();
    unsigned int retries = 0;
    if (progress && progress(0, length, retries))
        return kUpgradeCancelled;
    for (unsigned int offset = 0; offset < length;) {
        // Never past the end: the last slice takes what is left.
        unsigned int size = length - offset < sliceSize ? length - offset : sliceSize;
        if (int result = SendSlice(camera, offset, package + offset, size, retries))
            return result;
        offset += size;
        if (progress && progress(offset, length, retries))
            return kUpgradeCancelled;
    }
    int result = camera.ApplyUpgradeWithErrorInfo(md5.c_str(), static_cast<unsigned int>(md5.size()),
                                                  outcome.errorText);
    if (result >= 0)
        outcome.moduleStatus = result;
    return result;
}
