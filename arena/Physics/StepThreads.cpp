#include "Physics/StepThreads.h"

#include <atomic>
#include <cassert>
#include <deque>
#include <mutex>
#include <vector>

namespace arena {

namespace {

// The engine's locks, by index.
using Mutexes = std::vector<std::mutex>;

// Tells when a call has ended.
struct Wait {
  std::atomic<bool> over{false};
};

// A piece of work that the engine asks for. It starts when as many others have ended as it was told
// of before, and has ended when those have, too, that it was told of while it ran.
struct Call {
  Workers& workers;
  int* fault;    // where to tell that it or one that it waited for went wrong; may be null
  Call* parent;  // waits for this one; may be null
  Wait* wait;    // may be null
  dThreadedCallFunction* function;
  void* context;
  dcallindex_t index;
  std::atomic<ddependencychange_t> awaited;
  std::atomic<bool> faulty{false};
  bool started = false;
};

// What the island that this thread is at still asks for; null while it is at none.
thread_local std::deque<Call*>* todo = nullptr;

void end(Call* call);

void release(Call* call) {
  if (--call->awaited == 0) end(call);
}

void carryOut(Call* call) {
  call->started = true;
  call->awaited = 1;  // its own end
  const auto id = reinterpret_cast<dCallReleaseeID>(call);
  if (call->function(call->context, call->index, id) == 0) call->faulty = true;
  release(call);
}

// What is asked for by a call stays with its thread.
void start(Call* call) {
  if (todo != nullptr) {
    todo->push_back(call);
    return;
  }
  call->workers.post([call] {
    std::deque<Call*> calls{call};
    todo = &calls;
    while (!calls.empty()) {
      Call* const next = calls.front();
      calls.pop_front();
      carryOut(next);
    }
    todo = nullptr;
  });
}

void end(Call* call) {
  if (call->fault != nullptr) *call->fault = call->faulty ? 1 : 0;
  Call* const parent = call->parent;
  if (parent != nullptr) {
    if (call->faulty) parent->faulty = true;
    if (--parent->awaited == 0) parent->started ? end(parent) : start(parent);
  }
  if (call->wait != nullptr) {
    call->wait->over = true;
    call->workers.wake();
  }
  delete call;
}

// The engine's threading interface; what each function is for stands in ode/threading.h.

dMutexGroupID allocateMutexes(dThreadingImplementationID, dmutexindex_t count, const char* const*) {
  return reinterpret_cast<dMutexGroupID>(new Mutexes(count));
}

void freeMutexes(dThreadingImplementationID, dMutexGroupID group) {
  delete reinterpret_cast<Mutexes*>(group);
}

void lock(dThreadingImplementationID, dMutexGroupID group, dmutexindex_t index) {
  reinterpret_cast<Mutexes*>(group)->at(index).lock();
}

void unlock(dThreadingImplementationID, dMutexGroupID group, dmutexindex_t index) {
  reinterpret_cast<Mutexes*>(group)->at(index).unlock();
}

dCallWaitID allocateWait(dThreadingImplementationID) {
  return reinterpret_cast<dCallWaitID>(new Wait);
}

void resetWait(dThreadingImplementationID, dCallWaitID wait) {
  reinterpret_cast<Wait*>(wait)->over = false;
}

void freeWait(dThreadingImplementationID, dCallWaitID wait) {
  delete reinterpret_cast<Wait*>(wait);
}

void post(dThreadingImplementationID workers, int* fault, dCallReleaseeID* releasee,
          ddependencycount_t dependencies, dCallReleaseeID parent, dCallWaitID wait,
          dThreadedCallFunction* function, void* context, dcallindex_t index, const char*) {
  auto* const call = new Call{*reinterpret_cast<Workers*>(workers),
                              fault,
                              reinterpret_cast<Call*>(parent),
                              reinterpret_cast<Wait*>(wait),
                              function,
                              context,
                              index,
                              static_cast<ddependencychange_t>(dependencies)};
  if (releasee != nullptr) *releasee = reinterpret_cast<dCallReleaseeID>(call);
  if (dependencies == 0) start(call);
}

void alterDependencies(dThreadingImplementationID, dCallReleaseeID releasee,
                       ddependencychange_t change) {
  auto* const call = reinterpret_cast<Call*>(releasee);
  if ((call->awaited += change) == 0) start(call);
}

// A step is waited for without a limit of time.
void waitFor(dThreadingImplementationID workers, int* status, dCallWaitID id,
             const dThreadedWaitTime* timeout, const char*) {
  assert(timeout == nullptr);
  (void)timeout;
  reinterpret_cast<Workers*>(workers)->helpUntil(reinterpret_cast<Wait*>(id)->over);
  if (status != nullptr) *status = 1;
}

unsigned threadCount(dThreadingImplementationID workers) {
  return static_cast<unsigned>(reinterpret_cast<Workers*>(workers)->threads());
}

int preallocate(dThreadingImplementationID, ddependencycount_t) {
  return 1;
}

constexpr dThreadingFunctionsInfo kFunctions{
    sizeof(dThreadingFunctionsInfo),
    allocateMutexes,
    freeMutexes,
    lock,
    unlock,
    allocateWait,
    resetWait,
    freeWait,
    post,
    alterDependencies,
    waitFor,
    threadCount,
    preallocate,
};

}  // namespace

void stepByWorkers(dWorldID world, Workers& workers) {
  dWorldSetStepIslandsProcessingMaxThreadCount(world, static_cast<unsigned>(workers.threads()));
  dWorldSetStepThreadingImplementation(world, &kFunctions,
                                       reinterpret_cast<dThreadingImplementationID>(&workers));
}

void stepByCaller(dWorldID world) {
  dWorldSetStepThreadingImplementation(world, nullptr, nullptr);
}

}  // namespace arena
