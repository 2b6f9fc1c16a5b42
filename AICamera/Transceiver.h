// Listens on the serial port: reads what the module sends into one fixed
// buffer, cuts it into frames for the command executor, and writes frames out.
#ifndef AICAMERA_TRANSCEIVER_H
#define AICAMERA_TRANSCEIVER_H

#include "../OS/Serial_Linux/OS_Serial.h"

#define DATA_BUFFER_SIZE 0x20000

class CommandManager;

class Transceiver : public OS_Serial_Listener {
public:
    explicit Transceiver(CommandManager* manager);
    ~Transceiver() override;
    Transceiver(const Transceiver&) = delete;
    Transceiver& operator=(const Transceiver&) = delete;

    int Init(char* port);
    int Destroy();
    int SendData(void* data, int len);
    void process(int event) override;

    // Takes bytes as if they had been read from the port; for programs that
    // drive the receive path without a port. Returns the count taken.
    int Receive(const void* data, int len);
    // True on the port's listener thread (a report callback runs there).
    bool IsListenerThread() const;
    // Destroy called on the listener thread: this object goes when it unwinds.
    void DeleteOnListenerExit();

private:
    // Cuts the buffered bytes into frames; false when the port was closed meanwhile.
    bool Dispatch();

    OS_Serial m_serial;
    char* m_pPortName;
    unsigned char* m_pBuffer;
    int m_nReadPos;
    int m_nWritePos;
    CommandManager* m_pManager;
};

#endif
