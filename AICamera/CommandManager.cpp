#include "CommandManager.h"

#include <string.h>

#include <new>

#include "Trace.h"

#define TRACE_FILE "CommandManager"

namespace {
const size_t kPortNameSize = 255;
}  // namespace

CommandManager::CommandManager() : m_pExecutor(nullptr), m_pTransceiver(nullptr) { m_hCommandsMutex.Init(); }

CommandManager::~CommandManager()
{
    if (m_pTransceiver)
        StopDataTransmit();
    ClearCommands();
}

void CommandManager::ClearCommands()
{
    m_hCommandsMutex.Lock();
    m_commands.clear();
    m_hCommandsMutex.Unlock();
}

CommandManager* CommandManager::GetInstance()
{
    static CommandManager instance;
    return &instance;
}

int CommandManager::StartDataTransmit(void* port)
{
    const char* name = static_cast<const char*>(port);
    if (!name || !name[0])
        return -4;
    if (strnlen(name, kPortNameSize) >= kPortNameSize) {
        TRACE_AT(LOG_LEVER_ERROR, "Port Name Too Long : %zu\n", strlen(name));
        return -4;
    }
    StopDataTransmit();
    if (m_pTransceiver)
        return -1;
    char portName[kPortNameSize] = {0};
    memcpy(portName, name, strlen(name));
    // The executor exists before the port opens, so that no frame finds none.
    m_pExecutor = new (std::nothrow) CommandExecutor(this);
    m_pTransceiver = m_pExecutor ? new (std::nothrow) Transceiver(this) : nullptr;
    if (!m_pTransceiver || m_pTransceiver.load()->Init(portName) != 0) {
        if (m_pTransceiver)
            m_pTransceiver.load()->Destroy();
        delete m_pTransceiver.load();
        delete m_pExecutor.load();
        m_pTransceiver = nullptr;
        m_pExecutor = nullptr;
        return -2;
    }
    return 0;
}

int CommandManager::StopDataTransmit()
{
    if (!m_pTransceiver)
        return -1;
    Transceiver* transceiver = m_pTransceiver.exchange(nullptr);
    bool onListener = transceiver->IsListenerThread();
    transceiver->Destroy();
    // A report callback that stops transmission runs inside the transceiver:
    // it goes when the listener thread unwinds.
    if (onListener)
        transceiver->DeleteOnListenerExit();
    else
        delete transceiver;
    delete m_pExecutor.exchange(nullptr);
    ClearCommands();
    return 0;
}

int CommandManager::Execute(SyncCommand* cmd, bool wait)
{
    CommandExecutor* executor = m_pExecutor.load();
    if (!cmd || !executor)
        return -1;
    return wait ? executor->Execute(cmd) : executor->Send(cmd);
}

int CommandManager::Register(AsyncCommand* cmd)
{
    if (!cmd)
        return -1;
    if (GetCommand(cmd->GetTag()))
        return -9;
    int result = 0;
    m_hCommandsMutex.Lock();
    try {
        m_commands.push_back(cmd);
    } catch (const std::bad_alloc&) {
        result = -1;
    }
    m_hCommandsMutex.Unlock();
    return result;
}

AsyncCommand* CommandManager::GetCommand(unsigned short tag)
{
    AsyncCommand* found = nullptr;
    m_hCommandsMutex.Lock();
    for (AsyncCommand* cmd : m_commands) {
        if (cmd->GetTag() == tag) {
            found = cmd;
            break;
        }
    }
    m_hCommandsMutex.Unlock();
    return found;
}
