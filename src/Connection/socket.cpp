#include "Connection/socket.h"

#include <fcntl.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>

#include "Connection/handler.h"
#include "Connection/tcpsocket.h"

namespace rcss::net {

namespace {

int failNotPermitted() {
  errno = EPERM;
  return -1;
}

const sockaddr* generic(const Addr& addr) {
  return reinterpret_cast<const sockaddr*>(&addr.getAddr());
}

// The address that `ask` (getsockname, getpeername) gives for `fd`.
Addr addressBy(int (*ask)(int, sockaddr*, socklen_t*), int fd) {
  Addr::AddrType addr = {};
  socklen_t size = sizeof addr;
  if (ask(fd, reinterpret_cast<sockaddr*>(&addr), &size) == -1) return Addr(0, 0);
  return Addr(addr);
}

}  // namespace

Socket::Socket() : m_handler(&Handler::instance()) {}

Socket::Socket(SocketDesc& fd) : Socket() {
  adopt(fd);
}

void Socket::closeFD(SocketDesc* fd) {
  if (*fd != INVALIDSOCKET) ::close(*fd);
  delete fd;
}

void Socket::adopt(SocketDesc fd) {
  m_handle.reset(new SocketDesc(fd), &Socket::closeFD);
}

bool Socket::open() {
  if (!m_handler->valid()) return false;
  SocketDesc fd = INVALIDSOCKET;
  if (!doOpen(fd)) return false;
  adopt(fd);
  if (setCloseOnExec(true) != -1) return true;
  close();
  return false;
}

bool Socket::bind(const Addr& addr) {
  return isOpen() && ::bind(getFD(), generic(addr), sizeof(Addr::AddrType)) != -1;
}

bool Socket::connect(const Addr& addr) {
  return isOpen() && ::connect(getFD(), generic(addr), sizeof(Addr::AddrType)) != -1;
}

Addr Socket::getName() const {
  return addressBy(::getsockname, getFD());
}

Addr Socket::getPeer() const {
  return addressBy(::getpeername, getFD());
}

int Socket::setFlag(int getCommand, int setCommand, int flag, bool on) {
  if (!isOpen()) return failNotPermitted();
  const int flags = ::fcntl(getFD(), getCommand);
  if (flags == -1) return -1;
  return ::fcntl(getFD(), setCommand, on ? flags | flag : flags & ~flag);
}

int Socket::setCloseOnExec(bool on) {
  return setFlag(F_GETFD, F_SETFD, FD_CLOEXEC, on);
}

int Socket::setNonBlocking(bool on) {
  return setFlag(F_GETFL, F_SETFL, O_NONBLOCK, on);
}

int Socket::setAsync(bool on) {
  return setFlag(F_GETFL, F_SETFL, O_ASYNC, on);
}

int Socket::setOption(int option, bool on) {
  if (!isOpen()) return failNotPermitted();
  const int value = on ? 1 : 0;
  return ::setsockopt(getFD(), SOL_SOCKET, option, &value, sizeof value);
}

int Socket::setBroadcast(bool on) {
  return setOption(SO_BROADCAST, on);
}

int Socket::setReuseAddr(bool on) {
  return setOption(SO_REUSEADDR, on);
}

int Socket::send(const char* data, std::size_t size, int flags, CheckingType check) {
  if (check == DONT_CHECK) return static_cast<int>(::send(getFD(), data, size, flags));

  std::size_t sent = 0;
  while (sent < size) {
    const ssize_t result = ::send(getFD(), data + sent, size - sent, flags);
    if (result > 0) {
      sent += static_cast<std::size_t>(result);
    } else if (result == -1 && errno != EAGAIN && errno != EINTR) {
      return -1;
    }
  }
  return static_cast<int>(sent);
}

int Socket::send(const char* data, std::size_t size, const Addr& to, int flags,
                 CheckingType check) {
  ssize_t result;
  do {
    result = ::sendto(getFD(), data, size, flags, generic(to), sizeof(Addr::AddrType));
  } while (check == CHECK && result == -1 && (errno == EAGAIN || errno == EINTR));
  return static_cast<int>(result);
}

int Socket::recv(char* data, std::size_t size, int flags, CheckingType check) {
  ssize_t result;
  do {
    result = ::recv(getFD(), data, size, flags);
  } while (check == CHECK && result == -1 && errno == EINTR);
  return static_cast<int>(result);
}

int Socket::recv(char* data, std::size_t size, Addr& from, int flags, CheckingType check) {
  Addr::AddrType addr = {};
  ssize_t result;
  do {
    socklen_t length = sizeof addr;
    result = ::recvfrom(getFD(), data, size, flags, reinterpret_cast<sockaddr*>(&addr), &length);
  } while (check == CHECK && result == -1 && errno == EINTR);
  from = Addr(addr);
  return static_cast<int>(result);
}

int Socket::recv(int, char*, std::size_t, int, CheckingType) {
  return failNotPermitted();
}

int Socket::recv(int, char*, std::size_t, Addr&, int, CheckingType) {
  return failNotPermitted();
}

bool Socket::listen(int backlog) {
  return ::listen(getFD(), backlog) != -1;
}

bool Socket::accept(Socket& sock) {
  const SocketDesc fd = ::accept(getFD(), nullptr, nullptr);
  if (fd == INVALIDSOCKET) return false;
  sock.adopt(fd);
  return true;
}

Socket* Socket::accept(Addr& addr) {
  Addr::AddrType peer = {};
  socklen_t size = sizeof peer;
  SocketDesc fd = ::accept(getFD(), reinterpret_cast<sockaddr*>(&peer), &size);
  if (fd == INVALIDSOCKET) return nullptr;
  addr = Addr(peer);
  return new TCPSocket(fd);
}

}  // namespace rcss::net
