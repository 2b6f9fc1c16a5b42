// A byte stream of pictures is cut into the same packets however its bytes
// arrive, and a live stream's picture is ready at its end, not at the next start.
#include <gtest/gtest.h>

#include "AICamera/Video/MjpegCutter.h"
#include "MjpegClip.h"

namespace {
const Bytes kRed = WithSegment(EncodeSolid(64, 48, ::kRed), 0xFE, "{\"colour\":\"red\"}");
const Bytes kGreen = WithTrailer(EncodeSolid(64, 48, ::kGreen), "{\"colour\":\"green\"}");
const Bytes kBlue = EncodeSolid(64, 48, ::kBlue);

// The picture cut off halfway through its scan data.
Bytes CutInScan(const Bytes& jpeg)
{
    size_t scan = 0;
    while (scan + 1 < jpeg.size() && !(jpeg[scan] == 0xFF && jpeg[scan + 1] == 0xDA))
        ++scan;
    return Bytes(jpeg.begin(), jpeg.begin() + long(scan + (jpeg.size() - scan) / 2));
}

Bytes Take(MjpegCutter& cutter, size_t length)
{
    Bytes packet(cutter.Front(), cutter.Front() + length);
    cutter.Consume(length);
    return packet;
}

// Feeds `stream` in pieces of `chunk` bytes as a file is read: never settled
// before the end, then the remainder.
std::vector<Bytes> CutAsFile(const Bytes& stream, size_t chunk)
{
    MjpegCutter cutter;
    std::vector<Bytes> packets;
    for (size_t at = 0; at < stream.size(); at += chunk) {
        cutter.Append(stream.data() + at, std::min(chunk, stream.size() - at));
        while (size_t length = cutter.PacketLength(false))
            packets.push_back(Take(cutter, length));
    }
    if (size_t length = cutter.RemainderLength())
        packets.push_back(Take(cutter, length));
    return packets;
}

TEST(MjpegCutter, SamePacketsWhateverTheReadSizes)
{
    const Bytes cut = CutInScan(kBlue);
    const Bytes tagged = Concat({{0x01}, kRed});
    const std::vector<Bytes> expected = {tagged, kGreen, cut, kBlue, kRed};
    const Bytes stream = Concat(expected);
    for (size_t chunk : {size_t(1), size_t(7), size_t(333), stream.size()}) {
        SCOPED_TRACE(chunk);
        EXPECT_EQ(expected, CutAsFile(stream, chunk));
    }
}

TEST(MjpegCutter, LivePictureReadyAtItsEndWithTheTrailerAlreadyThere)
{
    MjpegCutter cutter;
    cutter.Append(kRed.data(), kRed.size() - 1);
    EXPECT_EQ(0u, cutter.PacketLength(true)) << "no end-of-image marker yet";
    cutter.Append(&kRed.back(), 1);
    ASSERT_EQ(kRed.size(), cutter.PacketLength(true));
    EXPECT_EQ(kRed, Take(cutter, kRed.size()));
    cutter.Append(kGreen.data(), kGreen.size());
    EXPECT_EQ(kGreen.size(), cutter.PacketLength(true)) << "the side text after the end comes with it";
}

// Whatever precedes a picture that never ends, or no picture at all, is not
// all kept: what is held stays within bounds, and the next picture still comes.
TEST(MjpegCutter, GarbageStaysBounded)
{
    const Bytes blueHead = CutInScan(kBlue);
    const struct {
        Bytes start;
        uint8_t filler;
    } cases[] = {{{}, 'x'}, {blueHead, 0x55}};
    for (const auto& c : cases) {
        MjpegCutter cutter;
        cutter.Append(c.start.data(), c.start.size());
        const Bytes filler(1 << 20, c.filler);
        for (int i = 0; i < 10; ++i) {
            cutter.Append(filler.data(), filler.size());
            EXPECT_EQ(0u, cutter.PacketLength(false));
        }
        cutter.Append(kRed.data(), kRed.size());
        const size_t length = cutter.PacketLength(true);
        EXPECT_LT(length, size_t(10) << 20) << "all that came before was kept";
        const Bytes packet = Take(cutter, length);
        ASSERT_GE(packet.size(), kRed.size());
        EXPECT_EQ(kRed, Bytes(packet.end() - long(kRed.size()), packet.end()));
    }
}
}  // namespace
