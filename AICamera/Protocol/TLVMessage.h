// One record handed out of a command; pValue is borrowed from the command.
#ifndef AICAMERA_TLVMESSAGE_H
#define AICAMERA_TLVMESSAGE_H

struct TLVMessage {
    unsigned short nTag;
    unsigned int nLength;
    void* pValue;
};

#endif
