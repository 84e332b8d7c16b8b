#include "BasicAction/Walk.h"

#include "BasicAction/BackWalk.h"
#include "BasicAction/ForWalk.h"
#include "BasicAction/OmniBackWalk.h"
#include "BasicAction/OmniSideWalk.h"
#include "BasicAction/OmniWalk.h"
#include "BasicAction/SideWalk.h"
#include "Utilities/Converter.h"

Walk::Walk() {
  _forWalk = new ForWalk;
  _backWalk = new BackWalk;
  _sideWalk = new SideWalk;
  _omniSideWalk = new OmniSideWalk;
  _omniBackWalk = new OmniBackWalk;
  _omniWalk = new OmniWalk;
}

Walk::~Walk() {
  delete _forWalk;
  delete _backWalk;
  delete _sideWalk;
  delete _omniSideWalk;
  delete _omniBackWalk;
  delete _omniWalk;
}

Walk* Walk::forWalk(float gain, float speed, bool side, bool start) {
  preForGain = gain;
  prespeedF = speed;
  preSide = side;
  preStart = start;
  type = AT_FORWALK;
  _forWalk->gain = gain;
  _forWalk->side = side;
  _forWalk->sp = integerPart(speed);
  return this;
}

Walk* Walk::sideWalk(float gain) {
  preSideGain = Gain = gain;
  type = gain < 0 ? AT_SIDEWALK_LEFT : AT_SIDEWALK_RIGHT;
  _sideWalk->gain = gain;
  return this;
}

Walk* Walk::backWalk(float gain, float speed) {
  preBackGain = Gain = gain;
  Speed = prespeedB = speed;
  type = AT_BACKWALK;
  return this;
}

Walk* Walk::omniWalk(Vector target, float speed, double turnError, int actionType) {
  v = prePosition = target;
  Error = preError = turnError;
  Speed = prespeedOW = speed;
  type = AT_OMNIWALK;
  _omniWalk->v = target;
  _omniWalk->actionType = actionType;
  _omniWalk->error = turnError;
  _omniWalk->speed = speed;
  return this;
}

Walk* Walk::omniBackWalk(Vector target, float turnError, float speed) {
  prePos = point = target;
  preError = error = turnError;
  Speed = prespeedOB = speed;
  type = AT_OMNIBACKWALK;
  _omniBackWalk->v = target;
  _omniBackWalk->error = turnError;
  _omniBackWalk->speed = speed;
  return this;
}

Walk* Walk::omniSideWalk(Vector target, float turnError) {
  prePos = point = target;
  preError = error = turnError;
  type = AT_OMNISIDEWALK;
  _omniSideWalk->v = target;
  _omniSideWalk->error = turnError;
  return this;
}

bool Walk::forWalk() {
  return _forWalk->execute();
}
bool Walk::sideWalk() {
  return _sideWalk->execute();
}
bool Walk::backWalk() {
  return _backWalk->execute();
}
bool Walk::omniWalk() {
  return _omniWalk->execute();
}
bool Walk::omniBackWalk() {
  return _omniBackWalk->execute();
}
bool Walk::omniSideWalk() {
  return _omniSideWalk->execute();
}
