#include "FirmwareStore.h"

#include <algorithm>
#include <cctype>

#include "ModuleProtocol.h"

extern "C" {
#include <libavutil/md5.h>
}

namespace sim {

uint8_t FirmwareStore::AddSlice(uint32_t offset, const Bytes& data) {
    if (data.size() > proto::kMaxPackageBytes || offset > proto::kMaxPackageBytes - data.size())
        return proto::kFirmwareTooLarge;
    if (offset == 0) {
        m_package.clear();
        m_coverage.Clear();
    }
    size_t end = offset + data.size();
    if (m_package.size() < end) m_package.resize(end, 0);
    std::copy(data.begin(), data.end(), m_package.begin() + offset);
    m_coverage.Add(offset, end);
    return proto::kOk;
}

std::string FirmwareStore::Md5Hex(const Bytes& data) {
    uint8_t digest[16];
    av_md5_sum(digest, data.data(), data.size());
    static const char kHex[] = "0123456789abcdef";
    std::string out;
    for (uint8_t b : digest) {
        out += kHex[b >> 4];
        out += kHex[b & 15];
    }
    return out;
}

uint8_t FirmwareStore::Apply(const std::string& hashText, std::string& error) {
    if (hashText.size() != proto::kHashTextLength ||
        !std::all_of(hashText.begin(), hashText.end(), [](unsigned char c) { return std::isxdigit(c); })) {
        error = "hash text is not 32 hexadecimal characters";
        return proto::kFirmwareBadHashText;
    }
    if (m_package.empty()) {
        error = "no upgrade package has been uploaded";
        return proto::kFirmwareEmpty;
    }
    if (!m_coverage.CoversUpTo(m_package.size())) {
        error = "upgrade package incomplete: nothing received at byte " + std::to_string(m_coverage.FirstGap());
        return proto::kFirmwareIncomplete;
    }
    std::string expected = hashText;
    std::transform(expected.begin(), expected.end(), expected.begin(),
                   [](unsigned char c) { return char(std::tolower(c)); });
    std::string actual = Md5Hex(m_package);
    if (actual != expected) {
        error = "upgrade package MD5 mismatch: expected " + expected + ", received package has " + actual;
        return proto::kFirmwareHashMismatch;
    }
    m_applied.count++;
    m_applied.size = m_package.size();
    m_applied.md5 = actual;
    m_package.clear();
    m_coverage.Clear();
    return proto::kOk;
}

}  // namespace sim
