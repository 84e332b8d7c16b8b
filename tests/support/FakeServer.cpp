#include "support/FakeServer.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <stdexcept>

namespace support {

namespace {

[[noreturn]] void fail(const std::string& what) {
  throw std::runtime_error("fake server: " + what);
}

bool isReadableWithin(int fd, std::chrono::milliseconds time) {
  pollfd wanted = {fd, POLLIN, 0};
  return poll(&wanted, 1, static_cast<int>(time.count())) == 1;
}

void awaitReadable(int fd, const std::string& what) {
  if (!isReadableWithin(fd, FakeServer::kPatience)) fail("waited in vain for " + what);
}

}  // namespace

FakeServer::FakeServer() : listener(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
  sockaddr_in addr = {};
  addr.sin_family = AF_INET;
  addr.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  socklen_t size = sizeof addr;
  auto* const generic = reinterpret_cast<sockaddr*>(&addr);
  if (listener == -1 || ::bind(listener, generic, size) == -1 || ::listen(listener, 8) == -1 ||
      ::getsockname(listener, generic, &size) == -1) {
    fail("can't listen");
  }
  listeningPort = ntohs(addr.sin_port);
}

FakeServer::~FakeServer() {
  closeConnection();
  stopListening();
}

std::vector<std::string> FakeServer::options() const {
  return {"--host", "127.0.0.1", "--player-port", std::to_string(port())};
}

void FakeServer::accept() {
  awaitReadable(listener, "a player");
  closeConnection();
  connection = ::accept4(listener, nullptr, nullptr, SOCK_CLOEXEC);
  if (connection == -1) fail("can't accept");
  const int on = 1;
  ::setsockopt(connection, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
}

std::string FakeServer::receiveBytes(std::size_t count) {
  std::string bytes;
  while (bytes.size() < count) {
    awaitReadable(connection, "a message");
    char part[4096];
    const ssize_t got = ::recv(connection, part, std::min(sizeof part, count - bytes.size()), 0);
    if (got <= 0) fail("the player closed the connection");
    bytes.append(part, static_cast<std::size_t>(got));
  }
  return bytes;
}

std::string FakeServer::receive() {
  return receiveBytes(frameLength(receiveBytes(kFrameHead)));
}

bool FakeServer::isQuietFor(std::chrono::milliseconds time) const {
  return !isReadableWithin(connection, time);
}

void FakeServer::awaitClose() {
  awaitReadable(connection, "the end of the connection");
  char byte;
  if (::recv(connection, &byte, 1, 0) > 0) fail("the player sent something");
}

void FakeServer::sendRaw(const std::string& bytes) {
  std::size_t sent = 0;
  while (sent < bytes.size()) {
    const ssize_t result =
        ::send(connection, bytes.data() + sent, bytes.size() - sent, MSG_NOSIGNAL);
    if (result <= 0) fail("can't send");
    sent += static_cast<std::size_t>(result);
  }
}

void FakeServer::closeConnection() {
  if (connection != -1) ::close(connection);
  connection = -1;
}

void FakeServer::stopListening() {
  if (listener != -1) ::close(listener);
  listener = -1;
}

}  // namespace support
