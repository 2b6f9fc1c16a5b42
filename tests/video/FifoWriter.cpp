#include "FifoWriter.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {
bool WriteAll(int fd, const Bytes& bytes)
{
    size_t done = 0;
    while (done < bytes.size()) {
        ssize_t n = write(fd, bytes.data() + done, bytes.size() - done);
        if (n <= 0)
            return false;
        done += static_cast<size_t>(n);
    }
    return true;
}
}  // namespace

FifoWriter::FifoWriter(const std::string& path, const Bytes& first) : m_path(path), m_fd(-1), m_opened(false)
{
    // A reader that goes away must show up as a failed write, not a signal.
    signal(SIGPIPE, SIG_IGN);
    unlink(path.c_str());
    if (mkfifo(path.c_str(), 0600) != 0)
        return;
    m_opener = std::thread([this, first] {
        m_fd = open(m_path.c_str(), O_WRONLY | O_CLOEXEC);
        m_opened = m_fd >= 0 && WriteAll(m_fd, first);
    });
}

FifoWriter::~FifoWriter()
{
    Opened();
    Close();
    unlink(m_path.c_str());
}

bool FifoWriter::Opened()
{
    if (m_opener.joinable())
        m_opener.join();
    return m_opened;
}

bool FifoWriter::Write(const Bytes& bytes) { return Opened() && m_fd >= 0 && WriteAll(m_fd, bytes); }

void FifoWriter::Close()
{
    if (Opened() && m_fd >= 0)
        close(m_fd);
    m_fd = -1;
}
