// Cuts a byte stream of concatenated JPEG pictures (a recording, or a FIFO
// that a live writer feeds) into packets of one picture each. A picture is
// ready as soon as its end-of-image marker is in, so that a live stream is
// not held back until the next picture begins.
#ifndef AICAMERA_MJPEGCUTTER_H
#define AICAMERA_MJPEGCUTTER_H

#include <stddef.h>

#include <vector>

class MjpegCutter {
public:
    void Append(const unsigned char* data, size_t size);
    // The length of the packet at the front, 0 while none is complete: any
    // bytes before the picture, the picture, then what follows its end up to
    // the next picture's start. `settled` says that no more bytes are waiting
    // to be read now, so the bytes after the end are all the trailer there is.
    // A broken picture is handed on as it is, up to the next start.
    size_t PacketLength(bool settled);
    // At the end of the stream: the rest, when a picture starts in it.
    size_t RemainderLength() const;
    const unsigned char* Front() const { return m_buffer.data(); }
    void Consume(size_t length);
    void Clear() { m_buffer.clear(); }

private:
    // Keeps only the last byte, which may begin a marker.
    void DropAllButLast();

    std::vector<unsigned char> m_buffer;
};

#endif
