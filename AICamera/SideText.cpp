#include "SideText.h"

#include <string.h>

namespace {
const unsigned char kMarkerPrefix = 0xFF;
const unsigned char kStartOfImage = 0xD8;
const unsigned char kEndOfImage = 0xD9;
const unsigned char kStartOfScan = 0xDA;
const unsigned char kComment = 0xFE;

struct Span {
    size_t offset;
    size_t length;
    bool found;
};

bool IsApplicationSegment(unsigned char marker) { return marker >= 0xE0 && marker <= 0xEF; }

// Markers that stand alone, without a length field.
bool IsStandalone(unsigned char marker)
{
    return marker == kStartOfImage || marker == 0x01 || (marker >= 0xD0 && marker <= 0xD7);
}

// Entropy-coded data ends at the first marker that is neither a stuffed
// zero nor a restart; returns its position, or size when there is none.
size_t SkipEntropyCoded(const unsigned char* data, size_t size, size_t pos)
{
    for (; pos + 1 < size; ++pos) {
        if (data[pos] != kMarkerPrefix)
            continue;
        unsigned char next = data[pos + 1];
        if (next != 0x00 && !(next >= 0xD0 && next <= 0xD7))
            return pos;
    }
    return size;
}

size_t FindStartOfImage(const unsigned char* data, size_t size)
{
    for (size_t pos = 0; pos + 1 < size; ++pos) {
        if (data[pos] == kMarkerPrefix && data[pos + 1] == kStartOfImage)
            return pos + 2;
    }
    return size;
}
}  // namespace

int ExtractSideText(const unsigned char* data, size_t size, char* out)
{
    Span comment = {0, 0, false};
    Span application = {0, 0, false};
    Span trailer = {0, 0, false};
    size_t pos = data ? FindStartOfImage(data, size) : size;
    // Every step below checks the remaining bytes first: a declared length
    // that runs past the packet ends the walk.
    while (pos < size && data[pos] == kMarkerPrefix) {
        while (pos < size && data[pos] == kMarkerPrefix)
            ++pos;
        if (pos >= size)
            break;
        unsigned char marker = data[pos++];
        if (marker == kEndOfImage) {
            trailer = {pos, size - pos, true};
            break;
        }
        if (IsStandalone(marker))
            continue;
        if (size - pos < 2)
            break;
        size_t length = (static_cast<size_t>(data[pos]) << 8) | data[pos + 1];
        if (length < 2 || length > size - pos)
            break;
        Span body = {pos + 2, length - 2, true};
        if (marker == kComment && !comment.found)
            comment = body;
        else if (IsApplicationSegment(marker) && !application.found &&
                 memchr(data + body.offset, '{', body.length))
            application = body;
        pos += length;
        if (marker == kStartOfScan)
            pos = SkipEntropyCoded(data, size, pos);
    }
    const Span& text = comment.found ? comment : application.found ? application : trailer;
    if (!text.found)
        return 0;
    const size_t limit = SIDE_TEXT_MAX;
    size_t length = text.length < limit ? text.length : limit;
    memcpy(out, data + text.offset, length);
    return static_cast<int>(length);
}
