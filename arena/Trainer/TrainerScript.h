#ifndef QUOLNARIS_TRAINER_TRAINERSCRIPT_H_
#define QUOLNARIS_TRAINER_TRAINERSCRIPT_H_

#include <cstddef>
#include <istream>
#include <string>
#include <vector>

#include "Trainer/Trainer.h"

namespace arena {

// Trainer commands that are carried out in cycles known beforehand. A trainer at the monitor port
// never knows in which cycle his word will be heard; with a script a placed match is the same every
// time.
//
// Each line of the text is CYCLE COMMANDS, for example
//   50 (playMode PlayOn)(ball (pos 2 1 0.042)(vel 0 0 0))
// where cycles are counted from 1. Lines without anything and those that begin with # are skipped.
class TrainerScript {
 public:
  TrainerScript() = default;
  // Throws std::runtime_error, with the number of the line, for a line of another form and for
  // cycles that do not ascend.
  explicit TrainerScript(std::istream& text);

  // Hands the commands of the cycle that comes next over. REQUIRES: called before every cycle, with
  // the number of cycles that have been.
  void beforeCycle(long cyclesBefore, Trainer& trainer);

 private:
  struct Line {
    long cycle = 0;
    std::string commands;
  };
  std::vector<Line> lines_;
  std::size_t next_ = 0;
};

}  // namespace arena

#endif  // QUOLNARIS_TRAINER_TRAINERSCRIPT_H_
