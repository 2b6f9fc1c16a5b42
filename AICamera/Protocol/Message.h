// Growable byte buffer with a separate read position. Every 16- and 32-bit
// access takes a byte order: 0 big-endian, anything else little-endian.
#ifndef AICAMERA_MESSAGE_H
#define AICAMERA_MESSAGE_H

class Message {
public:
    Message();
    Message(void* data, unsigned int len);
    ~Message();
    Message(const Message&) = delete;
    Message& operator=(const Message&) = delete;

    void Init();
    void Clear();
    int GrowData(unsigned int n);

    int WriteData(void* src, unsigned int n);
    int WriteChar(unsigned char v);
    int WriteShort(unsigned short v, unsigned int order);
    int WriteInt(unsigned int v, unsigned int order);

    int ReadData(void* dst, unsigned int n);
    // Points into the block without moving the position.
    int ReadData(void** p, unsigned int n);
    int ReadChar(unsigned char* v);
    int ReadShort(unsigned short* v, int order);
    int ReadInt(unsigned int* v, int order);

    void GetData(void** p, unsigned int* len);
    int SetPosition(unsigned int pos);
    unsigned int GetPosition();
    int MovePositionRight(unsigned int n);
    int MovePositionLeft(unsigned int n);

private:
    bool CanRead(unsigned int n) const;
    int WriteOrdered(unsigned int v, unsigned int size, bool bigEndian);
    unsigned int ReadOrdered(unsigned int size, bool bigEndian);

    unsigned char* m_pData;
    unsigned int m_nPosition;
    unsigned int m_nLength;
    unsigned int m_nCapacity;
};

#endif
