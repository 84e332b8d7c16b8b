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

namespace arena {

// Cuts a stream of bytes into frames: a 4-byte big-endian length, then as many bytes of text.
class FrameSplitter {
 public:
  explicit FrameSplitter(std::size_t maxLength) : maxLength_(maxLength) {}

  // Takes the next bytes of the stream. Returns false if a frame is announced that is longer than
  // allowed; nothing more can then be read from the stream.
  bool append(std::string_view bytes);
  // The next complete frame, if there is one. The text stays valid until the next call.
  bool next(std::string& frame);

 private:
  bool lengthAllowed() const;

  std::size_t maxLength_;
  std::string buffer_;
  std::size_t begin_ = 0;  // of what has not been handed out
};

// The 4 bytes before a frame of this length.
std::array<char, 4> framePrefix(std::size_t length);

// One TCP connection that carries frames both ways. It never blocks and holds a bounded amount of
// memory, whatever the other side does: with its queue full it stops reading, with its send buffer
// full it drops frames. Owned by shared_ptr: pending operations keep it alive.
class FramedConnection : public std::enable_shared_from_this<FramedConnection> {
 public:
  struct Limits {
    std::size_t frame_length = std::size_t{64} << 10;  // bytes, of a frame that arrives
    std::size_t queue = 64;                            // frames that wait to be taken
    std::size_t unsent = std::size_t{256} << 10;       // bytes, beyond which frames are dropped
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
  void drainSplitter();
  void write();
  void end(const std::string& reason);

  boost::asio::ip::tcp::socket socket_;
  Limits limits_;
  Listener listener_;
  FrameSplitter splitter_;
  std::array<char, 8192> input_;
  std::deque<std::string> frames_;
  bool reading_ = false;
  std::string unsent_;
  std::size_t sent_ = 0;
  bool writing_ = false;
  bool ended_ = false;
  std::string reason_;
};

}  // namespace arena

#endif  // QUOLNARIS_NET_FRAMEDCONNECTION_H_
