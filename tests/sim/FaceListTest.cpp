// The identifier list in chunks by offset, and the count.
#include "ModelFixture.h"

namespace sim::test {
namespace {

struct ListChunk {
    uint8_t status = 0xEE;
    bool last = false;
    uint32_t position = 0;
    std::string text;
};

class SimFaceListTest : public SimModelTest {
protected:
    std::optional<ListChunk> ListAt(uint32_t offset) {
        Bytes v;
        PutU32(v, offset);
        std::optional<Bytes> a = host->Ask(proto::kTagListFaces, v);
        if (!a || a->empty()) return std::nullopt;
        ListChunk c;
        c.status = (*a)[0];
        if (a->size() < 6) return c;
        c.last = (*a)[1] != 0;
        c.position = uint32_t((*a)[2]) | uint32_t((*a)[3]) << 8 | uint32_t((*a)[4]) << 16 | uint32_t((*a)[5]) << 24;
        c.text.assign(a->begin() + 6, a->end());
        return c;
    }

    void Enrol(const std::string& id) {
        ASSERT_EQ(StatusOf(proto::kTagAddFace, WithId32({0}, id)), proto::kOk) << id;
    }
};

TEST_F(SimFaceListTest, ListOfSeveralIdentifiersComesInSmallChunksAtTheAskedOffsets) {
    const std::vector<std::string> ids = {"alice", "bob", "carol-the-long-identifier", "dave", "eve",
                                          "frank-with-another-long-name", "grace",
                                          "heidi-from-the-third-floor", "ivan"};
    std::string expected;
    for (const std::string& id : ids) {
        Enrol(id);
        expected += (expected.empty() ? "" : ",") + id;
    }
    std::string gathered;
    size_t answers = 0;
    for (;;) {
        std::optional<ListChunk> c = ListAt(uint32_t(gathered.size()));
        ASSERT_TRUE(c);
        ++answers;
        EXPECT_EQ(c->status, proto::kOk);
        EXPECT_EQ(c->position, gathered.size());
        EXPECT_LE(c->text.size(), proto::kListChunk);
        gathered += c->text;
        if (c->last) break;
        ASSERT_LT(answers, 20u);
    }
    EXPECT_EQ(gathered, expected);
    EXPECT_EQ(answers, (expected.size() + proto::kListChunk - 1) / proto::kListChunk);
    EXPECT_GT(answers, 2u);

    std::optional<Bytes> count = host->Ask(proto::kTagFaceCount, {});
    ASSERT_TRUE(count);
    EXPECT_EQ(*count, (Bytes{proto::kOk, uint8_t(ids.size()), 0, 0, 0}));
}

TEST_F(SimFaceListTest, EmptyLibraryAnswersOneZeroByteAndOffsetsBeyondTheListAreRefused) {
    std::optional<ListChunk> c = ListAt(0);
    ASSERT_TRUE(c);
    EXPECT_EQ(c->status, proto::kOk);
    EXPECT_TRUE(c->last);
    EXPECT_EQ(c->text, std::string(1, '\0'));

    Enrol("zoe");
    std::optional<ListChunk> beyond = ListAt(4);
    ASSERT_TRUE(beyond);
    EXPECT_EQ(beyond->status, proto::kBadListOffset);
}

TEST_F(SimFaceListTest, DeletedIdentifiersLeaveTheList) {
    Enrol("anna");
    Enrol("ben");
    Enrol("cleo");
    EXPECT_EQ(StatusOf(proto::kTagDeleteFace, WithId32({1}, "ben")), proto::kOk);
    EXPECT_EQ(StatusOf(proto::kTagDeleteFace, WithId32({1}, "ben")), proto::kFaceNotFound);
    EXPECT_EQ(ListAt(0)->text, "anna,cleo");
    EXPECT_EQ(StatusOf(proto::kTagDeleteFace, {0}), proto::kOk);
    EXPECT_TRUE(model.FaceIds().empty());
}

}  // namespace
}  // namespace sim::test
