#ifndef QUOLNARIS_CONNECTION_SOCKET_H_
#define QUOLNARIS_CONNECTION_SOCKET_H_

#include <boost/shared_ptr.hpp>
#include <cstddef>

#include "Connection/addr.h"

namespace rcss::net {

class Handler;

// A socket descriptor. Copies share it, and it is closed with the last of them. Operations report
// failure by their result and leave the reason in errno; none of them throws.
class Socket {
 public:
  using SocketDesc = int;

  static constexpr SocketDesc INVALIDSOCKET = -1;

  enum CheckingType {
    CHECK = 0,      // retry what failed for the moment only
    DONT_CHECK = 1  // one attempt
  };

  virtual ~Socket() = default;
  Socket(const Socket&) = default;
  Socket& operator=(const Socket&) = default;

  // Makes a new descriptor, closed on exec, and lets go the old one.
  bool open();

  bool bind(const Addr& addr);
  bool connect(const Addr& addr);

  // Its own and the other end; `Addr(0, 0)` if there is none.
  Addr getName() const;
  Addr getPeer() const;
  Addr getDest() const { return getPeer(); }

  // Lets go the descriptor.
  void close() { m_handle.reset(); }

  // Flags and options. Without a descriptor: errno 1 and -1.
  int setCloseOnExec(bool on = true);
  int setNonBlocking(bool on = true);
  int setAsync(bool on = true);
  int setBroadcast(bool on = true);
  int setReuseAddr(bool on = true);

  SocketDesc getFD() const { return m_handle ? *m_handle : INVALIDSOCKET; }
  bool isOpen() const { return m_handle != nullptr; }
  bool isConnected() const { return getPeer() != Addr(0, 0); }

  // The number of bytes sent, or -1. CHECK sends all of them, again and again while the system
  // takes none, even if that is for ever.
  int send(const char* data, std::size_t size, int flags = 0, CheckingType check = CHECK);
  int send(const char* data, std::size_t size, const Addr& to, int flags = 0,
           CheckingType check = CHECK);

  // The number of bytes received, 0 at the end of the stream, or -1. `from` takes the sender.
  int recv(char* data, std::size_t size, int flags = 0, CheckingType check = CHECK);
  int recv(char* data, std::size_t size, Addr& from, int flags = 0, CheckingType check = CHECK);

  // Receiving with a time-out is not offered: errno 1 and -1.
  int recv(int timeout, char* data, std::size_t size, int flags = 0, CheckingType check = CHECK);
  int recv(int timeout, char* data, std::size_t size, Addr& from, int flags = 0,
           CheckingType check = CHECK);

  bool listen(int backlog);

  // Waits for a connection and puts it into `sock`.
  bool accept(Socket& sock);

  // Waits for a connection and returns it as a new socket, owned by the caller, with the address
  // of the other end; null on failure.
  Socket* accept(Addr& addr);

 protected:
  Socket();

  // Adopts a descriptor.
  explicit Socket(SocketDesc& fd);

  // Makes a descriptor of the socket's own kind.
  virtual bool doOpen(SocketDesc& fd) = 0;

 private:
  static void closeFD(SocketDesc* fd);

  void adopt(SocketDesc fd);
  int setFlag(int getCommand, int setCommand, int flag, bool on);
  int setOption(int option, bool on);

  Handler* m_handler;
  boost::shared_ptr<SocketDesc> m_handle;
};

}  // namespace rcss::net

#endif  // QUOLNARIS_CONNECTION_SOCKET_H_
