#ifndef QUOLNARIS_NET_FRAMEDCONNECTION_H_
#define QUOLNARIS_NET_FRAMEDCONNECTION_H_

#include <array>
#include <boost/asio/ip/tcp.hpp>
#include <cstddef>
#include <deque>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

#include "Wire/Frame.h"

namespace arena {

// One TCP connection that carries frames both ways. It never blocks and holds a bounded amount of
// memory, whatever the other side does: with its queue full it stops reading, with its send buffer
// full it drops frames. Owned by shared_ptr: pending operations keep it alive.
class FramedConnection : public std::enable_shared_from_this<FramedConnection> {
 public:
  struct Limits {
    std::size_t frameLength = std::size_t{64} << 10;  // bytes, of a frame that arrives
    std::size_t queue = 64;                           // frames that wait to be taken
    std::size_t queueBytes = std::size_t{64}
                             << 10;               // the same in bytes; the last one may exceed it
    std::size_t unsent = std::size_t{256} << 10;  // bytes, beyond which frames are dropped
  };
  // Called whenever a frame has arrived or the connection has ended.
  using Listener = std::function<void()>;

  FramedConnection(boost::asio::ip::tcp::socket socket, const Limits& limits);

  void start(Listener listener);
  // No further call of the listener; the socket is closed.
  void close();

  bool ended() const { return ended_; }
  // Why it ended; empty for an orderly end.
  const std::string& reason() const { return reason_; }

  std::size_t waiting() const { return frames_.size(); }
  // Removes and returns the frame that has waited longest. REQUIRES waiting() > 0.
  std::string take();

  // Sends a frame, or drops it as a whole if the other side is too slow. Returns whether it was
  // accepted.
  bool send(std::string_view frame);
  // Bytes that the system has not taken yet.
  std::size_t unsent() const { return unsent_.size() - sent_; }

 private:
  void read();
  void onRead(const boost::system::error_code& error, std::size_t count);
  bool queueFull() const;
  // Moves frames that have arrived into the queue as far as it has room. Returns whether any were.
  bool fillQueue();
  void write();
  void end(const std::string& reason);

  boost::asio::ip::tcp::socket socket_;
  Limits limits_;
  Listener listener_;
  FrameSplitter splitter_;
  std::array<char, 8192> input_;
  std::deque<std::string> frames_;
  std::size_t waitingBytes_ = 0;
  bool reading_ = false;
  std::string unsent_;
  std::size_t sent_ = 0;
  bool writing_ = false;
  bool ended_ = false;
  std::string reason_;
};

}  // namespace arena

#endif  // QUOLNARIS_NET_FRAMEDCONNECTION_H_
