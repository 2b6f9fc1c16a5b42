// SIGINT and SIGTERM while a command must undo what it started (pause the
// recognition, stop an upload between slices): the handler only records the
// signal and wakes a pipe that the command polls.
#ifndef AICAM_SIGNALWATCH_H
#define AICAM_SIGNALWATCH_H

class SignalWatch {
public:
    // Catches SIGINT and SIGTERM until destroyed, then restores what was there.
    SignalWatch();
    ~SignalWatch();
    SignalWatch(const SignalWatch&) = delete;
    SignalWatch& operator=(const SignalWatch&) = delete;

    // Readable once a signal has arrived (or Wake was called); -1 when the pipe
    // could not be made, and then only Caught() tells.
    static int WakeFd();
    // Makes WakeFd readable, from any thread or the handler.
    static void Wake();
    // Empties the pipe.
    static void Drain();
};

// The signal that arrived (SIGINT or SIGTERM), 0 for none.
int CaughtSignal();

#endif
