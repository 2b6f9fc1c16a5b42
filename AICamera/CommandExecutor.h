// Frames a request, sends it and waits for its answer; on the listener
// thread, checks each received frame and hands it to the report handler
// registered for its tag or to the request that waits for it.
//
// Frame: marker (0x1A to the module, 0xA1 from it), payload length u32 BE,
// payload, CRC-32/JAMCRC u32 BE over marker, length and payload.
#ifndef AICAMERA_COMMANDEXECUTOR_H
#define AICAMERA_COMMANDEXECUTOR_H

#include "../OS/OS_Mutex.h"
#include "../OS/OS_Semaphore.h"
#include "Command.h"

class CommandManager;

class CommandExecutor {
public:
    explicit CommandExecutor(CommandManager* manager);
    ~CommandExecutor();
    CommandExecutor(const CommandExecutor&) = delete;
    CommandExecutor& operator=(const CommandExecutor&) = delete;

    int Send(SyncCommand* cmd);
    int Execute(SyncCommand* cmd);
    int Process(void* frame, unsigned int len);
    static unsigned int GetCheckSums(unsigned char* data, unsigned int len);

private:
    int DeliverAnswer(unsigned short tag, void* payload, unsigned int size);
    void SetPending(SyncCommand* cmd);

    CommandManager* m_pManager;
    SyncCommand* m_pPending;
    OS_Mutex m_hMutex;
    OS_Semaphore m_hSemaphore;
    // Guards m_pPending between Execute and Process; never held across the wait.
    OS_Mutex m_hPendingMutex;
};

#endif
