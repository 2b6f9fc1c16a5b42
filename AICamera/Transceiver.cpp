#include "Transceiver.h"

#include <stdint.h>
#include <stdlib.h>
#include <string.h>

#include "CommandExecutor.h"
#include "CommandManager.h"
#include "Trace.h"

#define TRACE_FILE "Transceiver"

namespace {
const unsigned char kModuleMarker = 0xA1;
const int kFrameOverhead = 9;
}  // namespace

Transceiver::Transceiver(CommandManager* manager)
    : m_pPortName(nullptr),
      m_pBuffer(static_cast<unsigned char*>(calloc(DATA_BUFFER_SIZE, 1))),
      m_nReadPos(0),
      m_nWritePos(0),
      m_pManager(manager)
{
}

Transceiver::~Transceiver()
{
    free(m_pBuffer);
    m_pBuffer = nullptr;
    free(m_pPortName);
    m_pPortName = nullptr;
    m_nReadPos = 0;
    m_nWritePos = 0;
    m_pManager = nullptr;
}

int Transceiver::Init(char* port)
{
    m_serial.Close();
    free(m_pPortName);
    m_pPortName = port ? strdup(port) : nullptr;
    return m_serial.Open(port, this);
}

int Transceiver::Destroy()
{
    free(m_pPortName);
    m_pPortName = nullptr;
    return m_serial.Close();
}

int Transceiver::SendData(void* data, int len) { return m_serial.Write(data, len); }

bool Transceiver::IsListenerThread() const { return m_serial.IsListenerThread(); }

void Transceiver::DeleteOnListenerExit() { m_serial.DeleteListenerOnExit(this); }

void Transceiver::process(int event)
{
    if (event != 1 || !m_pBuffer)
        return;
    // Edge-triggered: read until the port has nothing more.
    for (;;) {
        int count = m_serial.Read(m_pBuffer + m_nWritePos, DATA_BUFFER_SIZE - m_nWritePos);
        if (count < 1)
            return;
        m_nWritePos += count;
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
        if (start[0] != kModuleMarker) {
            // No search for the next marker: everything buffered is dropped.
            m_nReadPos = 0;
            m_nWritePos = 0;
            return true;
        }
        uint64_t size = (static_cast<uint64_t>(start[1]) << 24) | (start[2] << 16) | (start[3] << 8) | start[4];
        uint64_t available = static_cast<uint64_t>(m_nWritePos - m_nReadPos);
        if (available <= size + kFrameOverhead - 1)
            break;
        unsigned int frameSize = static_cast<unsigned int>(size + kFrameOverhead);
        m_nReadPos += static_cast<int>(frameSize);
        CommandExecutor* executor = m_pManager ? m_pManager->GetExecutor() : nullptr;
        if (executor)
            executor->Process(start, frameSize);
        // A report callback may have closed the port; then nothing here is ours to touch.
        if (m_serial.ClosedByListener())
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
