#include "SignalWatch.h"

#include <fcntl.h>
#include <signal.h>
#include <unistd.h>

namespace {
volatile sig_atomic_t g_signal = 0;
int g_wake[2] = {-1, -1};
struct sigaction g_previousInt, g_previousTerm;

void OnSignal(int number)
{
    g_signal = number;
    SignalWatch::Wake();
}
}  // namespace

SignalWatch::SignalWatch()
{
    // The pipe stays open for the process: callbacks of the library may still
    // wake it after the watch has ended.
    if (g_wake[0] < 0 && pipe2(g_wake, O_CLOEXEC | O_NONBLOCK) != 0)
        g_wake[0] = g_wake[1] = -1;
    struct sigaction action = {};
    action.sa_handler = OnSignal;
    sigemptyset(&action.sa_mask);
    sigaction(SIGINT, &action, &g_previousInt);
    sigaction(SIGTERM, &action, &g_previousTerm);
}

SignalWatch::~SignalWatch()
{
    sigaction(SIGINT, &g_previousInt, nullptr);
    sigaction(SIGTERM, &g_previousTerm, nullptr);
}

int SignalWatch::WakeFd() { return g_wake[0]; }

void SignalWatch::Wake()
{
    if (g_wake[1] < 0)
        return;
    char byte = 1;
    // A full pipe already means "wake up".
    ssize_t ignored = write(g_wake[1], &byte, 1);
    (void)ignored;
}

void SignalWatch::Drain()
{
    char drain[64];
    while (g_wake[0] >= 0 && read(g_wake[0], drain, sizeof drain) > 0) {
    }
}

int CaughtSignal() { return g_signal; }
