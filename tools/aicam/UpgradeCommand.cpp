// upgrade: send a firmware package in slices, then have the module check it
// against its MD5 hash and apply it, all in the library's one upgrade call.
#include <ctype.h>
#include <signal.h>
#include <stdio.h>
#include <string.h>

#include <algorithm>
#include <string>

extern "C" {
#include <libavutil/md5.h>
}

#include "FileData.h"
#include "ProgressBar.h"
#include "ResultText.h"
#include "Session.h"
#include "SignalWatch.h"
#include "Verb.h"
#include "ai_camera_ext.h"

namespace {
const size_t kHashTextLength = 32;
// The library sends a failed slice again this many times.
const int kSliceTries = 4;

// Shown beside the package, so computed here although the library could.
std::string Md5Text(const ByteVector& data)
{
    uint8_t digest[16];
    av_md5_sum(digest, data.data(), data.size());
    char text[kHashTextLength + 1];
    for (int i = 0; i < 16; ++i)
        snprintf(text + 2 * i, 3, "%02x", digest[i]);
    return text;
}

// The library takes either case; the tool shows the hash as it computes it.
bool IsHashText(std::string& text)
{
    if (text.size() != kHashTextLength || strspn(text.c_str(), "0123456789abcdefABCDEF") != kHashTextLength)
        return false;
    std::transform(text.begin(), text.end(), text.begin(), [](unsigned char c) { return char(tolower(c)); });
    return true;
}

// Where the upload stands, as the library's progress calls tell it.
struct Upload {
    ProgressBar bar;
    unsigned int sent = 0;
    unsigned int total = 0;
    unsigned int retries = 0;
};

int ShowProgress(unsigned int sent, unsigned int total, unsigned int retries, void* user)
{
    Upload& upload = *static_cast<Upload*>(user);
    upload.sent = sent;
    upload.total = total;
    upload.retries = retries;
    upload.bar.Update(sent);
    // A signal stops the upload between slices; nothing is applied then.
    return CaughtSignal() ? 1 : 0;
}

int Percent(unsigned int sent, unsigned int total)
{
    return total ? static_cast<int>(static_cast<unsigned long long>(sent) * 100 / total) : 0;
}

// The module's explanation, shown on one line whatever it holds.
std::string OneLine(const char* text)
{
    std::string line = text;
    for (char& c : line) {
        if (static_cast<unsigned char>(c) < 0x20)
            c = ' ';
    }
    return line;
}

int RunUpgrade(Session& session, Arguments& args, const std::string& command)
{
    std::string path, hash;
    long slice = kDefaultSliceBytes;
    args.Number("--slice", 1, kMaxSliceBytes, slice);
    if (args.Option("--md5", hash) && !IsHashText(hash))
        args.Invalid("--md5 takes 32 hexadecimal characters");
    ByteVector package;
    if (int result = FinishWithFile(args, command, path, package))
        return result;
    if (hash.empty())
        hash = Md5Text(package);
    if (int result = session.ConnectSerial(command))
        return result;
    Upload upload{ProgressBar(stderr, package.size(), session.Options().quiet)};
    upload.bar.Note("uploading " + path + " (" + std::to_string(package.size()) + " bytes, md5 " + hash +
                    ") in slices of " + std::to_string(slice) + " bytes");
    int moduleStatus = -1;
    char errorText[1024];
    SignalWatch watch;
    int result = UpgradeFirmware(session.Dev(), package.data(), static_cast<unsigned int>(package.size()),
                                 static_cast<unsigned int>(slice), hash.c_str(), ShowProgress, &upload,
                                 &moduleStatus, errorText, sizeof errorText);
    upload.bar.Finish();
    if (result == AI_CAMERA_UPGRADE_CANCELLED && CaughtSignal())
        return Fail(command, kInterrupted,
                    std::string("upgrade stopped by ") + (CaughtSignal() == SIGINT ? "SIGINT" : "SIGTERM") + " after " +
                        std::to_string(upload.sent) + " of " + std::to_string(upload.total) + " bytes (" +
                        std::to_string(Percent(upload.sent, upload.total)) +
                        "%); the package was not applied and the module keeps its firmware");
    if (upload.sent < upload.total || upload.total == 0)
        return Fail(command, result,
                    "the slice at byte " + std::to_string(upload.sent) + " failed " + std::to_string(kSliceTries) +
                        " times: " + ResultText(result));
    char done[96];
    snprintf(done, sizeof done, "uploaded in %.1f s (%u slices sent again)", upload.bar.Seconds(), upload.retries);
    upload.bar.Note(done);
    if (result > 0)
        return Fail(command, result,
                    "the module refused the package" + (errorText[0] ? ": " + OneLine(errorText) : std::string()));
    if (result != 0)
        return Fail(command, result, "the package was sent but not applied: " + ResultText(result));
    printf("firmware package applied (%zu bytes, md5 %s)\n", package.size(), hash.c_str());
    return 0;
}
}  // namespace

const Verb kUpgradeVerb = {
    "upgrade",
    "upgrade FILE [--slice BYTES] [--md5 HASH]",
    "upload a firmware package and apply it",
    "Sends FILE in slices of --slice BYTES (default 4096, at most 1 MiB) at their\n"
    "byte offsets, with a progress bar on stderr when it is a terminal (one line\n"
    "at the start and one at the end otherwise; none with --quiet); a failed\n"
    "slice is sent again up to 3 times. SIGINT or SIGTERM stops the upload\n"
    "between slices and applies nothing. Then the module checks the package against its MD5 hash\n"
    "(computed from FILE, or the --md5 published with it) and applies it; when it\n"
    "refuses, its own explanation is shown.\n",
    RunUpgrade,
    nullptr,
};
