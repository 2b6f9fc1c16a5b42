#include <errno.h>
#include <fcntl.h>
#include <string.h>
#include <sys/socket.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include "ChildProcess.h"
#include "OS/OS_Socket.h"

namespace {

const char kLoopback[] = "127.0.0.1";

bool IsNonBlocking(const OS_Socket& socket)
{
    return (fcntl(socket.Descriptor(), F_GETFL) & O_NONBLOCK) != 0;
}

int ReuseAddr(const OS_Socket& socket)
{
    int value = -1;
    socklen_t len = sizeof value;
    getsockopt(socket.Descriptor(), SOL_SOCKET, SO_REUSEADDR, &value, &len);
    return value;
}

TEST(Socket, UnopenedSocketsRefuseEveryOperation)
{
    OS_TCPSocket tcp;
    char buf[8] = {0};
    EXPECT_EQ(tcp.SetBlockedIo(0), -1);
    EXPECT_EQ(tcp.SetReuseAddr(1), -1);
    EXPECT_EQ(tcp.Listen(1), -1);
    EXPECT_EQ(tcp.Accept(nullptr), -1);
    EXPECT_EQ(tcp.Connect(kLoopback, 9), -1);
    ASSERT_EQ(tcp.Open(0), 0);
    EXPECT_EQ(tcp.Connect("no address", 9), -1);
    tcp.Close();
    EXPECT_EQ(tcp.Send(buf, sizeof buf), -1);
    EXPECT_EQ(tcp.Recv(buf, sizeof buf), -1);
    EXPECT_EQ(tcp.Descriptor(), -1);
    EXPECT_EQ(tcp.LocalPort(), -1);
    tcp.Close();
    OS_UDPSocket udp;
    char ip[INET_ADDRSTRLEN] = {0};
    EXPECT_EQ(udp.SendTo(buf, sizeof buf, ip, 9), -1);
    EXPECT_EQ(udp.RecvFrom(buf, sizeof buf, ip, nullptr), -1);
    udp.Close();
    EXPECT_EQ(udp.Descriptor(), -1);
}

TEST(Socket, OpenSetsAddressReuseAsAsked)
{
    OS_TCPSocket on;
    OS_TCPSocket off;
    ASSERT_EQ(on.Open(1), 0);
    ASSERT_EQ(off.Open(0), 0);
    EXPECT_EQ(ReuseAddr(on), 1);
    EXPECT_EQ(ReuseAddr(off), 0);
    EXPECT_EQ(off.SetReuseAddr(7), 0);
    EXPECT_EQ(ReuseAddr(off), 1);
    on.Close();
    off.Close();
}

TEST(Socket, SetBlockedIoSwitchesNonBlockingMode)
{
    OS_UDPSocket socket;
    ASSERT_EQ(socket.Open(kLoopback, 0, 0), 0);
    EXPECT_FALSE(IsNonBlocking(socket));
    ASSERT_EQ(socket.SetBlockedIo(0), 0);
    EXPECT_TRUE(IsNonBlocking(socket));
    char buf[4];
    errno = 0;
    EXPECT_EQ(socket.RecvFrom(buf, sizeof buf, nullptr, nullptr), -1);
    EXPECT_TRUE(errno == EAGAIN || errno == EWOULDBLOCK) << strerror(errno);
    ASSERT_EQ(socket.SetBlockedIo(1), 0);
    EXPECT_FALSE(IsNonBlocking(socket));
    socket.Close();
}

TEST(Socket, BindFailureLeavesTheSocketClosed)
{
    OS_TCPSocket socket;
    EXPECT_EQ(socket.Open("not an address", 0, 1), -1);
    EXPECT_EQ(socket.Descriptor(), -1);
    // A documentation address that no interface here holds.
    EXPECT_EQ(socket.Open("192.0.2.1", 0, 1), -1);
    EXPECT_EQ(socket.Descriptor(), -1);
    OS_TCPSocket taken;
    ASSERT_EQ(taken.Open(kLoopback, 0, 0), 0);
    ASSERT_EQ(taken.Listen(1), 0);
    EXPECT_EQ(socket.Open(kLoopback, taken.LocalPort(), 0), -1);
    EXPECT_EQ(socket.Descriptor(), -1);
    taken.Close();
}

TEST(Socket, TcpConnectionCarriesBytesBothWays)
{
    OS_TCPSocket server;
    ASSERT_EQ(server.Open(kLoopback, 0, 1), 0);
    ASSERT_EQ(server.Listen(4), 0);
    int port = server.LocalPort();
    ASSERT_GT(port, 0);
    OS_TCPSocket client;
    ASSERT_EQ(client.Open(1), 0);
    // Loopback completes the handshake from the backlog, so no thread is needed.
    ASSERT_EQ(client.Connect(kLoopback, port), 0);

    int listening = server.Descriptor();
    OS_TCPSocket unused;
    ASSERT_EQ(server.Accept(&unused), 0);
    // The connection replaced the listening descriptor; the argument is untouched.
    EXPECT_NE(server.Descriptor(), listening);
    EXPECT_EQ(unused.Descriptor(), -1);
    EXPECT_EQ(close(listening), 0);

    char hello[] = "hello";
    EXPECT_EQ(client.Send(hello, 5), 5);
    char got[16] = {0};
    EXPECT_EQ(server.Recv(got, sizeof got), 5);
    EXPECT_STREQ(got, "hello");

    char answer[] = "welcome";
    EXPECT_EQ(server.Send(answer, 7), 7);
    memset(got, 0, sizeof got);
    EXPECT_EQ(client.Recv(got, sizeof got), 7);
    EXPECT_STREQ(got, "welcome");

    server.Close();
    // The peer sees the orderly end of the stream.
    EXPECT_EQ(client.Recv(got, sizeof got), 0);
    client.Close();
    EXPECT_EQ(client.Descriptor(), -1);
}

TEST(Socket, FailedAcceptReportsMinusOne)
{
    // A failed Accept frees the record but keeps the handle, so the object
    // cannot be touched again: do it in a child that leaves without cleanup.
    int result = RunInChild([] {
        OS_TCPSocket* notListening = new OS_TCPSocket;
        if (notListening->Open(kLoopback, 0, 1) != 0)
            return 10;
        OS_TCPSocket unused;
        return notListening->Accept(&unused) == -1 ? 0 : 11;
    });
    EXPECT_EQ(result, 0);
}

TEST(Socket, UdpDatagramNamesItsSender)
{
    OS_UDPSocket sender;
    OS_UDPSocket receiver;
    ASSERT_EQ(sender.Open(kLoopback, 0, 1), 0);
    ASSERT_EQ(receiver.Open(kLoopback, 0, 1), 0);
    char ip[] = "127.0.0.1";
    char ping[] = "ping";
    EXPECT_EQ(sender.SendTo(ping, 4, ip, receiver.LocalPort()), 4);

    char got[16] = {0};
    char from[INET_ADDRSTRLEN + 8];
    memset(from, 'z', sizeof from);
    int fromPort = 0;
    EXPECT_EQ(receiver.RecvFrom(got, sizeof got, from, &fromPort), 4);
    EXPECT_STREQ(got, "ping");
    EXPECT_STREQ(from, "127.0.0.1");
    EXPECT_EQ(fromPort, sender.LocalPort());

    // Address and port are optional.
    EXPECT_EQ(receiver.SendTo(ping, 2, ip, sender.LocalPort()), 2);
    memset(got, 0, sizeof got);
    EXPECT_EQ(sender.RecvFrom(got, sizeof got, nullptr, nullptr), 2);
    EXPECT_STREQ(got, "pi");
    sender.Close();
    receiver.Close();
}

}  // namespace
