// The identifier list in chunks by offset, the count, and deletes.
#include "ModelFixture.h"

namespace sim::test {
namespace {

struct ListChunk {
    uint8_t status = 0xEE;
    uint8_t last = 0;
    uint32_t position = 0;
    std::string text;
};

// Answer layout: status, last flag, u32 position, then the text.
ListChunk ListAt(HostLink& host, uint32_t offset) {
    Bytes v;
    PutU32(v, offset);
    const Bytes a = host.Ask(proto::kTagListFaces, v).value_or(Bytes{});
    ListChunk c;
    ByteReader in(a);
    if (in.U8(c.status) && in.U8(c.last) && in.U32(c.position)) {
        const Bytes rest = in.Rest();
        c.text.assign(rest.begin(), rest.end());
    }
    return c;
}

TEST_F(SimModelTest, FaceListComesInChunksAtTheAskedOffsetsAndFollowsDeletes) {
    ListChunk empty = ListAt(*host, 0);
    EXPECT_TRUE(empty.status == proto::kOk && empty.last);
    EXPECT_EQ(empty.text, std::string(1, '\0'));

    const std::vector<std::string> ids = {"alice", "bob", "carol-the-long-identifier", "dave", "eve",
                                          "frank-with-another-long-name", "grace", "heidi-from-the-third-floor"};
    std::string expected;
    for (const std::string& id : ids) {
        ASSERT_EQ(StatusOf(proto::kTagAddFace, WithId32({0}, id)), proto::kOk) << id;
        expected += (expected.empty() ? "" : ",") + id;
    }
    std::string gathered;
    size_t answers = 0;
    for (bool last = false; !last && answers < 20; ++answers) {
        ListChunk c = ListAt(*host, uint32_t(gathered.size()));
        EXPECT_EQ(c.status, proto::kOk);
        EXPECT_EQ(c.position, gathered.size());
        EXPECT_LE(c.text.size(), proto::kListChunk);
        gathered += c.text;
        last = c.last != 0;
    }
    EXPECT_EQ(gathered, expected);
    EXPECT_EQ(answers, (expected.size() + proto::kListChunk - 1) / proto::kListChunk);
    EXPECT_GT(answers, 2u);
    EXPECT_EQ(host->Ask(proto::kTagFaceCount, {}), (Bytes{proto::kOk, uint8_t(ids.size()), 0, 0, 0}));
    EXPECT_EQ(ListAt(*host, uint32_t(expected.size() + 1)).status, proto::kBadListOffset);

    EXPECT_EQ(StatusOf(proto::kTagDeleteFace, WithId32({1}, "bob")), proto::kOk);
    EXPECT_EQ(StatusOf(proto::kTagDeleteFace, WithId32({1}, "bob")), proto::kFaceNotFound);
    EXPECT_EQ(ListAt(*host, 0).text.substr(0, 16), "alice,carol-the-");
    EXPECT_EQ(StatusOf(proto::kTagDeleteFace, {0}), proto::kOk);
    EXPECT_TRUE(model.FaceIds().empty());
}

}  // namespace
}  // namespace sim::test
