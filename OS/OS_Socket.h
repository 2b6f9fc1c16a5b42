// IPv4 TCP and UDP sockets over a heap record that is null until Open succeeds.
#ifndef OS_SOCKET_H
#define OS_SOCKET_H

#include <netinet/in.h>

// The descriptor, then the local address or that of the last peer.
struct OS_SocketRecord {
    int nFd;
    struct sockaddr_in stAddr;
};

class OS_Socket {
public:
    OS_Socket();
    // Frees the record but leaves the descriptor open; Close ends a socket.
    ~OS_Socket();
    OS_Socket(const OS_Socket&) = delete;
    OS_Socket& operator=(const OS_Socket&) = delete;

    int SetBlockedIo(int blocked);
    int SetReuseAddr(int on);

    // The descriptor, or -1 when not open.
    int Descriptor() const;
    // The port the socket is bound to in host order (useful after binding
    // port 0), or -1.
    int LocalPort() const;

protected:
    int OpenSocket(int type, int protocol, int reuse);
    int OpenBound(int type, int protocol, const char* ip, int port, int reuse);
    void CloseSocket();
    // ip in dotted form, a null ip meaning any address; false when ip is not
    // a dotted address.
    static bool FillAddress(struct sockaddr_in* addr, const char* ip, int port);

    OS_SocketRecord* m_pSocket;
};

class OS_TCPSocket : public OS_Socket {
public:
    int Open(int reuse);
    int Open(const char* ip, int port, int reuse);
    int Listen(int backlog);
    // Takes the accepted connection into this object in place of the listening
    // descriptor; client is not used.
    int Accept(OS_TCPSocket* client);
    int Connect(const char* ip, int port);
    int Send(void* buf, int len);
    int Recv(void* buf, int len);
    void Close();
};

class OS_UDPSocket : public OS_Socket {
public:
    int Open(int reuse);
    int Open(const char* ip, int port, int reuse);
    int SendTo(void* buf, int len, char* ip, int port);
    // ip, when given, must hold a dotted address and its terminator (16 bytes).
    int RecvFrom(void* buf, int len, char* ip, int* port);
    void Close();
};

#endif
