#include "Connection/Connection.h"

#include <sys/select.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <iostream>

#include "Connection/addr.h"
#include "Connection/exception.h"

using rcss::net::Addr;
using rcss::net::BindErr;
using rcss::net::ConnectErr;

namespace {

constexpr int kPrefixSize = 4;

// The 32-bit big-endian number at `bytes`.
int bigEndian(const char* bytes) {
  std::uint32_t value = 0;
  for (int i = 0; i < kPrefixSize; ++i) value = value << 8 | static_cast<unsigned char>(bytes[i]);
  return static_cast<int>(value);
}

// `select` for reading on `fd` alone; the system takes the time that passed off `timeLeft`.
int waitReadable(int fd, timeval& timeLeft) {
  if (fd < 0 || fd >= FD_SETSIZE) {  // has no place in the set
    errno = EBADF;
    return -1;
  }
  fd_set readable;
  FD_ZERO(&readable);
  FD_SET(fd, &readable);
  return select(fd + 1, &readable, nullptr, nullptr, &timeLeft);
}

std::string framed(const std::string& text) {
  const auto size = static_cast<std::uint32_t>(text.size());
  std::string frame;
  frame.reserve(kPrefixSize + text.size());
  for (int shift = 24; shift >= 0; shift -= 8) frame += static_cast<char>(size >> shift & 0xFF);
  return frame += text;
}

}  // namespace

Connection::Connection(const std::string& host_, int port_, long silenceLimit_)
    : host(host_), port(port_), silenceLimit(silenceLimit_) {}

bool Connection::init() {
  std::cout << "connecting to TCP " << host << ":" << port << std::endl;

  // Neither call throws what is caught here, and their results are not looked at: a fault of the
  // connection shows at the first send, and so it shall.
  try {
    socket.bind(Addr(0, 0));
  } catch (const BindErr& error) {
    std::cerr << "failed to bind socket with '" << error.what() << "'" << std::endl;
    socket.close();
    return false;
  }
  try {
    socket.connect(Addr(static_cast<Addr::PortType>(port), host));
  } catch (const ConnectErr& error) {
    std::cerr << "connection failed with: '" << error.what() << "'" << std::endl;
    socket.close();
    return false;
  }
  return true;
}

bool Connection::selectInput() {
  timeval timeLeft = {silenceLimit, 0};
  int result;
  do {
    result = waitReadable(socket.getFD(), timeLeft);
  } while (result == -1 && errno == EINTR);
  if (result == 1) return true;

  std::cerr << "(selectInput) select failed " << std::strerror(errno) << std::endl;
  std::abort();
}

bool Connection::getMessage(std::string& msg) {
  static char buffer[kFrameLimit + 1];  // the last for the terminator of the longest frame

  // A result of 0 or below adds nothing, so that a closed connection keeps these loops busy.
  int bytesRead = 0;
  while (bytesRead < kPrefixSize) {
    selectInput();
    const int result = socket.recv(buffer + bytesRead, kPrefixSize - bytesRead);
    if (result > 0) bytesRead += result;
  }

  const int msgLen = bigEndian(buffer);
  // As an unsigned number, so that a length below -4 is too long as well; -4 to -1 mean no text.
  if (static_cast<std::uint64_t>(static_cast<std::int64_t>(msgLen) + kPrefixSize) > kFrameLimit) {
    std::cerr << "message too long; aborting" << std::endl;
    std::abort();
  }

  int msgRead = bytesRead - kPrefixSize;
  char* offset = buffer + bytesRead;
  while (msgLen > msgRead) {
    if (!selectInput()) return false;
    const int result = socket.recv(offset, std::min(kFrameLimit - msgRead, msgLen - msgRead));
    if (result > 0) {
      msgRead += result;
      offset += result;
    }
  }

  *offset = '\0';
  msg = buffer + kPrefixSize;
  return true;
}

void Connection::sendMessage(const std::string& msg) {
  if (msg.empty()) return;
  const std::string frame = framed(msg);
  socket.send(frame.data(), frame.size());
}
