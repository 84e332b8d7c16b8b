#include "Physics/StepOrder.h"

#include <algorithm>
#include <map>

namespace arena {

void StepOrder::add(dGeomID part, std::span<const dBodyID> bodies) {
  movers_.push_back(std::make_unique<Mover>(Mover{this, part}));
  Mover* const mover = movers_.back().get();
  mover->touched = mover;
  for (const dBodyID body : bodies) {
    dBodySetData(body, mover);
    dBodySetMovedCallback(body, &StepOrder::noteMove);
  }
}

void StepOrder::remove(dGeomID part) {
  std::erase_if(movers_, [part](const auto& mover) { return mover->part == part; });
}

void StepOrder::begin() {
  for (std::size_t i = 0; i < movers_.size(); ++i) {
    Mover& mover = *movers_[i];
    mover.age = i;
    mover.touched = &mover;
    mover.moved = mover.shapeMoved = kNever;
  }
  moves_ = 0;
}

// All bodies of a part are of one island and so stepped by one thread.
void StepOrder::noteMove(dBodyID body) {
  Mover& mover = *static_cast<Mover*>(dBodyGetData(body));
  const long now = mover.order->moves_++;
  mover.moved = std::min(mover.moved, now);
  if (dBodyGetFirstGeom(body) != nullptr) mover.shapeMoved = std::min(mover.shapeMoved, now);
}

StepOrder::Mover* StepOrder::islandOf(Mover* mover) {
  while (mover->touched != mover) mover = mover->touched;
  return mover;
}

void StepOrder::touch(dBodyID first, dBodyID second) {
  islandOf(static_cast<Mover*>(dBodyGetData(first)))->touched =
      islandOf(static_cast<Mover*>(dBodyGetData(second)));
}

// What has moved, in the order in which one thread would have come to it.
std::vector<const StepOrder::Mover*> StepOrder::asByOneThread() const {
  std::map<const Mover*, const Mover*> beginnings;  // by island
  std::vector<const Mover*> moved;
  for (const auto& mover : movers_) {
    if (mover->moved == kNever) continue;
    const Mover*& beginning =
        beginnings.try_emplace(islandOf(mover.get()), mover.get()).first->second;
    if (mover->moved < beginning->moved) beginning = mover.get();
    if (mover->shapeMoved != kNever) moved.push_back(mover.get());
  }
  std::sort(moved.begin(), moved.end(), [&beginnings](const Mover* a, const Mover* b) {
    const auto beginningOf = [&beginnings](const Mover* m) {
      return beginnings.at(islandOf(const_cast<Mover*>(m)));
    };
    const Mover* const first = beginningOf(a);
    const Mover* const second = beginningOf(b);
    return first == second ? a->shapeMoved < b->shapeMoved : first->age > second->age;
  });
  return moved;
}

// What is added to a space comes to the front of its list.
void StepOrder::end() {
  for (const Mover* mover : asByOneThread()) {
    dSpaceRemove(space_, mover->part);
    dSpaceAdd(space_, mover->part);
  }
}

}  // namespace arena
