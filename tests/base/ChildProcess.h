// Runs a body in a forked child and hands back its result as the exit status.
#ifndef TESTS_BASE_CHILD_PROCESS_H
#define TESTS_BASE_CHILD_PROCESS_H

#include <sys/wait.h>
#include <unistd.h>

#include <functional>

// The child leaves with _exit, so it runs no destructors or exit handlers of
// the parent's state. Returns the body's result (0..255), or -1 if the child
// could not be started or did not exit normally.
inline int RunInChild(const std::function<int()>& body)
{
    pid_t pid = fork();
    if (pid < 0)
        return -1;
    if (pid == 0)
        _exit(body() & 0xff);
    int status = 0;
    if (waitpid(pid, &status, 0) != pid || !WIFEXITED(status))
        return -1;
    return WEXITSTATUS(status);
}

#endif
