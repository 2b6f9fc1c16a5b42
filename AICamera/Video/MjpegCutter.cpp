#include "MjpegCutter.h"

#include "JpegSegments.h"

namespace {
// Larger than any MJPEG picture a camera sends: a "picture" that grows past
// this without an end is garbage, and the bytes held stay bounded.
const size_t kMaxPicture = 8 * 1024 * 1024;
}  // namespace

void MjpegCutter::Append(const unsigned char* data, size_t size) { m_buffer.insert(m_buffer.end(), data, data + size); }

void MjpegCutter::Consume(size_t length)
{
    m_buffer.erase(m_buffer.begin(), m_buffer.begin() + static_cast<long>(length < m_buffer.size() ? length : m_buffer.size()));
}

void MjpegCutter::DropAllButLast()
{
    if (m_buffer.size() > 1)
        m_buffer.erase(m_buffer.begin(), m_buffer.end() - 1);
}

size_t MjpegCutter::PacketLength(bool settled)
{
    const unsigned char* data = m_buffer.data();
    const size_t size = m_buffer.size();
    const size_t start = FindJpegStart(data, size, 0);
    if (start >= size) {
        if (size > kMaxPicture)
            DropAllButLast();
        return 0;
    }
    JpegWalk walk = WalkJpeg(data, size, start + 2, nullptr);
    if (walk.end == JPEG_WALK_COMPLETE) {
        size_t next = FindJpegStart(data, size, walk.pos);
        return next < size || settled ? next : 0;
    }
    if (walk.end == JPEG_WALK_CUT_SHORT && size - start <= kMaxPicture)
        return 0;
    size_t next = FindJpegStart(data, size, start + 2);
    if (next < size)
        return next;
    if (size - start > kMaxPicture)
        DropAllButLast();
    return 0;
}

size_t MjpegCutter::RemainderLength() const
{
    return FindJpegStart(m_buffer.data(), m_buffer.size(), 0) < m_buffer.size() ? m_buffer.size() : 0;
}
