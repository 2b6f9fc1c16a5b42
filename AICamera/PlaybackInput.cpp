#include "PlaybackInput.h"

#include <errno.h>
#include <fcntl.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <unistd.h>

extern "C" {
#include <libavformat/avio.h>
#include <libavutil/error.h>
#include <libavutil/mem.h>
}

namespace {
const int kIoBufferSize = 64 * 1024;
}

PlaybackInput::PlaybackInput() : m_nFd(-1), m_nWakeFd(-1), m_pContext(nullptr) {}

PlaybackInput::~PlaybackInput() { Close(); }

int PlaybackInput::Open(const char* path)
{
    Close();
    m_nWakeFd = eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);
    if (m_nWakeFd < 0)
        return AVERROR(errno);
    m_nFd = open(path, O_RDONLY | O_CLOEXEC);
    if (m_nFd < 0) {
        int error = AVERROR(errno);
        Close();
        return error;
    }
    unsigned char* buffer = static_cast<unsigned char*>(av_malloc(kIoBufferSize));
    if (buffer)
        m_pContext = avio_alloc_context(buffer, kIoBufferSize, 0, this, &PlaybackInput::Read,
                                        nullptr, nullptr);
    if (!m_pContext) {
        av_free(buffer);
        Close();
        return AVERROR(ENOMEM);
    }
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
    if (m_pContext) {
        av_freep(&m_pContext->buffer);
        avio_context_free(&m_pContext);
    }
    if (m_nFd >= 0)
        close(m_nFd);
    if (m_nWakeFd >= 0)
        close(m_nWakeFd);
    m_nFd = -1;
    m_nWakeFd = -1;
}

int PlaybackInput::Read(void* opaque, unsigned char* buf, int size)
{
    PlaybackInput* input = static_cast<PlaybackInput*>(opaque);
    for (;;) {
        struct pollfd fds[2] = {{input->m_nFd, POLLIN, 0}, {input->m_nWakeFd, POLLIN, 0}};
        if (poll(fds, 2, -1) < 0) {
            if (errno == EINTR)
                continue;
            return AVERROR(errno);
        }
        if (fds[1].revents)
            return AVERROR_EXIT;
        ssize_t got = read(input->m_nFd, buf, static_cast<size_t>(size));
        if (got > 0)
            return static_cast<int>(got);
        if (got == 0)
            return AVERROR_EOF;
        if (errno != EINTR && errno != EAGAIN)
            return AVERROR(errno);
    }
}
