// The firmware store: slices by byte offset and the MD5 check on apply.
#include <algorithm>
#include <cctype>

#include "ModelFixture.h"

namespace sim::test {
namespace {

Bytes SliceRequest(uint32_t offset, const Bytes& package, size_t length) {
    Bytes v;
    PutU32(v, offset);
    PutU32(v, uint32_t(length));
    PutBytes(v, package.data() + offset, length);
    return v;
}

TEST_F(SimModelTest, PackageSentOutOfOrderWithAResendIsAppliedWhenItsHashMatches) {
    const Bytes package = Pattern(300 * 1024 + 123);
    const size_t slice = 4096;
    std::vector<uint32_t> offsets;
    for (size_t off = 0; off < package.size(); off += slice) offsets.push_back(uint32_t(off));
    std::reverse(offsets.begin() + 1, offsets.end());   // offset 0 first: it starts a package
    offsets.push_back(offsets[3]);                        // one slice sent twice
    for (uint32_t off : offsets)
        ASSERT_EQ(StatusOf(proto::kTagFirmwareSlice, SliceRequest(off, package, std::min(slice, package.size() - off))),
                  proto::kOk) << off;
    EXPECT_EQ(model.FirmwarePackage(), package);

    std::string hash = FirmwareStore::Md5Hex(package);
    std::transform(hash.begin(), hash.end(), hash.begin(), [](unsigned char c) { return char(std::toupper(c)); });
    EXPECT_EQ(host->Ask(proto::kTagFirmwareApply, WithId32({}, hash)), Bytes{proto::kOk});
    AppliedPackage applied = model.FirmwareApplied();
    EXPECT_EQ(applied.count, 1u);
    EXPECT_EQ(applied.size, package.size());
    EXPECT_EQ(applied.md5, FirmwareStore::Md5Hex(package));
    EXPECT_TRUE(model.FirmwarePackage().empty());
}

// Each refusal answers its status and an error text naming what is wrong.
TEST_F(SimModelTest, ApplyRefusesNoPackageGapsMalformedAndWrongHashes) {
    const Bytes package = Pattern(3000);
    const std::string hash = FirmwareStore::Md5Hex(package), wrong(32, '0');
    Bytes badLength;   // a slice whose length field disagrees with its bytes
    PutU32(badLength, 0);
    PutU32(badLength, 10);
    PutText(badLength, "only nine");
    EXPECT_EQ(StatusOf(proto::kTagFirmwareSlice, badLength), proto::kBadRequest);
    auto apply = [&](const std::string& h, uint8_t status, const std::string& named) {
        std::optional<Bytes> a = host->Ask(proto::kTagFirmwareApply, WithId32({}, h));
        ASSERT_TRUE(a && a->size() > 1) << named;
        EXPECT_EQ((*a)[0], status) << named;
        EXPECT_NE(std::string(a->begin() + 1, a->end()).find(named), std::string::npos) << named;
    };
    apply(hash, proto::kFirmwareEmpty, "");
    ASSERT_EQ(StatusOf(proto::kTagFirmwareSlice, SliceRequest(0, package, 1000)), proto::kOk);
    ASSERT_EQ(StatusOf(proto::kTagFirmwareSlice, SliceRequest(2000, package, 1000)), proto::kOk);
    apply(hash, proto::kFirmwareIncomplete, "1000");
    ASSERT_EQ(StatusOf(proto::kTagFirmwareSlice, SliceRequest(1000, package, 1000)), proto::kOk);
    apply(hash.substr(1), proto::kFirmwareBadHashText, "");
    apply(wrong, proto::kFirmwareHashMismatch, wrong);
    apply(wrong, proto::kFirmwareHashMismatch, hash);
    EXPECT_EQ(model.FirmwareApplied().count, 0u);
    EXPECT_EQ(StatusOf(proto::kTagFirmwareApply, WithId32({}, hash)), proto::kOk);
}

}  // namespace
}  // namespace sim::test
