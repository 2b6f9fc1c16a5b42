#pragma once
// The module's staging area for a firmware package: slices stored by byte
// offset, then checked against the MD5 hash text that the host sends.

#include <cstdint>
#include <string>

#include "SliceAssembler.h"
#include "WireFormat.h"

namespace sim {

struct AppliedPackage {
    size_t count = 0;          // packages applied since start
    size_t size = 0;           // bytes of the last one
    std::string md5;           // its hash, lower-case hexadecimal
};

class FirmwareStore {
public:
    // A slice at offset 0 starts a new package. Returns a proto::Status.
    uint8_t AddSlice(uint32_t offset, const Bytes& data);
    // Checks the stored package against the hash text; on failure `error` says why.
    uint8_t Apply(const std::string& hashText, std::string& error);

    const Bytes& Package() const { return m_package; }
    const AppliedPackage& Applied() const { return m_applied; }

    static std::string Md5Hex(const Bytes& data);

private:
    Bytes m_package;
    Coverage m_coverage;
    AppliedPackage m_applied;
};

}  // namespace sim
