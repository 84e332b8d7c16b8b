#include "Wire/SExpression.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <charconv>
#include <climits>
#include <cstdlib>
#include <limits>

namespace arena {

namespace {

bool isSeparator(char c) {
  return c == ' ' || c == '\t' || c == '\r' || c == '\n';
}
bool isBracket(char c) {
  return c == '(' || c == ')';
}
bool isQuote(char c) {
  return c == '"' || c == '\'';
}

bool isAtomCharacter(char c) {
  const auto byte = static_cast<unsigned char>(c);
  return byte == '!' || (byte >= '#' && byte <= '&') || (byte >= '*' && byte <= '~') || byte > 127;
}

bool isEscape(std::string_view text, std::size_t at) {
  return text[at] == '\\' && at + 1 < text.size() &&
         (isBracket(text[at + 1]) || isQuote(text[at + 1]));
}

}  // namespace

bool SExpression::Node::isList() const {
  return owner_ && owner_->items_[position_].list;
}

std::string_view SExpression::Node::text() const {
  if (!owner_ || isList()) return {};
  const Item& item = owner_->items_[position_];
  const std::string_view source = item.unescaped ? owner_->unescaped_ : owner_->frame_;
  return source.substr(item.begin, item.length);
}

double SExpression::Node::number() const {
  const std::string_view atom = text();
  double value = 0;
  const auto [end, error] = std::from_chars(atom.data(), atom.data() + atom.size(), value);
  const bool plain = error == std::errc() && (end == atom.data() + atom.size() ||
                                              (*end != 'x' && *end != 'X' && *end != '('));
  if (plain) return value;
  return std::strtod(std::string(atom).c_str(), nullptr);
}

int SExpression::Node::integer() const {
  const std::string_view atom = text();
  int value = 0;
  if (std::from_chars(atom.data(), atom.data() + atom.size(), value).ec == std::errc()) {
    return value;
  }
  const long long wide = std::strtoll(std::string(atom).c_str(), nullptr, 10);
  if (wide > INT_MAX) return INT_MAX;
  return wide < INT_MIN ? INT_MIN : static_cast<int>(wide);
}

SExpression::Iterator SExpression::Node::begin() const {
  return isList() ? Iterator(owner_, position_ + 1) : end();
}

SExpression::Iterator SExpression::Node::end() const {
  return owner_ ? Iterator(owner_, owner_->items_[position_].after) : Iterator(nullptr, 0);
}

std::size_t SExpression::Node::size() const {
  std::size_t count = 0;
  for (auto i = begin(); i != end(); ++i) ++count;
  return count;
}

SExpression::Node SExpression::Node::child(std::size_t position) const {
  for (const Node node : *this) {
    if (position-- == 0) return node;
  }
  return {};
}

SExpression::Node SExpression::Node::find(std::string_view wanted) const {
  for (const Node node : *this) {
    if (node.isList() && node.name() == wanted) return node;
  }
  return {};
}

SExpression::Iterator& SExpression::Iterator::operator++() {
  position_ = owner_->items_[position_].after;
  return *this;
}

std::size_t SExpression::size() const {
  std::size_t count = 0;
  for (auto i = begin(); i != end(); ++i) ++count;
  return count;
}

bool SExpression::isPlainAtom(std::string_view text) {
  return !text.empty() && text.front() != ';' && std::all_of(text.begin(), text.end(), [](char c) {
    return isAtomCharacter(c) && c != '\\';
  });
}

SExpression::Status SExpression::read(std::string_view frame) {
  frame_ = frame;
  unescaped_.clear();
  items_.clear();
  if (frame.size() > std::numeric_limits<std::uint32_t>::max()) return Status::TooLarge;

  std::array<std::uint32_t, kMaxDepth> open{};  // the lists around the place of reading
  int depth = 0;
  Status status = Status::Complete;
  std::size_t at = 0;
  while (at < frame.size() && status == Status::Complete) {
    const char c = frame[at];
    if (isSeparator(c)) {
      ++at;
    } else if (c == ';') {
      at = frame.find('\n', at);
      if (at == std::string_view::npos) at = frame.size();
    } else if (c == '(') {
      ++at;
      if (depth == kMaxDepth) {
        status = Status::TooDeep;
      } else if (items_.size() == kMaxNodes) {
        status = Status::TooLarge;
      } else {
        open[static_cast<std::size_t>(depth++)] = static_cast<std::uint32_t>(items_.size());
        items_.push_back({.list = true});
      }
    } else if (c == ')') {
      ++at;
      if (depth > 0) {
        items_[open[static_cast<std::size_t>(--depth)]].after =
            static_cast<std::uint32_t>(items_.size());
      }
    } else {
      readAtom(at, depth > 0, status);
    }
  }
  if (depth > 0) {
    if (status == Status::Complete) status = Status::Unfinished;
    items_.resize(open[0]);
  }
  return status;
}

// Reads the token at `at`, a quoted one or an atom, and files it if `keep`.
void SExpression::readAtom(std::size_t& at, bool keep, Status& status) {
  const char quote = isQuote(frame_[at]) ? frame_[at++] : '\0';
  const std::size_t begin = at;
  const std::size_t unescapedBegin = unescaped_.size();
  bool escaped = false;
  while (at < frame_.size()) {
    const char c = frame_[at];
    if (isEscape(frame_, at)) {
      if (!escaped) unescaped_.append(frame_.substr(begin, at - begin));
      escaped = true;
      unescaped_.push_back(frame_[at + 1]);
      at += 2;
      continue;
    }
    if (quote != '\0' ? c == quote : isSeparator(c) || isBracket(c) || isQuote(c)) break;
    if (quote == '\0' && !isAtomCharacter(c)) {
      status = Status::IllegalByte;
      return;
    }
    if (escaped) unescaped_.push_back(c);
    ++at;
  }
  const std::size_t end = at;
  if (quote != '\0') {
    if (at == frame_.size()) {
      status = Status::Unfinished;
      return;
    }
    ++at;
  }
  if (!keep) return;
  if (items_.size() == kMaxNodes) {
    status = Status::TooLarge;
    return;
  }
  const std::size_t from = escaped ? unescapedBegin : begin;
  const std::size_t length = escaped ? unescaped_.size() - unescapedBegin : end - begin;
  items_.push_back({.list = false,
                    .unescaped = escaped,
                    .begin = static_cast<std::uint32_t>(from),
                    .length = static_cast<std::uint32_t>(length),
                    .after = static_cast<std::uint32_t>(items_.size() + 1)});
}

}  // namespace arena
