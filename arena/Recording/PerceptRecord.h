#ifndef QUOLNARIS_RECORDING_PERCEPTRECORD_H_
#define QUOLNARIS_RECORDING_PERCEPTRECORD_H_

#include <map>
#include <memory>
#include <string>
#include <string_view>

#include "Common/Scene.h"

namespace arena {

// Writes down what each agent was sent and what it answered, into a directory:
//
//   agent-N.frames.gz   the frames given to agent N, as they came over the wire: for each a 4-byte
//                       big-endian length and the text
//   agent-N.answers.gz  its messages in the order in which they were applied, in the same form
//   agents.json         who agent N is: side, number, type, cycle of its first frame (the match
//                       recording's first cycle is 0), number of frames and answers
class PerceptRecord {
 public:
  // Makes the directory, or empties it of an earlier record. Throws std::runtime_error if that
  // fails.
  explicit PerceptRecord(const std::string& directory);
  ~PerceptRecord();
  PerceptRecord(const PerceptRecord&) = delete;
  PerceptRecord& operator=(const PerceptRecord&) = delete;

  // `agent` is given a frame in this cycle.
  void frame(int agent, std::string_view text);
  // A message of `agent` is applied.
  void answer(int agent, std::string_view text);
  // Ends the cycle, and learns who the agents are from what is shown of it.
  void endCycle(const Scene& scene);
  // Ends all files. Returns whether everything could be written, here and before.
  bool close();

 private:
  struct File;
  struct Agent;

  Agent& agent(int id);
  bool writeAgents() const;

  std::string directory_;
  std::map<int, std::unique_ptr<Agent>> agents_;
  long cycle_ = 0;
  bool good_ = true;
  bool closed_ = false;
};

}  // namespace arena

#endif  // QUOLNARIS_RECORDING_PERCEPTRECORD_H_
