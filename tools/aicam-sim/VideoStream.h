#pragma once
// The module's camera as an MJPEG stream written to a file or a FIFO: synthetic
// frames with the moving face, each carrying its side text in a comment segment.

#include <atomic>
#include <condition_variable>
#include <mutex>
#include <string>
#include <thread>

#include "ModuleModel.h"

namespace aicamsim {

struct VideoSettings {
    std::string path;
    int fps = 25;
    int width = 640, height = 480;
    long long frames = 0;   // 0: endless
};

class VideoStream {
public:
    VideoStream(sim::ModuleModel& model, VideoSettings settings);
    ~VideoStream();

    void Start();
    void Stop();
    long long FramesWritten() const { return m_written; }
    // Empty while all is well; otherwise why the stream stopped.
    std::string Error() const;

private:
    void Run();
    bool OpenOutput();
    enum class WriteResult { Done, Stopped, ReaderGone, Failed };
    WriteResult WriteAll(const sim::Bytes& data);
    bool WaitUntil(std::chrono::steady_clock::time_point when);   // false when stopping
    sim::Bytes NextFrame(long long index);
    void Fail(const std::string& why);

    sim::ModuleModel& m_model;
    VideoSettings m_settings;
    sim::JpegEncoder m_encoder{4};
    int m_fd = -1;
    bool m_isFifo = false;
    std::atomic<long long> m_written{0};
    mutable std::mutex m_mutex;
    std::condition_variable m_wake;
    bool m_stop = false;
    std::string m_error;
    std::thread m_thread;
};

}  // namespace aicamsim
