// A protocol message: a tag and a payload of TLV records (tag u16 LE,
// length u32 LE, value), kept as one block plus an index of its records.
#ifndef AICAMERA_COMMAND_H
#define AICAMERA_COMMAND_H

#include <list>

#include "TLVMessage.h"

class Command {
public:
    Command();
    explicit Command(unsigned short tag);
    ~Command();
    Command(const Command&) = delete;
    Command& operator=(const Command&) = delete;

    void SetTag(unsigned short tag);
    unsigned short GetTag();

    int AddTLV(unsigned short tag, unsigned int len, void* value);
    // The first record; -1 without payload, without records, or when its
    // value would run past the end of the payload.
    int GetTLV(unsigned short* tag, unsigned int* len, void** value);
    int GetTLV(TLVMessage* out);
    int SetData(void* data, unsigned int size);
    void FreeTLVs();

protected:
    void GetPayload(void** data, unsigned int* size);

private:
    struct TLVEntry {
        unsigned short nTag;
        unsigned int nLength;
        unsigned int nOffset;
    };

    bool AppendEntry(unsigned short tag, unsigned int len, unsigned int offset);
    void FreeRetiredBlocks();

    std::list<TLVEntry> m_tlvs;
    unsigned short m_nTag;
    unsigned char* m_pData;
    unsigned int m_nSize;
    // Blocks replaced by AddTLV stay valid (values handed out before still
    // point into them) until the payload is freed.
    std::list<unsigned char*> m_retired;
};

#endif
