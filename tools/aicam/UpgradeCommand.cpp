// upgrade: send a firmware package in slices, then have the module check it
// against its MD5 hash and apply it.
#include <ctype.h>
#include <stdio.h>

#include <string>

extern "C" {
#include <libavutil/md5.h>
}

#include "FileData.h"
#include "ModuleErrorText.h"
#include "ProgressBar.h"
#include "ResultText.h"
#include "Session.h"
#include "Verb.h"
#include "ai_camera.h"

namespace {
const long kDefaultRetries = 3;
const size_t kHashTextLength = 32;

std::string Md5Text(const ByteVector& data)
{
    uint8_t digest[16];
    av_md5_sum(digest, data.data(), data.size());
    char text[kHashTextLength + 1];
    for (int i = 0; i < 16; ++i)
        snprintf(text + 2 * i, 3, "%02x", digest[i]);
    return text;
}

bool IsHashText(std::string& text)
{
    if (text.size() != kHashTextLength)
        return false;
    for (char& c : text) {
        if (!isxdigit(static_cast<unsigned char>(c)))
            return false;
        c = static_cast<char>(tolower(static_cast<unsigned char>(c)));
    }
    return true;
}

// One slice, sent again up to `retries` times when it fails.
int UploadSlice(void* dev, unsigned int offset, const unsigned char* bytes, unsigned int size, long retries,
                long& resent)
{
    int result = UploadPackageSlice(dev, offset, bytes, size);
    for (long attempt = 0; result != 0 && attempt < retries; ++attempt) {
        ++resent;
        result = UploadPackageSlice(dev, offset, bytes, size);
    }
    return result;
}

int RunUpgrade(Session& session, Arguments& args, const std::string& command)
{
    std::string path, hash;
    long slice = kDefaultSliceBytes, retries = kDefaultRetries;
    args.Number("--slice", 1, kMaxSliceBytes, slice);
    args.Number("--retries", 0, 100, retries);
    if (args.Option("--md5", hash) && !IsHashText(hash))
        args.Invalid("--md5 takes 32 hexadecimal characters");
    ByteVector package;
    if (int result = FinishWithFile(args, command, path, package))
        return result;
    if (hash.empty())
        hash = Md5Text(package);
    if (int result = session.ConnectSerial(command))
        return result;
    void* dev = session.Dev();
    fprintf(stderr, "uploading %s (%zu bytes, md5 %s) in slices of %ld bytes\n", path.c_str(), package.size(),
            hash.c_str(), slice);
    ProgressBar progress(stderr, package.size());
    long resent = 0;
    unsigned int failedAt = 0;
    int result = SendInSlices(package, static_cast<unsigned int>(slice),
                              [&](unsigned int offset, const unsigned char* bytes, unsigned int size, bool) {
                                  failedAt = offset;
                                  int sent = UploadSlice(dev, offset, bytes, size, retries, resent);
                                  if (sent == 0)
                                      progress.Update(offset + static_cast<uint64_t>(size));
                                  return sent;
                              });
    progress.Finish();
    if (result != 0)
        return Fail(command, result,
                    "the slice at byte " + std::to_string(failedAt) + " failed " + std::to_string(retries + 1) +
                        " times: " + ResultText(result));
    fprintf(stderr, "uploaded in %.1f s (%ld slices sent again)\n", progress.Seconds(), resent);
    std::string errorText;
    result = CallWithModuleErrorText(
        [&] { return ApplyUpgrade(dev, hash.c_str(), static_cast<unsigned int>(hash.size())); }, errorText);
    if (result != 0)
        return Fail(command, result,
                    "the module refused the package: " + (errorText.empty() ? ResultText(result) : errorText));
    printf("firmware package applied (%zu bytes, md5 %s)\n", package.size(), hash.c_str());
    return 0;
}
}  // namespace

const Verb kUpgradeVerb = {
    "upgrade",
    "upgrade FILE [--slice BYTES] [--retries N] [--md5 HASH]",
    "upload a firmware package and apply it",
    "Sends FILE in slices of --slice BYTES (default 4096, at most 1 MiB) at their\n"
    "byte offsets, with a progress bar on stderr; a failed slice is sent again up\n"
    "to --retries times (default 3). Then the module checks the package against its MD5 hash\n"
    "(computed from FILE, or the --md5 published with it) and applies it; when it\n"
    "refuses, its own explanation is shown.\n",
    RunUpgrade,
    nullptr,
};
