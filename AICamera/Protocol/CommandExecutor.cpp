#include "CommandExecutor.h"

#include <stdint.h>

#include "../../OS/OS_ByteOrder.h"
#include "AsyncCommand.h"
#include "Message.h"
#include "../Log/Trace.h"

#define TRACE_FILE "CommandExecutor"

namespace {
const unsigned char kHostMarker = 0x1A;
const unsigned int kFrameOverhead = 9;  // marker, length, checksum
const unsigned int kHeaderSize = 5;     // marker, length

struct CrcTable {
    unsigned int entries[256];
    CrcTable()
    {
        for (unsigned int i = 0; i < 256; ++i) {
            unsigned int c = i;
            for (int bit = 0; bit < 8; ++bit)
                c = (c & 1) ? (c >> 1) ^ 0xEDB88320u : c >> 1;
            entries[i] = c;
        }
    }
};
}  // namespace

CommandExecutor::CommandExecutor(ReportRegistry* registry, LinkCounters* counters)
    : m_pRegistry(registry), m_pCounters(counters), m_pTransceiver(nullptr), m_bBusy(false), m_bAborted(false), m_pPending(nullptr),
      m_bAnswered(false)
{
}

CommandExecutor::~CommandExecutor() { m_pRegistry = nullptr; }

unsigned int CommandExecutor::GetCheckSums(unsigned char* data, unsigned int len)
{
    static const CrcTable table;
    unsigned int crc = 0xFFFFFFFFu;
    for (unsigned int i = 0; i < len; ++i)
        crc = (crc >> 8) ^ table.entries[(crc ^ data[i]) & 0xFF];
    return crc;
}

int CommandExecutor::Frame(SyncCommand* cmd, Message& frame)
{
    void* payload = nullptr;
    unsigned int size = 0;
    if (cmd->GetRequest(&payload, &size) != 0)
        return -2;
    // The whole frame must fit the port's int-sized write.
    if (static_cast<uint64_t>(size) + kFrameOverhead > INT32_MAX)
        return -2;
    if (frame.WriteChar(kHostMarker) != 0 || frame.WriteInt(size, 0) != 0 || frame.WriteData(payload, size) != 0)
        return -2;
    void* bytes = nullptr;
    unsigned int length = 0;
    frame.GetData(&bytes, &length);
    unsigned int checksum = GetCheckSums(static_cast<unsigned char*>(bytes), length);
    return frame.WriteInt(checksum, 0) != 0 ? -2 : 0;
}

int CommandExecutor::Write(Message& frame, Clock::time_point deadline)
{
    void* bytes = nullptr;
    unsigned int length = 0;
    frame.GetData(&bytes, &length);
    long long left = std::chrono::duration_cast<std::chrono::milliseconds>(deadline - Clock::now()).count();
    if (!m_pTransceiver || left <= 0)
        return -3;
    {
        std::lock_guard<std::mutex> guard(m_hMutex);
        if (m_bAborted)
            return -3;
    }
    // A frame cut short can never be answered: only a whole one counts.
    int written = m_pTransceiver->SendData(bytes, static_cast<int>(length), static_cast<int>(left));
    return written == static_cast<int>(length) ? 0 : -3;
}

int CommandExecutor::Send(SyncCommand* cmd)
{
    if (!cmd)
        return -1;
    Message frame;
    if (Frame(cmd, frame) != 0)
        return -2;
    return Write(frame, Clock::now() + std::chrono::milliseconds(cmd->GetTimeout()));
}

int CommandExecutor::Execute(SyncCommand* cmd)
{
    if (!cmd)
        return -1;
    Clock::time_point deadline = Clock::now() + std::chrono::milliseconds(cmd->GetTimeout());
    Message frame;
    int result = Frame(cmd, frame);
    std::unique_lock<std::mutex> lock(m_hMutex);
    if (result == 0 && !m_hChanged.wait_until(lock, deadline, [this] { return !m_bBusy || m_bAborted; })) {
        // Still queued at the deadline: nothing was sent.
        TRACE_AT(LOG_LEVER_TRACE, "m_hSemaphore Wait Timeout: %d\n", cmd->GetTimeout());
        LinkCounters::Add(m_pCounters->requestsTimedOut);
        return -3;
    }
    if (result != 0 || m_bAborted) {
        TRACE_AT(LOG_LEVER_TRACE, "Send nRet: %d\n", result != 0 ? result : -3);
        return -2;
    }
    // Pending before the frame leaves, so that no answer can come too early for it.
    m_bBusy = true;
    m_pPending = cmd;
    m_bAnswered = false;
    lock.unlock();
    int sent = Write(frame, deadline);
    lock.lock();
    if (sent != 0) {
        TRACE_AT(LOG_LEVER_TRACE, "Send nRet: %d\n", sent);
        result = -2;
    } else if (!m_hChanged.wait_until(lock, deadline, [this] { return m_bAnswered || m_bAborted; }) ||
               !m_bAnswered) {
        TRACE_AT(LOG_LEVER_TRACE, "m_hSemaphore Wait Timeout: %d\n", cmd->GetTimeout());
        if (!m_bAborted)
            LinkCounters::Add(m_pCounters->requestsTimedOut);
        result = -3;
    }
    // An answer that comes after this can complete no later request.
    m_pPending = nullptr;
    m_bAnswered = false;
    m_bBusy = false;
    lock.unlock();
    m_hChanged.notify_all();
    return result;
}

void CommandExecutor::Abort()
{
    {
        std::lock_guard<std::mutex> guard(m_hMutex);
        m_bAborted = true;
    }
    m_hChanged.notify_all();
}

int CommandExecutor::Process(void* frame, unsigned int len)
{
    if (!frame || len == 0)
        return -1;
    unsigned char* bytes = static_cast<unsigned char*>(frame);
    if ((bytes[0] & 0x0F) != 0x01)
        return -2;
    if ((bytes[0] & 0xF0) != 0xA0)
        return -3;
    if (len < kHeaderSize)
        return -4;
    unsigned int size = OS_ReadBigEndian32(bytes + 1);
    if (len < static_cast<uint64_t>(size) + kFrameOverhead)
        return -4;
    unsigned char* payload = bytes + kHeaderSize;
    unsigned int stored = OS_ReadBigEndian32(payload + size);
    if (stored != GetCheckSums(bytes, len - 4)) {
        LinkCounters::Add(m_pCounters->checksumErrors);
        return -5;
    }
    // The first two bytes after the length; of a payload shorter than that,
    // the checksum supplies the rest.
    unsigned short tag = static_cast<unsigned short>(OS_ReadLittleEndian16(payload));
    TRACE_AT(LOG_LEVER_TRACE, "Recv Tag : %04X\n", tag);
    AsyncCommand* handler = m_pRegistry ? m_pRegistry->GetCommand(tag) : nullptr;
    if (handler) {
        handler->SetReport(payload, size);
        // The handler may stop transmission: touch nothing after it.
        handler->Process();
        return 0;
    }
    return DeliverAnswer(tag, payload, size);
}

int CommandExecutor::DeliverAnswer(unsigned short tag, void* payload, unsigned int size)
{
    std::unique_lock<std::mutex> lock(m_hMutex);
    if (!m_pPending) {
        LinkCounters::Add(m_pCounters->lateAnswers);
        return 0;
    }
    if (m_pPending->GetTag() != tag) {
        TRACE_AT(LOG_LEVER_TRACE, "Tag : %04X isn't handle\n", tag);
        LinkCounters::Add(m_pCounters->lateAnswers);
        return 0;
    }
    TRACE_AT(LOG_LEVER_TRACE, "Get Tag : %04X\n", tag);
    m_pPending->SetResponse(payload, size);
    m_bAnswered = true;
    lock.unlock();
    m_hChanged.notify_all();
    return 0;
}
