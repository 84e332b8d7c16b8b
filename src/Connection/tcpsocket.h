#ifndef QUOLNARIS_CONNECTION_TCPSOCKET_H_
#define QUOLNARIS_CONNECTION_TCPSOCKET_H_

#include "Connection/addr.h"
#include "Connection/socket.h"

namespace rcss::net {

// A stream socket over IPv4.
class TCPSocket : public Socket {
 public:
  // Opens a descriptor at once.
  TCPSocket();

  // Adopts a descriptor.
  explicit TCPSocket(SocketDesc& fd);

  // Opens, and binds to `addr`.
  explicit TCPSocket(const Addr& addr);

  // Opens, binds to `addr` and connects to `dest`.
  TCPSocket(const Addr& addr, const Addr& dest);

 protected:
  bool doOpen(SocketDesc& fd) override;
};

}  // namespace rcss::net

#endif  // QUOLNARIS_CONNECTION_TCPSOCKET_H_
