#include "BasicAction/ForeAftGait.h"

#include "BasicAction/Stepping.h"

void ForeAftGait::resetSteps() {
  basicWalkState = stepping::kStance;
  state = 0;
  side = otherside = OWalk = rotSide = rotOtherSide = false;
  _othersideOmni = _sideOmni = sideEnd = false;
  rx = lx = rotate = 0;
  Xtorso = Ytorso = Ztorso = 0;
  t = sx = ox = z = angle = endStepVal = dist = 0;
  sp = 0;
}
