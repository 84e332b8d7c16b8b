#ifndef QUOLNARIS_TOOLS_BELIEFREPORT_H_
#define QUOLNARIS_TOOLS_BELIEFREPORT_H_

#include <optional>
#include <string>
#include <vector>

#include "PitchPicture.h"
#include "Utilities/Types.h"
#include "WorldModel/WorldModel.h"

// What a player's world model holds after a frame, as the tools tell it. Metres, degrees and
// seconds of game time, in the frame of its own team: its goal at x = -15.

using BeliefPoint = PitchPicture::Point;

struct BeliefPose {
  BeliefPoint position;
  double heading = 0;  // degrees
};

struct SeenPlayer {
  bool ownTeam;
  int number;
  BeliefPoint position;
};

// The belief after one frame.
struct Belief {
  float time = 0;
  PlayMode mode = PM_ILLEGAL;
  BeliefPose self;
  bool located = false;      // an estimate of its own position has been made by now
  bool sawLandmark = false;  // in this frame
  int landmarks = 0;
  std::optional<BeliefPoint> ball;  // as seen in this frame
  std::vector<SeenPlayer> players;  // as seen in this frame, its own body left out
  bool fallen = false;
};

// The same claim, heard once or several times in a row.
struct Claim {
  float first;
  float last;
  int number;
  int cycles;
  int times;
};

struct Story {
  std::vector<Belief> beliefs;  // one for each frame
  std::vector<Claim> claims;
  int visions = 0;
  TeamSide side = SIDE_ILLEGAL;
  int toldNumber = 0;  // 0 if the server never told it
  int ourGoals = 0;
  int oppGoals = 0;
};

// The belief that the model holds now. `wasLocated`: an estimate had been made by the frame before.
Belief beliefOf(WorldModel& model, bool wasLocated);

// Feeds the frames to a world model of its own. REQUIRES: the configuration is loaded.
Story live(const std::vector<std::string>& frames);

#endif  // QUOLNARIS_TOOLS_BELIEFREPORT_H_
