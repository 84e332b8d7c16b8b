#ifndef QUOLNARIS_CONNECTION_CONNECTION_H_
#define QUOLNARIS_CONNECTION_CONNECTION_H_

#include <string>

#include "Connection/tcpsocket.h"

// The stream of framed messages to and from the server. A frame, in both directions, is a 32-bit
// big-endian length and that many bytes of text; the length does not count itself, and nothing
// stands between frames.
//
// There is no treatment of a lost connection, and none must be added: a refused connection shows
// at the first send, which ends the process by SIGPIPE; after an orderly close by the server
// `getMessage` never returns; a silent server ends the process.
class Connection {
 public:
  // How long a server may be silent, in seconds.
  static constexpr long kSilenceLimit = 60;

  // The largest frame that is accepted, in bytes, its length included.
  static constexpr int kFrameLimit = 16384;

  // Stores host and port and opens a descriptor, not yet connected. A shorter `silenceLimit` is
  // for tests.
  Connection(const std::string& host, int port, long silenceLimit = kSilenceLimit);

  // Connects. True even if the connection was refused. `rcss::net::HostNotFound` if the name can't
  // be resolved.
  bool init();

  // Waits for the next frame and puts its text into `msg`, up to the first NUL in it. Aborts the
  // process if nothing comes within the limit of silence, or if the frame is longer than the
  // limit. Always returns true.
  bool getMessage(std::string& msg);

  // Sends `msg` as one frame; nothing at all if it is empty.
  void sendMessage(const std::string& msg);

 private:
  // Waits until the socket can be read. Never returns false: aborts instead.
  bool selectInput();

  std::string host;
  int port;
  rcss::net::TCPSocket socket;
  long silenceLimit;
};

#endif  // QUOLNARIS_CONNECTION_CONNECTION_H_
