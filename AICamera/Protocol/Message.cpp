#include "Message.h"

#include <stdint.h>
#include <stdlib.h>
#include <string.h>

#include "../../OS/OS_ByteOrder.h"

Message::Message()
{
    Init();
    GrowData(1024);
}

Message::Message(void* data, unsigned int len)
{
    Init();
    WriteData(data, len);
}

Message::~Message() { Clear(); }

void Message::Init()
{
    m_pData = nullptr;
    m_nPosition = 0;
    m_nLength = 0;
    m_nCapacity = 0;
}

void Message::Clear()
{
    if (m_pData) {
        free(m_pData);
        Init();
    }
}

int Message::GrowData(unsigned int n)
{
    uint64_t needed = static_cast<uint64_t>(m_nLength) + n;
    if (needed <= m_nCapacity)
        return 0;
    // A block can never hold more than a 32-bit length can count.
    if (needed > UINT32_MAX)
        return -1;
    uint64_t wanted = (needed * 3) >> 1;
    unsigned int capacity = wanted > UINT32_MAX ? UINT32_MAX : static_cast<unsigned int>(wanted);
    unsigned char* block = static_cast<unsigned char*>(calloc(capacity, 1));
    if (!block)
        return -1;
    if (m_nLength)
        memcpy(block, m_pData, m_nLength);
    free(m_pData);
    m_pData = block;
    m_nCapacity = capacity;
    return 0;
}

int Message::WriteData(void* src, unsigned int n)
{
    if (n == 0)
        return GrowData(0);
    if (!src || GrowData(n) != 0)
        return -1;
    memcpy(m_pData + m_nLength, src, n);
    m_nLength += n;
    return 0;
}

int Message::WriteChar(unsigned char v) { return WriteOrdered(v, 1, true); }

int Message::WriteShort(unsigned short v, unsigned int order) { return WriteOrdered(v, 2, order == 0); }

int Message::WriteInt(unsigned int v, unsigned int order) { return WriteOrdered(v, 4, order == 0); }

int Message::WriteOrdered(unsigned int v, unsigned int size, bool bigEndian)
{
    if (GrowData(size) != 0)
        return -1;
    OS_WriteOrdered(m_pData + m_nLength, v, size, bigEndian);
    m_nLength += size;
    return 0;
}

bool Message::CanRead(unsigned int n) const
{
    return static_cast<uint64_t>(m_nPosition) + n <= m_nLength;
}

unsigned int Message::ReadOrdered(unsigned int size, bool bigEndian)
{
    unsigned int v = OS_ReadOrdered(m_pData + m_nPosition, size, bigEndian);
    m_nPosition += size;
    return v;
}

int Message::ReadData(void* dst, unsigned int n)
{
    if (!CanRead(n) || (n && !dst))
        return -1;
    if (n)
        memcpy(dst, m_pData + m_nPosition, n);
    m_nPosition += n;
    return 0;
}

int Message::ReadData(void** p, unsigned int n)
{
    if (!CanRead(n) || !p)
        return -1;
    *p = m_pData + m_nPosition;
    return 0;
}

int Message::ReadChar(unsigned char* v)
{
    if (!CanRead(1) || !v)
        return -1;
    *v = static_cast<unsigned char>(ReadOrdered(1, true));
    return 0;
}

int Message::ReadShort(unsigned short* v, int order)
{
    if (!CanRead(2) || !v)
        return -1;
    *v = static_cast<unsigned short>(ReadOrdered(2, order == 0));
    return 0;
}

int Message::ReadInt(unsigned int* v, int order)
{
    if (!CanRead(4) || !v)
        return -1;
    *v = ReadOrdered(4, order == 0);
    return 0;
}

void Message::GetData(void** p, unsigned int* len)
{
    if (p)
        *p = m_pData;
    if (len)
        *len = m_nLength;
}

int Message::SetPosition(unsigned int pos)
{
    if (pos >= m_nLength)
        return -1;
    m_nPosition = pos;
    return 0;
}

unsigned int Message::GetPosition() { return m_nPosition; }

int Message::MovePositionRight(unsigned int n)
{
    if (static_cast<uint64_t>(m_nPosition) + n >= m_nLength)
        return -1;
    m_nPosition += n;
    return 0;
}

int Message::MovePositionLeft(unsigned int n)
{
    if (m_nPosition < n)
        return -1;
    m_nPosition -= n;
    return 0;
}
