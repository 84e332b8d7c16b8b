#ifndef QUOLNARIS_PHYSICS_STEPORDER_H_
#define QUOLNARIS_PHYSICS_STEPORDER_H_

#include <ode/ode.h>

#include <atomic>
#include <limits>
#include <memory>
#include <span>
#include <vector>

namespace arena {

// What a step moves comes to the front of the list of its collision space, and the contacts of the
// next step are found in the order of that list. Where several threads step, that order is chance.
// This makes it the one that a single thread leaves behind: islands are stepped by their youngest
// part that is awake, the youngest first.
class StepOrder {
 public:
  // `space` must outlive it.
  explicit StepOrder(dSpaceID space) : space_(space) {}
  StepOrder(const StepOrder&) = delete;
  StepOrder& operator=(const StepOrder&) = delete;

  // Follows what hangs together, as it is built. `part`: its entry in the space. Uses data and
  // moved callback of the bodies.
  void add(dGeomID part, std::span<const dBodyID> bodies);
  void remove(dGeomID part);

  // Before each step: nothing touches or has moved yet.
  void begin();
  // What touches in this step. REQUIRES bodies of parts that are followed.
  static void touch(dBodyID first, dBodyID second);
  // After the engine has stepped.
  void end();

 private:
  static constexpr long kNever = std::numeric_limits<long>::max();
  struct Mover {
    StepOrder* order;
    dGeomID part;
    std::size_t age = 0;       // its place in the list, the youngest last
    Mover* touched = this;     // leads to the one that stands for all that touch each other
    long moved = kNever;       // when one of its bodies was first stepped
    long shapeMoved = kNever;  // and one that has a shape
  };

  static void noteMove(dBodyID body);
  static Mover* islandOf(Mover* mover);
  std::vector<const Mover*> asByOneThread() const;

  dSpaceID space_;
  std::vector<std::unique_ptr<Mover>> movers_;  // the youngest last
  std::atomic<long> moves_{0};
};

}  // namespace arena

#endif  // QUOLNARIS_PHYSICS_STEPORDER_H_
