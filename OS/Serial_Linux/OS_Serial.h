// The module's control port: raw 115200 baud, held by this process alone, and
// an epoll listener thread that tells an OS_Serial_Listener when bytes can be
// read or when the port hangs up.
#ifndef OS_SERIAL_H
#define OS_SERIAL_H

#include <atomic>

#include "OS_Serial_Listener.h"

struct OS_SerialPort;

class OS_Serial {
public:
    OS_Serial();
    virtual ~OS_Serial();
    OS_Serial(const OS_Serial&) = delete;
    OS_Serial& operator=(const OS_Serial&) = delete;

    // Opens a terminal for this process only: a file that is not a terminal, or
    // a port that another process holds, is refused (-1) and nothing is written.
    int Open(char const* path);
    int Open(char const* path, OS_Serial_Listener* listener);
    // Writes all len bytes, continuing short writes while the line takes them;
    // gives up when no byte goes out for a second or timeoutMs (if not negative)
    // has passed. Returns the count written: len on success. Leaves errno at
    // the error that ended the write, or 0 when none did (a stall, a timeout).
    int Write(void const* buf, int len, int timeoutMs = -1);
    int Read(void* buf, int len);
    // Makes a write in progress, and every later one, give up within 50 ms,
    // until the port is opened again. Callable from any thread.
    void Interrupt();
    // Closes the port. From any thread but the listener's, the listener thread
    // is stopped and joined first. From inside the listener's process(), the
    // descriptors close at once, the thread ends when process() returns, and
    // the next Close or Open after that, or the destructor, joins it.
    int Close();
    // True while the thread of a port closed from inside its process() is still
    // unwinding (a report callback that closed the port has not returned yet).
    bool EndedListenerRunning() const;
    // True on a listener thread that serves `listener`.
    static bool IsListenerThreadOf(const OS_Serial_Listener* listener);

    // Lists the "ttyACM" nodes as "/dev/ttyACM0|/dev/ttyACM1", cut to size.
    static int EnumSerial(char* out, int size);
    static int EnumSerial(const char* dir, char* out, int size);

    // The listener thread's body; works on the port record only.
    static void* ListenProcess(void* port);

private:
    int Configure(OS_SerialPort* port);
    // Joins the thread of a port closed from its own listener thread: at once
    // if it has ended, otherwise only with `wait`.
    void JoinEndedListener(bool wait);

    OS_SerialPort* m_pSerial;
    OS_Serial_Listener* m_pListener;
    // A port closed from its own listener thread, until that thread is joined.
    OS_SerialPort* m_pEnded;
    std::atomic<bool> m_bInterrupted;
};

#endif
