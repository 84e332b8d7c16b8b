#ifndef QUOLNARIS_TESTS_SUPPORT_FRAMECHECK_H_
#define QUOLNARIS_TESTS_SUPPORT_FRAMECHECK_H_

#include <functional>
#include <vector>

#include "support/FakeBody.h"

// Checks one frame of a key-frame sequence against the commands that it must send.

namespace support {

// One joint command: target and tolerance in degrees, gain in percent per cycle. A target that is
// not a number, as a pose out of reach has them, is one of no motion that has arrived.
struct JointCommand {
  FakeBody::Hinge hinge;
  float value;
  float gain;
  float error;
};
using CommandList = std::vector<JointCommand>;

JointCommand legCommand(int joint, bool side, float value, float gain, float error);
JointCommand handCommand(int joint, bool side, float value, float gain, float error);
JointCommand headCommand(int joint, float value, float gain, float error);

// The groups of BasicAgent.
CommandList bothLegs(int joint, float value, float gain, float error);
CommandList bothHands(int joint, float value, float gain, float error);
CommandList allOfBothLegs(float value, float gain, float error);
CommandList allOfBothHands(float value, float gain, float error);
CommandList wholeHead(float value, float gain, float error);
CommandList wholeBody(float value, float gain, float error);
// Joints 1 to 6 of one leg to solved angles.
CommandList solvedLeg(bool side, const double* theta, float gain, float error);

CommandList operator+(CommandList a, const CommandList& b);

// A frame: `enter` puts the sequence into it, `step` makes one cycle, `left` tells whether that
// cycle led out of it.
struct Frame {
  std::function<void()> enter;
  std::function<void()> step;
  std::function<bool()> left;
  CommandList commands;
};

// Every command is sent in every cycle with its value and gain, no other hinge is addressed, the
// frame stays while any single hinge is just outside its tolerance, and is left once all are just
// inside. REQUIRES: no hinge twice in the list.
void checkFrame(FakeBody& body, const Frame& frame);

// All hinges of the list just inside, or just outside, their tolerance.
void placeInside(FakeBody& body, const CommandList& commands);
void placeOutside(FakeBody& body, const CommandList& commands);

// After a cycle that began with markCommands and placeOutside: exactly these hinges were driven.
void expectDriven(FakeBody& body, const CommandList& commands);

}  // namespace support

#endif  // QUOLNARIS_TESTS_SUPPORT_FRAMECHECK_H_
