// The module writes a short text beside each MJPEG picture; this finds it in
// the packet's bytes without ever reading outside them.
#ifndef AICAMERA_SIDETEXT_H
#define AICAMERA_SIDETEXT_H

#include <stddef.h>

const int SIDE_TEXT_MAX = 1024;

// Copies the side text of the JPEG picture `data` (size bytes) into out
// (SIDE_TEXT_MAX bytes) and returns its length, 0 when there is none. The
// text is the data of the first comment segment that holds a "{"; failing
// that, of the first application segment that holds one; failing that, the
// bytes after the end-of-image marker. Encoders write comments of their own
// ("Lavc..."), which must not hide the module's text. At most SIDE_TEXT_MAX
// bytes are taken.
int ExtractSideText(const unsigned char* data, size_t size, char* out);

#endif
