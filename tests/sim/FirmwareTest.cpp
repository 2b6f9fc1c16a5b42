// The firmware store: slices by byte offset and the MD5 check on apply.
#include <algorithm>
#include <cctype>
#include <random>

#include "ModelFixture.h"

namespace sim::test {
namespace {

Bytes ApplyRequest(const std::string& hash) { return WithId32({}, hash); }

Bytes SliceRequest(uint32_t offset, const Bytes& package, size_t length) {
    Bytes v;
    PutU32(v, offset);
    PutU32(v, uint32_t(length));
    PutBytes(v, package.data() + offset, length);
    return v;
}

Bytes RandomPackage(size_t size) {
    std::mt19937 rng(1234);
    Bytes b(size);
    for (uint8_t& x : b) x = uint8_t(rng());
    return b;
}

std::string ErrorText(const Bytes& answer) { return std::string(answer.begin() + 1, answer.end()); }

TEST(SimMd5Test, KnownDigests) {
    EXPECT_EQ(FirmwareStore::Md5Hex(Bytes{}), "d41d8cd98f00b204e9800998ecf8427e");
    const std::string abc = "abc";
    EXPECT_EQ(FirmwareStore::Md5Hex(Bytes(abc.begin(), abc.end())), "900150983cd24fb0d6963f7d28e17f72");
    const std::string fox = "The quick brown fox jumps over the lazy dog";
    EXPECT_EQ(FirmwareStore::Md5Hex(Bytes(fox.begin(), fox.end())), "9e107d9d372bb6826bd81d3542a419d6");
}

TEST_F(SimModelTest, PackageSentOutOfOrderWithAResendIsAppliedWhenItsHashMatches) {
    const Bytes package = RandomPackage(300 * 1024 + 123);
    const size_t slice = 4096;
    std::vector<uint32_t> offsets;
    for (size_t off = 0; off < package.size(); off += slice) offsets.push_back(uint32_t(off));
    std::reverse(offsets.begin() + 1, offsets.end());   // offset 0 first: it starts a package
    offsets.push_back(offsets[3]);                        // one slice sent twice
    for (uint32_t off : offsets) {
        const size_t length = std::min(slice, package.size() - off);
        ASSERT_EQ(StatusOf(proto::kTagFirmwareSlice, SliceRequest(off, package, length)), proto::kOk) << off;
    }
    EXPECT_EQ(model.FirmwarePackage(), package);

    std::string hash = FirmwareStore::Md5Hex(package);
    std::transform(hash.begin(), hash.end(), hash.begin(), [](unsigned char c) { return char(std::toupper(c)); });
    std::optional<Bytes> answer = host->Ask(proto::kTagFirmwareApply, ApplyRequest(hash));
    ASSERT_TRUE(answer);
    EXPECT_EQ(*answer, Bytes{proto::kOk});
    AppliedPackage applied = model.FirmwareApplied();
    EXPECT_EQ(applied.count, 1u);
    EXPECT_EQ(applied.size, package.size());
    EXPECT_EQ(applied.md5, FirmwareStore::Md5Hex(package));
    EXPECT_TRUE(model.FirmwarePackage().empty());
}

TEST_F(SimModelTest, WrongHashIsRefusedWithAnErrorText) {
    const Bytes package = RandomPackage(10000);
    ASSERT_EQ(StatusOf(proto::kTagFirmwareSlice, SliceRequest(0, package, package.size())), proto::kOk);
    const std::string wrong(32, '0');
    std::optional<Bytes> answer = host->Ask(proto::kTagFirmwareApply, ApplyRequest(wrong));
    ASSERT_TRUE(answer);
    ASSERT_GT(answer->size(), 1u);
    EXPECT_EQ((*answer)[0], proto::kFirmwareHashMismatch);
    EXPECT_NE(ErrorText(*answer).find(wrong), std::string::npos);
    EXPECT_NE(ErrorText(*answer).find(FirmwareStore::Md5Hex(package)), std::string::npos);
    EXPECT_EQ(model.FirmwareApplied().count, 0u);
}

TEST_F(SimModelTest, PackageWithAGapOrAMalformedHashIsRefused) {
    const Bytes package = RandomPackage(3000);
    const std::string hash = FirmwareStore::Md5Hex(package);
    std::optional<Bytes> empty = host->Ask(proto::kTagFirmwareApply, ApplyRequest(hash));
    ASSERT_TRUE(empty);
    EXPECT_EQ((*empty)[0], proto::kFirmwareEmpty);

    ASSERT_EQ(StatusOf(proto::kTagFirmwareSlice, SliceRequest(0, package, 1000)), proto::kOk);
    ASSERT_EQ(StatusOf(proto::kTagFirmwareSlice, SliceRequest(2000, package, 1000)), proto::kOk);
    std::optional<Bytes> gap = host->Ask(proto::kTagFirmwareApply, ApplyRequest(hash));
    ASSERT_TRUE(gap);
    EXPECT_EQ((*gap)[0], proto::kFirmwareIncomplete);
    EXPECT_NE(ErrorText(*gap).find("1000"), std::string::npos);

    ASSERT_EQ(StatusOf(proto::kTagFirmwareSlice, SliceRequest(1000, package, 1000)), proto::kOk);
    std::optional<Bytes> shortHash = host->Ask(proto::kTagFirmwareApply, ApplyRequest(hash.substr(1)));
    ASSERT_TRUE(shortHash);
    EXPECT_EQ((*shortHash)[0], proto::kFirmwareBadHashText);
    EXPECT_EQ(StatusOf(proto::kTagFirmwareApply, ApplyRequest(hash)), proto::kOk);
}

TEST_F(SimModelTest, SliceWhoseLengthFieldDisagreesIsABadRequest) {
    Bytes v;
    PutU32(v, 0);
    PutU32(v, 10);
    PutText(v, "only nine");
    EXPECT_EQ(StatusOf(proto::kTagFirmwareSlice, v), proto::kBadRequest);
    EXPECT_TRUE(model.FirmwarePackage().empty());
}

}  // namespace
}  // namespace sim::test
