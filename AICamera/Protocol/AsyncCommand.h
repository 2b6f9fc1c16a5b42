// A registered handler for a report that the module sends on its own.
#ifndef AICAMERA_ASYNCCOMMAND_H
#define AICAMERA_ASYNCCOMMAND_H

#include "Command.h"

class AsyncCommand : public Command {
public:
    AsyncCommand() = default;
    virtual int Process() = 0;
    virtual ~AsyncCommand() = default;

    int SetReport(void* data, unsigned int size);
    int GetResult(TLVMessage* out);
};

#endif
