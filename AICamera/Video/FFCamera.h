// The camera read through FFmpeg: a capture thread decodes MJPEG packets,
// converts each picture to BGRA and keeps the latest one with its side text.
#ifndef AICAMERA_FFCAMERA_H
#define AICAMERA_FFCAMERA_H

#include <atomic>
#include <condition_variable>

#include "../../OS/OS_Mutex.h"
#include "../../OS/OS_Thread.h"
#include "Camera.h"
#include "Deadline.h"
#include "PlaybackInput.h"
#include "PlaybackPacer.h"
#include "SideText.h"

struct AVFormatContext;
struct AVCodecContext;
struct AVFrame;
struct AVPacket;
struct AVInputFormat;
struct AVDictionary;
struct AVCodecParameters;
struct SwsContext;

class FFCamera : public Camera, public OS_Thread {
public:
    // How long an open waits for the stream's first picture.
    static const int OPEN_TIMEOUT_MS = 5000;

    FFCamera();
    ~FFCamera() override;

    // Opens the video node `name` through the "v4l2" input as 1280x720 MJPEG
    // at 30 fps; 0, or -10 when it cannot be opened or sends no picture
    // within OPEN_TIMEOUT_MS.
    int openCamera(const char* name) override;
    // Opens a recorded MJPEG file, or a FIFO that a live writer feeds, and
    // hands out its pictures: a file's at framesPerSecond (1..1000), a FIFO's
    // as they arrive. 0, -4 for a bad argument, or -10 when no picture could
    // be decoded within OPEN_TIMEOUT_MS.
    int openPlayback(const char* path, int framesPerSecond);
    // Makes an open in progress on another thread give up soon with -10.
    void cancelOpen();
    void closeCamera() override;
    // Also -10 once the camera has gone (unplugged): no picture will come again.
    int getFrame(char* imageBuf, int imageSize, char* verifyBuf, int verifySize) override;
    // Woken by each converted picture, by the camera going and by closeCamera.
    int waitFrame(char* imageBuf, int imageSize, char* verifyBuf, int verifySize, int timeoutMs) override;

    int Routine() override;

private:
    void beginOpen(const char* name);
    int failOpen(const char* caller, int line, const char* body, int error);
    int failOpenText(const char* caller, int line, const char* body, const char* text);
    int openDevice(const char* caller, const AVInputFormat* format, AVDictionary** options);
    int probePlayback(const char* caller);
    void traceStream(const char* caller, int codecId, int format, bool video, int width, int height);
    int openDecoder(const char* caller, int codecId, const AVCodecParameters* parameters);
    int startCapture(const char* caller);
    int readPacket();
    int readAndSendPacket();
    int sendPacket();
    bool receiveFrame();
    void convertFrame();
    bool ensureImageBuffer(long long needed);
    void publishSideText();
    int copyFrameLocked(char* imageBuf, int imageSize, char* verifyBuf, int verifySize);
    void wakeWaiters();
    bool deviceGone(int readError) const;
    static int interrupted(void* self);
    static int interruptedProbe(void* self);

    AVFormatContext* m_pFormatCtx;
    AVCodecContext* m_pCodecCtx;
    AVFrame* m_pFrame;
    SwsContext* m_pSwsCtx;
    AVPacket* m_pPacket;
    unsigned char* m_pImage;
    int m_nImageCapacity;
    OS_Mutex m_openLock;
    OS_Mutex m_frameLock;
    char m_szError[1024];
    char m_szSideText[SIDE_TEXT_MAX];
    int m_nSideTextLen;
    // The side text of the packet last sent, waiting for its decoded picture.
    char m_szPacketText[SIDE_TEXT_MAX];
    int m_nPacketTextLen;
    bool m_bImageReady;
    bool m_bSideTextReady;
    // Signalled under the frame lock whenever a waiter's condition may have changed.
    std::condition_variable_any m_frameChanged;
    std::atomic<bool> m_bRunning;
    std::atomic<bool> m_bStop;
    std::atomic<bool> m_bCancelled;
    // Set once the device has gone; the capture thread has then ended.
    std::atomic<bool> m_bGone;
    Deadline m_openDeadline;
    // Playback only: the recording's packets and, for a file, its frame rate.
    bool m_bPlayback;
    PlaybackInput m_input;
    bool m_bPaced;
    PlaybackPacer m_pacer;
};

#endif
