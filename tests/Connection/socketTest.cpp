#include "Connection/socket.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <memory>
#include <string>
#include <type_traits>

#include "Connection/tcpsocket.h"
#include "support/Loopback.h"

namespace {

using rcss::net::Addr;
using rcss::net::Socket;
using rcss::net::TCPSocket;
using support::kLoopback;

bool isOpenDescriptor(int fd) {
  return fcntl(fd, F_GETFD) != -1;
}

// A datagram socket: the kind on which an address with each message matters.
class DatagramSocket : public Socket {
 public:
  DatagramSocket() { open(); }

 protected:
  bool doOpen(SocketDesc& fd) override {
    fd = ::socket(AF_INET, SOCK_DGRAM, 0);
    return fd != INVALIDSOCKET;
  }
};

// A socket that never gets a descriptor.
class ClosedSocket : public Socket {
 public:
  ClosedSocket() = default;

 protected:
  bool doOpen(SocketDesc&) override { return false; }
};

// Two connected ends.
struct Pair {
  TCPSocket listener{Addr(0, kLoopback)};
  TCPSocket client;
  TCPSocket server;

  Pair() {
    EXPECT_TRUE(listener.listen(1));
    EXPECT_TRUE(client.connect(listener.getName()));
    EXPECT_TRUE(listener.accept(server));
  }
};

TEST(SocketTest, CopiesShareOneDescriptor) {
  TCPSocket first;
  const int fd = first.getFD();
  {
    TCPSocket second = first;
    EXPECT_EQ(second.getFD(), fd);
    first.close();
    EXPECT_FALSE(first.isOpen());
    EXPECT_EQ(first.getFD(), Socket::INVALIDSOCKET);
    EXPECT_TRUE(isOpenDescriptor(fd));
  }
  EXPECT_FALSE(isOpenDescriptor(fd));
}

TEST(SocketTest, HasVirtualDestructor) {
  EXPECT_TRUE(std::has_virtual_destructor_v<Socket>);
}

TEST(SocketTest, CheckingTypesHaveTheirNumbers) {
  EXPECT_EQ(Socket::CHECK, 0);
  EXPECT_EQ(Socket::DONT_CHECK, 1);
  EXPECT_EQ(Socket::INVALIDSOCKET, -1);
}

TEST(SocketTest, OpenFailsWithoutADescriptor) {
  ClosedSocket socket;
  EXPECT_FALSE(socket.open());
  EXPECT_FALSE(socket.isOpen());
}

TEST(SocketTest, WithoutADescriptorEverythingFails) {
  ClosedSocket socket;
  char byte = 'x';
  Addr addr;
  TCPSocket other;
  EXPECT_FALSE(socket.bind(Addr(0, 0)));
  EXPECT_FALSE(socket.connect(Addr(1, kLoopback)));
  EXPECT_FALSE(socket.listen(1));
  EXPECT_FALSE(socket.accept(other));
  EXPECT_EQ(socket.accept(addr), nullptr);
  EXPECT_EQ(socket.getName(), Addr(0, 0));
  EXPECT_EQ(socket.getPeer(), Addr(0, 0));
  EXPECT_FALSE(socket.isConnected());
  EXPECT_EQ(socket.send(&byte, 1), -1);
  EXPECT_EQ(socket.send(&byte, 1, addr), -1);
  EXPECT_EQ(socket.recv(&byte, 1), -1);
  EXPECT_EQ(socket.recv(&byte, 1, addr), -1);
  EXPECT_TRUE(other.isOpen());
}

TEST(SocketTest, WithoutADescriptorFlagsAreNotPermitted) {
  using Setter = int (Socket::*)(bool);
  for (const Setter set : {&Socket::setCloseOnExec, &Socket::setNonBlocking, &Socket::setAsync,
                           &Socket::setBroadcast, &Socket::setReuseAddr}) {
    ClosedSocket socket;
    errno = 0;
    EXPECT_EQ((socket.*set)(true), -1);
    EXPECT_EQ(errno, 1);
  }
}

TEST(SocketTest, SetsDescriptorFlags) {
  TCPSocket socket;
  const int fd = socket.getFD();
  EXPECT_NE(socket.setCloseOnExec(false), -1);
  EXPECT_EQ(fcntl(fd, F_GETFD) & FD_CLOEXEC, 0);
  EXPECT_NE(socket.setNonBlocking(true), -1);
  EXPECT_EQ(fcntl(fd, F_GETFL) & (O_NONBLOCK | O_ASYNC), O_NONBLOCK);
  EXPECT_NE(socket.setAsync(true), -1);
  EXPECT_EQ(fcntl(fd, F_GETFL) & (O_NONBLOCK | O_ASYNC), O_NONBLOCK | O_ASYNC);
  EXPECT_NE(socket.setNonBlocking(false), -1);
  EXPECT_NE(socket.setAsync(false), -1);
  EXPECT_EQ(fcntl(fd, F_GETFL) & (O_NONBLOCK | O_ASYNC), 0);
}

int optionOf(const Socket& socket, int option) {
  int value = -1;
  socklen_t size = sizeof value;
  getsockopt(socket.getFD(), SOL_SOCKET, option, &value, &size);
  return value;
}

TEST(SocketTest, SetsSocketOptions) {
  DatagramSocket socket;
  EXPECT_EQ(socket.setBroadcast(true), 0);
  EXPECT_NE(optionOf(socket, SO_BROADCAST), 0);
  EXPECT_EQ(socket.setBroadcast(false), 0);
  EXPECT_EQ(optionOf(socket, SO_BROADCAST), 0);
  EXPECT_EQ(socket.setReuseAddr(true), 0);
  EXPECT_NE(optionOf(socket, SO_REUSEADDR), 0);
  EXPECT_EQ(socket.setReuseAddr(false), 0);
  EXPECT_EQ(optionOf(socket, SO_REUSEADDR), 0);
}

TEST(SocketTest, SendsAndReceives) {
  Pair pair;
  EXPECT_EQ(pair.client.send("hello", 5), 5);
  char text[8] = {};
  EXPECT_EQ(pair.server.recv(text, sizeof text), 5);
  EXPECT_STREQ(text, "hello");
  EXPECT_EQ(pair.server.send("x", 1, 0, Socket::DONT_CHECK), 1);
  EXPECT_EQ(pair.client.recv(text, sizeof text, 0, Socket::DONT_CHECK), 1);
  EXPECT_EQ(text[0], 'x');
}

TEST(SocketTest, SendingNothingGivesZero) {
  Pair pair;
  EXPECT_EQ(pair.client.send("", 0), 0);
}

TEST(SocketTest, CheckedSendWritesAllOfMuchMoreThanABufferHolds) {
  Pair pair;
  const std::string sent(8 << 20, 'q');
  const pid_t child = fork();
  if (child == 0) {
    _exit(pair.client.send(sent.data(), sent.size()) == static_cast<int>(sent.size()) ? 0 : 1);
  }
  pair.client.close();
  std::size_t received = 0;
  char part[65536];
  for (int got; (got = pair.server.recv(part, sizeof part)) > 0;) {
    received += static_cast<std::size_t>(got);
  }
  EXPECT_EQ(received, sent.size());
  int status = -1;
  waitpid(child, &status, 0);
  EXPECT_EQ(status, 0);
}

TEST(SocketTest, CheckedSendTriesAgainWhileTheBufferIsFull) {
  Pair pair;
  pair.client.setNonBlocking(true);
  const std::string sent(8 << 20, 'q');
  const pid_t child = fork();
  if (child == 0) {
    _exit(pair.client.send(sent.data(), sent.size()) == static_cast<int>(sent.size()) ? 0 : 1);
  }
  pair.client.close();
  std::size_t received = 0;
  char part[65536];
  for (int got; (got = pair.server.recv(part, sizeof part)) > 0;) {
    received += static_cast<std::size_t>(got);
  }
  EXPECT_EQ(received, sent.size());
  int status = -1;
  waitpid(child, &status, 0);
  EXPECT_EQ(status, 0);
}

TEST(SocketTest, UncheckedSendGivesUpWhenTheBufferIsFull) {
  Pair pair;
  pair.client.setNonBlocking(true);
  const std::string much(1 << 20, 'q');
  int result = 0;
  for (int i = 0; i < 100 && result != -1; ++i) {
    result = pair.client.send(much.data(), much.size(), 0, Socket::DONT_CHECK);
  }
  EXPECT_EQ(result, -1);
  EXPECT_EQ(errno, EAGAIN);
}

TEST(SocketTest, ReceivingAfterTheEndGivesZero) {
  Pair pair;
  pair.client.close();
  char byte;
  EXPECT_EQ(pair.server.recv(&byte, 1), 0);
}

TEST(SocketTest, ReceiveDoesNotWaitForMoreOnANonBlockingSocket) {
  Pair pair;
  pair.server.setNonBlocking(true);
  char byte;
  EXPECT_EQ(pair.server.recv(&byte, 1), -1);
  EXPECT_EQ(errno, EAGAIN);
}

TEST(SocketTest, DatagramsCarryTheirSender) {
  DatagramSocket one;
  DatagramSocket other;
  ASSERT_TRUE(one.bind(Addr(0, kLoopback)));
  ASSERT_TRUE(other.bind(Addr(0, kLoopback)));
  for (const Socket::CheckingType check : {Socket::CHECK, Socket::DONT_CHECK}) {
    EXPECT_EQ(one.send("hi", 2, other.getName(), 0, check), 2);
    char text[4] = {};
    Addr sender;
    EXPECT_EQ(other.recv(text, sizeof text, sender, 0, check), 2);
    EXPECT_STREQ(text, "hi");
    EXPECT_EQ(sender, one.getName());
  }
}

TEST(SocketTest, ReceivingWithATimeOutIsNotOffered) {
  Pair pair;
  pair.client.send("x", 1);
  char byte;
  Addr sender;
  errno = 0;
  EXPECT_EQ(pair.server.recv(1, &byte, std::size_t{1}), -1);
  EXPECT_EQ(errno, 1);
  errno = 0;
  EXPECT_EQ(pair.server.recv(1, &byte, std::size_t{1}, sender), -1);
  EXPECT_EQ(errno, 1);
}

TEST(SocketTest, AcceptGivesTheOtherEnd) {
  TCPSocket listener(Addr(0, kLoopback));
  ASSERT_TRUE(listener.listen(1));
  TCPSocket client;
  ASSERT_TRUE(client.connect(listener.getName()));
  Addr peer;
  const std::unique_ptr<Socket> server(listener.accept(peer));
  ASSERT_NE(server, nullptr);
  EXPECT_EQ(peer, client.getName());
  EXPECT_TRUE(server->isConnected());
}

TEST(SocketTest, RefusedConnectionIsReportedByTheResult) {
  TCPSocket listener(Addr(0, kLoopback));  // bound, but not listening
  TCPSocket client;
  EXPECT_FALSE(client.connect(listener.getName()));
  EXPECT_EQ(errno, ECONNREFUSED);
  EXPECT_FALSE(client.isConnected());
}

TEST(SocketTest, PortInUseIsReportedByTheResult) {
  TCPSocket listener(Addr(0, kLoopback));
  ASSERT_TRUE(listener.listen(1));
  TCPSocket other;
  EXPECT_FALSE(other.bind(listener.getName()));
  EXPECT_EQ(errno, EADDRINUSE);
}

}  // namespace
