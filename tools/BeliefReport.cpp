#include "BeliefReport.h"

#include <cmath>

namespace {

constexpr double kPi = 3.14159265358979323846;

BeliefPoint pointOf(const Vector& v) {
  return {v.x, v.y};
}

double headingOf(const Self& self) {
  const Matrix<4, 4>& torso = self.getGyroRotation();
  return std::atan2(torso.get(1, 0), torso.get(0, 0)) * 180.0 / kPi;
}

// Notes the claim that the model has just heard.
void addClaim(std::vector<Claim>& claims, const WorldModel& model) {
  constexpr float kPause = 1;  // seconds after which a claim counts as a new one
  if (!claims.empty()) {
    Claim& last = claims.back();
    if (last.number == model.fastestTeammateUnum && last.cycles == model.fastestReachCycle &&
        model.gameTime - last.last < kPause) {
      last.last = model.gameTime;
      ++last.times;
      return;
    }
  }
  claims.push_back(
      {model.gameTime, model.gameTime, model.fastestTeammateUnum, model.fastestReachCycle, 1});
}

}  // namespace

Belief beliefOf(WorldModel& model, bool wasLocated) {
  Belief belief;
  belief.time = model.gameTime;
  belief.mode = model.getPlayMode();
  belief.self = {pointOf(model.getAgentPosition()), headingOf(*model.mySelf)};
  belief.sawLandmark = model.visionThisCycle && model.flagCounted > 0;
  belief.landmarks = belief.sawLandmark ? model.flagCounted : 0;
  belief.located = wasLocated || belief.sawLandmark;
  belief.fallen = model.isFall();
  if (!belief.sawLandmark) return belief;  // nothing was carried to the pitch frame
  const auto seen = [&](const Object& object) {
    return object.getLastTimeSeen() == model.gameTime;
  };
  if (seen(*model.ball)) belief.ball = pointOf(model.ball->getGlobalPosition());
  for (int row = 0; row < 2; ++row) {
    for (int i = 0; i < 11; ++i) {
      const bool isSelf = row == 0 && i + 1 == model.mySelf->getAgentNum();
      if (isSelf || !seen(model.player[row][i])) continue;
      belief.players.push_back(
          {row == 0, i + 1, pointOf(model.player[row][i].getGlobalPosition())});
    }
  }
  return belief;
}

Story live(const std::vector<std::string>& frames) {
  WorldModel model;
  Story story;
  story.beliefs.reserve(frames.size());
  double lastHeard = model.lastTimeHeard;
  bool located = false;
  for (const std::string& frame : frames) {
    model.update(frame);
    story.beliefs.push_back(beliefOf(model, located));
    located = story.beliefs.back().located;
    story.visions += model.visionThisCycle ? 1 : 0;
    if (model.lastTimeHeard != lastHeard) {
      lastHeard = model.lastTimeHeard;
      addClaim(story.claims, model);
    }
  }
  story.side = model.ourSide;
  story.toldNumber = model.isInit ? model.mySelf->getPlayerNumber() : 0;
  story.ourGoals = model.ourGoals;
  story.oppGoals = model.oppGoals;
  return story;
}
