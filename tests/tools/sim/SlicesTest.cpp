// Images sent in slices by position: the module's reassembly.
#include "ModelFixture.h"
#include "SliceAssembler.h"

namespace sim::test {
namespace {

// u8 identifier length, identifier, u32 total, u32 position, u8 last, bytes.
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

TEST(SimSliceAssemblerTest, RefusesSlicesOutsideTheImage) {
    SliceAssembler a(100);
    EXPECT_EQ(a.Add("x", 0, 0, Bytes{1}, true), proto::kInvalidParam);
    EXPECT_EQ(a.Add("x", 101, 0, Bytes{1}, true), proto::kInvalidParam);
    EXPECT_EQ(a.Add("x", 10, 11, Bytes{}, true), proto::kBadSlice);
    EXPECT_EQ(a.Add("x", 10, 8, Bytes{1, 2, 3}, true), proto::kBadSlice);
    EXPECT_EQ(a.Add("x", 10, 8, Bytes{1, 2}, false), proto::kOk);
}

TEST_F(SimModelTest, FaceSlicesOutOfOrderAreEnrolledFromTheWholeImageAndAGapEnrolsNobody) {
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

    EXPECT_EQ(StatusOf(proto::kTagAddFaceSlice, FaceSlice("dave", 1000, 0, false, image, 200)), proto::kOk);
    EXPECT_EQ(StatusOf(proto::kTagAddFaceSlice, FaceSlice("dave", 1000, 800, true, image, 200)), proto::kBadSlice);
    EXPECT_FALSE(model.Face("dave"));
    // 300 characters announced as 44: the module reads the rest as the other fields.
    EXPECT_NE(StatusOf(proto::kTagAddFaceSlice, FaceSlice(std::string(300, 'q'), 4, 0, true, Pattern(4), 4)),
              proto::kOk);
    EXPECT_EQ(model.FaceIds().size(), 1u);
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
    EXPECT_TRUE(r.run == RecognitionRun::Running && r.oneToOne && r.recMode == 1);
    EXPECT_EQ(r.referenceBytes, 5000u);
}

}  // namespace
}  // namespace sim::test
