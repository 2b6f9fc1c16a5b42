// The camera read through FFmpeg: a capture thread decodes MJPEG packets,
// converts each picture to BGRA and keeps the latest one with its side text.
#ifndef AICAMERA_FFCAMERA_H
#define AICAMERA_FFCAMERA_H

#include <atomic>

#include "../OS/OS_Mutex.h"
#include "../OS/OS_Thread.h"
#include "Camera.h"
#include "PlaybackInput.h"
#include "PlaybackPacer.h"
#include "SideText.h"

struct AVFormatContext;
struct AVCodecContext;
struct AVFrame;
struct AVPacket;
struct AVInputFormat;
struct AVDictionary;
struct SwsContext;

class FFCamera : public Camera, public OS_Thread {
public:
    FFCamera();
    ~FFCamera() override;

    // Opens the video node `name` through the "v4l2" input as 1280x720 MJPEG at 30 fps.
    int openCamera(const char* name) override;
    // Opens a recorded MJPEG file or FIFO through the "mjpeg" input and hands
    // out its pictures at framesPerSecond (1..1000); 0 or -10.
    int openPlayback(const char* path, int framesPerSecond);
    void closeCamera() override;
    int getFrame(char* imageBuf, int imageSize, char* verifyBuf, int verifySize) override;

    int Routine() override;

private:
    void beginOpen(const char* name);
    // The open steps shared by both sources; caller names the entry point in records.
    int openStream(const char* caller, const AVInputFormat* format, AVDictionary** options, int flags);
    int failOpen(const char* caller, int line, const char* body, int error);
    void traceStreams();
    int openDecoder(const char* caller);
    int readAndSendPacket();
    int sendPacket();
    bool receiveFrame();
    void convertFrame();
    bool ensureImageBuffer(long long needed);
    void publishSideText();
    static int interrupted(void* self);

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
    std::atomic<bool> m_bRunning;
    std::atomic<bool> m_bStop;
    // Playback only: the recording's bytes and its frame rate.
    PlaybackInput m_input;
    bool m_bPaced;
    PlaybackPacer m_pacer;
};

#endif
