// The marker structure of a JPEG picture, walked without ever reading outside
// the bytes given: shared by the side-text search and the cutting of a byte
// stream into pictures.
#ifndef AICAMERA_JPEGSEGMENTS_H
#define AICAMERA_JPEGSEGMENTS_H

#include <stddef.h>

#include <functional>

const unsigned char JPEG_COMMENT = 0xFE;

inline bool IsJpegApplicationSegment(unsigned char marker) { return marker >= 0xE0 && marker <= 0xEF; }

// Offset of the first start-of-image marker (FF D8) at or after `from`, or size.
size_t FindJpegStart(const unsigned char* data, size_t size, size_t from);

enum JpegWalkEnd {
    JPEG_WALK_COMPLETE,   // the end-of-image marker was reached
    JPEG_WALK_CUT_SHORT,  // the bytes ended first (more may come)
    JPEG_WALK_BROKEN      // a byte where a marker belongs, a bad length, or a new picture's start
};

struct JpegWalk {
    JpegWalkEnd end;
    size_t pos;  // complete: just past the end-of-image marker
};

// Walks the picture whose start-of-image marker ends at `start`, calling
// visit(marker, offset, length) for the body of every segment that has a
// length field and lies wholly inside the bytes.
typedef std::function<void(unsigned char marker, size_t offset, size_t length)> JpegSegmentVisitor;
JpegWalk WalkJpeg(const unsigned char* data, size_t size, size_t start, const JpegSegmentVisitor& visit);

#endif
