// The face library kept in a file between runs.
#include <fstream>

#include "ModelFixture.h"

namespace sim::test {
namespace {

class SimPersistenceTest : public SimModelTest {
protected:
    // One face from the camera, one from a feature, one from an image, with an awkward name.
    void EnrolThree() {
        ASSERT_EQ(StatusOf(proto::kTagAddFace, WithId32({0}, "alice")), proto::kOk);
        Bytes byFeature = WithId32({}, "bob");
        PutU32(byFeature, uint32_t(proto::kFeatureLength));
        PutText(byFeature, std::string(proto::kFeatureLength, 'b'));
        ASSERT_EQ(StatusOf(proto::kTagAddFeature, byFeature), proto::kOk);
        ASSERT_EQ(StatusOf(proto::kTagAddFace, WithId32(WithId32({1}, "carol \"c\""), "img")), proto::kOk);
    }
};

TEST_F(SimPersistenceTest, SavedLibraryLoadsIntoAnotherModuleUnchanged) {
    EnrolThree();
    std::string error;
    ASSERT_TRUE(model.SaveLibrary("faces.txt", error)) << error;
    ModuleSimulator otherSimulator;
    ASSERT_TRUE(otherSimulator.Start());
    ModuleModel other(otherSimulator);
    other.Install();
    ASSERT_TRUE(other.LoadLibrary("faces.txt", error)) << error;
    EXPECT_EQ(other.FaceIds(), model.FaceIds());
    HostLink otherHost(otherSimulator.SlavePath());
    for (const std::string& id : model.FaceIds()) {
        std::optional<Bytes> answer = otherHost.Ask(proto::kTagQueryFeature, WithId32({}, id));
        ASSERT_TRUE(answer);
        ASSERT_EQ(answer->size(), 1 + 4 + id.size() + 4 + proto::kFeatureLength);
        EXPECT_EQ((*answer)[0], proto::kOk);
        EXPECT_EQ(std::string(answer->end() - long(proto::kFeatureLength), answer->end()), model.Face(id)->feature);
        EXPECT_EQ(other.Face(id)->source, model.Face(id)->source);
    }
}

TEST_F(SimPersistenceTest, DamagedFileIsRefusedAndTheLibraryKept) {
    EnrolThree();
    std::ofstream("bad.txt") << "dave\tcamera\t" << std::string(proto::kFeatureLength - 1, 'x') << "\n";
    std::string error;
    EXPECT_FALSE(model.LoadLibrary("bad.txt", error));
    EXPECT_NE(error.find("bad.txt:1"), std::string::npos) << error;
    EXPECT_FALSE(model.LoadLibrary("missing.txt", error));
    EXPECT_EQ(model.FaceIds().size(), 3u);
}

// Settings live in the same file as the faces, text settings with awkward bytes included.
TEST_F(SimPersistenceTest, SettingsTravelWithTheFacesAndADamagedSettingIsRefused) {
    EnrolThree();
    ASSERT_EQ(StatusOf(proto::kTagRotateAngle, {2}), proto::kOk);
    const std::string config = "{\"a\":\"tab\there\\x41\nline\"}";
    Bytes setConfig{0, 0};
    PutText(setConfig, config);
    ASSERT_EQ(StatusOf(proto::kTagRecConfig, setConfig), proto::kOk);
    std::string error;
    ASSERT_TRUE(model.SaveLibrary("module.txt", error)) << error;

    ModuleSimulator otherSimulator;
    ModuleModel other(otherSimulator);
    ASSERT_TRUE(other.LoadLibrary("module.txt", error)) << error;
    EXPECT_EQ(other.FaceIds(), model.FaceIds());
    EXPECT_EQ(other.Settings().camera.rotateAngle, 2);
    EXPECT_EQ(other.Settings().recognition.config, config);

    std::ofstream("bad.txt") << "camera.rotateAngle\t256\n";
    EXPECT_FALSE(other.LoadLibrary("bad.txt", error));
    EXPECT_NE(error.find("bad.txt:1: not a valid setting"), std::string::npos) << error;
    std::ofstream("unknown.txt") << "camera.noSuchThing\t1\n";
    EXPECT_FALSE(other.LoadLibrary("unknown.txt", error));
    EXPECT_EQ(other.Settings().camera.rotateAngle, 2);
}

// With a library file set, a setting changed over the wire is in the file at once.
TEST_F(SimPersistenceTest, ChangedSettingIsSavedAtOnce) {
    std::string error;
    ASSERT_TRUE(model.SaveLibrary("live.txt", error)) << error;
    model.SetLibraryFile("live.txt");
    ASSERT_EQ(StatusOf(proto::kTagRotateAngle, {3}), proto::kOk);
    ModuleSimulator otherSimulator;
    ModuleModel other(otherSimulator);
    ASSERT_TRUE(other.LoadLibrary("live.txt", error)) << error;
    EXPECT_EQ(other.Settings().camera.rotateAngle, 3);
    EXPECT_TRUE(model.SaveError().empty());
    model.SetLibraryFile("no/such/dir/live.txt");
    ASSERT_EQ(StatusOf(proto::kTagRotateAngle, {1}), proto::kOk);
    EXPECT_NE(model.SaveError().find("no/such/dir/live.txt"), std::string::npos) << model.SaveError();
}

}  // namespace
}  // namespace sim::test
