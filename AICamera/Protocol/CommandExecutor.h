// Frames a request, sends it and waits for its answer; on the listener
// thread, checks each received frame and hands it to the report handler
// registered for its tag or to the request that waits for it.
//
// Frame: marker (0x1A to the module, 0xA1 from it), payload length u32 BE,
// payload, CRC-32/JAMCRC u32 BE over marker, length and payload.
//
// One request is in flight at a time; the others queue for their turn. Every
// wait, the queue included, ends at the request's deadline (its timeout from
// the call), and all of them end at once when the link is aborted.
#ifndef AICAMERA_COMMANDEXECUTOR_H
#define AICAMERA_COMMANDEXECUTOR_H

#include <chrono>
#include <condition_variable>
#include <mutex>

#include "SyncCommand.h"
#include "LinkRoles.h"
#include "LinkStatistics.h"

class Message;

class CommandExecutor final : public FrameReceiver {
public:
    // Report handlers are looked up in `registry`; traffic is counted in `counters`.
    CommandExecutor(ReportRegistry* registry, LinkCounters* counters);
    ~CommandExecutor();
    CommandExecutor(const CommandExecutor&) = delete;
    CommandExecutor& operator=(const CommandExecutor&) = delete;

    // Where frames go out; set once, before the port opens.
    void SetTransceiver(FrameWriter* transceiver) { m_pTransceiver = transceiver; }

    // Sends without taking a turn or waiting: 0 sent whole; -1 cmd null;
    // -2 the request could not be read; -3 the frame could not be written.
    int Send(SyncCommand* cmd);
    // 0 answered (the answer is now in cmd); -1 cmd null; -2 the request could
    // not be framed or sent, or the link is gone; -3 no answer (or no turn) in time.
    int Execute(SyncCommand* cmd);
    int Process(void* frame, unsigned int len) override;
    // The link is gone or going: every waiting and queued request fails now,
    // and every later one at once.
    void Abort() override;
    static unsigned int GetCheckSums(unsigned char* data, unsigned int len);

private:
    using Clock = std::chrono::steady_clock;

    // The request's frame, built from a copy of its payload: an answer may
    // replace the payload while the frame goes out.
    static int Frame(SyncCommand* cmd, Message& frame);
    int Write(Message& frame, Clock::time_point deadline);
    int DeliverAnswer(unsigned short tag, void* payload, unsigned int size);

    ReportRegistry* m_pRegistry;
    LinkCounters* m_pCounters;
    FrameWriter* m_pTransceiver;
    // Guards the fields below; never held across a write or a callback.
    std::mutex m_hMutex;
    std::condition_variable m_hChanged;
    bool m_bBusy;            // a request holds the turn
    bool m_bAborted;
    SyncCommand* m_pPending; // the request whose answer is awaited
    bool m_bAnswered;
};

#endif
