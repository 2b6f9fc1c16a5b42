#include "SideText.h"

#include <string.h>

#include "JpegSegments.h"

namespace {
struct Span {
    size_t offset;
    size_t length;
    bool found;
};
}  // namespace

int ExtractSideText(const unsigned char* data, size_t size, char* out)
{
    Span comment = {0, 0, false};
    Span application = {0, 0, false};
    Span trailer = {0, 0, false};
    size_t start = FindJpegStart(data, size, 0);
    if (start < size) {
        auto visit = [&](unsigned char marker, size_t offset, size_t length) {
            if (!memchr(data + offset, '{', length))
                return;
            if (marker == JPEG_COMMENT && !comment.found)
                comment = {offset, length, true};
            else if (IsJpegApplicationSegment(marker) && !application.found)
                application = {offset, length, true};
        };
        JpegWalk walk = WalkJpeg(data, size, start + 2, visit);
        if (walk.end == JPEG_WALK_COMPLETE)
            trailer = {walk.pos, size - walk.pos, true};
    }
    const Span& text = comment.found ? comment : application.found ? application : trailer;
    if (!text.found)
        return 0;
    const size_t limit = SIDE_TEXT_MAX;
    size_t length = text.length < limit ? text.length : limit;
    memcpy(out, data + text.offset, length);
    return static_cast<int>(length);
}
