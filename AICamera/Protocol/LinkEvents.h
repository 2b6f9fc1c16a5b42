// Tells the application's link observer that the serial link came up, was
// lost (hang-up, a failed read or write) or was closed: in that order, each at
// most once for each start of the link, one at a time.
#ifndef AICAMERA_LINKEVENTS_H
#define AICAMERA_LINKEVENTS_H

#include <mutex>

enum LinkEvent { LINK_EVENT_UP = 1, LINK_EVENT_LOST = 2, LINK_EVENT_CLOSED = 3 };

class LinkObserver {
public:
    virtual void OnLinkEvent(int event) = 0;

protected:
    ~LinkObserver() = default;
};

class LinkEvents {
public:
    // A new start of the link, watched by `observer` (may be null).
    void Begin(LinkObserver* observer);
    // Each is told once; a later event first tells UP if that has not been
    // told yet. After CLOSED the observer is dropped.
    void Up() { Tell(LINK_EVENT_UP); }
    void Lost() { Tell(LINK_EVENT_LOST); }
    void Closed() { Tell(LINK_EVENT_CLOSED); }

private:
    void Tell(int event);

    std::mutex m_lock;
    LinkObserver* m_pObserver = nullptr;
    int m_nLastEvent = 0;
    // Held while the observer runs, so that events never overlap; recursive
    // because an observer may close the link from inside an event.
    std::recursive_mutex m_telling;
};

#endif
