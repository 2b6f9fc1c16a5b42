#include "JpegSegments.h"

namespace {
const unsigned char kMarkerPrefix = 0xFF;
const unsigned char kStartOfImage = 0xD8;
const unsigned char kEndOfImage = 0xD9;
const unsigned char kStartOfScan = 0xDA;

bool IsRestart(unsigned char marker) { return marker >= 0xD0 && marker <= 0xD7; }

// Markers that stand alone, without a length field.
bool IsStandalone(unsigned char marker) { return marker == 0x01 || IsRestart(marker); }

// Entropy-coded data ends at the first marker that is neither a stuffed
// zero nor a restart; returns its position, or size when there is none yet.
size_t SkipEntropyCoded(const unsigned char* data, size_t size, size_t pos)
{
    for (; pos + 1 < size; ++pos) {
        if (data[pos] != kMarkerPrefix)
            continue;
        unsigned char next = data[pos + 1];
        if (next != 0x00 && !IsRestart(next))
            return pos;
    }
    return size;
}
}  // namespace

size_t FindJpegStart(const unsigned char* data, size_t size, size_t from)
{
    for (size_t pos = from; data && pos + 1 < size; ++pos) {
        if (data[pos] == kMarkerPrefix && data[pos + 1] == kStartOfImage)
            return pos;
    }
    return size;
}

JpegWalk WalkJpeg(const unsigned char* data, size_t size, size_t start, const JpegSegmentVisitor& visit)
{
    size_t pos = start;
    // Every step checks the remaining bytes first: a declared length that
    // runs past them ends the walk.
    for (;;) {
        if (pos >= size)
            return {JPEG_WALK_CUT_SHORT, pos};
        if (data[pos] != kMarkerPrefix)
            return {JPEG_WALK_BROKEN, pos};
        while (pos < size && data[pos] == kMarkerPrefix)  // fill bytes
            ++pos;
        if (pos >= size)
            return {JPEG_WALK_CUT_SHORT, pos};
        unsigned char marker = data[pos++];
        if (marker == kEndOfImage)
            return {JPEG_WALK_COMPLETE, pos};
        if (marker == kStartOfImage || marker == 0x00)
            return {JPEG_WALK_BROKEN, pos - 2};
        if (IsStandalone(marker))
            continue;
        if (size - pos < 2)
            return {JPEG_WALK_CUT_SHORT, pos};
        size_t length = (static_cast<size_t>(data[pos]) << 8) | data[pos + 1];
        if (length < 2)
            return {JPEG_WALK_BROKEN, pos};
        if (length > size - pos)
            return {JPEG_WALK_CUT_SHORT, pos};
        if (visit)
            visit(marker, pos + 2, length - 2);
        pos += length;
        if (marker == kStartOfScan)
            pos = SkipEntropyCoded(data, size, pos);
    }
}
