#ifndef QUOLNARIS_VIEWER_FILM_H_
#define QUOLNARIS_VIEWER_FILM_H_

#include <array>
#include <cstddef>
#include <deque>
#include <functional>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "Recording/RecordedCycle.h"
#include "Recording/RecordingEncoder.h"

namespace viewer {

// Something on the timeline.
struct Mark {
  enum class Kind { Mode, Goal, Foul, Fall, Note };
  Kind kind = Kind::Mode;
  std::size_t cycle = 0;
  arena::Side side = arena::Side::None;
  int number = 0;    // of the player; 0: nobody
  std::string text;  // play mode, foul, or note
};

// The measures of the pitch that are drawn, m.
struct PitchMeasures {
  double length, width, goalWidth, goalDepth, goalHeight, circle, penaltyLength, penaltyWidth;
  bool operator==(const PitchMeasures&) const = default;
};
extern const PitchMeasures kLeaguePitch;

// A match as a page plays it: cut into chunks that can each be read alone, with an index of what
// happened where. docs/viewer.md describes index and chunks.
//
// Cycles are counted from 0. A film that grows beyond kMaxChunks loses its oldest chunks.
class Film {
 public:
  static constexpr std::size_t kMaxChunks = 3000;

  // `cycleSeconds`: between two cycles; `chunkCycles`: of a full chunk.
  Film(std::string title, double cycleSeconds, std::size_t chunkCycles);

  void append(const arena::RecordedCycle& cycle, const arena::RecordingEncoder::TeamNames& teams);
  // Puts a note on the timeline, at the cycle that comes next.
  void note(const std::string& text);
  // Makes a chunk of the cycles that are not in one yet.
  void seal();

  std::size_t cycles() const { return cycles_; }
  // Numbers of the chunks that can be had: from firstChunk() below endChunk().
  std::size_t firstChunk() const { return dropped_; }
  std::size_t endChunk() const { return dropped_ + chunks_.size(); }
  // The blocks of a chunk, packed by zlib. REQUIRES a chunk that can be had.
  const std::string& chunk(std::size_t number) const { return chunks_[number - dropped_].packed; }
  // What the page is told of a chunk, as JSON. REQUIRES the same.
  std::string chunkEntry(std::size_t number) const;

  const std::vector<Mark>& marks() const { return marks_; }
  static std::string markEntry(const Mark& mark);

  void setPitch(const PitchMeasures& pitch) { pitch_ = pitch; }
  const PitchMeasures& pitch() const { return pitch_; }
  const arena::RecordingEncoder::TeamNames& teams() const { return teams_; }

  // The index as JSON text. It holds no "<", so that it can stand in a page. `extra` are further
  // members, each as name and JSON text.
  std::string index(const std::vector<std::pair<std::string, std::string>>& extra = {}) const;

 private:
  struct Chunk {
    std::size_t first;
    std::size_t cycles;
    float time;  // game time of the first cycle
    std::string packed;
  };

  void watch(const arena::RecordedCycle& cycle);
  void mark(Mark::Kind kind, arena::Side side, int number, std::string text);

  std::string title_;
  double cycleSeconds_;
  std::size_t chunkCycles_;
  PitchMeasures pitch_ = kLeaguePitch;
  std::size_t cycles_ = 0;
  std::size_t dropped_ = 0;
  std::deque<Chunk> chunks_;
  std::vector<Mark> marks_;
  arena::RecordingEncoder::TeamNames teams_;

  arena::RecordingEncoder encoder_;
  std::string open_;  // blocks of the chunk under construction
  std::size_t openFirst_ = 0;
  float openTime_ = 0;
  int lastMode_ = -1;
  std::map<std::pair<arena::Side, int>, bool> down_;
};

// JSON text in which no "<" stands.
std::string withoutTags(std::string json);

}  // namespace viewer

#endif  // QUOLNARIS_VIEWER_FILM_H_
