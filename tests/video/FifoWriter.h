// The writing end of a FIFO that a playback reads: opened on a thread of its
// own (opening blocks until the reader comes), then fed from the test.
#ifndef TESTS_VIDEO_FIFOWRITER_H
#define TESTS_VIDEO_FIFOWRITER_H

#include <string>
#include <thread>

#include "MjpegClip.h"

class FifoWriter {
public:
    // Makes the FIFO and starts opening it; `first` is written once open.
    FifoWriter(const std::string& path, const Bytes& first);
    ~FifoWriter();
    // Waits for the opening thread; true when the FIFO is open and `first` written.
    bool Opened();
    bool Write(const Bytes& bytes);
    // Closes the writing end: the reader sees the end of the stream.
    void Close();

private:
    std::string m_path;
    int m_fd;
    bool m_opened;
    std::thread m_opener;
};

#endif
