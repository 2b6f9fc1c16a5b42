// Firmware upgrade: package slices, then the hash check and apply, by hand
// and as a whole upgrade against the module's firmware store.
#include <stdio.h>
#include <string.h>

#include <algorithm>
#include <random>

#include "SettingsDevice.h"

extern "C" {
#include <libavutil/md5.h>
}

namespace {
const uint16_t kSliceTag = 0x0020;
const uint16_t kApplyTag = 0x0021;
const char kHash[] = "0123456789abcdef0123456789abcdef";

std::string PointerText(const void* pointer)
{
    char text[32];
    snprintf(text, sizeof text, "%p", pointer);
    return text;
}

std::string ApplyInputs(const void* hash, unsigned int length)
{
    return " pHashData : " + PointerText(hash) + " nHashDataLength : " + std::to_string(length);
}

std::string Md5Text(const sim::Bytes& data)
{
    uint8_t digest[16];
    av_md5_sum(digest, data.data(), static_cast<int>(data.size()));
    std::string text;
    char hex[3];
    for (uint8_t byte : digest) {
        snprintf(hex, sizeof hex, "%02x", byte);
        text += hex;
    }
    return text;
}

sim::Bytes RandomPackage(size_t size)
{
    std::mt19937 random(20240611);
    sim::Bytes package(size);
    for (uint8_t& byte : package)
        byte = static_cast<uint8_t>(random());
    return package;
}
}  // namespace

using FirmwareUpgrade = SettingsDevice;

TEST_F(FirmwareUpgrade, ASliceCarriesItsPositionLengthAndBytes)
{
    Answer(kSliceTag, {0x00});
    const uint8_t slice[] = {0xAA, 0xBB, 0xCC};
    EXPECT_EQ(0, UploadPackageSlice(dev, 7, slice, sizeof slice));
    EXPECT_EQ((sim::Bytes{0x07, 0x00, 0x00, 0x00, 0x03, 0x00, 0x00, 0x00, 0xAA, 0xBB, 0xCC}), LastRequest(kSliceTag));
    EXPECT_EQ(Body(" nPosition : 7 pPacketData : " + PointerText(slice) + " nPacketDataLength : 3", "", 0),
              LastRecord("UploadPackageSlice"));
}

TEST_F(FirmwareUpgrade, ASliceWithoutDataIsRefused)
{
    const uint8_t slice[10] = {};
    EXPECT_EQ(-4, UploadPackageSlice(dev, 0, slice, 0));
    EXPECT_EQ(Refusal("nPacketDataLength == 0"), LastRecord("UploadPackageSlice"));
    EXPECT_EQ(-4, UploadPackageSlice(dev, 0, nullptr, 10));
    EXPECT_EQ(Refusal("pPacketData == nullptr"), LastRecord("UploadPackageSlice"));
    EXPECT_EQ(0u, SentCount(kSliceTag));
}

TEST_F(FirmwareUpgrade, ASliceAnswerIsOneStatusByte)
{
    const uint8_t slice[] = {0x01};
    Answer(kSliceTag, {0x09});
    EXPECT_EQ(9, UploadPackageSlice(dev, 0, slice, sizeof slice));
    Answer(kSliceTag, {0x00, 0x00});
    EXPECT_EQ(-8, UploadPackageSlice(dev, 0, slice, sizeof slice));
    EXPECT_EQ(Failure("tlvMessage.nLength != 1",
                      " nPosition : 0 pPacketData : " + PointerText(slice) + " nPacketDataLength : 1", "", -8),
              LastRecord("UploadPackageSlice"));
}

TEST_F(FirmwareUpgrade, ApplySendsTheHashTextWithItsLength)
{
    Answer(kApplyTag, {0x00});
    EXPECT_EQ(0, ApplyUpgrade(dev, kHash, 32));
    sim::Bytes expected = {0x20, 0x00, 0x00, 0x00};
    expected.insert(expected.end(), kHash, kHash + 32);
    EXPECT_EQ(expected, LastRequest(kApplyTag));
    EXPECT_EQ(Body(ApplyInputs(kHash, 32), "", 0), LastRecord("ApplyUpgrade"));
}

TEST_F(FirmwareUpgrade, ApplyRefusesAHashNotOfItsLength)
{
    EXPECT_EQ(-4, ApplyUpgrade(dev, kHash, 31));
    EXPECT_EQ(Refusal("nHashDataLength != strlen(static_cast<char*>(const_cast<void*>(pHashData)))"),
              LastRecord("ApplyUpgrade"));
    EXPECT_EQ(-4, ApplyUpgrade(dev, "", 0));
    EXPECT_EQ(Refusal("!strlen(static_cast<char*>(const_cast<void*>(pHashData)))"), LastRecord("ApplyUpgrade"));
    EXPECT_EQ(-4, ApplyUpgrade(dev, nullptr, 32));
    EXPECT_EQ(Refusal("pHashData == nullptr"), LastRecord("ApplyUpgrade"));
    EXPECT_EQ(0u, SentCount(kApplyTag));
}

TEST_F(FirmwareUpgrade, TheModulesErrorTextReachesTheLog)
{
    Answer(kApplyTag, BytesOf("\x02" "bad hash"));
    EXPECT_EQ(2, ApplyUpgrade(dev, kHash, 32));
    EXPECT_EQ(Body(ApplyInputs(kHash, 32) + " errorInfo : bad hash", "", 2), LastRecord("ApplyUpgrade"));
}

TEST_F(FirmwareUpgrade, AnEmptyApplyAnswerFails)
{
    Answer(kApplyTag, {});
    EXPECT_EQ(-8, ApplyUpgrade(dev, kHash, 32));
    EXPECT_EQ(Failure("tlvMessage.nLength < 1", ApplyInputs(kHash, 32), "", -8), LastRecord("ApplyUpgrade"));
}

// Against the module's firmware store: a package of a few hundred kilobytes.
class WholeUpgrade : public ModelDevice {
protected:
    static constexpr size_t kPackageSize = 300 * 1024 + 123;
    static constexpr size_t kSliceSize = 4 * 1024;

    // Sends the package in slices numbered by their byte offset, skipping `skipped`.
    void UploadPackage(size_t skipped = SIZE_MAX)
    {
        for (size_t offset = 0, index = 0; offset < package.size(); offset += kSliceSize, ++index) {
            if (index == skipped)
                continue;
            unsigned int length = static_cast<unsigned int>(std::min(kSliceSize, package.size() - offset));
            ASSERT_EQ(0, UploadPackageSlice(dev, static_cast<unsigned int>(offset), &package[offset], length))
                << "slice at " << offset;
        }
    }

    const sim::Bytes package = RandomPackage(kPackageSize);
};

TEST_F(WholeUpgrade, TheRightHashAppliesThePackage)
{
    ASSERT_NO_FATAL_FAILURE(UploadPackage());
    EXPECT_EQ((kPackageSize + kSliceSize - 1) / kSliceSize, RequestCount(kSliceTag));
    EXPECT_EQ(package, model.FirmwarePackage());
    const std::string hash = Md5Text(package);
    EXPECT_EQ(0, ApplyUpgrade(dev, hash.c_str(), static_cast<unsigned int>(hash.size())));
    EXPECT_EQ(Body(ApplyInputs(hash.c_str(), 32), "", 0), LastRecord("ApplyUpgrade"));
    const sim::AppliedPackage applied = model.FirmwareApplied();
    EXPECT_EQ(1u, applied.count);
    EXPECT_EQ(kPackageSize, applied.size);
    EXPECT_EQ(hash, applied.md5);
}

TEST_F(WholeUpgrade, AWrongHashIsRefusedWithTheModulesReason)
{
    ASSERT_NO_FATAL_FAILURE(UploadPackage());
    std::string hash = Md5Text(package);
    hash[5] = hash[5] == '0' ? '1' : '0';
    int status = ApplyUpgrade(dev, hash.c_str(), static_cast<unsigned int>(hash.size()));
    EXPECT_GT(status, 0);
    std::string reason = "upgrade package MD5 mismatch: expected " + hash + ", received package has " + Md5Text(package);
    EXPECT_EQ(Body(ApplyInputs(hash.c_str(), 32) + " errorInfo : " + reason, "", status), LastRecord("ApplyUpgrade"));
    EXPECT_EQ(0u, model.FirmwareApplied().count);
}

TEST_F(WholeUpgrade, AMissingSliceIsRefused)
{
    ASSERT_NO_FATAL_FAILURE(UploadPackage(3));
    const std::string hash = Md5Text(package);
    int status = ApplyUpgrade(dev, hash.c_str(), static_cast<unsigned int>(hash.size()));
    EXPECT_GT(status, 0);
    EXPECT_NE(std::string::npos, LastRecord("ApplyUpgrade").find(" errorInfo : upgrade package incomplete"));
    EXPECT_EQ(0u, model.FirmwareApplied().count);
}
