#include "Connection/addr.h"

#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <netdb.h>

#include <cerrno>
#include <sstream>

#include "Connection/exception.h"
#include "support/Loopback.h"

namespace {

using rcss::net::Addr;
using rcss::net::HostNotFound;
using support::kLoopback;

// A label may not be longer than 63 characters, so no resolver needs a network to refuse this one.
const std::string kUnresolvable = std::string(80, 'x') + ".invalid";

TEST(AddrTest, DefaultsToAnyHostAndPort) {
  const Addr addr;
  EXPECT_EQ(addr.getPort(), 0);
  EXPECT_EQ(addr.getHost(), Addr::ANY);
  EXPECT_EQ(Addr::ANY, 0u);
  EXPECT_EQ(Addr::BROADCAST, 0xFFFFFFFFu);
}

TEST(AddrTest, KeepsNetworkByteOrder) {
  const Addr addr(3100, kLoopback);
  EXPECT_EQ(addr.getPort(), 3100);
  EXPECT_EQ(addr.getHost(), kLoopback);
  EXPECT_EQ(addr.getAddr().sin_family, AF_INET);
  EXPECT_EQ(addr.getAddr().sin_port, htons(3100));
  EXPECT_EQ(addr.getAddr().sin_addr.s_addr, htonl(kLoopback));
}

TEST(AddrTest, TakesASystemAddress) {
  sockaddr_in system = {};
  system.sin_family = AF_INET;
  system.sin_port = htons(80);
  system.sin_addr.s_addr = htonl(0x01020304);
  const Addr addr(system);
  EXPECT_EQ(addr.getPort(), 80);
  EXPECT_EQ(addr.getHost(), 0x01020304u);
}

TEST(AddrTest, ResolvesHostNames) {
  EXPECT_EQ(Addr(1, "127.0.0.1").getHost(), kLoopback);
  EXPECT_EQ(Addr(1, std::string("1.2.3.4")).getHost(), 0x01020304u);
  EXPECT_EQ(Addr(1, "localhost").getHost(), kLoopback);
}

TEST(AddrTest, UnresolvableHostThrowsTheResolversNumber) {
  try {
    const Addr addr(1, kUnresolvable);
    ADD_FAILURE() << "resolved to " << addr;
  } catch (const HostNotFound& error) {
    EXPECT_EQ(error.err(), h_errno);
  }
}

TEST(AddrTest, EmptyHostThrowsTheResolversNumber) {
  h_errno = 0;
  try {
    const Addr addr(1, "");
    ADD_FAILURE() << "resolved to " << addr;
  } catch (const HostNotFound& error) {
    EXPECT_NE(error.err(), 0);
    EXPECT_EQ(error.err(), h_errno);
  }
}

TEST(AddrTest, SetsPortAndHost) {
  Addr addr;
  addr.setPort(17);
  addr.setHost(kLoopback);
  EXPECT_EQ(addr, Addr(17, kLoopback));
  EXPECT_TRUE(addr.setHost("1.2.3.4"));
  EXPECT_EQ(addr, Addr(17, 0x01020304));
}

TEST(AddrTest, FailedLookUpKeepsTheAddress) {
  Addr addr(17, kLoopback);
  EXPECT_FALSE(addr.setHost(kUnresolvable));
  EXPECT_FALSE(addr.setPort("no-such-service-here"));
  EXPECT_EQ(addr, Addr(17, kLoopback));
}

TEST(AddrTest, EmptyNamesSetErrnoToOne) {
  Addr addr(17, kLoopback);
  errno = 0;
  EXPECT_FALSE(addr.setHost(""));
  EXPECT_EQ(errno, 1);
  errno = 0;
  EXPECT_FALSE(addr.setPort(""));
  EXPECT_EQ(errno, 1);
  EXPECT_EQ(addr, Addr(17, kLoopback));
}

TEST(AddrTest, NamedPortsFollowTheServicesOfTheSystem) {
  const servent* const known = getservbyname("http", "tcp");
  Addr addr(17, kLoopback);
  EXPECT_EQ(addr.setPort("http"), known != nullptr);  // not every machine has a list of services
  EXPECT_EQ(addr.getPort(), known != nullptr ? 80 : 17);
}

TEST(AddrTest, HostTextFollowsTheHost) {
  Addr addr(17, kLoopback);
  EXPECT_EQ(addr.getHostStr(), "127.0.0.1");
  EXPECT_EQ(addr.getHostStr(), "127.0.0.1");
  addr.setHost(0x01020304);
  EXPECT_EQ(addr.getHostStr(), "1.2.3.4");
  addr.setHost("5.6.7.8");
  EXPECT_EQ(addr.getHostStr(), "5.6.7.8");
}

TEST(AddrTest, PortTextFollowsThePort) {
  Addr addr(64999, kLoopback);  // no service has this port
  EXPECT_EQ(addr.getPortStr("tcp"), "64999");
  EXPECT_EQ(addr.getPortStr("tcp"), "64999");
  addr.setPort(64998);
  EXPECT_EQ(addr.getPortStr(), "64998");
}

TEST(AddrTest, CopiesShareOneAddress) {
  Addr addr(17, kLoopback);
  const Addr copy = addr;
  addr.setPort(18);
  EXPECT_EQ(copy.getPort(), 18);
}

TEST(AddrTest, EqualityIsThatOfPortAndHost) {
  EXPECT_TRUE(Addr(1, 2) == Addr(1, 2));
  EXPECT_FALSE(Addr(1, 2) != Addr(1, 2));
  EXPECT_TRUE(Addr(1, 2) != Addr(1, 3));
  EXPECT_TRUE(Addr(1, 2) != Addr(2, 2));
}

TEST(AddrTest, OrderGoesByHostThenPortInHostOrder) {
  EXPECT_TRUE(Addr(9, 1) < Addr(1, 2));
  EXPECT_FALSE(Addr(1, 2) < Addr(9, 1));
  EXPECT_TRUE(Addr(1, 2) < Addr(2, 2));
  EXPECT_FALSE(Addr(1, 2) < Addr(1, 2));
  // In network byte order these would compare the other way round.
  EXPECT_TRUE(Addr(0x00FF, 0) < Addr(0x0100, 0));
  EXPECT_TRUE(Addr(0, 0x000000FF) < Addr(0, 0x01000000));
}

TEST(AddrTest, PrintsPortAndHost) {
  std::ostringstream out;
  out << Addr(3100, kLoopback);
  EXPECT_EQ(out.str(), "(3100:127.0.0.1)");
}

}  // namespace
