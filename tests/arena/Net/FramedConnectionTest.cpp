#include "Net/FramedConnection.h"

#include <gtest/gtest.h>

#include <boost/asio/buffer.hpp>
#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <memory>
#include <string>
#include <vector>

namespace arena {
namespace {

// The league's server keeps the rest of a partly sent frame and drops what comes meanwhile.
TEST(FramedConnectionTest, DropsWholeFramesWhileAPartOfOneIsUnsent) {
  using Tcp = boost::asio::ip::tcp;
  boost::asio::io_context io;
  Tcp::acceptor acceptor(io, Tcp::endpoint(Tcp::v4(), 0));
  Tcp::socket client(io);
  client.connect({boost::asio::ip::address_v4::loopback(), acceptor.local_endpoint().port()});
  const auto connection = std::make_shared<FramedConnection>(
      acceptor.accept(), FramedConnection::Limits{.frameLength = 100, .queue = 1, .unsent = 0});
  int accepted = 0;
  const auto send = [&] {
    const bool good = connection->send(std::string(50000, static_cast<char>('a' + accepted % 26)));
    if (good) ++accepted;
    return good;
  };
  while (connection->unsent() == 0) ASSERT_TRUE(send());
  EXPECT_FALSE(send());
  EXPECT_FALSE(send());

  FrameSplitter splitter(50000);
  int received = 0;
  std::string frame;
  std::vector<char> bytes(1 << 16);
  const auto receive = [&] {
    while (received < accepted) {
      io.poll();
      const std::size_t count = client.read_some(boost::asio::buffer(bytes));
      ASSERT_TRUE(splitter.append({bytes.data(), count}));
      for (; splitter.next(frame); ++received) {
        EXPECT_EQ(frame, std::string(50000, static_cast<char>('a' + received % 26)));
      }
    }
  };
  receive();
  EXPECT_EQ(connection->unsent(), 0u);
  EXPECT_TRUE(send());
  receive();
  connection->close();
}

}  // namespace
}  // namespace arena
