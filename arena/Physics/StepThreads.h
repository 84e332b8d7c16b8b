#ifndef QUOLNARIS_PHYSICS_STEPTHREADS_H_
#define QUOLNARIS_PHYSICS_STEPTHREADS_H_

#include <ode/ode.h>

#include <memory>

namespace arena {

struct StepPool;

// Threads that step a world, behind the engine's threading interface. They share out the islands,
// groups of bodies that touch or hang together. The engine would let several threads work on one
// island as well, and then the order of its sums, and with it the last bits of the result, were
// chance; here an island is done by the thread that has begun it.
class StepThreads {
 public:
  // REQUIRES count >= 1.
  explicit StepThreads(int count);
  ~StepThreads();
  StepThreads(const StepThreads&) = delete;
  StepThreads& operator=(const StepThreads&) = delete;

  // From now on the world is stepped by these threads or, with `yes` false, by the caller again.
  // A world that is stepped by them must go before they do.
  void use(dWorldID world, bool yes);

 private:
  std::unique_ptr<StepPool> pool_;
};

}  // namespace arena

#endif  // QUOLNARIS_PHYSICS_STEPTHREADS_H_
