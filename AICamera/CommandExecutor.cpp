#include "CommandExecutor.h"

#include <stdint.h>

#include "CommandManager.h"
#include "Message.h"
#include "Trace.h"

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

unsigned int ReadBE32(const unsigned char* p)
{
    return (static_cast<unsigned int>(p[0]) << 24) | (static_cast<unsigned int>(p[1]) << 16) |
           (static_cast<unsigned int>(p[2]) << 8) | p[3];
}

// The tag of the first record; bytes the payload does not hold count as zero.
unsigned short FirstTag(const unsigned char* payload, unsigned int size)
{
    unsigned short tag = size > 0 ? payload[0] : 0;
    if (size > 1)
        tag = static_cast<unsigned short>(tag | (payload[1] << 8));
    return tag;
}
}  // namespace

CommandExecutor::CommandExecutor(CommandManager* manager) : m_pManager(manager), m_pPending(nullptr)
{
    m_hMutex.Init();
    m_hSemaphore.Init(0);
    m_hPendingMutex.Init();
}

CommandExecutor::~CommandExecutor() { m_pManager = nullptr; }

unsigned int CommandExecutor::GetCheckSums(unsigned char* data, unsigned int len)
{
    static const CrcTable table;
    unsigned int crc = 0xFFFFFFFFu;
    for (unsigned int i = 0; i < len; ++i)
        crc = (crc >> 8) ^ table.entries[(crc ^ data[i]) & 0xFF];
    return crc;
}

int CommandExecutor::Send(SyncCommand* cmd)
{
    if (!cmd)
        return -1;
    void* payload = nullptr;
    unsigned int size = 0;
    if (cmd->GetRequest(&payload, &size) != 0)
        return -2;
    // The whole frame must fit the port's int-sized write.
    if (static_cast<uint64_t>(size) + kFrameOverhead > INT32_MAX)
        return -2;
    Message frame;
    if (frame.WriteChar(kHostMarker) != 0 || frame.WriteInt(size, 0) != 0 || frame.WriteData(payload, size) != 0)
        return -2;
    void* bytes = nullptr;
    unsigned int length = 0;
    frame.GetData(&bytes, &length);
    unsigned int checksum = GetCheckSums(static_cast<unsigned char*>(bytes), length);
    if (frame.WriteInt(checksum, 0) != 0)
        return -2;
    frame.GetData(&bytes, &length);
    Transceiver* transceiver = m_pManager ? m_pManager->GetTransceiver() : nullptr;
    if (!transceiver)
        return -3;
    // Only a write of zero bytes counts as a failure.
    return transceiver->SendData(bytes, static_cast<int>(length)) == 0 ? -3 : 0;
}

void CommandExecutor::SetPending(SyncCommand* cmd)
{
    m_hPendingMutex.Lock();
    if (cmd) {
        // An answer that came after an earlier time-out must not complete this request.
        while (m_hSemaphore.TryWait() == 0) {
        }
    }
    m_pPending = cmd;
    m_hPendingMutex.Unlock();
}

int CommandExecutor::Execute(SyncCommand* cmd)
{
    if (!cmd)
        return -1;
    m_hMutex.Lock();
    // Pending before the frame leaves, so that no answer can come too early for it.
    SetPending(cmd);
    int result = Send(cmd);
    if (result != 0) {
        TRACE_AT(LOG_LEVER_TRACE, "Send nRet: %d\n", result);
        result = -2;
    } else if (m_hSemaphore.Wait(static_cast<int>(cmd->GetTimeout())) != 0) {
        TRACE_AT(LOG_LEVER_TRACE, "m_hSemaphore Wait Timeout: %d\n", cmd->GetTimeout());
        result = -3;
    }
    SetPending(nullptr);
    m_hMutex.Unlock();
    return result;
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
    unsigned int size = ReadBE32(bytes + 1);
    if (len < static_cast<uint64_t>(size) + kFrameOverhead)
        return -4;
    unsigned char* payload = bytes + kHeaderSize;
    unsigned int stored = ReadBE32(payload + size);
    if (stored != GetCheckSums(bytes, len - 4))
        return -5;
    unsigned short tag = FirstTag(payload, size);
    TRACE_AT(LOG_LEVER_TRACE, "Recv Tag : %04X\n", tag);
    AsyncCommand* handler = m_pManager ? m_pManager->GetCommand(tag) : nullptr;
    if (handler) {
        handler->SetReport(payload, size);
        // The handler may stop transmission and so delete this executor: touch nothing after it.
        handler->Process();
        return 0;
    }
    return DeliverAnswer(tag, payload, size);
}

int CommandExecutor::DeliverAnswer(unsigned short tag, void* payload, unsigned int size)
{
    m_hPendingMutex.Lock();
    if (m_pPending) {
        if (m_pPending->GetTag() != tag) {
            TRACE_AT(LOG_LEVER_TRACE, "Tag : %04X isn't handle\n", tag);
        } else {
            TRACE_AT(LOG_LEVER_TRACE, "Get Tag : %04X\n", tag);
            m_pPending->SetResponse(payload, size);
            m_hSemaphore.Post();
        }
    }
    m_hPendingMutex.Unlock();
    return 0;
}
