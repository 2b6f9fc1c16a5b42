#include "Command.h"

#include <stdint.h>
#include <stdlib.h>
#include <string.h>

#include <new>

#include "../../OS/OS_ByteOrder.h"
#include "../Log/Trace.h"

#define TRACE_FILE "Command"

namespace {
const unsigned int kTLVHeaderSize = 6;

void PutLE(unsigned char* at, unsigned int v, unsigned int size) { OS_WriteOrdered(at, v, size, false); }

// Reads up to size little-endian bytes, stopping at the end of the block:
// bytes past the end count as zero.
unsigned int GetLE(const unsigned char* block, uint64_t blockSize, uint64_t at, unsigned int size)
{
    unsigned char bytes[4] = {0, 0, 0, 0};
    for (unsigned int i = 0; i < size && i < sizeof bytes && at + i < blockSize; ++i)
        bytes[i] = block[at + i];
    return OS_ReadOrdered(bytes, size, false);
}
}  // namespace

Command::Command() : m_nTag(0), m_pData(nullptr), m_nSize(0) {}

Command::Command(unsigned short tag) : m_nTag(tag), m_pData(nullptr), m_nSize(0) {}

Command::~Command()
{
    FreeTLVs();
    FreeRetiredBlocks();
}

void Command::SetTag(unsigned short tag)
{
    m_nTag = tag;
    TRACE_AT(LOG_LEVER_TRACE, "Set Tag : %04X\n", tag);
}

unsigned short Command::GetTag() { return m_nTag; }

bool Command::AppendEntry(unsigned short tag, unsigned int len, unsigned int offset)
{
    try {
        m_tlvs.push_back(TLVEntry{tag, len, offset});
    } catch (const std::bad_alloc&) {
        return false;
    }
    return true;
}

void Command::FreeRetiredBlocks()
{
    for (unsigned char* block : m_retired)
        free(block);
    m_retired.clear();
}

int Command::AddTLV(unsigned short tag, unsigned int len, void* value)
{
    uint64_t newSize = static_cast<uint64_t>(m_nSize) + len + kTLVHeaderSize;
    if (newSize > UINT32_MAX)
        return -1;
    unsigned char* block = static_cast<unsigned char*>(malloc(newSize));
    if (!block)
        return -1;
    if (m_nSize)
        memcpy(block, m_pData, m_nSize);
    unsigned char* record = block + m_nSize;
    PutLE(record, tag, 2);
    PutLE(record + 2, len, 4);
    if (len > 0 && value)
        memcpy(record + kTLVHeaderSize, value, len);
    if (m_pData) {
        try {
            m_retired.push_back(m_pData);
        } catch (const std::bad_alloc&) {
            free(block);
            return -1;
        }
    }
    unsigned int offset = m_nSize + kTLVHeaderSize;
    if (!AppendEntry(tag, len, offset)) {
        if (m_pData)
            m_retired.pop_back();
        free(block);
        return -1;
    }
    m_pData = block;
    m_nSize = static_cast<unsigned int>(newSize);
    return 0;
}

int Command::GetTLV(unsigned short* tag, unsigned int* len, void** value)
{
    if (!m_pData || m_tlvs.empty())
        return -1;
    const TLVEntry& first = m_tlvs.front();
    if (static_cast<uint64_t>(first.nOffset) + first.nLength > m_nSize)
        return -1;
    if (tag)
        *tag = first.nTag;
    if (len)
        *len = first.nLength;
    if (value)
        *value = m_pData + first.nOffset;
    return 0;
}

int Command::GetTLV(TLVMessage* out)
{
    if (!out)
        return -1;
    return GetTLV(&out->nTag, &out->nLength, &out->pValue);
}

int Command::SetData(void* data, unsigned int size)
{
    if (m_pData)
        FreeTLVs();
    if (size && !data)
        return -1;
    // Even an empty payload owns a block, so that "no payload" stays distinct.
    unsigned char* block = static_cast<unsigned char*>(malloc(size ? size : 1));
    if (!block)
        return -1;
    if (size)
        memcpy(block, data, size);
    m_pData = block;
    m_nSize = size;
    // A record that claims more than remains is indexed as it stands and ends the walk.
    uint64_t offset = 0;
    while (offset < size) {
        unsigned short tag = static_cast<unsigned short>(GetLE(block, size, offset, 2));
        unsigned int len = GetLE(block, size, offset + 2, 4);
        uint64_t valueOffset = offset + kTLVHeaderSize;
        unsigned int storedOffset = valueOffset > UINT32_MAX ? UINT32_MAX : static_cast<unsigned int>(valueOffset);
        if (!AppendEntry(tag, len, storedOffset)) {
            FreeTLVs();
            return -1;
        }
        offset = valueOffset + len;
    }
    return 0;
}

void Command::FreeTLVs()
{
    m_tlvs.clear();
    free(m_pData);
    m_pData = nullptr;
    m_nSize = 0;
    FreeRetiredBlocks();
}

void Command::GetPayload(void** data, unsigned int* size)
{
    if (data)
        *data = m_pData;
    if (size)
        *size = m_nSize;
}
