#include "Common/Workers.h"

#include <algorithm>
#include <cassert>
#include <exception>
#include <utility>

namespace arena {

Workers::Shift::Shift(Workers& workers) : workers_(workers) {
  assert(!workers_.onShift_);
  workers_.onShift_ = true;
  workers_.wake();
}

Workers::Shift::~Shift() {
  workers_.onShift_ = false;
}

Workers::Workers(int threads) {
  assert(threads >= 1);
  for (int i = 1; i < threads; ++i) {
    others_.emplace_back([this] { helpUntil(closing_); });
  }
}

Workers::~Workers() {
  closing_ = true;
  wake();
  for (std::thread& other : others_) other.join();
}

void Workers::run(std::size_t count, const std::function<void(std::size_t)>& piece) {
  const std::size_t others = count == 0 ? 0 : std::min(others_.size(), count - 1);
  std::atomic<std::size_t> next{0};
  std::atomic<std::size_t> busy{others + 1};
  std::atomic<bool> over{false};
  std::atomic<bool> failed{false};
  std::exception_ptr failure;
  // The pieces use what lives here: whatever is thrown, all have to end before.
  const auto work = [&] {
    try {
      for (std::size_t i = next++; i < count; i = next++) piece(i);
    } catch (...) {
      if (!failed.exchange(true)) failure = std::current_exception();
    }
    if (--busy == 0) over = true;
  };
  for (std::size_t i = 0; i < others; ++i) {
    post([&work, this] {
      work();
      wake();
    });
  }
  work();
  helpUntil(over);
  if (failure) std::rethrow_exception(failure);
}

void Workers::post(std::function<void()> task) {
  {
    const std::lock_guard lock(mutex_);
    tasks_.push_back(std::move(task));
    ++waiting_;
  }
  changed_.notify_one();
}

void Workers::helpUntil(const std::atomic<bool>& over) {
  while (!over) {
    std::unique_lock lock(mutex_);
    if (!tasks_.empty()) {
      const std::function<void()> task = std::move(tasks_.front());
      tasks_.pop_front();
      --waiting_;
      lock.unlock();
      task();
    } else if (onShift_) {
      lock.unlock();
      while (!over && onShift_ && waiting_ == 0) std::this_thread::yield();
    } else {
      changed_.wait(lock, [&] { return over || onShift_ || !tasks_.empty(); });
    }
  }
}

// Whoever is about to doze off holds the lock from looking to dozing.
void Workers::wake() {
  const std::lock_guard lock(mutex_);
  changed_.notify_all();
}

}  // namespace arena
