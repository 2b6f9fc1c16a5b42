// Firmware upgrade: package slices, then the hash check and apply, by hand
// and as a whole upgrade against the module's firmware store.
#include <stdio.h>

#include <algorithm>
#include <random>

#include "SettingsDevice.h"

namespace {
const char kHash[] = "0123456789abcdef0123456789abcdef";
const uint8_t kSlice[] = {0xAA, 0xBB, 0xCC};

std::string PointerText(const void* pointer)
{
    char text[32];
    snprintf(text, sizeof text, "%p", pointer);
    return text;
}

std::string ApplyInputs(const void* hash)
{
    return " pHashData : " + PointerText(hash) + " nHashDataLength : 32";
}

}  // namespace

using FirmwareUpgrade = SettingsDevice;

TEST_F(FirmwareUpgrade, ExchangesAndRefusals)
{
    const std::string sliceInputs = " nPosition : 7 pPacketData : " + PointerText(kSlice) + " nPacketDataLength : 3";
    const sim::Bytes slice = {0x07, 0x00, 0x00, 0x00, 0x03, 0x00, 0x00, 0x00, 0xAA, 0xBB, 0xCC};
    const Call upload = Invoke(UploadPackageSlice, 7, kSlice, sizeof kSlice);
    sim::Bytes apply = {0x20, 0x00, 0x00, 0x00};
    apply.insert(apply.end(), kHash, kHash + 32);
    const Call applyHash = Invoke(ApplyUpgrade, kHash, 32);
    Walk({
        {"UploadPackageSlice", 0x20, {0x00}, upload, 0, slice, sliceInputs, ""},
        {"UploadPackageSlice", 0x20, {0x09}, upload, 9, slice, sliceInputs, ""},
        {"UploadPackageSlice", 0x20, {0x00, 0x00}, upload, -8, slice, sliceInputs, "", "tlvMessage.nLength != 1"},
        {"ApplyUpgrade", 0x21, {0x00}, applyHash, 0, apply, ApplyInputs(kHash), ""},
        // The module's error text reaches the log.
        {"ApplyUpgrade", 0x21, BytesOf("\x02" "bad hash"), applyHash, 2, apply,
         ApplyInputs(kHash) + " errorInfo : bad hash", ""},
        {"ApplyUpgrade", 0x21, {}, applyHash, -8, apply, ApplyInputs(kHash), "", "tlvMessage.nLength < 1"},
    });
    Walk({
        {"UploadPackageSlice", Invoke(UploadPackageSlice, 0, kSlice, 0), "nPacketDataLength == 0"},
        {"UploadPackageSlice", Invoke(UploadPackageSlice, 0, nullptr, 10), "pPacketData == nullptr"},
        {"ApplyUpgrade", Invoke(ApplyUpgrade, kHash, 31),
         "nHashDataLength != strlen(static_cast<char*>(const_cast<void*>(pHashData)))"},
        {"ApplyUpgrade", Invoke(ApplyUpgrade, "", 0), "!strlen(static_cast<char*>(const_cast<void*>(pHashData)))"},
        {"ApplyUpgrade", Invoke(ApplyUpgrade, nullptr, 32), "pHashData == nullptr"},
    });
}

using WholeUpgrade = ModelDevice;

// A package of a few hundred kilobytes in slices numbered by their byte offset,
// refused with the module's reason while its hash is wrong.
TEST_F(WholeUpgrade, OnlyThePackageWithItsHashIsApplied)
{
    const size_t sliceSize = 4 * 1024;
    std::mt19937 random(20240611);
    sim::Bytes package(300 * 1024 + 123);
    for (uint8_t& byte : package)
        byte = static_cast<uint8_t>(random());
    for (size_t offset = 0; offset < package.size(); offset += sliceSize) {
        unsigned int length = static_cast<unsigned int>(std::min(sliceSize, package.size() - offset));
        ASSERT_EQ(0, UploadPackageSlice(dev, static_cast<unsigned int>(offset), &package[offset], length)) << offset;
    }
    EXPECT_EQ(package, model.FirmwarePackage());
    const std::string hash = sim::FirmwareStore::Md5Hex(package);
    std::string wrong = hash;
    wrong[5] = wrong[5] == '0' ? '1' : '0';
    int status = ApplyUpgrade(dev, wrong.c_str(), 32);
    EXPECT_GT(status, 0);
    std::string reason = "upgrade package MD5 mismatch: expected " + wrong + ", received package has " + hash;
    EXPECT_EQ(Body(ApplyInputs(wrong.c_str()) + " errorInfo : " + reason, "", status), LastRecord("ApplyUpgrade"));
    EXPECT_EQ(0u, model.FirmwareApplied().count);

    EXPECT_EQ(0, ApplyUpgrade(dev, hash.c_str(), 32));
    EXPECT_EQ(Body(ApplyInputs(hash.c_str()), "", 0), LastRecord("ApplyUpgrade"));
    const sim::AppliedPackage applied = model.FirmwareApplied();
    EXPECT_EQ(1u, applied.count);
    EXPECT_EQ(package.size(), applied.size);
    EXPECT_EQ(hash, applied.md5);
}
