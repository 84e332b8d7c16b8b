#include "WorldModel/PerceptReader.h"

#include <charconv>
#include <cmath>
#include <cstdlib>
#include <string>
#include <system_error>

namespace {

bool isBlank(char c) {
  return c == ' ' || (c >= '\t' && c <= '\r');
}
bool isDigit(char c) {
  return c >= '0' && c <= '9';
}
bool isSign(char c) {
  return c == '+' || c == '-';
}

// The longest start of `text` that can be part of an integer.
std::string_view integerLiteral(std::string_view text) {
  std::size_t end = !text.empty() && isSign(text[0]) ? 1 : 0;
  while (end < text.size() && isDigit(text[end])) ++end;
  return text.substr(0, end);
}

// The longest start of `text` that can be part of a real number; "1e" counts as such a start, and
// makes the number unreadable.
std::string_view realLiteral(std::string_view text) {
  std::size_t end = !text.empty() && isSign(text[0]) ? 1 : 0;
  bool point = false;
  bool exponent = false;
  bool digits = false;
  for (; end < text.size(); ++end) {
    const char c = text[end];
    if (isDigit(c)) {
      digits = true;
    } else if (c == '.' && !point && !exponent) {
      point = true;
    } else if ((c == 'e' || c == 'E') && digits && !exponent) {
      exponent = true;
      if (end + 1 < text.size() && isSign(text[end + 1])) ++end;
    } else {
      break;
    }
  }
  return text.substr(0, end);
}

// A literal out of the range of the type: too small reads as (nearly) zero, too large is no number.
// The text ends behind the literal with a character that can't continue it, or not at all; hence
// the copy. Never met in play.
bool readExtreme(std::string_view literal, double& number) {
  const double value = std::strtod(std::string(literal).c_str(), nullptr);
  if (std::isinf(value)) return false;
  number = value;
  return true;
}
bool readExtreme(std::string_view literal, float& number) {
  const float value = std::strtof(std::string(literal).c_str(), nullptr);
  if (std::isinf(value)) return false;
  number = value;
  return true;
}
bool readExtreme(std::string_view, int&) {
  return false;
}

}  // namespace

void PerceptReader::skipBlanks() {
  std::size_t blanks = 0;
  while (blanks < text_.size() && isBlank(text_[blanks])) ++blanks;
  text_.remove_prefix(blanks);
}

bool PerceptReader::read(std::string_view& word) {
  if (!ok_) return false;
  skipBlanks();
  std::size_t length = 0;
  while (length < text_.size() && !isBlank(text_[length])) ++length;
  if (length == 0) return ok_ = false;
  word = text_.substr(0, length);
  text_.remove_prefix(length);
  return true;
}

bool PerceptReader::read(char& character) {
  if (!ok_) return false;
  skipBlanks();
  if (text_.empty()) return ok_ = false;
  character = text_.front();
  text_.remove_prefix(1);
  return true;
}

template <typename Number>
bool PerceptReader::readNumber(Number& number, std::string_view literal) {
  text_.remove_prefix(literal.size());
  if (!literal.empty() && literal.front() == '+') literal.remove_prefix(1);
  Number value{};
  const auto [end, error] = std::from_chars(literal.data(), literal.data() + literal.size(), value);
  if (error == std::errc::result_out_of_range) {
    ok_ = readExtreme(literal, number);
  } else if (error == std::errc() && end == literal.data() + literal.size()) {
    number = value;
  } else {
    ok_ = false;
  }
  return ok_;
}

bool PerceptReader::read(int& number) {
  if (!ok_) return false;
  skipBlanks();
  return readNumber(number, integerLiteral(text_));
}

bool PerceptReader::read(float& number) {
  if (!ok_) return false;
  skipBlanks();
  return readNumber(number, realLiteral(text_));
}

bool PerceptReader::read(double& number) {
  if (!ok_) return false;
  skipBlanks();
  return readNumber(number, realLiteral(text_));
}

bool PerceptReader::skip(int count) {
  std::string_view word;
  for (int i = 0; i < count; ++i) read(word);
  return ok_;
}
