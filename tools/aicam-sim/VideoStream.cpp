#include "VideoStream.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

namespace aicamsim {
namespace {

constexpr int kRetryMs = 50;

}  // namespace

VideoStream::VideoStream(sim::ModuleModel& model, VideoSettings settings)
    : m_model(model), m_settings(std::move(settings)) {}

VideoStream::~VideoStream() { Stop(); }

void VideoStream::Start() { m_thread = std::thread(&VideoStream::Run, this); }

void VideoStream::Stop() {
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        m_stop = true;
    }
    m_wake.notify_all();
    if (m_thread.joinable()) m_thread.join();
    if (m_fd >= 0) ::close(m_fd);
    m_fd = -1;
}

std::string VideoStream::Error() const {
    std::lock_guard<std::mutex> lock(m_mutex);
    return m_error;
}

void VideoStream::Fail(const std::string& why) {
    std::lock_guard<std::mutex> lock(m_mutex);
    m_error = why;
}

bool VideoStream::WaitUntil(std::chrono::steady_clock::time_point when) {
    std::unique_lock<std::mutex> lock(m_mutex);
    return !m_wake.wait_until(lock, when, [this] { return m_stop; });
}

// A FIFO opens only once a reader is there, so keep trying until one comes or we stop.
bool VideoStream::OpenOutput() {
    struct stat st {};
    m_isFifo = ::stat(m_settings.path.c_str(), &st) == 0 && S_ISFIFO(st.st_mode);
    const int flags = m_isFifo ? O_WRONLY | O_NONBLOCK : O_WRONLY | O_CREAT | O_TRUNC | O_NONBLOCK;
    for (;;) {
        m_fd = ::open(m_settings.path.c_str(), flags | O_CLOEXEC, 0644);
        if (m_fd >= 0) return true;
        if (!m_isFifo || errno != ENXIO) {
            Fail("cannot open " + m_settings.path + ": " + std::strerror(errno));
            return false;
        }
        if (!WaitUntil(std::chrono::steady_clock::now() + std::chrono::milliseconds(kRetryMs))) return false;
    }
}

VideoStream::WriteResult VideoStream::WriteAll(const sim::Bytes& data) {
    size_t done = 0;
    while (done < data.size()) {
        ssize_t n = ::write(m_fd, data.data() + done, data.size() - done);
        if (n > 0) {
            done += size_t(n);
            continue;
        }
        if (n < 0 && errno == EPIPE && m_isFifo) return WriteResult::ReaderGone;
        if (n < 0 && errno != EAGAIN && errno != EINTR) {
            Fail("cannot write " + m_settings.path + ": " + std::strerror(errno));
            return WriteResult::Failed;
        }
        pollfd p{m_fd, POLLOUT, 0};
        ::poll(&p, 1, kRetryMs);
        std::lock_guard<std::mutex> lock(m_mutex);
        if (m_stop) return WriteResult::Stopped;
    }
    return WriteResult::Done;
}

sim::Bytes VideoStream::NextFrame(long long index) {
    const int64_t elapsed = m_model.ElapsedMs();
    std::optional<sim::FaceBox> face = m_model.FaceInView(elapsed);
    sim::Picture picture(m_settings.width, m_settings.height);
    sim::DrawScene(picture, uint64_t(index), face ? &*face : nullptr);
    sim::Bytes jpeg;
    if (!m_encoder.Encode(picture, jpeg)) return {};
    const bool describeFace = face && m_model.Settings().reports.faceInfoInFrame;
    const std::string side =
        sim::FrameSideText(uint64_t(index), elapsed, describeFace ? &*face : nullptr, m_model.FaceIdInView());
    return sim::InsertJpegComment(jpeg, side);
}

void VideoStream::Run() {
    m_model.SetFrameSize(m_settings.width, m_settings.height);
    const auto period = std::chrono::microseconds(1000000 / m_settings.fps);
    while (OpenOutput()) {
        auto next = std::chrono::steady_clock::now();
        WriteResult result = WriteResult::Done;
        while (m_settings.frames == 0 || m_written < m_settings.frames) {
            const sim::Bytes frame = NextFrame(m_written);
            if (frame.empty()) {
                Fail("the MJPEG encoder refused a frame");
                return;
            }
            result = WriteAll(frame);
            if (result != WriteResult::Done) break;
            ++m_written;
            next += period;
            if (!WaitUntil(next)) return;
        }
        ::close(m_fd);
        m_fd = -1;
        if (result != WriteResult::ReaderGone) return;   // a FIFO whose reader left waits for the next one
    }
}

}  // namespace aicamsim
