#include "WebServer.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/read.hpp>
#include <boost/asio/write.hpp>
#include <chrono>
#include <string>
#include <thread>

#include "Page.h"

namespace viewer {
namespace {

namespace asio = boost::asio;
using Tcp = asio::ip::tcp;

class WebServerTest : public testing::Test {
 protected:
  WebServerTest()
      : server(io, {"127.0.0.1", 0, {"pitch.example"}},
               {[](std::string_view path) {
                  return path == "/film" ? WebServer::Answer{200, "application/json", "{}"}
                                         : WebServer::Answer{404, "text/plain", "nothing"};
                },
                [] { return std::vector<WebServer::News>{{"hello"}}; },
                [this](std::string_view text) { heard += text; }}),
        host("127.0.0.1:" + std::to_string(server.port())),
        thread([this] { io.run(); }) {}
  ~WebServerTest() override {
    io.stop();
    thread.join();
  }

  Tcp::socket connected() {
    Tcp::socket socket(client);
    socket.connect({asio::ip::address_v4::loopback(), server.port()});
    return socket;
  }
  // What comes within a while, up to the first blank line and what is there behind it.
  static std::string received(Tcp::socket& socket) {
    std::string text;
    boost::system::error_code error;
    std::array<char, 4096> part{};
    while (text.find("\r\n\r\n") == std::string::npos && !error) {
      text.append(part.data(), socket.read_some(asio::buffer(part), error));
    }
    return text;
  }
  std::string ask(const std::string& head) {
    Tcp::socket socket = connected();
    // Who is cut off while he still speaks hears nothing.
    boost::system::error_code error;
    asio::write(socket, asio::buffer(head + "\r\n"), error);
    return received(socket);
  }
  std::string get(const std::string& path, const std::string& hostName) {
    return ask("GET " + path + " HTTP/1.1\r\nHost: " + hostName + "\r\n");
  }
  std::string upgrade(const std::string& origin, const std::string& hostName) {
    return "GET /socket HTTP/1.1\r\nHost: " + hostName +
           "\r\nUpgrade: websocket\r\nConnection: Upgrade\r\nSec-WebSocket-Version: 13\r\n"
           "Sec-WebSocket-Key: dGhlIHNhbXBsZSBub25jZQ==\r\n" +
           (origin.empty() ? "" : "Origin: " + origin + "\r\n");
  }
  // A page that has been greeted: from then on it gets what is broadcast.
  Tcp::socket openPage() {
    Tcp::socket socket = connected();
    asio::write(socket, asio::buffer(upgrade("http://" + host, host) + "\r\n"));
    std::string got;
    std::array<char, 4096> part{};
    while (got.find("hello") == std::string::npos) {
      got.append(part.data(), socket.read_some(asio::buffer(part)));
    }
    return socket;
  }
  static bool isStatus(const std::string& answer, const std::string& status) {
    return answer.starts_with("HTTP/1.1 " + status);
  }

  asio::io_context io;
  asio::io_context client;
  std::string heard;
  WebServer server;
  std::string host;
  std::thread thread;
};

TEST_F(WebServerTest, ServesItsOwnPathsAlone) {
  EXPECT_TRUE(isStatus(get("/film", host), "200"));
  EXPECT_NE(get("/film", host).find("Content-Security-Policy: default-src 'none'"),
            std::string::npos);
  EXPECT_TRUE(isStatus(get("/../../etc/passwd", host), "404"));
  EXPECT_TRUE(
      isStatus(ask("POST /film HTTP/1.1\r\nHost: " + host + "\r\nContent-Length: 0\r\n"), "405"));
}

TEST_F(WebServerTest, AnswersToItsOwnNamesAlone) {
  const std::string port = ":" + std::to_string(server.port());
  for (const std::string name : {"localhost", "127.0.0.1", "[::1]", "pitch.example"}) {
    EXPECT_TRUE(isStatus(get("/film", name + port), "200")) << name;
  }
  for (const std::string name :
       {"evil.example", "localhost.evil.example", "127.0.0.1.evil.example", ""}) {
    EXPECT_TRUE(isStatus(get("/film", name + port), "403")) << name;
  }
}

TEST_F(WebServerTest, SocketIsForItsOwnPages) {
  EXPECT_TRUE(isStatus(ask(upgrade("http://" + host, host)), "101"));
  for (const std::string& origin :
       {std::string("http://evil.example"), std::string("null"), std::string(), "https://" + host,
        "http://" + host + ".evil.example", std::string("file://")}) {
    EXPECT_TRUE(isStatus(ask(upgrade(origin, host)), "403")) << origin;
  }
  // A name that its owner lets point to this machine.
  EXPECT_TRUE(isStatus(ask(upgrade("http://evil.example", "evil.example")), "403"));
}

TEST_F(WebServerTest, TooLongHeadsAndNonsenseEndTheConnection) {
  EXPECT_EQ(ask("GET / HTTP/1.1\r\nX: " + std::string(100'000, 'x') + "\r\n").find("200"),
            std::string::npos);
  EXPECT_EQ(ask("\x16\x03\x01 nonsense\r\n").find("200"), std::string::npos);
  EXPECT_TRUE(isStatus(get("/film", host), "200"));
}

// Frames of a WebSocket that is not read for a while must not hold up the others, nor the memory.
TEST_F(WebServerTest, SlowPageIsLeftAndOthersGoOn) {
  Tcp::socket slow = openPage();
  for (int i = 0; i < 400; ++i) {
    asio::post(io, [this] { server.broadcast({std::string(100'000, 'x')}); });
  }
  EXPECT_TRUE(isStatus(get("/film", host), "200"));
  // It was disconnected with most of it unsent.
  std::size_t got = 0;
  boost::system::error_code error;
  std::vector<char> part(1 << 16);
  while (!error) got += slow.read_some(asio::buffer(part), error);
  EXPECT_LT(got, 30'000'000u);
}

TEST_F(WebServerTest, PicturesArePassedOverWhereAPageIsSlow) {
  Tcp::socket slow = openPage();
  for (int i = 0; i < 400; ++i) {
    asio::post(io, [this] { server.broadcast({std::string(100'000, 'x'), true, true}); });
  }
  asio::post(io, [this] { server.broadcast({"the last news"}); });
  std::string end;
  std::size_t got = 0;
  std::vector<char> part(1 << 16);
  while (end.find("the last news") == std::string::npos) {
    const std::size_t count = slow.read_some(asio::buffer(part));
    got += count;
    end = end.substr(end.size() - std::min<std::size_t>(end.size(), 100)) +
          std::string(part.data(), count);
  }
  EXPECT_LT(got, 30'000'000u);
}

TEST_F(WebServerTest, ManyConnectionsAreBounded) {
  std::vector<Tcp::socket> crowd;
  for (int i = 0; i < 300; ++i) crowd.push_back(connected());
  // Those that are too many are closed at once.
  std::size_t closed = 0;
  std::this_thread::sleep_for(std::chrono::milliseconds(300));
  for (Tcp::socket& socket : crowd) {
    socket.non_blocking(true);
    char byte = 0;
    boost::system::error_code error;
    socket.read_some(asio::buffer(&byte, 1), error);
    if (error == asio::error::eof || error == asio::error::connection_reset) ++closed;
  }
  EXPECT_GT(closed, 100u);
  crowd.clear();
  std::this_thread::sleep_for(std::chrono::milliseconds(300));
  EXPECT_TRUE(isStatus(get("/film", host), "200"));
}

TEST_F(WebServerTest, TellsWhereItCannotListen) {
  const auto refusal = [this](const std::string& bind) {
    try {
      WebServer other(client, {bind, server.port(), {}}, {});
      return std::string("none");
    } catch (const std::runtime_error& error) {
      return std::string(error.what());
    }
  };
  const std::string port = std::to_string(server.port());
  EXPECT_THAT(refusal("127.0.0.1"),
              testing::StartsWith("cannot listen at 127.0.0.1, port " + port));
  EXPECT_EQ(refusal("300.1.1.1"), "'300.1.1.1' is no address to listen at");
}

TEST(PageTest, Base64IsThatOfTheStandard) {
  EXPECT_EQ(base64(""), "");
  EXPECT_EQ(base64("f"), "Zg==");
  EXPECT_EQ(base64("fo"), "Zm8=");
  EXPECT_EQ(base64("foo"), "Zm9v");
  EXPECT_EQ(base64("foobar"), "Zm9vYmFy");
  EXPECT_EQ(base64(std::string_view("\0\xff\xfe", 3)), "AP/+");
}

}  // namespace
}  // namespace viewer
