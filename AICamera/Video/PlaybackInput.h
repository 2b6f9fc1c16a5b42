// The byte source of a replayed recording: a file or a FIFO, cut into one
// packet per picture. Its reads can be woken and interrupted, so that closing
// a stream whose writer has gone quiet, or an open that waits too long, never
// waits for that writer.
#ifndef AICAMERA_PLAYBACKINPUT_H
#define AICAMERA_PLAYBACKINPUT_H

#include "MjpegCutter.h"

struct AVPacket;
struct AVIOInterruptCB;

class PlaybackInput {
public:
    PlaybackInput();
    ~PlaybackInput();
    PlaybackInput(const PlaybackInput&) = delete;
    PlaybackInput& operator=(const PlaybackInput&) = delete;

    // Opens path for reading; a FIFO's writer is not waited for here. 0 or a
    // negative FFmpeg error code.
    int Open(const char* path);
    // A regular file holds a recording, to be replayed at a set rate; a FIFO
    // is fed live and needs no pacing.
    bool IsFile() const { return m_bFile; }
    // Fills `packet` with the next picture and the bytes around it. Waits for
    // bytes, asking `interrupt` now and then. 0; AVERROR_EOF at the end of the
    // stream; AVERROR_EXIT when woken or interrupted; another negative FFmpeg
    // error when the source fails.
    int ReadPacket(AVPacket* packet, const AVIOInterruptCB& interrupt);
    // Makes the pending and every later read fail until the next Open; safe
    // from any thread.
    void Wake();
    void Close();

private:
    // Waits for bytes and reads what is there; 0 (possibly with nothing read), or a negative error.
    int Fill(const AVIOInterruptCB& interrupt);
    bool BytesWaiting() const;

    int m_nFd;
    const int m_nWakeFd;
    bool m_bFile;
    bool m_bEnded;
    MjpegCutter m_cutter;
};

#endif
