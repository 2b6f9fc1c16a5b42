// The process-wide owner of the serial link: starts and stops data
// transmission on a named port, executes requests and keeps the registry of
// report handlers.
//
// The link's life, guarded by m_linkLock:
//   STOPPED  StartDataTransmit opens the port (-> RUNNING); Execute gives -1;
//            StopDataTransmit gives -1.
//   RUNNING  Execute runs requests (counted in m_nCallers); the listener
//            thread delivers answers and reports; a hang-up aborts the
//            executor, so requests fail at once until the next start;
//            StopDataTransmit (any thread, a report callback included) -> STOPPING.
//   STOPPING the stopping thread aborts the executor and the port, waits for
//            the counted requests to return, closes the port and frees the
//            link (-> STOPPED). Execute gives -1; another StopDataTransmit or
//            StartDataTransmit waits for STOPPED, except on the listener thread
//            of the link being stopped, where it gives -1 at once.
// A link stopped from its own listener thread cannot join that thread: it is
// kept as retired and freed by the first start or stop after the thread ended.
#ifndef AICAMERA_COMMANDMANAGER_H
#define AICAMERA_COMMANDMANAGER_H

#include <condition_variable>
#include <mutex>
#include <vector>

#include "AsyncCommand.h"
#include "CommandExecutor.h"
#include "LinkEvents.h"
#include "LinkStatistics.h"
#include "Transceiver.h"

class CommandManager final : public ReportRegistry {
public:
    static CommandManager* GetInstance();

    // `observer`, when given, hears the link come up, get lost and close.
    int StartDataTransmit(void* port, LinkObserver* observer = nullptr);
    int StopDataTransmit();
    int Execute(SyncCommand* cmd, bool wait);
    int Register(AsyncCommand* cmd);
    AsyncCommand* GetCommand(unsigned short tag) override;

    // The running link's transceiver, null when stopped; for programs that drive
    // the receive path by hand.
    Transceiver* GetTransceiver();
    // Since the last start; kept after a stop, for a look at what happened.
    LinkCounters& Counters() { return m_counters; }

    CommandManager();
    ~CommandManager();
    CommandManager(const CommandManager&) = delete;
    CommandManager& operator=(const CommandManager&) = delete;

private:
    enum LinkState { LINK_STOPPED, LINK_RUNNING, LINK_STOPPING };
    struct Link {
        Transceiver* pTransceiver;
        CommandExecutor* pExecutor;
    };

    void ClearCommands();
    // Frees the links retired by their own listener threads once those threads have ended.
    void FreeRetiredLinks();
    // Waits out another thread's stop; false on the listener thread being stopped.
    bool WaitWhileStopping(std::unique_lock<std::mutex>& lock);

    std::mutex m_linkLock;
    std::condition_variable m_linkChanged;
    LinkState m_state;
    int m_nCallers;
    CommandExecutor* m_pExecutor;
    Transceiver* m_pTransceiver;
    // The transceiver whose stop is under way (its listener thread may ask).
    Transceiver* m_pStopping;
    std::vector<Link> m_retired;
    // Not owned: the handlers outlive their registration. Registration
    // follows the start, so frames may be looked up meanwhile: hence the lock.
    std::vector<AsyncCommand*> m_commands;
    std::mutex m_commandsLock;
    LinkCounters m_counters;
    LinkEvents m_events;
};

#endif
