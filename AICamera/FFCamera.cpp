#include "FFCamera.h"

#include <errno.h>
#include <limits.h>
#include <stdlib.h>
#include <string.h>

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavdevice/avdevice.h>
#include <libavformat/avformat.h>
#include <libavutil/error.h>
#include <libavutil/mem.h>
#include <libswscale/swscale.h>
}

#define TRACE_FILE "FFCamera"
#include "Trace.h"

namespace {
const int kPathSize = 256;
const int kFailedReadSleepMs = 10;
// Texts this short are not the module's side text.
const int kMinSideText = 15;
const unsigned char kDroppedPacketTag = 1;
const int kMaxPlaybackRate = 1000;

int LastBracePlusOne(const char* text, int length)
{
    for (int i = length; i > 0; --i) {
        if (text[i - 1] == '}')
            return i;
    }
    return 0;
}
}  // namespace

FFCamera::FFCamera()
    : m_pFormatCtx(nullptr),
      m_pCodecCtx(nullptr),
      m_pFrame(nullptr),
      m_pSwsCtx(nullptr),
      m_pPacket(nullptr),
      m_pImage(nullptr),
      m_nImageCapacity(0),
      m_nSideTextLen(0),
      m_nPacketTextLen(0),
      m_bImageReady(false),
      m_bSideTextReady(false),
      m_bRunning(false),
      m_bStop(false),
      m_bPaced(false)
{
    m_openLock.Init();
    m_frameLock.Init();
    memset(m_szError, 0, sizeof m_szError);
    memset(m_szSideText, 0, sizeof m_szSideText);
    memset(m_szPacketText, 0, sizeof m_szPacketText);
}

FFCamera::~FFCamera()
{
    TRACE_AT(LOG_LEVER_TRACE, "[~FFCamera] in\n");
    closeCamera();
    TRACE_AT(LOG_LEVER_TRACE, "[~FFCamera] out\n");
}

void FFCamera::beginOpen(const char* name)
{
    closeCamera();
    free(m_pDeviceName);
    m_pDeviceName = name ? strdup(name) : nullptr;
    m_bStop = false;
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
    m_bPaced = false;
    return openStream(__func__, format, &options, AVFMT_FLAG_NONBLOCK);
}

int FFCamera::openPlayback(const char* path, int framesPerSecond)
{
    beginOpen(path);
    if (!path || framesPerSecond <= 0 || framesPerSecond > kMaxPlaybackRate)
        return -4;
    m_openLock.Lock();
    av_log_set_level(AV_LOG_QUIET);
    int result = m_input.Open(path);
    if (result < 0) {
        return failOpen(__func__, __LINE__, "camera open failed! : %s\n", result);
    }
    AVDictionary* options = nullptr;
    char rate[16];
    snprintf(rate, sizeof rate, "%d", framesPerSecond);
    av_dict_set(&options, "framerate", rate, 0);
    // The frame rate is given: no need to read ahead to estimate it.
    av_dict_set(&options, "fpsprobesize", "0", 0);
    m_bPaced = true;
    m_pacer.Start(framesPerSecond);
    return openStream(__func__, av_find_input_format("mjpeg"), &options, 0);
}

// Records the failure under the public entry point's name and releases the open lock.
int FFCamera::failOpen(const char* caller, int line, const char* body, int error)
{
    char text[sizeof m_szError];
    av_strerror(error, text, sizeof text - 1);
    TraceRecord(LOG_LEVER_ERROR, TRACE_FILE, caller, line, body, text);
    m_openLock.Unlock();
    return -10;
}

// Called with the open lock held; releases it.
int FFCamera::openStream(const char* caller, const AVInputFormat* format, AVDictionary** options,
                         int flags)
{
    char path[kPathSize];
    int result = AVERROR(EINVAL);
    if (m_pDeviceName && strlen(m_pDeviceName) < sizeof path) {
        strcpy(path, m_pDeviceName);
        m_pFormatCtx = avformat_alloc_context();
        result = AVERROR(ENOMEM);
    }
    if (m_pFormatCtx) {
        m_pFormatCtx->flags |= flags;
        m_pFormatCtx->interrupt_callback.callback = &FFCamera::interrupted;
        m_pFormatCtx->interrupt_callback.opaque = this;
        m_pFormatCtx->pb = m_input.Context();
        result = avformat_open_input(&m_pFormatCtx, path, format, options);
    }
    av_dict_free(options);
    if (result < 0) {
        return failOpen(caller, __LINE__, "camera open failed! : %s\n", result);
    }
    avformat_find_stream_info(m_pFormatCtx, nullptr);
    traceStreams();
    if (openDecoder(caller) != 0)
        return -10;
    m_bRunning = true;
    m_pPacket = av_packet_alloc();
    m_pFrame = av_frame_alloc();
    m_openLock.Unlock();
    TRACE_AT(LOG_LEVER_TRACE, "FFCamera::openCamera thread start\n");
    if (Run() != 0)
        return -10;
    return 0;
}

void FFCamera::traceStreams()
{
    for (unsigned int i = 0; i < m_pFormatCtx->nb_streams; ++i) {
        const AVCodecParameters* codec = m_pFormatCtx->streams[i]->codecpar;
        TRACE_AT(LOG_LEVER_TRACE, "codec_id = %d\n", codec->codec_id);
        TRACE_AT(LOG_LEVER_TRACE, "format = %d\n", codec->format);
        if (codec->codec_type == AVMEDIA_TYPE_VIDEO) {
            setResolution(codec->width, codec->height);
            TRACE_AT(LOG_LEVER_TRACE, "width = %d\n", codec->width);
            TRACE_AT(LOG_LEVER_TRACE, "height = %d\n", codec->height);
        }
    }
}

// Called with the open lock held; releases it on failure.
int FFCamera::openDecoder(const char* caller)
{
    int index = av_find_best_stream(m_pFormatCtx, AVMEDIA_TYPE_VIDEO, -1, -1, nullptr, 0);
    const AVCodecParameters* parameters = index >= 0 ? m_pFormatCtx->streams[index]->codecpar : nullptr;
    const AVCodec* decoder = parameters ? avcodec_find_decoder(parameters->codec_id) : nullptr;
    if (!decoder) {
        TraceRecord(LOG_LEVER_ERROR, TRACE_FILE, caller, __LINE__, "can't find the codec id : %d\n",
                    parameters ? parameters->codec_id : AV_CODEC_ID_NONE);
        m_openLock.Unlock();
        return -10;
    }
    m_pCodecCtx = avcodec_alloc_context3(decoder);
    int result = m_pCodecCtx ? avcodec_parameters_to_context(m_pCodecCtx, parameters) : AVERROR(ENOMEM);
    if (result >= 0)
        result = avcodec_open2(m_pCodecCtx, nullptr, nullptr);
    if (result < 0) {
        return failOpen(caller, __LINE__, "avcodec_open2 failed : %s\n", result);
    }
    return 0;
}

int FFCamera::interrupted(void* self) { return static_cast<FFCamera*>(self)->m_bStop ? 1 : 0; }

void FFCamera::closeCamera()
{
    // The thread goes first: nothing it uses may be freed while it runs.
    m_bRunning = false;
    m_bStop = true;
    m_input.Wake();
    OS_Thread::Join(this);
    m_openLock.Lock();
    avformat_close_input(&m_pFormatCtx);
    m_input.Close();
    avcodec_free_context(&m_pCodecCtx);
    av_frame_free(&m_pFrame);
    av_packet_free(&m_pPacket);
    sws_freeContext(m_pSwsCtx);
    m_pSwsCtx = nullptr;
    m_frameLock.Lock();
    av_free(m_pImage);
    m_pImage = nullptr;
    m_nImageCapacity = 0;
    m_frameLock.Unlock();
    m_openLock.Unlock();
}

int FFCamera::Routine()
{
    while (!m_bStop) {
        if (!m_bRunning)
            break;
        if (readAndSendPacket() != 0) {
            OS_Thread::MSleep(kFailedReadSleepMs);
            continue;
        }
        while (!m_bStop && receiveFrame())
            convertFrame();
    }
    TRACE_AT(LOG_LEVER_TRACE, "FFCamera::Routine thread exit\n");
    return 0;
}

int FFCamera::readAndSendPacket()
{
    if (!m_pPacket)
        m_pPacket = av_packet_alloc();
    // Only a lock actually taken is released; a busy one means the stream is
    // being opened or closed.
    if (!m_pPacket || !m_openLock.TryAcquire())
        return -1;
    int result = -1;
    if (m_pFormatCtx && m_pCodecCtx) {
        int read = av_read_frame(m_pFormatCtx, m_pPacket);
        if (read < 0)
            av_strerror(read, m_szError, sizeof m_szError);
        else
            result = sendPacket();
    }
    av_packet_unref(m_pPacket);
    m_openLock.Unlock();
    return result;
}

int FFCamera::sendPacket()
{
    if (m_pPacket->size <= 0 || !m_pPacket->data)
        return -1;
    // The module tags packets that carry no picture with a leading 1.
    if (m_pPacket->data[0] == kDroppedPacketTag)
        return -1;
    if (m_bPaced)
        m_pacer.WaitNextSlot();
    m_nPacketTextLen = ExtractSideText(m_pPacket->data, static_cast<size_t>(m_pPacket->size), m_szPacketText);
    return avcodec_send_packet(m_pCodecCtx, m_pPacket) == 0 ? 0 : -1;
}

bool FFCamera::receiveFrame()
{
    if (!m_openLock.TryAcquire())
        return false;
    int result = -1;
    if (m_pCodecCtx) {
        if (!m_pFrame)
            m_pFrame = av_frame_alloc();
        if (m_pFrame)
            result = avcodec_receive_frame(m_pCodecCtx, m_pFrame);
    }
    m_openLock.Unlock();
    return result == 0;
}

void FFCamera::convertFrame()
{
    const int width = m_pFrame->width;
    const int height = m_pFrame->height;
    if (m_pFrame->linesize[0] > 0) {
        m_pSwsCtx = sws_getCachedContext(m_pSwsCtx, width, height,
                                         static_cast<AVPixelFormat>(m_pFrame->format), width, height,
                                         AV_PIX_FMT_BGRA, SWS_FAST_BILINEAR, nullptr, nullptr, nullptr);
        m_frameLock.Lock();
        if (m_pSwsCtx && ensureImageBuffer(static_cast<long long>(width) * height * 4)) {
            unsigned char* planes[4] = {m_pImage, nullptr, nullptr, nullptr};
            int strides[4] = {width * 4, 0, 0, 0};
            sws_scale(m_pSwsCtx, m_pFrame->data, m_pFrame->linesize, 0, height, planes, strides);
            m_bImageReady = true;
        }
        sws_freeContext(m_pSwsCtx);
        m_pSwsCtx = nullptr;
        publishSideText();
        m_frameLock.Unlock();
    }
    av_frame_unref(m_pFrame);
}

// Called under the frame lock. The buffer grows for a picture larger than
// the frame byte size, so that a conversion never writes past it.
bool FFCamera::ensureImageBuffer(long long needed)
{
    if (needed <= 0 || needed > INT_MAX)
        return false;
    if (m_pImage && needed <= m_nImageCapacity)
        return true;
    int capacity = needed > m_nFrameSize ? static_cast<int>(needed) : m_nFrameSize;
    av_free(m_pImage);
    m_pImage = static_cast<unsigned char*>(av_mallocz(static_cast<size_t>(capacity)));
    m_nImageCapacity = m_pImage ? capacity : 0;
    return m_pImage != nullptr;
}

// Called under the frame lock with the text of the packet just decoded.
void FFCamera::publishSideText()
{
    if (m_nPacketTextLen < kMinSideText)
        return;
    m_bSideTextReady = true;
    memset(m_szSideText, 0, sizeof m_szSideText);
    memcpy(m_szSideText, m_szPacketText, static_cast<size_t>(m_nPacketTextLen));
    m_nSideTextLen = LastBracePlusOne(m_szSideText, m_nPacketTextLen);
}

int FFCamera::getFrame(char* imageBuf, int imageSize, char* verifyBuf, int verifySize)
{
    if ((imageSize > 0 && !imageBuf) || (verifySize > 0 && !verifyBuf))
        return -4;
    m_frameLock.Lock();
    int result = 0;
    if (imageSize > 0) {
        if (!m_bImageReady || !m_pImage) {
            m_frameLock.Unlock();
            return -11;
        }
        memcpy(imageBuf, m_pImage, static_cast<size_t>(imageSize < m_nImageCapacity ? imageSize : m_nImageCapacity));
        if (m_bResolutionChanged) {
            m_bResolutionChanged = 0;
            long long frameSize = static_cast<long long>(m_nWidth) * m_nHeight * 4;
            if (frameSize > 0 && frameSize <= INT_MAX)
                m_nFrameSize = static_cast<int>(frameSize);
        }
    }
    if (verifySize > 0) {
        if (verifySize < m_nSideTextLen)
            result = -4;
        else if (m_bSideTextReady) {
            memset(verifyBuf, 0, static_cast<size_t>(verifySize));
            memcpy(verifyBuf, m_szSideText, static_cast<size_t>(m_nSideTextLen));
        }
    }
    if (result == 0) {
        m_bImageReady = false;
        m_bSideTextReady = false;
    }
    m_frameLock.Unlock();
    return result;
}
