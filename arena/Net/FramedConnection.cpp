#include "Net/FramedConnection.h"

#include <boost/asio/buffer.hpp>
#include <cassert>
#include <utility>

namespace arena {
namespace {

constexpr std::size_t kPrefixLength = 4;

std::size_t lengthIn(std::string_view prefix) {
  std::size_t length = 0;
  for (std::size_t i = 0; i < kPrefixLength; ++i) {
    length = length << 8 | static_cast<unsigned char>(prefix[i]);
  }
  return length;
}

}  // namespace

std::array<char, 4> framePrefix(std::size_t length) {
  return {static_cast<char>(length >> 24), static_cast<char>(length >> 16),
          static_cast<char>(length >> 8), static_cast<char>(length)};
}

bool FrameSplitter::lengthAllowed() const {
  const std::string_view rest = std::string_view(buffer_).substr(begin_);
  return rest.size() < kPrefixLength || lengthIn(rest) <= maxLength_;
}

bool FrameSplitter::append(std::string_view bytes) {
  buffer_.append(bytes);
  return lengthAllowed();
}

bool FrameSplitter::next(std::string& frame) {
  const std::string_view rest = std::string_view(buffer_).substr(begin_);
  if (rest.size() < kPrefixLength) return false;
  const std::size_t length = lengthIn(rest);
  if (length > maxLength_ || rest.size() < kPrefixLength + length) {
    buffer_.erase(0, begin_);
    begin_ = 0;
    return false;
  }
  frame.assign(rest.substr(kPrefixLength, length));
  begin_ += kPrefixLength + length;
  if (begin_ == buffer_.size()) {
    buffer_.clear();
    begin_ = 0;
  }
  return true;
}

FramedConnection::FramedConnection(boost::asio::ip::tcp::socket socket, const Limits& limits)
    : socket_(std::move(socket)), limits_(limits), splitter_(limits.frame_length) {
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
  if (reading_ || ended_ || frames_.size() >= limits_.queue) return;
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
  drainSplitter();
  allowed = allowed && splitter_.append({});
  if (!allowed) {
    end("frame longer than allowed");
    return;
  }
  read();
}

void FramedConnection::drainSplitter() {
  bool arrived = false;
  std::string frame;
  while (frames_.size() < limits_.queue && splitter_.next(frame)) {
    frames_.push_back(std::move(frame));
    arrived = true;
  }
  if (arrived && listener_) listener_();
}

std::string FramedConnection::take() {
  assert(!frames_.empty());
  std::string frame = std::move(frames_.front());
  frames_.pop_front();
  if (!ended_ && !reading_) {
    std::string more;
    while (frames_.size() < limits_.queue && splitter_.next(more)) {
      frames_.push_back(std::move(more));
    }
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
  const std::array<char, 4> prefix = framePrefix(frame.size());
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
