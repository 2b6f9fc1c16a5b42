// A whole firmware upgrade in one call: the package goes up in slices at their
// byte offsets, a failed slice is sent again, then the module checks the
// package against its MD5 hash text and applies it.
#ifndef AICAMERA_FIRMWARE_UPGRADE_H
#define AICAMERA_FIRMWARE_UPGRADE_H

#include <stddef.h>

#include <functional>
#include <string>

class AICamera;

// How many times a failed slice is sent again before the upgrade gives up.
const unsigned int kSliceResends = 3;
// Result of an upgrade that the progress callback cancelled.
const int kUpgradeCancelled = -13;
// Length of the hash text the module expects: MD5 in hexadecimal.
const size_t kMd5TextLength = 32;

// Told the bytes acknowledged so far, the package size and the slices sent
// again so far: once before the first slice and after each slice. True cancels.
using UpgradeProgress = std::function<bool(unsigned int sent, unsigned int total, unsigned int retries)>;

// What the module said to the apply request.
struct UpgradeOutcome {
    int moduleStatus = -1;  // its status byte; -1 when the request got no usable answer or was never sent
    std::string errorText;  // its explanation of a refusal; empty when it gave none
};

// The MD5 of `size` bytes as 32 lower-case hexadecimal characters.
std::string Md5Text(const unsigned char* data, size_t size);

// True for 32 hexadecimal characters; `text` is then turned to lower case, the
// form the module compares.
bool NormaliseMd5Text(std::string& text);

// Sends `package` in slices of at most `sliceSize` bytes (both non-zero), then
// applies it with `md5`, the hash text as the module expects it. Returns 0,
// kUpgradeCancelled, the last code of a slice that failed kSliceResends + 1
// times, or the code of the apply request (the module's status when it refused).
// No callback runs once it has returned.
int RunFirmwareUpgrade(AICamera& camera, const unsigned char* package, unsigned int length, unsigned int sliceSize,
                       const std::string& md5, const UpgradeProgress& progress, UpgradeOutcome& outcome);

#endif
