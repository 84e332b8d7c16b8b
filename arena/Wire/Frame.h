#ifndef QUOLNARIS_WIRE_FRAME_H_
#define QUOLNARIS_WIRE_FRAME_H_

#include <array>
#include <cstddef>
#include <string>
#include <string_view>

namespace arena {

// Texts travel in frames, at every port and in both directions: 4 bytes with the length of the
// text, the most significant one first, then the text. The length does not count itself.
inline constexpr std::size_t kFramePrefix = 4;

// The bytes before a text of this length.
std::array<char, kFramePrefix> framePrefix(std::size_t length);

// Cuts a stream of bytes into the texts of its frames.
class FrameSplitter {
 public:
  explicit FrameSplitter(std::size_t maxLength) : maxLength_(maxLength) {}

  // Takes the next bytes of the stream. Returns false if a frame is announced that is longer than
  // allowed; nothing more can then be read from the stream.
  bool append(std::string_view bytes);
  // The next complete frame, if there is one.
  bool next(std::string& frame);

 private:
  bool lengthAllowed() const;

  std::size_t maxLength_;
  std::string buffer_;
  std::size_t begin_ = 0;  // of what has not been handed out
};

}  // namespace arena

#endif  // QUOLNARIS_WIRE_FRAME_H_
