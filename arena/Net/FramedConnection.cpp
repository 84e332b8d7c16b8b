#include "Net/FramedConnection.h"

#include <boost/asio/buffer.hpp>
#include <cassert>
#include <utility>

namespace arena {

FramedConnection::FramedConnection(boost::asio::ip::tcp::socket socket, const Limits& limits)
    : socket_(std::move(socket)), limits_(limits), splitter_(limits.frameLength) {
  boost::system::error_code ignored;
  socket_.set_option(boost::asio::ip::tcp::no_delay(true), ignored);
  socket_.non_blocking(true, ignored);
}

void FramedConnection::start(Listener listener) {
  listener_ = std::move(listener);
  read();
}

void FramedConnection::close() {
  listener_ = nullptr;
  ended_ = true;
  boost::system::error_code ignored;
  socket_.close(ignored);
}

void FramedConnection::end(const std::string& reason) {
  if (ended_) return;
  ended_ = true;
  reason_ = reason;
  boost::system::error_code ignored;
  socket_.close(ignored);
  if (listener_) listener_();
}

void FramedConnection::read() {
  if (reading_ || ended_ || queueFull()) return;
  reading_ = true;
  socket_.async_read_some(
      boost::asio::buffer(input_),
      [self = shared_from_this()](const boost::system::error_code& error, std::size_t count) {
        self->onRead(error, count);
      });
}

void FramedConnection::onRead(const boost::system::error_code& error, std::size_t count) {
  reading_ = false;
  if (ended_) return;
  if (error) {
    end(error == boost::asio::error::eof ? std::string() : error.message());
    return;
  }
  bool allowed = splitter_.append({input_.data(), count});
  if (fillQueue() && listener_) listener_();
  allowed = allowed && splitter_.append({});
  if (!allowed) {
    end("frame longer than allowed");
    return;
  }
  read();
}

bool FramedConnection::queueFull() const {
  return frames_.size() >= limits_.queue || waitingBytes_ >= limits_.queueBytes;
}

bool FramedConnection::fillQueue() {
  bool arrived = false;
  std::string frame;
  while (!queueFull() && splitter_.next(frame)) {
    waitingBytes_ += frame.size();
    frames_.push_back(std::move(frame));
    arrived = true;
  }
  return arrived;
}

std::string FramedConnection::take() {
  assert(!frames_.empty());
  std::string frame = std::move(frames_.front());
  frames_.pop_front();
  waitingBytes_ -= frame.size();
  if (!ended_ && !reading_) {
    fillQueue();
    if (!splitter_.append({})) {
      end("frame longer than allowed");
    } else {
      read();
    }
  }
  return frame;
}

bool FramedConnection::send(std::string_view frame) {
  if (ended_) return false;
  if (unsent() > 0 && unsent() + frame.size() > limits_.unsent) return false;
  const auto prefix = framePrefix(frame.size());
  unsent_.append(prefix.data(), prefix.size());
  unsent_.append(frame);
  write();
  return true;
}

void FramedConnection::write() {
  if (writing_ || ended_) return;
  boost::system::error_code error;
  while (unsent() > 0 && !error) {
    sent_ += socket_.write_some(boost::asio::buffer(unsent_.data() + sent_, unsent()), error);
  }
  if (unsent() == 0) {
    unsent_.clear();
    sent_ = 0;
    return;
  }
  unsent_.erase(0, sent_);
  sent_ = 0;
  // A broken connection shows at the next read.
  if (error != boost::asio::error::would_block && error != boost::asio::error::try_again) return;
  writing_ = true;
  socket_.async_wait(boost::asio::ip::tcp::socket::wait_write,
                     [self = shared_from_this()](const boost::system::error_code& waitError) {
                       self->writing_ = false;
                       if (!waitError) self->write();
                     });
}

}  // namespace arena
