#include "Transceiver.h"

#include <errno.h>
#include <stdlib.h>
#include <string.h>

#include <chrono>

#include "../../OS/OS_ByteOrder.h"
#include "../Log/Trace.h"

#define TRACE_FILE "Transceiver"

namespace {
const unsigned char kModuleMarker = 0xA1;
const int kFrameOverhead = 9;

// A read error that no later read recovers from: the module is gone.
bool IsLinkFailure(int error) { return error != EAGAIN && error != EWOULDBLOCK && error != EINTR; }
}  // namespace

Transceiver::Transceiver(FrameReceiver* executor, LinkCounters* counters, LinkEvents* events)
    : m_pPortName(nullptr),
      m_pBuffer(static_cast<unsigned char*>(calloc(DATA_BUFFER_SIZE, 1))),
      m_nReadPos(0),
      m_nWritePos(0),
      m_pExecutor(executor),
      m_pCounters(counters),
      m_pEvents(events),
      m_bWriting(false),
      m_bClosed(false)
{
}

Transceiver::~Transceiver()
{
    m_serial.Close();
    free(m_pBuffer);
    m_pBuffer = nullptr;
    free(m_pPortName);
    m_pPortName = nullptr;
    m_nReadPos = 0;
    m_nWritePos = 0;
}

int Transceiver::Init(char* port)
{
    m_serial.Close();
    free(m_pPortName);
    m_pPortName = port ? strdup(port) : nullptr;
    m_bClosed = false;
    return m_serial.Open(port, this);
}

int Transceiver::Destroy()
{
    m_bClosed = true;
    free(m_pPortName);
    m_pPortName = nullptr;
    return m_serial.Close();
}

int Transceiver::SendData(void* data, int len) { return SendData(data, len, -1); }

int Transceiver::SendData(void* data, int len, int timeoutMs)
{
    std::unique_lock<std::mutex> lock(m_writeLock);
    auto free = [this] { return !m_bWriting; };
    if (timeoutMs < 0)
        m_writeDone.wait(lock, free);
    else if (!m_writeDone.wait_for(lock, std::chrono::milliseconds(timeoutMs), free))
        return 0;
    m_bWriting = true;
    lock.unlock();
    int written = m_serial.Write(data, len, timeoutMs);
    // Write leaves errno at the error that ended it, or 0.
    bool failed = written != len && errno != 0;
    if (written == len) {
        LinkCounters::Add(m_pCounters->framesSent);
        LinkCounters::Add(m_pCounters->bytesSent, static_cast<uint64_t>(len));
    }
    lock.lock();
    m_bWriting = false;
    lock.unlock();
    m_writeDone.notify_one();
    if (failed && !m_bClosed)
        LinkLost();
    return written;
}

bool Transceiver::IsListenerThread() const { return OS_Serial::IsListenerThreadOf(this); }

void Transceiver::Interrupt()
{
    m_serial.Interrupt();
    if (m_pExecutor)
        m_pExecutor->Abort();
}

void Transceiver::started() { m_pEvents->Up(); }

void Transceiver::hangup() { LinkLost(); }

void Transceiver::LinkLost()
{
    Interrupt();
    m_pEvents->Lost();
}

void Transceiver::process(int event)
{
    if (event != 1 || !m_pBuffer)
        return;
    // Edge-triggered: read until the port has nothing more.
    for (;;) {
        int count = m_serial.Read(m_pBuffer + m_nWritePos, DATA_BUFFER_SIZE - m_nWritePos);
        if (count < 0 && errno == EINTR)
            continue;
        if (count < 1) {
            if (count < 0 && IsLinkFailure(errno)) {
                TRACE_AT(LOG_LEVER_ERROR, "read Return Fail | Errno: %d %s\n", errno, strerror(errno));
                LinkLost();
            }
            return;
        }
        m_nWritePos += count;
        LinkCounters::Add(m_pCounters->bytesReceived, static_cast<uint64_t>(count));
        if (m_nWritePos > DATA_BUFFER_SIZE) {
            TRACE_AT(LOG_LEVER_FATAL, "m_nWritePos overflow : %d DATA_BUFFER_SIZE : %d\n", m_nWritePos,
                     DATA_BUFFER_SIZE);
            return;
        }
        if (!Dispatch())
            return;
    }
}

int Transceiver::Receive(const void* data, int len)
{
    if (!m_pBuffer || !data || len <= 0)
        return 0;
    int room = DATA_BUFFER_SIZE - m_nWritePos;
    int taken = len < room ? len : room;
    memcpy(m_pBuffer + m_nWritePos, data, static_cast<size_t>(taken));
    m_nWritePos += taken;
    Dispatch();
    return taken;
}

bool Transceiver::Dispatch()
{
    while (m_nWritePos - m_nReadPos > kFrameOverhead) {
        unsigned char* start = m_pBuffer + m_nReadPos;
        uint64_t size = OS_ReadBigEndian32(start + 1);
        // No search for the next marker: a wrong byte at a frame boundary, or a
        // frame that could never fit the buffer, drops everything buffered.
        if (start[0] != kModuleMarker || size + kFrameOverhead > DATA_BUFFER_SIZE) {
            LinkCounters::Add(m_pCounters->resyncs);
            m_nReadPos = 0;
            m_nWritePos = 0;
            return true;
        }
        uint64_t available = static_cast<uint64_t>(m_nWritePos - m_nReadPos);
        if (available <= size + kFrameOverhead - 1)
            break;
        unsigned int frameSize = static_cast<unsigned int>(size + kFrameOverhead);
        m_nReadPos += static_cast<int>(frameSize);
        LinkCounters::Add(m_pCounters->framesReceived);
        if (m_pExecutor)
            m_pExecutor->Process(start, frameSize);
        // A report callback may have closed the port; then read nothing more.
        if (m_bClosed)
            return false;
    }
    // Unprocessed bytes move to the front once per read.
    int remaining = m_nWritePos - m_nReadPos;
    if (remaining > 0 && m_nReadPos > 0)
        memmove(m_pBuffer, m_pBuffer + m_nReadPos, static_cast<size_t>(remaining));
    m_nReadPos = 0;
    m_nWritePos = remaining;
    return true;
}
