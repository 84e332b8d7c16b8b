#ifndef QUOLNARIS_COMMON_WORKERS_H_
#define QUOLNARIS_COMMON_WORKERS_H_

#include <atomic>
#include <condition_variable>
#include <cstddef>
#include <deque>
#include <functional>
#include <mutex>
#include <thread>
#include <vector>

namespace arena {

// Threads that do pieces of work side by side. Which thread does which piece, and when, is chance:
// what comes out may not depend on it.
class Workers {
 public:
  // While one lives, the threads do not doze off between two pieces of work: to wake them takes
  // longer than a small piece does. Others who want the core are let past. One at a time.
  class Shift {
   public:
    explicit Shift(Workers& workers);
    ~Shift();
    Shift(const Shift&) = delete;
    Shift& operator=(const Shift&) = delete;

   private:
    Workers& workers_;
  };

  // So many threads, the caller of run() and helpUntil() among them: with 1 there is no other.
  // REQUIRES threads >= 1.
  explicit Workers(int threads);
  // What was posted must have been done.
  ~Workers();
  Workers(const Workers&) = delete;
  Workers& operator=(const Workers&) = delete;

  int threads() const { return static_cast<int>(others_.size()) + 1; }

  // Calls piece(i) once for each i below count, and returns when all have ended. Of what the pieces
  // throw, one is thrown on. Not to be called from a piece.
  void run(std::size_t count, const std::function<void(std::size_t)>& piece);

  // Has a thread do this, at once if one is free. It must not throw.
  void post(std::function<void()> task);
  // Does what was posted, too, until a posted task sets `over`. Who sets it calls wake() then.
  void helpUntil(const std::atomic<bool>& over);
  void wake();

 private:
  std::mutex mutex_;
  std::condition_variable changed_;
  std::deque<std::function<void()>> tasks_;
  // Looked at without the lock by those who stay awake.
  std::atomic<std::size_t> waiting_{0};  // tasks
  std::atomic<bool> onShift_{false};
  std::atomic<bool> closing_{false};
  std::vector<std::thread> others_;
};

}  // namespace arena

#endif  // QUOLNARIS_COMMON_WORKERS_H_
