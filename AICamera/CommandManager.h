// The process-wide owner of the serial link: starts and stops data
// transmission on a named port, executes requests and keeps the registry of
// report handlers.
#ifndef AICAMERA_COMMANDMANAGER_H
#define AICAMERA_COMMANDMANAGER_H

#include <atomic>
#include <vector>

#include "../OS/OS_Mutex.h"
#include "Command.h"
#include "CommandExecutor.h"
#include "Transceiver.h"

class CommandManager {
public:
    static CommandManager* GetInstance();

    int StartDataTransmit(void* port);
    int StopDataTransmit();
    int Execute(SyncCommand* cmd, bool wait);
    int Register(AsyncCommand* cmd);
    AsyncCommand* GetCommand(unsigned short tag);

    CommandExecutor* GetExecutor() { return m_pExecutor.load(); }
    Transceiver* GetTransceiver() { return m_pTransceiver.load(); }

    CommandManager();
    ~CommandManager();
    CommandManager(const CommandManager&) = delete;
    CommandManager& operator=(const CommandManager&) = delete;

private:
    void ClearCommands();

    // Read on the listener thread while connect and disconnect change them.
    std::atomic<CommandExecutor*> m_pExecutor;
    std::atomic<Transceiver*> m_pTransceiver;
    // Not owned: the handlers outlive their registration. Registration
    // follows the start, so frames may be looked up meanwhile: hence the lock.
    std::vector<AsyncCommand*> m_commands;
    OS_Mutex m_hCommandsMutex;
};

#endif
