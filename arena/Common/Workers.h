#ifndef QUOLNARIS_COMMON_WORKERS_H_
#define QUOLNARIS_COMMON_WORKERS_H_

#include <boost/asio/thread_pool.hpp>
#include <cstddef>
#include <functional>
#include <optional>

namespace arena {

// Threads that do pieces of work side by side. Which thread does which piece, and when, is chance:
// what comes out may not depend on it.
class Workers {
 public:
  // So many threads, the caller of run() among them: with 1 there is no other.
  // REQUIRES threads >= 1.
  explicit Workers(int threads);
  ~Workers();
  Workers(const Workers&) = delete;
  Workers& operator=(const Workers&) = delete;

  int threads() const { return static_cast<int>(others_) + 1; }

  // Calls piece(i) once for each i below count, and returns when all have ended. Of what the pieces
  // throw, one is thrown on. Not to be called from a piece.
  void run(std::size_t count, const std::function<void(std::size_t)>& piece);

 private:
  std::size_t others_;
  std::optional<boost::asio::thread_pool> pool_;
};

}  // namespace arena

#endif  // QUOLNARIS_COMMON_WORKERS_H_
