#ifndef QUOLNARIS_TOOLS_FRAMEDLINK_H_
#define QUOLNARIS_TOOLS_FRAMEDLINK_H_

#include <cstddef>
#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>

// The wire as tools and tests speak it, knowing neither the player nor the practice arena: every
// text travels in a frame, a 4-byte big-endian length (which does not count itself) and the text.

constexpr std::size_t kFrameHead = 4;  // bytes of the length

// The length alone, as it goes before a text of so many bytes.
std::string frameHead(std::uint32_t length);
// The length that such a head tells. REQUIRES: `head` has kFrameHead bytes or more.
std::uint32_t frameLength(std::string_view head);
// The text with its length before it.
std::string framed(std::string_view text);

// The other side has gone, or nothing was heard from it for too long; the text says so.
class LinkError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// A TCP connection that carries frames; sending and receiving wait for the other side, but not for
// ever. Not for use by two threads at once, but for shutDown().
class FramedLink {
 public:
  // No frame in earnest is longer, in bytes of text; a longer length is garbage.
  static constexpr std::uint32_t kLongest = 1U << 20U;

  // Connects. `receiveBuffer`: bytes that the system keeps until they are read; 0: as many as
  // usual. Throws LinkError if nobody listens there.
  FramedLink(const std::string& host, std::uint16_t port, int receiveBuffer = 0);
  // Takes over a connected socket. `peer` is the other side's name in errors, "the player" say;
  // `patience` the seconds for which it is waited for at most, in each send and receive.
  FramedLink(int socket, std::string peer, double patience);
  ~FramedLink();
  FramedLink(const FramedLink&) = delete;
  FramedLink& operator=(const FramedLink&) = delete;

  // Sends one frame. Throws LinkError.
  void send(std::string_view text) { sendRaw(framed(text)); }
  // Sends bytes as they are, for frames in pieces and frames that lie. Throws LinkError.
  void sendRaw(std::string_view bytes);
  // Waits for a frame and returns its text. Throws LinkError, for a length beyond kLongest as well.
  std::string receive();
  // Whether there is something to receive, a whole frame or its beginning.
  bool hasData() const;
  // Throws away what has arrived.
  void drain();

  void close();
  // Closes so that the other side sees an error instead of an end.
  void reset();
  // Ends the connection both ways, from any thread: who waits in a call gets a LinkError.
  void shutDown();

 private:
  void await(short event, const char* what) const;
  std::string receiveBytes(std::size_t count);

  int socket_ = -1;
  std::string peer_ = "the server";
  double patience_ = 10;  // s
};

#endif  // QUOLNARIS_TOOLS_FRAMEDLINK_H_
