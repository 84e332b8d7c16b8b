#ifndef QUOLNARIS_TESTS_SUPPORT_FAKESERVER_H_
#define QUOLNARIS_TESTS_SUPPORT_FAKESERVER_H_

#include <chrono>
#include <cstdint>
#include <string>
#include <vector>

#include "FramedLink.h"

namespace support {

/// The far end of the player's connection: listens on a free port of the loopback and speaks the
/// framing of the league's server (32-bit big-endian length, then the text) to one player.
///
///   support::FakeServer server;
///   support::PlayerProcess player(directory.path(), server.options());
///   server.accept();
///   EXPECT_EQ(server.receive(), "(scene ...)");
///   server.send("(time (now 0.02))");
///
/// Whatever does not happen within `kPatience` throws std::runtime_error, which fails the test.
class FakeServer {
 public:
  static constexpr std::chrono::seconds kPatience{30};

  FakeServer();
  ~FakeServer();
  FakeServer(const FakeServer&) = delete;
  FakeServer& operator=(const FakeServer&) = delete;

  int port() const { return listeningPort; }

  /// The command line options that lead a player here.
  std::vector<std::string> options() const;

  /// Waits for a player to connect.
  void accept();

  /// Waits for one frame and returns its text. Throws if the player closes the connection.
  std::string receive();

  /// Whether the player sends nothing, and does not close, for this long.
  bool isQuietFor(std::chrono::milliseconds time) const;

  /// Waits until the player closes the connection. Throws if it sends something before.
  void awaitClose();

  /// Sends one frame.
  void send(const std::string& text) { sendRaw(frame(text)); }

  /// Sends bytes as they are, at once and as a segment of their own if the stream was idle.
  void sendRaw(const std::string& bytes);

  /// Closes the connection in an orderly way.
  void closeConnection();

  /// Stops listening: later players are refused. An accepted connection stays.
  void stopListening();

  /// `text` with its length in front.
  static std::string frame(const std::string& text) { return framed(text); }

  /// A length alone, for frames whose length lies.
  static std::string prefix(int length) { return frameHead(static_cast<std::uint32_t>(length)); }

 private:
  std::string receiveBytes(std::size_t count);

  int listener;
  int listeningPort;
  int connection = -1;
};

}  // namespace support

#endif  // QUOLNARIS_TESTS_SUPPORT_FAKESERVER_H_
