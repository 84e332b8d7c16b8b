#ifndef QUOLNARIS_VIEWER_SOURCES_H_
#define QUOLNARIS_VIEWER_SOURCES_H_

#include <boost/asio/io_context.hpp>
#include <memory>
#include <string>

#include "Film.h"
#include "MonitorClient.h"
#include "StreamReader.h"

namespace viewer {

// The film of a match recording. What is damaged or cut off ends the film there, with a note on its
// timeline. Throws arena::RecordingError if there is not a single cycle.
Film filmOfRecording(const std::string& path);

// A running match: keeps the film of what a monitor port shows.
class LiveMatch {
 public:
  struct Callbacks {
    // A cycle has been appended. `picture` is a chunk of this cycle alone, unpacked.
    std::function<void(const std::string& picture)> cycle;
    // Whether a server is there has changed.
    std::function<void()> status;
  };

  LiveMatch(boost::asio::io_context& io, const std::string& host, const std::string& port,
            Callbacks callbacks);

  void start() { client_.start(); }
  const Film& film() const { return film_; }
  bool connected() const { return connected_; }
  // What to tell a user about the connection, for people.
  const std::string& status() const { return status_; }
  // Hands a trainer's command on; false if no server is there.
  bool command(const std::string& text) { return client_.send(text); }

 private:
  void onConnected();
  void onMessage(const std::string& message);
  void onLost(const std::string& reason);

  std::string address_;
  Callbacks callbacks_;
  Film film_;
  StreamReader reader_;
  bool connected_ = false;
  bool seen_ = false;       // a server has been there before
  bool repairing_ = false;  // a full message has been asked for
  std::string status_;
  MonitorClient client_;
};

}  // namespace viewer

#endif  // QUOLNARIS_VIEWER_SOURCES_H_
