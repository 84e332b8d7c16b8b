#include "Net/EventThread.h"

#include <boost/asio/executor_work_guard.hpp>
#include <cassert>

namespace arena {

EventThread::EventThread(boost::asio::io_context& io) : io_(io), thread_([this] { live(); }) {}

EventThread::~EventThread() {
  if (begun_) end();
  {
    const std::lock_guard lock(mutex_);
    state_ = State::Leaving;
  }
  changed_.notify_all();
  thread_.join();
}

void EventThread::begin() {
  assert(!begun_);
  begun_ = true;
  {
    const std::lock_guard lock(mutex_);
    state_ = State::Asked;
  }
  changed_.notify_all();
}

void EventThread::end() {
  assert(begun_);
  begun_ = false;
  std::unique_lock lock(mutex_);
  // Who has not woken up yet need not.
  if (state_ == State::Asked) {
    state_ = State::Resting;
    return;
  }
  io_.stop();
  changed_.wait(lock, [this] { return state_ == State::Resting; });
  io_.restart();
}

void EventThread::live() {
  std::unique_lock lock(mutex_);
  while (true) {
    changed_.wait(lock, [this] { return state_ == State::Asked || state_ == State::Leaving; });
    if (state_ == State::Leaving) return;
    state_ = State::Serving;
    lock.unlock();
    {
      // It stays even if there is nothing to wait for at the moment.
      const auto guard = boost::asio::make_work_guard(io_);
      io_.run();
    }
    lock.lock();
    state_ = State::Resting;
    changed_.notify_all();
  }
}

}  // namespace arena
