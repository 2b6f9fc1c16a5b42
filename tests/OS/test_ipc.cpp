// Sockets on loopback and shared memory between two processes.
#include <stdio.h>
#include <string.h>
#include <sys/ipc.h>
#include <sys/shm.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <functional>
#include <string>

#include <gtest/gtest.h>

#include "OS/OS_SharedMemory.h"
#include "OS/OS_Socket.h"

namespace {

const char kLoopback[] = "127.0.0.1";

// Runs body in a child that leaves with _exit, skipping the parent's cleanup;
// the body's result (0..255), or -1 if the child did not exit normally.
int RunInChild(const std::function<int()>& body)
{
    pid_t pid = fork();
    if (pid == 0)
        _exit(body() & 0xff);
    int status = 0;
    if (pid < 0 || waitpid(pid, &status, 0) != pid || !WIFEXITED(status))
        return -1;
    return WEXITSTATUS(status);
}

TEST(Socket, UnopenedSocketsRefuseEveryOperation)
{
    OS_TCPSocket tcp;
    OS_UDPSocket udp;
    char buf[INET_ADDRSTRLEN] = {0};
    EXPECT_EQ(tcp.SetBlockedIo(0), -1);
    EXPECT_EQ(tcp.SetReuseAddr(1), -1);
    EXPECT_EQ(tcp.Listen(1), -1);
    EXPECT_EQ(tcp.Accept(nullptr), -1);
    EXPECT_EQ(tcp.Connect(kLoopback, 9), -1);
    EXPECT_EQ(tcp.Send(buf, 8), -1);
    EXPECT_EQ(tcp.Recv(buf, 8), -1);
    EXPECT_EQ(tcp.LocalPort(), -1);
    EXPECT_EQ(udp.SendTo(buf, 8, buf, 9), -1);
    EXPECT_EQ(udp.RecvFrom(buf, 8, buf, nullptr), -1);
    ASSERT_EQ(tcp.Open(0), 0);
    EXPECT_EQ(tcp.Connect("no address", 9), -1);
    tcp.Close();
    EXPECT_EQ(tcp.Descriptor(), -1);
    tcp.Close();
}

TEST(Socket, BindFailureLeavesTheSocketClosed)
{
    OS_TCPSocket socket, taken;
    ASSERT_EQ(taken.Open(kLoopback, 0, 0), 0);
    ASSERT_EQ(taken.Listen(1), 0);
    // 192.0.2.1 is a documentation address that no interface here holds.
    for (const char* ip : {"not an address", "192.0.2.1", kLoopback}) {
        SCOPED_TRACE(ip);
        EXPECT_EQ(socket.Open(ip, ip == kLoopback ? taken.LocalPort() : 0, 0), -1);
        EXPECT_EQ(socket.Descriptor(), -1);
    }
    taken.Close();
}

TEST(Socket, TcpConnectionCarriesBytesBothWays)
{
    OS_TCPSocket server, client, unused;
    ASSERT_EQ(server.Open(kLoopback, 0, 1), 0);
    ASSERT_EQ(server.Listen(4), 0);
    ASSERT_EQ(client.Open(1), 0);
    // Loopback completes the handshake from the backlog, so no thread is needed.
    ASSERT_EQ(client.Connect(kLoopback, server.LocalPort()), 0);
    int listening = server.Descriptor();
    ASSERT_EQ(server.Accept(&unused), 0);
    // The connection replaced the listening descriptor; the argument is untouched.
    EXPECT_NE(server.Descriptor(), listening);
    EXPECT_EQ(unused.Descriptor(), -1);
    EXPECT_EQ(close(listening), 0);
    char hello[] = "hello", answer[] = "welcome", got[16] = {0};
    EXPECT_EQ(client.Send(hello, 5), 5);
    EXPECT_EQ(server.Recv(got, sizeof got), 5);
    EXPECT_STREQ(got, "hello");
    EXPECT_EQ(server.Send(answer, 8), 8);
    EXPECT_EQ(client.Recv(got, sizeof got), 8);
    EXPECT_STREQ(got, "welcome");
    server.Close();
    EXPECT_EQ(client.Recv(got, sizeof got), 0);  // the orderly end of the stream
    client.Close();
    // A failed Accept frees the record but keeps the handle, so the object
    // cannot be touched again: try it in a child that leaves without cleanup.
    EXPECT_EQ(RunInChild([] {
                  OS_TCPSocket* notListening = new OS_TCPSocket;
                  OS_TCPSocket other;
                  return notListening->Open(kLoopback, 0, 1) == 0 && notListening->Accept(&other) == -1 ? 0 : 1;
              }),
              0);
}

TEST(Socket, UdpDatagramNamesItsSender)
{
    OS_UDPSocket sender, receiver;
    ASSERT_EQ(sender.Open(kLoopback, 0, 1), 0);
    ASSERT_EQ(receiver.Open(kLoopback, 0, 1), 0);
    char ip[] = "127.0.0.1", ping[] = "ping", got[16] = {0}, from[INET_ADDRSTRLEN + 8];
    EXPECT_EQ(sender.SendTo(ping, 5, ip, receiver.LocalPort()), 5);
    memset(from, 'z', sizeof from);
    int fromPort = 0;
    EXPECT_EQ(receiver.RecvFrom(got, sizeof got, from, &fromPort), 5);
    EXPECT_STREQ(got, "ping");
    EXPECT_STREQ(from, "127.0.0.1");
    EXPECT_EQ(fromPort, sender.LocalPort());
    // Address and port are optional.
    EXPECT_EQ(receiver.SendTo(ping, 2, ip, sender.LocalPort()), 2);
    EXPECT_EQ(sender.RecvFrom(got, sizeof got, nullptr, nullptr), 2);
    sender.Close();
    receiver.Close();
}

const int kSize = 4096;

// A segment name of this process alone; segment and key file go at the end.
class SharedMemory : public ::testing::Test {
protected:
    void TearDown() override
    {
        key_t key = ftok(m_keyFile.c_str(), 1);
        if (key != -1)
            shmctl(shmget(key, 0, 0), IPC_RMID, nullptr);
        remove(m_keyFile.c_str());
    }
    std::string m_name = "aicam_test_" + std::to_string(getpid());
    std::string m_keyFile = "/tmp/shm.key." + m_name;
};

TEST_F(SharedMemory, TwoProcessesShareOneSegmentOfTheSizeAsked)
{
    OS_SharedMemory parent;
    EXPECT_EQ(parent.Attach(), -1);  // Init never ran
    parent.Detach();
    EXPECT_EQ(parent.Data(), nullptr);
    ASSERT_EQ(parent.Init(&m_name[0], kSize), 0);
    EXPECT_EQ(access(m_keyFile.c_str(), F_OK), 0);
    EXPECT_EQ(parent.Data(), nullptr);
    ASSERT_EQ(parent.Attach(), 0);
    char* data = static_cast<char*>(parent.Data());
    ASSERT_NE(data, nullptr);
    EXPECT_EQ(parent.Attach(), 0);
    EXPECT_EQ(parent.Data(), data);
    strcpy(data, "from parent");
    data[kSize - 1] = 'P';
    char* name = &m_name[0];
    ASSERT_EQ(RunInChild([name] {
                  OS_SharedMemory child;
                  if (child.Init(name, kSize) != 0 || child.Attach() != 0)
                      return 10;
                  char* seen = static_cast<char*>(child.Data());
                  if (strcmp(seen, "from parent") != 0 || seen[kSize - 1] != 'P')
                      return 11;
                  strcpy(seen, "from child");
                  return 0;
              }),
              0);
    parent.Detach();
    EXPECT_EQ(parent.Data(), nullptr);
    ASSERT_EQ(parent.Attach(), 0);
    EXPECT_STREQ(static_cast<char*>(parent.Data()), "from child");
    parent.Detach();
    // No key file can be made, or the segment is smaller than asked.
    OS_SharedMemory noKey, larger;
    char noDir[] = "no/such/directory";
    EXPECT_EQ(noKey.Init(noDir, kSize), -1);
    EXPECT_EQ(noKey.Attach(), -1);
    EXPECT_EQ(larger.Init(&m_name[0], kSize * 4), -1);
    EXPECT_EQ(larger.Attach(), -1);
}

}  // namespace
