// Firmware upgrade by hand: package slices, then the hash check and apply.
// The whole upgrade against the module's firmware store is UpgradeFirmware's.
#include <stdio.h>

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
