#include "LinkEvents.h"

void LinkEvents::Begin(LinkObserver* observer)
{
    std::lock_guard<std::mutex> guard(m_lock);
    m_pObserver = observer;
    m_nLastEvent = 0;
}

void LinkEvents::Tell(int event)
{
    std::lock_guard<std::recursive_mutex> telling(m_telling);
    LinkObserver* observer = nullptr;
    bool upFirst = false;
    {
        std::lock_guard<std::mutex> guard(m_lock);
        if (m_nLastEvent >= event)
            return;
        upFirst = m_nLastEvent == 0 && event != LINK_EVENT_UP;
        m_nLastEvent = event;
        observer = m_pObserver;
        if (event == LINK_EVENT_CLOSED)
            m_pObserver = nullptr;
    }
    if (!observer)
        return;
    if (upFirst)
        observer->OnLinkEvent(LINK_EVENT_UP);
    observer->OnLinkEvent(event);
}
