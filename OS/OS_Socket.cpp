#include "OS_Socket.h"

#include <arpa/inet.h>
#include <string.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <unistd.h>

#include <new>

OS_Socket::OS_Socket() : m_pSocket(nullptr) {}

OS_Socket::~OS_Socket() { delete m_pSocket; }

int OS_Socket::SetBlockedIo(int blocked)
{
    if (!m_pSocket)
        return -1;
    int nonBlocking = !blocked;
    return ioctl(m_pSocket->nFd, FIONBIO, &nonBlocking) == 0 ? 0 : -1;
}

int OS_Socket::SetReuseAddr(int on)
{
    if (!m_pSocket)
        return -1;
    int value = on ? 1 : 0;
    return setsockopt(m_pSocket->nFd, SOL_SOCKET, SO_REUSEADDR, &value, sizeof value) == 0 ? 0
                                                                                            : -1;
}

int OS_Socket::Descriptor() const { return m_pSocket ? m_pSocket->nFd : -1; }

int OS_Socket::LocalPort() const
{
    if (!m_pSocket)
        return -1;
    struct sockaddr_in local;
    socklen_t len = sizeof local;
    if (getsockname(m_pSocket->nFd, reinterpret_cast<struct sockaddr*>(&local), &len) != 0)
        return -1;
    return ntohs(local.sin_port);
}

bool OS_Socket::FillAddress(struct sockaddr_in* addr, const char* ip, int port)
{
    memset(addr, 0, sizeof *addr);
    addr->sin_family = AF_INET;
    addr->sin_port = htons(static_cast<uint16_t>(port));
    if (!ip) {
        addr->sin_addr.s_addr = htonl(INADDR_ANY);
        return true;
    }
    return inet_pton(AF_INET, ip, &addr->sin_addr) == 1;
}

int OS_Socket::OpenSocket(int type, int protocol, int reuse)
{
    delete m_pSocket;
    m_pSocket = new (std::nothrow) OS_SocketRecord();
    if (!m_pSocket)
        return -1;
    m_pSocket->nFd = socket(AF_INET, type, protocol);
    if (m_pSocket->nFd < 0) {
        delete m_pSocket;
        m_pSocket = nullptr;
        return -1;
    }
    SetReuseAddr(reuse);
    return 0;
}

int OS_Socket::OpenBound(int type, int protocol, const char* ip, int port, int reuse)
{
    if (OpenSocket(type, protocol, reuse) != 0)
        return -1;
    if (!FillAddress(&m_pSocket->stAddr, ip, port) ||
        bind(m_pSocket->nFd, reinterpret_cast<struct sockaddr*>(&m_pSocket->stAddr),
             sizeof m_pSocket->stAddr) != 0) {
        close(m_pSocket->nFd);
        delete m_pSocket;
        m_pSocket = nullptr;
        return -1;
    }
    return 0;
}

void OS_Socket::CloseSocket()
{
    if (!m_pSocket)
        return;
    shutdown(m_pSocket->nFd, SHUT_RDWR);
    close(m_pSocket->nFd);
    delete m_pSocket;
    m_pSocket = nullptr;
}

int OS_TCPSocket::Open(int reuse) { return OpenSocket(SOCK_STREAM, IPPROTO_TCP, reuse); }

int OS_TCPSocket::Open(const char* ip, int port, int reuse)
{
    return OpenBound(SOCK_STREAM, IPPROTO_TCP, ip, port, reuse);
}

int OS_TCPSocket::Listen(int backlog)
{
    if (!m_pSocket)
        return -1;
    return listen(m_pSocket->nFd, backlog) == 0 ? 0 : -1;
}

int OS_TCPSocket::Accept(OS_TCPSocket* client)
{
    (void)client;
    if (!m_pSocket)
        return -1;
    // Only a check that a record could be had: the connection is taken into
    // this object's own record, and the listening descriptor is given up.
    OS_SocketRecord* fresh = new (std::nothrow) OS_SocketRecord();
    if (!fresh)
        return -1;
    delete fresh;
    socklen_t len = sizeof m_pSocket->stAddr;
    int fd = accept(m_pSocket->nFd, reinterpret_cast<struct sockaddr*>(&m_pSocket->stAddr), &len);
    if (fd < 0) {
        // The record goes but the handle is kept: after a failed Accept the
        // object must not be used again.
        delete m_pSocket;
        return -1;
    }
    m_pSocket->nFd = fd;
    return 0;
}

int OS_TCPSocket::Connect(const char* ip, int port)
{
    if (!m_pSocket || !FillAddress(&m_pSocket->stAddr, ip, port))
        return -1;
    return connect(m_pSocket->nFd, reinterpret_cast<struct sockaddr*>(&m_pSocket->stAddr),
                   sizeof m_pSocket->stAddr) == 0
               ? 0
               : -1;
}

int OS_TCPSocket::Send(void* buf, int len)
{
    if (!m_pSocket)
        return -1;
    return static_cast<int>(send(m_pSocket->nFd, buf, static_cast<size_t>(len), 0));
}

int OS_TCPSocket::Recv(void* buf, int len)
{
    if (!m_pSocket)
        return -1;
    return static_cast<int>(recv(m_pSocket->nFd, buf, static_cast<size_t>(len), 0));
}

void OS_TCPSocket::Close() { CloseSocket(); }

int OS_UDPSocket::Open(int reuse) { return OpenSocket(SOCK_DGRAM, IPPROTO_UDP, reuse); }

int OS_UDPSocket::Open(const char* ip, int port, int reuse)
{
    return OpenBound(SOCK_DGRAM, IPPROTO_UDP, ip, port, reuse);
}

int OS_UDPSocket::SendTo(void* buf, int len, char* ip, int port)
{
    if (!m_pSocket || !FillAddress(&m_pSocket->stAddr, ip, port))
        return -1;
    return static_cast<int>(sendto(m_pSocket->nFd, buf, static_cast<size_t>(len), 0,
                                   reinterpret_cast<struct sockaddr*>(&m_pSocket->stAddr),
                                   sizeof m_pSocket->stAddr));
}

int OS_UDPSocket::RecvFrom(void* buf, int len, char* ip, int* port)
{
    if (!m_pSocket)
        return -1;
    socklen_t addrLen = sizeof m_pSocket->stAddr;
    int received = static_cast<int>(recvfrom(m_pSocket->nFd, buf, static_cast<size_t>(len), 0,
                                             reinterpret_cast<struct sockaddr*>(&m_pSocket->stAddr),
                                             &addrLen));
    if (received < 0)
        return -1;
    if (ip) {
        char dotted[INET_ADDRSTRLEN] = {0};
        inet_ntop(AF_INET, &m_pSocket->stAddr.sin_addr, dotted, sizeof dotted);
        strcpy(ip, dotted);  // the caller's buffer size is not known here
    }
    if (port)
        *port = ntohs(m_pSocket->stAddr.sin_port);
    return received;
}

void OS_UDPSocket::Close() { CloseSocket(); }
