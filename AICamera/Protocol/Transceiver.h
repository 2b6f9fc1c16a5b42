// Listens on the serial port: reads what the module sends into one fixed
// buffer, cuts it into frames for the command executor, and writes frames out,
// each whole and never interleaved with another.
#ifndef AICAMERA_TRANSCEIVER_H
#define AICAMERA_TRANSCEIVER_H

#include <atomic>
#include <condition_variable>
#include <mutex>

#include "../../OS/Serial_Linux/OS_Serial.h"
#include "LinkEvents.h"
#include "LinkRoles.h"
#include "LinkStatistics.h"

#define DATA_BUFFER_SIZE 0x20000


class Transceiver : public OS_Serial_Listener, public FrameWriter {
public:
    // Received frames go to `executor`; traffic is counted in `counters` and
    // the link's coming up and loss told to `events`. All three outlive the
    // listener thread.
    Transceiver(FrameReceiver* executor, LinkCounters* counters, LinkEvents* events);
    ~Transceiver() override;
    Transceiver(const Transceiver&) = delete;
    Transceiver& operator=(const Transceiver&) = delete;

    int Init(char* port);
    int Destroy();
    // Writes one whole frame under the write lock: the bytes written, len on success.
    int SendData(void* data, int len);
    int SendData(void* data, int len, int timeoutMs) override;
    void process(int event) override;
    // The listener thread runs: the link is up.
    void started() override;
    // The port hung up: the executor fails what waits and what comes.
    void hangup() override;
    // The link is going: requests that wait, writes in progress and everything
    // later fail at once. Callable from any thread.
    void Interrupt();

    // Takes bytes as if they had been read from the port; for programs that
    // drive the receive path without a port. Returns the count taken.
    int Receive(const void* data, int len);
    // True on the port's listener thread (a report callback runs there).
    bool IsListenerThread() const;
    // After a Destroy from inside a report callback: true until the listener
    // thread has left the callback and ended.
    bool ListenerStillRunning() const { return m_serial.EndedListenerRunning(); }

private:
    // Cuts the buffered bytes into frames; false when the port was closed meanwhile.
    bool Dispatch();
    // The module is gone: what waits fails at once, and the application hears of it.
    void LinkLost();

    OS_Serial m_serial;
    char* m_pPortName;
    unsigned char* m_pBuffer;
    int m_nReadPos;
    int m_nWritePos;
    FrameReceiver* m_pExecutor;
    LinkCounters* m_pCounters;
    LinkEvents* m_pEvents;
    // One frame's writes at a time, from requests and acknowledgements alike.
    std::mutex m_writeLock;
    std::condition_variable m_writeDone;
    bool m_bWriting;
    // Set by Destroy; a report callback may call it on the listener thread.
    std::atomic<bool> m_bClosed;
};

#endif
