// The side text is found in the packet's bytes, in the agreed order, and the
// walk never leaves the packet whatever the packet claims.
#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "AICamera/Video/SideText.h"
#include "MjpegClip.h"

namespace {
const std::string kCom = "{\"face\":1,\"score\":97}";
const std::string kApp = "{\"face\":2,\"score\":88}";
const std::string kTail = "{\"face\":3,\"score\":75}";

// Extracts from an exactly sized heap copy, so that the sanitizer sees any read past the packet.
std::string Extract(const Bytes& packet)
{
    std::unique_ptr<uint8_t[]> copy(new uint8_t[packet.size() + 1]);
    std::copy(packet.begin(), packet.end(), copy.get());
    char out[SIDE_TEXT_MAX];
    int length = ExtractSideText(copy.get(), packet.size(), out);
    EXPECT_GE(length, 0);
    EXPECT_LE(length, SIDE_TEXT_MAX);
    return std::string(out, static_cast<size_t>(length < 0 ? 0 : length));
}

TEST(SideText, FoundInOrderAndBoundedByThePacket)
{
    const Bytes pic = EncodeSolid(64, 48, kGreen);
    std::string longText(3000, 'x');
    longText[0] = '{';
    const struct {
        const char* name;
        Bytes packet;
        std::string text;
    } rows[] = {
        {"plain picture", pic, ""},
        {"comment", WithSegment(pic, 0xFE, kCom), kCom},
        {"APP5", WithSegment(pic, 0xE5, kApp), kApp},
        {"APP15", WithSegment(pic, 0xEF, kApp), kApp},
        {"APP1 without a brace", WithSegment(pic, 0xE1, "no brace in here at all"), ""},
        {"after end of image", WithTrailer(pic, kTail), kTail},
        {"comment before APP before trailer",
         WithTrailer(WithSegment(WithSegment(pic, 0xE3, kApp), 0xFE, kCom), kTail), kCom},
        {"APP before trailer", WithTrailer(WithSegment(pic, 0xE3, kApp), kTail), kApp},
        {"first of two comments", WithSegment(WithSegment(pic, 0xFE, "{second comment}"), 0xFE, kCom), kCom},
        {"encoder's comment before the APP text", WithSegment(WithSegment(pic, 0xE3, kApp), 0xFE, "Lavc59.37.100"), kApp},
        {"comment without a brace, text after the end",
         WithTrailer(WithSegment(pic, 0xFE, "SIM-FW 3.1.7 (2026-11-02)"), kTail), kTail},
        {"comment with a brace after one without", WithSegment(WithSegment(pic, 0xFE, kCom), 0xFE, "Lavc59"), kCom},
        {"long comment capped", WithSegment(pic, 0xFE, longText), longText.substr(0, SIDE_TEXT_MAX)},
        {"long trailer capped", WithTrailer(pic, longText), longText.substr(0, SIDE_TEXT_MAX)},
        {"no start of image", {'{', '"', 'a', '"', '}'}, ""},
        {"segment length 1", {0xFF, 0xD8, 0xFF, 0xFE, 0x00, 0x01}, ""},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(row.text, Extract(row.packet));
    }
    EXPECT_EQ(0, ExtractSideText(nullptr, 10, nullptr));
}

// Cuts cover the empty packet, a cut length field and segments running past the end.
TEST(SideText, EveryCutAndCorruptionStaysInsideThePacket)
{
    const Bytes pic = EncodeSolid(64, 48, kGreen);
    const Bytes full = WithTrailer(WithSegment(pic, 0xFE, kCom), kTail);
    for (size_t size = 0; size <= full.size(); ++size)
        EXPECT_EQ(size < 6 + kCom.size() ? "" : kCom, Extract(Bytes(full.begin(), full.begin() + long(size))))
            << "cut at " << size;
    uint32_t state = 7;
    for (int round = 0; round < 3000; ++round) {  // the sanitizer build catches any read outside
        Bytes bad = WithTrailer(WithSegment(pic, 0xE2, kApp), kTail);
        for (int flips = 0; flips < 4; ++flips, state = state * 1664525u + 1013904223u)
            bad[(state >> 8) % bad.size()] = static_cast<uint8_t>(state >> 24);
        Extract(bad);
    }
}
}  // namespace
