// An OS_Thread whose body is a function, so that tests can start threads inline.
#ifndef TESTS_BASE_FUNCTION_THREAD_H
#define TESTS_BASE_FUNCTION_THREAD_H

#include <functional>
#include <utility>

#include "OS/OS_Thread.h"

class FunctionThread : public OS_Thread {
public:
    explicit FunctionThread(std::function<void()> body) : m_body(std::move(body)) {}
    ~FunctionThread() override { Join(this); }
    int Routine() override
    {
        m_body();
        return 0;
    }

private:
    std::function<void()> m_body;
};

#endif
