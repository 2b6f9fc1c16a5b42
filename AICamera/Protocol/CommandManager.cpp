#include "CommandManager.h"

#include <string.h>

#include <new>

#include "../Log/Trace.h"

#define TRACE_FILE "CommandManager"

namespace {
const size_t kPortNameSize = 255;
}  // namespace

CommandManager::CommandManager()
    : m_state(LINK_STOPPED), m_nCallers(0), m_pExecutor(nullptr), m_pTransceiver(nullptr), m_pStopping(nullptr)
{
}

CommandManager::~CommandManager()
{
    StopDataTransmit();
    // At exit, a link retired by its own listener thread is waited for.
    for (const Link& link : m_retired) {
        delete link.pTransceiver;
        delete link.pExecutor;
    }
    ClearCommands();
}

void CommandManager::ClearCommands()
{
    std::lock_guard<std::mutex> guard(m_commandsLock);
    m_commands.clear();
}

CommandManager* CommandManager::GetInstance()
{
    static CommandManager instance;
    return &instance;
}

Transceiver* CommandManager::GetTransceiver()
{
    std::lock_guard<std::mutex> guard(m_linkLock);
    return m_pTransceiver;
}

bool CommandManager::WaitWhileStopping(std::unique_lock<std::mutex>& lock)
{
    while (m_state == LINK_STOPPING) {
        // The stopping thread may be joining this very thread.
        if (m_pStopping->IsListenerThread())
            return false;
        m_linkChanged.wait(lock);
    }
    return true;
}

void CommandManager::FreeRetiredLinks()
{
    std::vector<Link> ended;
    {
        std::lock_guard<std::mutex> guard(m_linkLock);
        for (auto it = m_retired.begin(); it != m_retired.end();) {
            // Never waits for a callback that has not returned yet.
            if (it->pTransceiver->ListenerStillRunning()) {
                ++it;
                continue;
            }
            ended.push_back(*it);
            it = m_retired.erase(it);
        }
    }
    for (const Link& link : ended) {
        delete link.pTransceiver;
        delete link.pExecutor;
    }
}

int CommandManager::StartDataTransmit(void* port, LinkObserver* observer)
{
    const char* name = static_cast<const char*>(port);
    if (!name || !name[0])
        return -4;
    if (strnlen(name, kPortNameSize) >= kPortNameSize) {
        TRACE_AT(LOG_LEVER_ERROR, "Port Name Too Long : %zu\n", strlen(name));
        return -4;
    }
    StopDataTransmit();
    std::unique_lock<std::mutex> lock(m_linkLock);
    if (!WaitWhileStopping(lock) || m_state != LINK_STOPPED)
        return -1;
    char portName[kPortNameSize] = {0};
    memcpy(portName, name, strlen(name));
    // The executor exists before the port opens, so that no frame finds none.
    m_counters.Reset();
    m_events.Begin(observer);
    CommandExecutor* executor = new (std::nothrow) CommandExecutor(this, &m_counters);
    Transceiver* transceiver = executor ? new (std::nothrow) Transceiver(executor, &m_counters, &m_events) : nullptr;
    if (transceiver)
        executor->SetTransceiver(transceiver);
    if (!transceiver || transceiver->Init(portName) != 0) {
        if (transceiver)
            transceiver->Destroy();
        delete transceiver;
        delete executor;
        m_events.Begin(nullptr);
        return -2;
    }
    m_pExecutor = executor;
    m_pTransceiver = transceiver;
    m_state = LINK_RUNNING;
    return 0;
}

int CommandManager::StopDataTransmit()
{
    std::unique_lock<std::mutex> lock(m_linkLock);
    if (!WaitWhileStopping(lock) || m_state != LINK_RUNNING) {
        lock.unlock();
        FreeRetiredLinks();
        return -1;
    }
    Link link = {m_pTransceiver, m_pExecutor};
    m_pTransceiver = nullptr;
    m_pExecutor = nullptr;
    m_pStopping = link.pTransceiver;
    m_state = LINK_STOPPING;
    // Waiting and queued requests, and a write in progress, give up now.
    link.pTransceiver->Interrupt();
    m_linkChanged.wait(lock, [this] { return m_nCallers == 0; });
    lock.unlock();

    bool onListener = link.pTransceiver->IsListenerThread();
    link.pTransceiver->Destroy();
    ClearCommands();

    lock.lock();
    if (onListener)
        m_retired.push_back(link);
    m_pStopping = nullptr;
    m_state = LINK_STOPPED;
    lock.unlock();
    m_linkChanged.notify_all();
    if (!onListener) {
        delete link.pTransceiver;
        delete link.pExecutor;
    }
    FreeRetiredLinks();
    // Last, so that the observer may start the link again from here.
    m_events.Closed();
    return 0;
}

int CommandManager::Execute(SyncCommand* cmd, bool wait)
{
    if (!cmd)
        return -1;
    CommandExecutor* executor = nullptr;
    {
        std::lock_guard<std::mutex> guard(m_linkLock);
        if (m_state != LINK_RUNNING)
            return -1;
        executor = m_pExecutor;
        ++m_nCallers;
    }
    int result = wait ? executor->Execute(cmd) : executor->Send(cmd);
    {
        std::lock_guard<std::mutex> guard(m_linkLock);
        --m_nCallers;
    }
    m_linkChanged.notify_all();
    return result;
}

int CommandManager::Register(AsyncCommand* cmd)
{
    if (!cmd)
        return -1;
    std::lock_guard<std::mutex> guard(m_commandsLock);
    for (AsyncCommand* registered : m_commands)
        if (registered->GetTag() == cmd->GetTag())
            return -9;
    try {
        m_commands.push_back(cmd);
    } catch (const std::bad_alloc&) {
        return -1;
    }
    return 0;
}

AsyncCommand* CommandManager::GetCommand(unsigned short tag)
{
    std::lock_guard<std::mutex> guard(m_commandsLock);
    for (AsyncCommand* cmd : m_commands)
        if (cmd->GetTag() == tag)
            return cmd;
    return nullptr;
}
