// Opening the two sources of FFCamera: a V4L2 video node, and a recorded or
// live MJPEG stream in a file or FIFO. Both wait at most OPEN_TIMEOUT_MS for
// the first picture, and both can be cancelled from another thread.
#include <string.h>

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavdevice/avdevice.h>
#include <libavformat/avformat.h>
#include <libavutil/error.h>
}

#include "FFCamera.h"

#define TRACE_FILE "FFCamera"
#include "../Log/Trace.h"

namespace {
const int kPathSize = 256;
const int kMaxPlaybackRate = 1000;
// FFmpeg's stream probe asks again at once while a non-blocking camera has no
// picture yet; this pause between its attempts keeps it from spinning.
const unsigned int kProbePauseMs = 2;
const char* const kNoPictureInTime = "no picture within 5 s";
const char* const kNoPicture = "no picture decoded";
static_assert(FFCamera::OPEN_TIMEOUT_MS == 5000, "the record names the open's time limit");
}  // namespace

void FFCamera::beginOpen(const char* name)
{
    closeCamera();
    free(m_pDeviceName);
    m_pDeviceName = name ? strdup(name) : nullptr;
    m_bStop = false;
    m_bGone = false;
    m_openDeadline.Set(OPEN_TIMEOUT_MS);
}

void FFCamera::cancelOpen()
{
    m_bCancelled = true;
    m_input.Wake();
}

int FFCamera::interrupted(void* self)
{
    FFCamera* camera = static_cast<FFCamera*>(self);
    return camera->m_bStop || camera->m_bCancelled || camera->m_openDeadline.Passed() ? 1 : 0;
}

int FFCamera::interruptedProbe(void* self)
{
    if (interrupted(self))
        return 1;
    OS_Thread::MSleep(kProbePauseMs);
    return 0;
}

int FFCamera::failOpen(const char* caller, int line, const char* body, int error)
{
    char text[sizeof m_szError];
    av_strerror(error, text, sizeof text - 1);
    return failOpenText(caller, line, body, text);
}

// Records the failure under the public entry point's name and releases the open lock.
int FFCamera::failOpenText(const char* caller, int line, const char* body, const char* text)
{
    TraceRecord(LOG_LEVER_ERROR, TRACE_FILE, caller, line, body, text);
    m_openDeadline.Clear();
    m_openLock.Unlock();
    return -10;
}

int FFCamera::openCamera(const char* name)
{
    beginOpen(name);
    m_openLock.Lock();
    av_log_set_level(AV_LOG_QUIET);
    void* demuxers = nullptr;
    av_demuxer_iterate(&demuxers);
    avdevice_register_all();
    const AVInputFormat* format = av_find_input_format("v4l2");
    AVDictionary* options = nullptr;
    av_dict_set(&options, "input_format", "mjpeg", 0);
    av_dict_set(&options, "framerate", "30", 0);
    av_dict_set(&options, "video_size", "1280x720", 0);
    av_dict_set(&options, "stimeout", "2000000", 0);
    av_dict_set(&options, "max_delay", "500000", 0);
    m_bPlayback = false;
    m_bPaced = false;
    return openDevice(__func__, format, &options);
}

// Called with the open lock held; releases it.
int FFCamera::openDevice(const char* caller, const AVInputFormat* format, AVDictionary** options)
{
    char path[kPathSize];
    int result = AVERROR(EINVAL);
    if (m_pDeviceName && strlen(m_pDeviceName) < sizeof path) {
        strcpy(path, m_pDeviceName);
        m_pFormatCtx = avformat_alloc_context();
        result = AVERROR(ENOMEM);
    }
    if (m_pFormatCtx) {
        // Reads never block: a camera that stops sending cannot hold the
        // capture thread, nor a close waiting for it.
        m_pFormatCtx->flags |= AVFMT_FLAG_NONBLOCK;
        m_pFormatCtx->interrupt_callback.callback = &FFCamera::interruptedProbe;
        m_pFormatCtx->interrupt_callback.opaque = this;
        result = avformat_open_input(&m_pFormatCtx, path, format, options);
    }
    av_dict_free(options);
    if (result < 0)
        return failOpen(caller, __LINE__, "camera open failed! : %s\n", result);
    avformat_find_stream_info(m_pFormatCtx, nullptr);
    const bool timedOut = m_openDeadline.Passed();
    m_pFormatCtx->interrupt_callback.callback = &FFCamera::interrupted;
    for (unsigned int i = 0; i < m_pFormatCtx->nb_streams; ++i) {
        const AVCodecParameters* codec = m_pFormatCtx->streams[i]->codecpar;
        traceStream(caller, codec->codec_id, codec->format, codec->codec_type == AVMEDIA_TYPE_VIDEO,
                    codec->width, codec->height);
    }
    int index = av_find_best_stream(m_pFormatCtx, AVMEDIA_TYPE_VIDEO, -1, -1, nullptr, 0);
    const AVCodecParameters* parameters = index >= 0 ? m_pFormatCtx->streams[index]->codecpar : nullptr;
    // The probe decodes a picture to learn its pixel format: none means no picture came.
    if (parameters && parameters->format == AV_PIX_FMT_NONE) {
        const char* why = m_bCancelled ? "cancelled" : timedOut ? kNoPictureInTime : kNoPicture;
        return failOpenText(caller, __LINE__, "camera open failed! : %s\n", why);
    }
    if (openDecoder(caller, parameters ? parameters->codec_id : AV_CODEC_ID_NONE, parameters) != 0)
        return -10;
    return startCapture(caller);
}

int FFCamera::openPlayback(const char* path, int framesPerSecond)
{
    beginOpen(path);
    if (!path || framesPerSecond <= 0 || framesPerSecond > kMaxPlaybackRate) {
        m_openDeadline.Clear();
        return -4;
    }
    m_openLock.Lock();
    av_log_set_level(AV_LOG_QUIET);
    int result = m_input.Open(path);
    if (result < 0)
        return failOpen(__func__, __LINE__, "camera open failed! : %s\n", result);
    m_bPlayback = true;
    m_bPaced = m_input.IsFile();
    m_pacer.Start(framesPerSecond);
    if (openDecoder(__func__, AV_CODEC_ID_MJPEG, nullptr) != 0)
        return -10;
    return probePlayback(__func__);
}

// Called with the open lock held; releases it. Reads until a picture decodes
// and hands that one out: a stream in which none does is not video.
int FFCamera::probePlayback(const char* caller)
{
    m_pPacket = av_packet_alloc();
    m_pFrame = av_frame_alloc();
    if (!m_pPacket || !m_pFrame)
        return failOpen(caller, __LINE__, "camera open failed! : %s\n", AVERROR(ENOMEM));
    bool sawPacket = false;
    int result = 0;
    while (!m_bCancelled && !m_openDeadline.Passed()) {
        result = readPacket();
        if (result < 0)
            break;
        sawPacket = true;
        bool decoded = sendPacket() == 0 && avcodec_receive_frame(m_pCodecCtx, m_pFrame) == 0;
        av_packet_unref(m_pPacket);
        if (decoded) {
            traceStream(caller, AV_CODEC_ID_MJPEG, m_pFrame->format, true, m_pFrame->width, m_pFrame->height);
            convertFrame();
            return startCapture(caller);
        }
    }
    if (m_bCancelled)
        return failOpenText(caller, __LINE__, "camera open failed! : %s\n", "cancelled");
    if (m_openDeadline.Passed())
        return failOpenText(caller, __LINE__, "camera open failed! : %s\n", kNoPictureInTime);
    if (sawPacket)
        return failOpen(caller, __LINE__, "camera open failed! : %s\n", AVERROR_INVALIDDATA);
    if (result == AVERROR_EOF)
        return failOpenText(caller, __LINE__, "camera open failed! : %s\n", kNoPicture);
    return failOpen(caller, __LINE__, "camera open failed! : %s\n", result);
}

void FFCamera::traceStream(const char* caller, int codecId, int format, bool video, int width, int height)
{
    TraceRecord(LOG_LEVER_TRACE, TRACE_FILE, caller, __LINE__, "codec_id = %d\n", codecId);
    TraceRecord(LOG_LEVER_TRACE, TRACE_FILE, caller, __LINE__, "format = %d\n", format);
    if (!video)
        return;
    setResolution(width, height);
    TraceRecord(LOG_LEVER_TRACE, TRACE_FILE, caller, __LINE__, "width = %d\n", width);
    TraceRecord(LOG_LEVER_TRACE, TRACE_FILE, caller, __LINE__, "height = %d\n", height);
}

// Called with the open lock held; releases it on failure. Without
// parameters the decoder opens with its defaults.
int FFCamera::openDecoder(const char* caller, int codecId, const AVCodecParameters* parameters)
{
    const AVCodec* decoder = avcodec_find_decoder(static_cast<AVCodecID>(codecId));
    if (!decoder) {
        TraceRecord(LOG_LEVER_ERROR, TRACE_FILE, caller, __LINE__, "can't find the codec id : %d\n", codecId);
        m_openDeadline.Clear();
        m_openLock.Unlock();
        return -10;
    }
    m_pCodecCtx = avcodec_alloc_context3(decoder);
    int result = m_pCodecCtx ? 0 : AVERROR(ENOMEM);
    if (result >= 0 && parameters)
        result = avcodec_parameters_to_context(m_pCodecCtx, parameters);
    if (result >= 0)
        result = avcodec_open2(m_pCodecCtx, nullptr, nullptr);
    if (result < 0)
        return failOpen(caller, __LINE__, "avcodec_open2 failed : %s\n", result);
    return 0;
}

// Called with the open lock held; releases it.
int FFCamera::startCapture(const char* caller)
{
    m_openDeadline.Clear();
    m_bRunning = true;
    if (!m_pPacket)
        m_pPacket = av_packet_alloc();
    if (!m_pFrame)
        m_pFrame = av_frame_alloc();
    m_openLock.Unlock();
    TraceRecord(LOG_LEVER_TRACE, TRACE_FILE, caller, __LINE__, "FFCamera::openCamera thread start\n");
    if (Run() != 0)
        return -10;
    return 0;
}
