#include "BasicAction/Stepping.h"

#include <cassert>

#include "Agent/Agent.h"
#include "BasicAction/BasicAction.h"
#include "Utilities/Config.h"

namespace stepping {
namespace {

const ConfigGroup& groupOf(const Table& table) {
  const Config& store = config;
  return store[table.file][table.group];
}

void readPhases(const ConfigGroup& group, const char* key, float factor,
                double (&increments)[kPhases]) {
  const ConfigValue& list = group[key];
  assert(list.size() >= kPhases);
  for (int i = 0; i < kPhases; ++i) increments[i] = list[i].asFloat() * factor;
}

}  // namespace

void readTorso(const Table& table, double& x, double& y, double& z) {
  const ConfigGroup& group = groupOf(table);
  x = group["Xtorso"].asFloat() * table.torso.x;
  y = group["Ytorso"].asFloat() * table.torso.y;
  z = group["Ztorso"].asFloat() * table.torso.z;
}

float readSpeed(const Table& table) {
  return groupOf(table)["speed"].asFloat() * table.speed.factor + table.speed.offset;
}

void readAnkles(const Table& table, double (&stride)[kPhases], double (&lift)[kPhases]) {
  const ConfigGroup& group = groupOf(table);
  readPhases(group, table.stride, table.strideFactor, stride);
  readPhases(group, "Zankle", table.liftFactor, lift);
}

void readYaw(const Table& table, double (&RotZ)[kPhases]) {
  readPhases(groupOf(table), "RotZ", 1, RotZ);
}

bool reachStance(Reset::Stance stance) {
  Reset& reset = *BasicAction::agent->reset;
  reset.execute(stance);
  return reset.init();
}

void solveLegs(InverseKinematic& solver, bool side, Vector torso, const Vector (&ankle)[2],
               const double (&yaw)[2], double (&theta)[2][7]) {
  solver.legSolverWith1(torso, ankle[side], theta[0], side, yaw[side]);
  solver.legSolverWith1(torso, ankle[!side], theta[1], !side, yaw[!side]);
}

void commandLegs(bool side, const double (&theta)[2][7], float speed) {
  Agent& agent = *BasicAction::agent;
  for (int joint = 1; joint <= 6; ++joint) {
    agent.setLeg(joint, side, theta[0][joint], speed, 0);
    agent.setLeg(joint, !side, theta[1][joint], speed, 0);
  }
}

}  // namespace stepping
