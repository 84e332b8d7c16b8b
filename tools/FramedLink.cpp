#include "FramedLink.h"

#include <netdb.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <memory>
#include <utility>

namespace {

constexpr const char* kSending = "sending a message";
constexpr const char* kTaking = "taking a frame";

void sendAtOnce(int socket) {
  const int on = 1;
  ::setsockopt(socket, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
}

// A socket that is connected to one of the addresses, or -1.
int connectToOneOf(const addrinfo* addresses, int receiveBuffer) {
  for (const addrinfo* at = addresses; at != nullptr; at = at->ai_next) {
    const int socket = ::socket(at->ai_family, at->ai_socktype | SOCK_CLOEXEC, at->ai_protocol);
    if (socket == -1) continue;
    if (receiveBuffer > 0) {
      ::setsockopt(socket, SOL_SOCKET, SO_RCVBUF, &receiveBuffer, sizeof receiveBuffer);
    }
    if (::connect(socket, at->ai_addr, at->ai_addrlen) == 0) return socket;
    const int error = errno;
    ::close(socket);
    errno = error;
  }
  return -1;
}

bool mustWait() {
  return errno == EAGAIN || errno == EWOULDBLOCK || errno == EINTR;
}

}  // namespace

std::string frameHead(std::uint32_t length) {
  std::string head;
  for (int shift = 24; shift >= 0; shift -= 8) head += static_cast<char>(length >> shift & 0xFFU);
  return head;
}

std::uint32_t frameLength(std::string_view head) {
  std::uint32_t length = 0;
  for (const char c : head.substr(0, kFrameHead)) {
    length = length << 8U | static_cast<unsigned char>(c);
  }
  return length;
}

std::string framed(std::string_view text) {
  return frameHead(static_cast<std::uint32_t>(text.size())).append(text);
}

FramedLink::FramedLink(const std::string& host, std::uint16_t port, int receiveBuffer) {
  addrinfo wanted{};
  wanted.ai_socktype = SOCK_STREAM;
  addrinfo* found = nullptr;
  const std::string place = host + " port " + std::to_string(port);
  if (const int error = ::getaddrinfo(host.c_str(), std::to_string(port).c_str(), &wanted, &found);
      error != 0) {
    throw LinkError("cannot connect to " + place + ": " + ::gai_strerror(error));
  }
  const std::unique_ptr<addrinfo, decltype(&::freeaddrinfo)> addresses(found, &::freeaddrinfo);
  socket_ = connectToOneOf(found, receiveBuffer);
  if (socket_ == -1) throw LinkError("cannot connect to " + place + ": " + std::strerror(errno));
  sendAtOnce(socket_);
}

FramedLink::FramedLink(int socket, std::string peer, double patience)
    : socket_(socket), peer_(std::move(peer)), patience_(patience) {
  sendAtOnce(socket_);
}

FramedLink::~FramedLink() {
  close();
}

void FramedLink::await(short event, const char* what) const {
  pollfd wanted = {socket_, event, 0};
  // A day is for ever, and fits.
  const auto milliseconds = static_cast<int>(std::min(patience_, 86400.0) * 1000);
  int result = 0;
  do {
    result = ::poll(&wanted, 1, milliseconds);
  } while (result == -1 && errno == EINTR);
  if (result == 0) throw LinkError(peer_ + " was silent for too long while " + what);
}

void FramedLink::sendRaw(std::string_view bytes) {
  while (!bytes.empty()) {
    await(POLLOUT, kTaking);
    const ssize_t sent = ::send(socket_, bytes.data(), bytes.size(), MSG_NOSIGNAL | MSG_DONTWAIT);
    if (sent >= 0) {
      bytes.remove_prefix(static_cast<std::size_t>(sent));
    } else if (!mustWait()) {
      throw LinkError(peer_ + " went away while " + kTaking + " (" + std::strerror(errno) + ")");
    }
  }
}

std::string FramedLink::receiveBytes(std::size_t count) {
  std::string bytes(count, '\0');
  std::size_t have = 0;
  while (have < count) {
    await(POLLIN, kSending);
    const ssize_t got = ::recv(socket_, bytes.data() + have, count - have, MSG_DONTWAIT);
    if (got > 0) {
      have += static_cast<std::size_t>(got);
    } else if (got == 0 || !mustWait()) {
      const char* reason = got == 0 ? "end of the connection" : std::strerror(errno);
      throw LinkError(peer_ + " went away while " + kSending + " (" + reason + ")");
    }
  }
  return bytes;
}

std::string FramedLink::receive() {
  const std::uint32_t length = frameLength(receiveBytes(kFrameHead));
  if (length > kLongest) {
    throw LinkError(peer_ + " announced a message of " + std::to_string(length) + " bytes");
  }
  return receiveBytes(length);
}

bool FramedLink::hasData() const {
  int count = 0;
  return ::ioctl(socket_, FIONREAD, &count) == 0 && count > 0;
}

void FramedLink::drain() {
  std::array<char, 65536> buffer;
  while (::recv(socket_, buffer.data(), buffer.size(), MSG_DONTWAIT) > 0) {
  }
}

void FramedLink::close() {
  if (socket_ != -1) ::close(socket_);
  socket_ = -1;
}

void FramedLink::reset() {
  const linger atOnce = {1, 0};
  ::setsockopt(socket_, SOL_SOCKET, SO_LINGER, &atOnce, sizeof atOnce);
  close();
}

void FramedLink::shutDown() {
  ::shutdown(socket_, SHUT_RDWR);
}
