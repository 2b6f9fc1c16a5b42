// One application callback in either of its two forms: plain, or taking the
// application's context pointer last. Registering one form replaces the other.
// Set from the application's threads, called on the listener thread.
#ifndef AICAMERA_CALLBACKSLOT_H
#define AICAMERA_CALLBACKSLOT_H

#include <mutex>

template <typename... Args>
class CallbackSlot {
public:
    typedef void (*Plain)(Args...);
    typedef void (*WithUser)(Args..., void*);

    void Set(Plain func)
    {
        std::lock_guard<std::mutex> guard(m_lock);
        m_plain = func;
        m_withUser = nullptr;
        m_user = nullptr;
    }
    void Set(WithUser func, void* user)
    {
        std::lock_guard<std::mutex> guard(m_lock);
        m_plain = nullptr;
        m_withUser = func;
        m_user = user;
    }
    bool Empty() const
    {
        std::lock_guard<std::mutex> guard(m_lock);
        return !m_plain && !m_withUser;
    }
    // Calls what is registered now, outside the lock so that the callback may
    // register again; false when nothing is.
    bool Call(Args... args) const
    {
        Plain plain;
        WithUser withUser;
        void* user;
        {
            std::lock_guard<std::mutex> guard(m_lock);
            plain = m_plain;
            withUser = m_withUser;
            user = m_user;
        }
        if (plain)
            plain(args...);
        else if (withUser)
            withUser(args..., user);
        return plain || withUser;
    }

private:
    mutable std::mutex m_lock;
    Plain m_plain = nullptr;
    WithUser m_withUser = nullptr;
    void* m_user = nullptr;
};

typedef CallbackSlot<char*, int> ReportSlot;
typedef ReportSlot::Plain ReportFunc;
typedef ReportSlot::WithUser ReportUserFunc;
typedef CallbackSlot<int> LinkStateSlot;

#endif
