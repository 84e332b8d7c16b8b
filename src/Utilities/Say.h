#ifndef QUOLNARIS_UTILITIES_SAY_H_
#define QUOLNARIS_UTILITIES_SAY_H_

#include <sstream>
#include <string>

class AdvancedAgent;

// A second design of team talk, unfinished: the world model builds one and nobody calls it. The
// claims that the team really exchanges are read by WorldModel::updateHear.
//
// A text of this design carries five digits of time at positions 1 to 5 and from position 6 on a
// character for a fall, or places. Positions beyond the end of a text read as the character 0.
class Say {
 public:
  // Places 0 to 9 become 2 to 11.
  Say();

  // The digits at positions 1 to 5 as a decimal number, also kept as `time`.
  int changeCharToTime(const std::string& hear);
  // "F" where position 6 holds an F, otherwise "S".
  const char* talk(const std::string& hear) const;
  // Whether position 6 holds an F, also kept as `fall`.
  bool isFall(const std::string& hear);
  // place[i - 6] becomes the character code at position i, for i from 6 to 15.
  void calculatePlace(const std::string& hear);
  // REQUIRES 11 numbers.
  void setPlace(const int* p);
  void setHear(const std::string& hear) { heard = hear; }

  void sendFall(int) {}
  void sendPosition(int) {}
  void hear() {}
  void isHeard() {}

  static AdvancedAgent* advancedAgent;  // the player, set once before it runs

  int abi = 0;      // blue
  int abi2 = 0;     // blue
  int shilang = 0;  // hose
  int place[11] = {};
  bool fall = false;
  int time = 0;
  std::string heard;
  int hearTime = 0;
  int distanceSay = 0;
  std::stringstream said;
  std::string saids;
};

#endif  // QUOLNARIS_UTILITIES_SAY_H_
