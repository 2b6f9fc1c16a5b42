// Told by the serial port's listener thread that the port has bytes to read,
// or that it has hung up.
#ifndef OS_SERIAL_LISTENER_H
#define OS_SERIAL_LISTENER_H

class OS_Serial_Listener {
public:
    // event 1: bytes are waiting; no other value is sent.
    virtual void process(int event) = 0;
    virtual ~OS_Serial_Listener() = default;
    // The listener thread has started, before any other call.
    virtual void started() {}
    // The port hung up or failed (the module was unplugged): no event follows,
    // and the listener thread ends once this returns.
    virtual void hangup() {}
};

#endif
