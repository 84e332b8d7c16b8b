#include "Common/Workers.h"

#include <atomic>
#include <boost/asio/post.hpp>
#include <boost/asio/use_future.hpp>
#include <cassert>
#include <future>
#include <vector>

namespace arena {

Workers::Workers(int threads) : others_(static_cast<std::size_t>(threads - 1)) {
  assert(threads >= 1);
  if (others_ > 0) pool_.emplace(others_);
}

Workers::~Workers() {
  if (pool_) pool_->join();
}

void Workers::run(std::size_t count, const std::function<void(std::size_t)>& piece) {
  std::atomic<std::size_t> next{0};
  const auto work = [&] {
    for (std::size_t i = next++; i < count; i = next++) piece(i);
  };
  std::vector<std::future<void>> others;
  for (std::size_t i = 1; i < count && i <= others_; ++i) {
    others.push_back(boost::asio::post(*pool_, boost::asio::use_future(work)));
  }
  // The pieces use what lives here: whatever is thrown, all have to end before.
  std::packaged_task<void()> own(work);
  own();
  for (const std::future<void>& other : others) other.wait();
  own.get_future().get();
  for (std::future<void>& other : others) other.get();
}

}  // namespace arena
