#ifndef QUOLNARIS_TOOLS_MINDRECORD_H_
#define QUOLNARIS_TOOLS_MINDRECORD_H_

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "Agent/OurPlayer.h"
#include "BeliefReport.h"

// What a player sensed, believed and decided, frame by frame, in columns.
//
// Places are metres in the frame of the world (left goal at negative x), also for a player of the
// right team; the heading is in degrees from +x, and the quaternion turns the torso's frame (x to
// the right, y to the front, z up) into the world's. docs/viewer.md describes the file.
class MindRecord {
 public:
  // Adds a row. `frame`: the text that the player has taken in; `answer`: what it has answered with
  // `decided`, else empty.
  void add(OurPlayer& player, const std::string& frame, bool decided);
  // What the player said in its answers, which are known at the end: of row `row`.
  void setAnswer(std::size_t row, const std::string& answer);

  std::size_t rows() const { return rows_; }

  struct Summary {
    std::string player;   // "left/7"
    long firstCycle = 0;  // of the match recording, that of row 0
    bool same = false;    // whether the answers were the recorded ones
    std::string verdict;  // the same for people
  };
  // The whole as a file of its own, packed by zlib.
  std::string packed(const Summary& summary) const;
  // The same as text, a line for each frame.
  std::string csv() const;

 private:
  static constexpr std::int64_t kAbsent = INT64_C(-2147483648);

  struct Column {
    std::string name;
    std::string label;
    std::string unit;
    std::string group;
    double scale = 1;
    std::vector<std::int64_t> values;
    std::vector<std::string> texts;             // of a column of words
    std::map<std::string, std::int64_t> words;  // text -> index
  };

  Column& column(const char* group, const std::string& name, const std::string& label,
                 const char* unit, double scale);
  void number(const char* group, const std::string& name, const std::string& label,
              const char* unit, double scale, double value);
  void word(const char* group, const std::string& name, const std::string& label,
            const std::string& text);
  void addSelf(const OurPlayer& player);
  void addBall(const OurPlayer& player);
  void addOthers(const OurPlayer& player);
  void addDecision(const OurPlayer& player, bool decided);
  void addSenses(const std::string& frame);
  void addPlace(const char* group, const std::string& name, const std::string& label,
                const Vector* place);

  std::size_t rows_ = 0;
  bool located_ = false;
  double side_ = 1;  // -1 for the right team: its frame is turned by 180 degrees
  std::vector<Column> columns_;
  std::map<std::string, std::size_t> index_;
};

#endif  // QUOLNARIS_TOOLS_MINDRECORD_H_
