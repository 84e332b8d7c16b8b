#ifndef QUOLNARIS_PHYSICS_STEPTHREADS_H_
#define QUOLNARIS_PHYSICS_STEPTHREADS_H_

#include <ode/ode.h>

#include "Common/Workers.h"

namespace arena {

// From now on the world is stepped by the workers, behind the engine's threading interface. They
// share out the islands, groups of bodies that touch or hang together. The engine would let several
// threads work on one island as well, and then the order of its sums, and with it the last bits of
// the result, were chance; here an island is done by the thread that has begun it. The world must
// go before the workers do.
void stepByWorkers(dWorldID world, Workers& workers);

// From now on the world is stepped by the caller again.
void stepByCaller(dWorldID world);

}  // namespace arena

#endif  // QUOLNARIS_PHYSICS_STEPTHREADS_H_
