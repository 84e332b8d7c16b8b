#include "Sources.h"

#include <cmath>
#include <filesystem>

#include "Common/Pitch.h"
#include "Common/Units.h"
#include "Recording/RecordingReader.h"
#include "Referee/Rules.h"

namespace viewer {

namespace {

// Five seconds: short enough to be unpacked between two pictures, long enough to pack well.
constexpr double kChunkSeconds = 5;
// A monitor port shows every second cycle.
constexpr double kLiveCycle = 2 * arena::kStepSeconds;

std::size_t chunkCycles(double cycleSeconds) {
  return static_cast<std::size_t>(std::lround(kChunkSeconds / cycleSeconds));
}

}  // namespace

Film filmOfRecording(const std::string& path) {
  arena::RecordingReader reader(path);
  const double cycleSeconds = arena::kStepSeconds;
  Film film(std::filesystem::path(path).filename().string(), cycleSeconds,
            chunkCycles(cycleSeconds));
  std::string note = "the recording was cut off here";
  try {
    arena::RecordedCycle cycle;
    while (reader.next(cycle)) film.append(cycle, reader.teamNames());
  } catch (const arena::RecordingError& error) {
    if (film.cycles() == 0) throw;
    note = error.what();
  }
  if (film.cycles() == 0) throw arena::RecordingError(path + " holds no cycle of a match");
  if (!reader.complete()) film.note(note);
  film.seal();
  return film;
}

LiveMatch::LiveMatch(boost::asio::io_context& io, const std::string& host, const std::string& port,
                     Callbacks callbacks)
    : address_(host + ":" + port),
      callbacks_(std::move(callbacks)),
      film_(address_, kLiveCycle, chunkCycles(kLiveCycle)),
      status_("Waiting for a server at " + address_),
      client_(io, host, port,
              {[this] { onConnected(); }, [this](const std::string& text) { onMessage(text); },
               [this](const std::string& reason) { onLost(reason); }}) {}

void LiveMatch::onConnected() {
  reader_.restart();
  connected_ = true;
  repairing_ = false;
  status_ = "Connected to " + address_;
  if (seen_) film_.note("the server is back");
  seen_ = true;
  callbacks_.status();
}

void LiveMatch::onMessage(const std::string& message) {
  try {
    reader_.read(message);
  } catch (const StreamError& error) {
    // What follows cannot be understood before the next full message.
    if (!repairing_) {
      status_ = address_ + " sent what is no monitor stream: " + error.what();
      callbacks_.status();
      client_.send("(reqfullstate)");
    }
    repairing_ = true;
    return;
  }
  film_.setPitch(reader_.pitch());
  film_.append(reader_.cycle(), reader_.teams());
  std::string picture;
  arena::RecordingEncoder().encode(reader_.cycle(), reader_.teams(), picture);
  if (repairing_) {
    repairing_ = false;
    status_ = "Connected to " + address_;
    callbacks_.status();
  }
  callbacks_.cycle(picture);
}

void LiveMatch::onLost(const std::string& reason) {
  if (connected_) film_.note("the server has gone");
  status_ =
      (seen_ ? "The server at " + address_ + " has gone (" : "No server at " + address_ + " (") +
      reason + "); trying again";
  connected_ = false;
  film_.seal();
  callbacks_.status();
}

}  // namespace viewer
