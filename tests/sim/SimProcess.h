#pragma once
// Runs the aicam-sim program for a test: started with arguments, its first
// line of output read, stopped with a signal.

#include <sys/types.h>

#include <string>
#include <vector>

namespace sim::test {

class SimProcess {
public:
    explicit SimProcess(const std::vector<std::string>& args);
    ~SimProcess();   // kills the program if it still runs

    // The first line the program printed, or "" when none came within timeoutMs.
    std::string FirstLine(int timeoutMs);
    // Sends `signal` and waits for the exit; the exit status, or -1 on timeout.
    int StopWith(int signal, int timeoutMs);

private:
    pid_t m_pid = -1;
    int m_stdout = -1;
};

}  // namespace sim::test
