#include "Connection/tcpsocket.h"

#include <sys/socket.h>

namespace rcss::net {

TCPSocket::TCPSocket() {
  open();
}

TCPSocket::TCPSocket(SocketDesc& fd) : Socket(fd) {}

TCPSocket::TCPSocket(const Addr& addr) {
  if (open()) bind(addr);
}

TCPSocket::TCPSocket(const Addr& addr, const Addr& dest) {
  if (open() && bind(addr)) connect(dest);
}

bool TCPSocket::doOpen(SocketDesc& fd) {
  close();
  fd = ::socket(AF_INET, SOCK_STREAM, IPPROTO_TCP);
  return fd != INVALIDSOCKET;
}

}  // namespace rcss::net
