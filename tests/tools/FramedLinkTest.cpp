#include "FramedLink.h"

#include <gtest/gtest.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <string>
#include <thread>

namespace {

class FramedLinkTest : public testing::Test {
 protected:
  // Two ends of one connection.
  static std::array<int, 2> pair() {
    std::array<int, 2> ends{};
    EXPECT_EQ(::socketpair(AF_UNIX, SOCK_STREAM, 0, ends.data()), 0);
    return ends;
  }
  template <typename Call>
  static std::string errorOf(Call call) {
    try {
      call();
    } catch (const LinkError& error) {
      return error.what();
    }
    return "no error";
  }

  std::array<int, 2> ends = pair();
  FramedLink link{ends[0], "the player", 0.2};
  FramedLink other{ends[1], "the other", 0.2};
};

TEST_F(FramedLinkTest, TheHeadIsBigEndian) {
  EXPECT_EQ(frameHead(0x01020304), "\x01\x02\x03\x04");
  EXPECT_EQ(framed("ab"), std::string("\0\0\0\x02", 4) + "ab");
  for (const std::uint32_t length : {0U, 1U, 255U, 256U, 0x7fffffffU, 0xffffffffU}) {
    EXPECT_EQ(frameLength(frameHead(length) + "more"), length);
  }
}

TEST_F(FramedLinkTest, CarriesFramesBothWays) {
  link.send("(a)");
  link.send("");
  EXPECT_EQ(other.receive(), "(a)");
  EXPECT_EQ(other.receive(), "");
  const std::string large(300000, 'x');
  std::thread sending([&] { other.send(large); });
  EXPECT_EQ(link.receive(), large);
  sending.join();
}

TEST_F(FramedLinkTest, JoinsPieces) {
  const std::string whole = framed("(time (now 1.00))");
  std::thread sending([&] {
    for (const char c : whole) other.sendRaw({&c, 1});
  });
  EXPECT_EQ(link.receive(), "(time (now 1.00))");
  sending.join();
}

TEST_F(FramedLinkTest, SaysWhatIsThereAndThrowsItAway) {
  EXPECT_FALSE(link.hasData());
  other.send("(a)");
  EXPECT_TRUE(link.hasData());
  link.drain();
  EXPECT_FALSE(link.hasData());
}

TEST_F(FramedLinkTest, NamesWhoIsSilentGoneOrTalksRubbish) {
  EXPECT_EQ(errorOf([&] { link.receive(); }),
            "the player was silent for too long while sending a message");
  EXPECT_EQ(errorOf([&] { link.sendRaw(std::string(std::size_t{8} << 20U, 'x')); }),
            "the player was silent for too long while taking a frame");
  other.sendRaw(frameHead(FramedLink::kLongest + 1));
  EXPECT_EQ(errorOf([&] { link.receive(); }), "the player announced a message of 1048577 bytes");
  other.sendRaw("\x01");
  other.close();
  EXPECT_TRUE(errorOf([&] { link.receive(); }).starts_with("the player went away"));
  EXPECT_TRUE(errorOf([&] { link.send("(a)"); }).starts_with("the player went away"));
}

TEST_F(FramedLinkTest, NamesThePlaceWhereNobodyListens) {
  EXPECT_TRUE(errorOf([] {
                FramedLink("127.0.0.1", 1);
              }).starts_with("cannot connect to 127.0.0.1 port 1: "));
}

}  // namespace
