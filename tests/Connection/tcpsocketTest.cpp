#include "Connection/tcpsocket.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/socket.h>

#include "support/Loopback.h"

namespace {

using rcss::net::Addr;
using rcss::net::TCPSocket;
using support::kLoopback;

TEST(TCPSocketTest, HasADescriptorFromTheBeginning) {
  const TCPSocket socket;
  EXPECT_TRUE(socket.isOpen());
  EXPECT_GE(socket.getFD(), 0);
  EXPECT_FALSE(socket.isConnected());
  int type = 0;
  socklen_t size = sizeof type;
  ASSERT_EQ(getsockopt(socket.getFD(), SOL_SOCKET, SO_TYPE, &type, &size), 0);
  EXPECT_EQ(type, SOCK_STREAM);
}

TEST(TCPSocketTest, DescriptorIsClosedOnExec) {
  const TCPSocket socket;
  EXPECT_EQ(fcntl(socket.getFD(), F_GETFD) & FD_CLOEXEC, FD_CLOEXEC);
}

TEST(TCPSocketTest, AdoptsADescriptor) {
  int fd = ::socket(AF_INET, SOCK_STREAM, 0);
  {
    const TCPSocket socket(fd);
    EXPECT_EQ(socket.getFD(), fd);
  }
  EXPECT_EQ(fcntl(fd, F_GETFD), -1);
}

TEST(TCPSocketTest, BindsAndConnectsOnConstruction) {
  TCPSocket listener(Addr(0, kLoopback));
  ASSERT_TRUE(listener.listen(1));
  EXPECT_NE(listener.getName().getPort(), 0);
  const TCPSocket client(Addr(0, 0), listener.getName());
  EXPECT_TRUE(client.isConnected());
  EXPECT_EQ(client.getPeer(), listener.getName());
  EXPECT_EQ(client.getDest(), listener.getName());
}

TEST(TCPSocketTest, OpenTakesANewDescriptorAndLetsGoTheOld) {
  TCPSocket listener(Addr(0, kLoopback));
  ASSERT_NE(listener.getName().getPort(), 0);
  EXPECT_TRUE(listener.open());
  EXPECT_TRUE(listener.isOpen());
  EXPECT_EQ(listener.getName().getPort(), 0);  // the new one is not bound
}

}  // namespace
