#include "Wire/Frame.h"

namespace arena {
namespace {

std::size_t lengthIn(std::string_view prefix) {
  std::size_t length = 0;
  for (std::size_t i = 0; i < kFramePrefix; ++i) {
    length = length << 8 | static_cast<unsigned char>(prefix[i]);
  }
  return length;
}

}  // namespace

std::array<char, kFramePrefix> framePrefix(std::size_t length) {
  return {static_cast<char>(length >> 24), static_cast<char>(length >> 16),
          static_cast<char>(length >> 8), static_cast<char>(length)};
}

bool FrameSplitter::lengthAllowed() const {
  const std::string_view rest = std::string_view(buffer_).substr(begin_);
  return rest.size() < kFramePrefix || lengthIn(rest) <= maxLength_;
}

bool FrameSplitter::append(std::string_view bytes) {
  buffer_.append(bytes);
  return lengthAllowed();
}

bool FrameSplitter::next(std::string& frame) {
  const std::string_view rest = std::string_view(buffer_).substr(begin_);
  if (rest.size() < kFramePrefix) return false;
  const std::size_t length = lengthIn(rest);
  if (length > maxLength_ || rest.size() < kFramePrefix + length) {
    buffer_.erase(0, begin_);
    begin_ = 0;
    return false;
  }
  frame.assign(rest.substr(kFramePrefix, length));
  begin_ += kFramePrefix + length;
  if (begin_ == buffer_.size()) {
    buffer_.clear();
    begin_ = 0;
  }
  return true;
}

}  // namespace arena
