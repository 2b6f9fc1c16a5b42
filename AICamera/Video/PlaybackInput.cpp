#include "PlaybackInput.h"

#include <errno.h>
#include <fcntl.h>
#include <poll.h>
#include <stdint.h>
#include <string.h>
#include <sys/eventfd.h>
#include <sys/stat.h>
#include <unistd.h>

extern "C" {
#include <libavcodec/packet.h>
#include <libavformat/avio.h>
#include <libavutil/error.h>
}

namespace {
const int kChunkSize = 64 * 1024;
// How often a wait for bytes asks whether it should give up.
const int kWaitSliceMs = 50;
}  // namespace

PlaybackInput::PlaybackInput()
    : m_nFd(-1), m_nWakeFd(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)), m_bFile(false), m_bEnded(false)
{
}

PlaybackInput::~PlaybackInput()
{
    Close();
    if (m_nWakeFd >= 0)
        close(m_nWakeFd);
}

int PlaybackInput::Open(const char* path)
{
    Close();
    if (m_nWakeFd < 0)
        return AVERROR(EMFILE);
    uint64_t pending;
    while (read(m_nWakeFd, &pending, sizeof pending) > 0) {
    }
    // Without O_NONBLOCK, opening a FIFO would wait for its writer without end.
    m_nFd = open(path, O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (m_nFd < 0)
        return AVERROR(errno);
    struct stat status;
    int error = 0;
    if (fstat(m_nFd, &status) != 0)
        error = AVERROR(errno);
    else if (S_ISDIR(status.st_mode))
        error = AVERROR(EISDIR);
    if (error != 0) {
        Close();
        return error;
    }
    m_bFile = S_ISREG(status.st_mode);
    return 0;
}

void PlaybackInput::Wake()
{
    if (m_nWakeFd >= 0) {
        uint64_t one = 1;
        ssize_t written = write(m_nWakeFd, &one, sizeof one);
        (void)written;  // a full counter already wakes every reader
    }
}

void PlaybackInput::Close()
{
    if (m_nFd >= 0)
        close(m_nFd);
    m_nFd = -1;
    m_bFile = false;
    m_bEnded = false;
    m_cutter.Clear();
}

int PlaybackInput::ReadPacket(AVPacket* packet, const AVIOInterruptCB& interrupt)
{
    if (m_nFd < 0)
        return AVERROR(EBADF);
    for (;;) {
        size_t length = m_bEnded ? m_cutter.RemainderLength() : m_cutter.PacketLength(!BytesWaiting());
        if (length > 0) {
            int result = av_new_packet(packet, static_cast<int>(length));
            if (result < 0)
                return result;
            memcpy(packet->data, m_cutter.Front(), length);
            m_cutter.Consume(length);
            return 0;
        }
        if (m_bEnded) {
            m_cutter.Clear();
            return AVERROR_EOF;
        }
        int result = Fill(interrupt);
        if (result < 0)
            return result;
    }
}

bool PlaybackInput::BytesWaiting() const
{
    struct pollfd input = {m_nFd, POLLIN, 0};
    return poll(&input, 1, 0) > 0 && (input.revents & POLLIN);
}

int PlaybackInput::Fill(const AVIOInterruptCB& interrupt)
{
    if (interrupt.callback && interrupt.callback(interrupt.opaque))
        return AVERROR_EXIT;
    struct pollfd fds[2] = {{m_nFd, POLLIN, 0}, {m_nWakeFd, POLLIN, 0}};
    int ready = poll(fds, 2, kWaitSliceMs);
    if (ready < 0)
        return errno == EINTR ? 0 : AVERROR(errno);
    if (fds[1].revents)
        return AVERROR_EXIT;
    if (ready == 0)
        return 0;
    unsigned char chunk[kChunkSize];
    ssize_t got = read(m_nFd, chunk, sizeof chunk);
    if (got > 0)
        m_cutter.Append(chunk, static_cast<size_t>(got));
    else if (got == 0)
        m_bEnded = true;
    else if (errno != EAGAIN && errno != EINTR)
        return AVERROR(errno);
    return 0;
}
