#include "FFCamera.h"

#include <errno.h>
#include <limits.h>
#include <stdlib.h>
#include <string.h>
#include <unistd.h>

#include <chrono>

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
#include <libavutil/error.h>
#include <libavutil/mem.h>
#include <libswscale/swscale.h>
}

#define TRACE_FILE "FFCamera"
#include "../Log/Trace.h"

#include "LockableMutex.h"

namespace {
const int kFailedReadSleepMs = 10;
// Texts this short are not the module's side text.
const int kMinSideText = 15;
const unsigned char kDroppedPacketTag = 1;

int LastBracePlusOne(const char* text, int length)
{
    for (int i = length; i > 0; --i) {
        if (text[i - 1] == '}')
            return i;
    }
    return 0;
}

// A positive size needs its buffer; a size of 0 or below copies nothing.
bool MissingBuffer(const char* imageBuf, int imageSize, const char* verifyBuf, int verifySize)
{
    return (imageSize > 0 && !imageBuf) || (verifySize > 0 && !verifyBuf);
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
      m_bCancelled(false),
      m_bGone(false),
      m_bPlayback(false),
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

void FFCamera::closeCamera()
{
    // The thread goes first: nothing it uses may be freed while it runs.
    m_bRunning = false;
    m_bStop = true;
    m_input.Wake();
    wakeWaiters();
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
            if (m_bGone) {
                TRACE_AT(LOG_LEVER_ERROR, "camera gone, capture stopped : %s\n", m_szError);
                wakeWaiters();
                break;
            }
            OS_Thread::MSleep(kFailedReadSleepMs);
            continue;
        }
        while (!m_bStop && receiveFrame())
            convertFrame();
    }
    TRACE_AT(LOG_LEVER_TRACE, "FFCamera::Routine thread exit\n");
    return 0;
}

int FFCamera::readPacket()
{
    if (m_bPlayback) {
        AVIOInterruptCB interrupt = {&FFCamera::interrupted, this};
        return m_input.ReadPacket(m_pPacket, interrupt);
    }
    return m_pFormatCtx ? av_read_frame(m_pFormatCtx, m_pPacket) : AVERROR(EINVAL);
}

// An unplugged camera fails its reads with ENODEV, or its node has gone;
// either way no picture will come again.
bool FFCamera::deviceGone(int readError) const
{
    if (m_bPlayback || readError == AVERROR(EAGAIN))
        return false;
    return readError == AVERROR(ENODEV) || !m_pDeviceName || access(m_pDeviceName, F_OK) != 0;
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
    if (m_pCodecCtx) {
        int read = readPacket();
        if (read >= 0) {
            result = sendPacket();
        } else {
            av_strerror(read, m_szError, sizeof m_szError);
            if (deviceGone(read))
                m_bGone = true;
        }
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
            m_frameChanged.notify_all();
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

// Taking the frame lock between the flag's store and the signal means that
// a waiter either sees the flag or is already waiting when the signal comes.
void FFCamera::wakeWaiters()
{
    m_frameLock.Lock();
    m_frameChanged.notify_all();
    m_frameLock.Unlock();
}

int FFCamera::getFrame(char* imageBuf, int imageSize, char* verifyBuf, int verifySize)
{
    if (MissingBuffer(imageBuf, imageSize, verifyBuf, verifySize))
        return -4;
    if (m_bGone)
        return -10;
    m_frameLock.Lock();
    int result = copyFrameLocked(imageBuf, imageSize, verifyBuf, verifySize);
    m_frameLock.Unlock();
    return result;
}

int FFCamera::waitFrame(char* imageBuf, int imageSize, char* verifyBuf, int verifySize, int timeoutMs)
{
    if (MissingBuffer(imageBuf, imageSize, verifyBuf, verifySize) || timeoutMs < 0)
        return -4;
    LockableMutex frameLock(m_frameLock);
    std::unique_lock<LockableMutex> hold(frameLock);
    m_frameChanged.wait_for(hold, std::chrono::milliseconds(timeoutMs),
                            [this] { return m_bImageReady || m_bGone || m_bStop; });
    if (m_bGone || m_bStop)
        return -10;
    return copyFrameLocked(imageBuf, imageSize, verifyBuf, verifySize);
}

int FFCamera::copyFrameLocked(char* imageBuf, int imageSize, char* verifyBuf, int verifySize)
{
    int result = 0;
    if (imageSize > 0) {
        if (!m_bImageReady || !m_pImage)
            return -11;
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
    return result;
}
