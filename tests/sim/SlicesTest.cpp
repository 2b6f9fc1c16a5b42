// Images sent in slices by position: the module's reassembly.
#include "ModelFixture.h"
#include "SliceAssembler.h"

namespace sim::test {
namespace {

Bytes Pattern(size_t size) {
    Bytes b(size);
    for (size_t i = 0; i < size; ++i) b[i] = uint8_t(i * 31 + 7);
    return b;
}

Bytes FaceSlice(const std::string& id, uint32_t total, uint32_t position, bool last, const Bytes& image,
                size_t length) {
    Bytes v{uint8_t(id.size())};
    PutText(v, id);
    PutU32(v, total);
    PutU32(v, position);
    PutU8(v, last ? 1 : 0);
    PutBytes(v, image.data() + position, length);
    return v;
}

TEST(SimCoverageTest, MergesOverlappingAndTouchingRanges) {
    Coverage c;
    c.Add(10, 20);
    c.Add(30, 40);
    EXPECT_EQ(c.FirstGap(), 0u);
    c.Add(0, 10);
    EXPECT_EQ(c.FirstGap(), 20u);
    c.Add(15, 35);
    EXPECT_EQ(c.FirstGap(), 40u);
    EXPECT_TRUE(c.CoversUpTo(40));
    EXPECT_FALSE(c.CoversUpTo(41));
}

TEST(SimSliceAssemblerTest, RefusesSlicesOutsideTheImage) {
    SliceAssembler a(100);
    EXPECT_EQ(a.Add("x", 0, 0, Bytes{1}, true), proto::kInvalidParam);
    EXPECT_EQ(a.Add("x", 101, 0, Bytes{1}, true), proto::kInvalidParam);
    EXPECT_EQ(a.Add("x", 10, 11, Bytes{}, true), proto::kBadSlice);
    EXPECT_EQ(a.Add("x", 10, 8, Bytes{1, 2, 3}, true), proto::kBadSlice);
    EXPECT_EQ(a.Add("x", 10, 8, Bytes{1, 2}, false), proto::kOk);
}

TEST_F(SimModelTest, FaceSlicesOutOfOrderAreEnrolledFromTheWholeImage) {
    const Bytes image = Pattern(1000);
    EXPECT_EQ(StatusOf(proto::kTagAddFaceSlice, FaceSlice("carol", 1000, 0, false, image, 400)), proto::kOk);
    EXPECT_EQ(StatusOf(proto::kTagAddFaceSlice, FaceSlice("carol", 1000, 700, false, image, 300)), proto::kOk);
    EXPECT_FALSE(model.Face("carol"));
    EXPECT_EQ(StatusOf(proto::kTagAddFaceSlice, FaceSlice("carol", 1000, 400, true, image, 300)), proto::kOk);

    std::optional<FaceEntry> face = model.Face("carol");
    ASSERT_TRUE(face);
    EXPECT_EQ(face->source, "slices");
    // The feature is derived from the image bytes, so it shows that the pieces landed in place.
    EXPECT_EQ(face->feature, FaceLibrary::SyntheticFeature(image));
}

TEST_F(SimModelTest, LastFaceSliceWithAGapEnrolsNobody) {
    const Bytes image = Pattern(600);
    EXPECT_EQ(StatusOf(proto::kTagAddFaceSlice, FaceSlice("dave", 600, 0, false, image, 200)), proto::kOk);
    EXPECT_EQ(StatusOf(proto::kTagAddFaceSlice, FaceSlice("dave", 600, 400, true, image, 200)), proto::kBadSlice);
    EXPECT_FALSE(model.Face("dave"));
}

TEST_F(SimModelTest, LongIdentifierWithItsLengthCutToOneByteIsRefused) {
    // 300 characters announced as 44: the module reads the rest as the other fields.
    const std::string id(300, 'q');
    Bytes v{uint8_t(id.size() & 0xFF)};
    PutText(v, id);
    PutU32(v, 4);
    PutU32(v, 0);
    PutU8(v, 1);
    PutText(v, "abcd");
    EXPECT_NE(StatusOf(proto::kTagAddFaceSlice, v), proto::kOk);
    EXPECT_TRUE(model.FaceIds().empty());
}

TEST_F(SimModelTest, OneToOneImageInSlicesStartsRecognitionOnTheLastSlice) {
    const Bytes image = Pattern(5000);
    for (uint32_t pos = 0; pos < 5000; pos += 1000) {
        Bytes v{1, 0};
        PutU32(v, 5000);
        PutU32(v, pos);
        PutU8(v, pos + 1000 == 5000 ? 1 : 0);
        PutBytes(v, image.data() + pos, 1000);
        EXPECT_EQ(model.Recognition().run, RecognitionRun::Idle);
        EXPECT_EQ(StatusOf(proto::kTagStartOneToOne, v), proto::kOk);
    }
    RecognitionStatus r = model.Recognition();
    EXPECT_EQ(r.run, RecognitionRun::Running);
    EXPECT_TRUE(r.oneToOne);
    EXPECT_EQ(r.recMode, 1);
    EXPECT_EQ(r.referenceBytes, 5000u);
}

}  // namespace
}  // namespace sim::test
