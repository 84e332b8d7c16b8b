#ifndef QUOLNARIS_NET_EVENTTHREAD_H_
#define QUOLNARIS_NET_EVENTTHREAD_H_

#include <boost/asio/io_context.hpp>
#include <condition_variable>
#include <mutex>
#include <thread>

namespace arena {

// A thread that deals with what happens on the network while its owner is busy: between begin() and
// end() the handlers of an io_context run there, at all other times not. What a handler did has
// happened for the owner once end() returns.
class EventThread {
 public:
  // `io` must outlive it, and is not to be stopped or run by others between begin() and end().
  explicit EventThread(boost::asio::io_context& io);
  ~EventThread();
  EventThread(const EventThread&) = delete;
  EventThread& operator=(const EventThread&) = delete;

  // REQUIRES that it has not begun.
  void begin();
  // REQUIRES that it has begun. Waits for the handler under way, if there is one.
  void end();

 private:
  enum class State { Resting, Asked, Serving, Leaving };

  void live();

  boost::asio::io_context& io_;
  bool begun_ = false;  // the owner's
  std::mutex mutex_;
  std::condition_variable changed_;
  State state_ = State::Resting;
  std::thread thread_;  // the last member: it uses the others
};

}  // namespace arena

#endif  // QUOLNARIS_NET_EVENTTHREAD_H_
