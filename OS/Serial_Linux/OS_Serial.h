// The module's control port: raw 115200 baud, and an epoll listener thread
// that tells an OS_Serial_Listener when bytes can be read.
#ifndef OS_SERIAL_H
#define OS_SERIAL_H

#include "OS_Serial_Listener.h"

struct OS_SerialPort;

class OS_Serial {
public:
    OS_Serial();
    virtual ~OS_Serial();
    OS_Serial(const OS_Serial&) = delete;
    OS_Serial& operator=(const OS_Serial&) = delete;

    int Open(char const* path);
    int Open(char const* path, OS_Serial_Listener* listener);
    int Write(void const* buf, int len);
    int Read(void* buf, int len);
    // Stops and joins the listener thread. Called on that thread itself, the
    // teardown finishes when the thread unwinds.
    int Close();
    bool IsOpen() const;
    bool IsListenerThread() const;
    // True on a listener thread whose port was closed from that thread.
    bool ClosedByListener() const;
    // After a Close on the listener thread: the thread deletes the listener
    // once it has unwound (the listener may own this very object).
    void DeleteListenerOnExit(OS_Serial_Listener* listener);

    // Lists the "ttyACM" nodes as "/dev/ttyACM0|/dev/ttyACM1", cut to size.
    static int EnumSerial(char* out, int size);
    static int EnumSerial(const char* dir, char* out, int size);

    // The listener thread's body; works on the port record only, so that the
    // object may go away while the thread unwinds.
    static void* ListenProcess(void* port);

private:
    int Configure();

    OS_SerialPort* m_pSerial;
    OS_Serial_Listener* m_pListener;
    // Set by a Close on the listener thread until the thread has unwound.
    OS_SerialPort* m_pDetached;
};

#endif
