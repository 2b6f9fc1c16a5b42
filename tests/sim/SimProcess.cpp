#include "SimProcess.h"

#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <thread>

extern char** environ;

namespace sim::test {

SimProcess::SimProcess(const std::vector<std::string>& args) {
    int out[2];
    if (::pipe(out) != 0) return;
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, out[1], STDOUT_FILENO);
    posix_spawn_file_actions_addclose(&actions, out[0]);
    std::vector<char*> argv;
    for (const std::string& a : args) argv.push_back(const_cast<char*>(a.c_str()));
    argv.push_back(nullptr);
    if (posix_spawn(&m_pid, argv[0], &actions, nullptr, argv.data(), environ) != 0) m_pid = -1;
    posix_spawn_file_actions_destroy(&actions);
    ::close(out[1]);
    m_stdout = out[0];
}

SimProcess::~SimProcess() {
    if (m_pid > 0) StopWith(SIGKILL, 10000);
    if (m_stdout >= 0) ::close(m_stdout);
}

std::string SimProcess::FirstLine(int timeoutMs) {
    std::string line;
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::milliseconds(timeoutMs);
    while (std::chrono::steady_clock::now() < deadline) {
        pollfd p{m_stdout, POLLIN, 0};
        if (::poll(&p, 1, 50) <= 0) continue;
        char c = 0;
        if (::read(m_stdout, &c, 1) != 1) break;
        if (c == '\n') return line;
        line += c;
    }
    return std::string();
}

int SimProcess::StopWith(int signal, int timeoutMs) {
    if (m_pid <= 0) return -1;
    ::kill(m_pid, signal);
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::milliseconds(timeoutMs);
    int status = 0;
    while (::waitpid(m_pid, &status, WNOHANG) == 0) {
        if (std::chrono::steady_clock::now() > deadline) return -1;
        std::this_thread::sleep_for(std::chrono::milliseconds(10));   // polling a child's exit
    }
    m_pid = -1;
    return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

}  // namespace sim::test
