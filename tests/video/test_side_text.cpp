// The side text is found in the packet's bytes, in the agreed order, and the
// walk never leaves the packet whatever the packet claims.
#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "AICamera/SideText.h"
#include "MjpegClip.h"

namespace {
const std::string kCommentText = "{\"face\":1,\"score\":97}";
const std::string kAppText = "{\"face\":2,\"score\":88}";
const std::string kTrailerText = "{\"face\":3,\"score\":75}";

// Runs the extraction on an exactly sized heap copy, so that the sanitizer
// sees any read past the packet.
std::string Extract(const Bytes& packet)
{
    std::unique_ptr<uint8_t[]> copy(new uint8_t[packet.size() ? packet.size() : 1]);
    std::copy(packet.begin(), packet.end(), copy.get());
    char out[SIDE_TEXT_MAX];
    int length = ExtractSideText(copy.get(), packet.size(), out);
    EXPECT_GE(length, 0);
    EXPECT_LE(length, SIDE_TEXT_MAX);
    return std::string(out, static_cast<size_t>(length));
}

class SideTextTest : public ::testing::Test {
protected:
    static void SetUpTestSuite() { s_picture = new Bytes(EncodeSolid(64, 48, kGreen)); }
    static void TearDownTestSuite()
    {
        delete s_picture;
        s_picture = nullptr;
    }
    const Bytes& Picture() { return *s_picture; }
    static Bytes* s_picture;
};
Bytes* SideTextTest::s_picture = nullptr;

TEST_F(SideTextTest, PlainPictureHasNone) { EXPECT_EQ("", Extract(Picture())); }

TEST_F(SideTextTest, CommentSegmentIsTaken)
{
    EXPECT_EQ(kCommentText, Extract(WithSegment(Picture(), 0xFE, kCommentText)));
}

TEST_F(SideTextTest, ApplicationSegmentNeedsABrace)
{
    EXPECT_EQ(kAppText, Extract(WithSegment(Picture(), 0xE5, kAppText)));
    EXPECT_EQ(kAppText, Extract(WithSegment(Picture(), 0xEF, kAppText)));
    // The encoder's own JFIF segment and a braceless one are passed over.
    EXPECT_EQ("", Extract(WithSegment(Picture(), 0xE1, "no brace in here at all")));
}

TEST_F(SideTextTest, BytesAfterEndOfImageAreTaken)
{
    EXPECT_EQ(kTrailerText, Extract(WithTrailer(Picture(), kTrailerText)));
}

TEST_F(SideTextTest, CommentWinsOverApplicationWinsOverTrailer)
{
    Bytes all = WithTrailer(WithSegment(WithSegment(Picture(), 0xE3, kAppText), 0xFE, kCommentText),
                            kTrailerText);
    EXPECT_EQ(kCommentText, Extract(all));
    EXPECT_EQ(kAppText, Extract(WithTrailer(WithSegment(Picture(), 0xE3, kAppText), kTrailerText)));
}

TEST_F(SideTextTest, FirstCommentOfSeveralIsTaken)
{
    Bytes two = WithSegment(WithSegment(Picture(), 0xFE, "second comment"), 0xFE, kCommentText);
    EXPECT_EQ(kCommentText, Extract(two));
}

TEST_F(SideTextTest, LongTextIsCappedAt1024Bytes)
{
    std::string longText(3000, 'x');
    longText[0] = '{';
    EXPECT_EQ(longText.substr(0, SIDE_TEXT_MAX), Extract(WithSegment(Picture(), 0xFE, longText)));
    EXPECT_EQ(longText.substr(0, SIDE_TEXT_MAX), Extract(WithTrailer(Picture(), longText)));
}

TEST_F(SideTextTest, PacketWithoutStartOfImageHasNone)
{
    EXPECT_EQ("", Extract(Bytes{}));
    EXPECT_EQ("", Extract(Bytes{0xFF}));
    EXPECT_EQ("", Extract(Bytes{'{', '"', 'a', '"', '}'}));
    EXPECT_EQ(0, ExtractSideText(nullptr, 10, nullptr));
}

TEST_F(SideTextTest, SegmentLongerThanThePacketEndsTheWalk)
{
    // A comment that claims 0xFFFF bytes in a packet of a few.
    Bytes hostile = {0xFF, 0xD8, 0xFF, 0xFE, 0xFF, 0xFF, '{', '}'};
    EXPECT_EQ("", Extract(hostile));
    Bytes tooShort = {0xFF, 0xD8, 0xFF, 0xFE, 0x00, 0x01};
    EXPECT_EQ("", Extract(tooShort));
    Bytes cutLength = {0xFF, 0xD8, 0xFF, 0xFE, 0x00};
    EXPECT_EQ("", Extract(cutLength));
}

TEST_F(SideTextTest, EveryCutOfAPacketStaysInsideIt)
{
    Bytes full = WithTrailer(WithSegment(Picture(), 0xFE, kCommentText), kTrailerText);
    const size_t commentEnd = 2 + 4 + kCommentText.size();
    for (size_t size = 0; size <= full.size(); ++size) {
        std::string text = Extract(Bytes(full.begin(), full.begin() + static_cast<long>(size)));
        if (size < commentEnd)
            EXPECT_EQ("", text) << "cut at " << size;
        else
            EXPECT_EQ(kCommentText, text) << "cut at " << size;
    }
}

TEST_F(SideTextTest, CorruptedPacketsStayInsideThem)
{
    Bytes full = WithTrailer(WithSegment(Picture(), 0xE2, kAppText), kTrailerText);
    uint32_t state = 7;
    for (int round = 0; round < 3000; ++round) {
        Bytes bad = full;
        for (int flips = 0; flips < 4; ++flips) {
            state = state * 1664525u + 1013904223u;
            size_t at = (state >> 8) % bad.size();
            bad[at] = static_cast<uint8_t>(state >> 24);
        }
        std::string text = Extract(bad);
        EXPECT_LE(text.size(), bad.size());
    }
}
}  // namespace
