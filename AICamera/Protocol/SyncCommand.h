// A request that is sent and waits for its answer; the answer replaces the
// request payload in the same object.
#ifndef AICAMERA_SYNCCOMMAND_H
#define AICAMERA_SYNCCOMMAND_H

#include "Command.h"

class SyncCommand : public Command {
public:
    SyncCommand();

    int GetRequest(void** data, unsigned int* size);
    int SetResponse(void* data, unsigned int size);
    int GetResult(TLVMessage* out);
    int GetResult(unsigned short* tag, unsigned int* len, void** value);
    unsigned int GetTimeout();
    void SetTimeout(unsigned int ms);

private:
    unsigned int m_nTimeout;
};

#endif
