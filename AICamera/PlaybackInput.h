// The byte source of a replayed recording: a file or FIFO read through an
// FFmpeg I/O context whose reads can be woken, so that closing a stream whose
// writer has gone quiet does not wait for that writer.
#ifndef AICAMERA_PLAYBACKINPUT_H
#define AICAMERA_PLAYBACKINPUT_H

struct AVIOContext;

class PlaybackInput {
public:
    PlaybackInput();
    ~PlaybackInput();
    PlaybackInput(const PlaybackInput&) = delete;
    PlaybackInput& operator=(const PlaybackInput&) = delete;

    // Opens path for reading (a FIFO waits here for its writer); 0 or a
    // negative FFmpeg error code.
    int Open(const char* path);
    // Null until Open succeeds.
    AVIOContext* Context() const { return m_pContext; }
    // Makes the pending and every later read fail at once; safe from any thread.
    void Wake();
    void Close();

private:
    static int Read(void* opaque, unsigned char* buf, int size);

    int m_nFd;
    int m_nWakeFd;
    AVIOContext* m_pContext;
};

#endif
