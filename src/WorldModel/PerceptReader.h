#ifndef QUOLNARIS_WORLDMODEL_PERCEPTREADER_H_
#define QUOLNARIS_WORLDMODEL_PERCEPTREADER_H_

#include <cstddef>
#include <string_view>

// Reads an expression of the server as a standard input stream would, without the stream's cost:
// words end at white space, a number ends at the first character that can't belong to it, and after
// the first thing that can't be read everything else fails too. Unlike a stream it leaves the
// target of a failed read as it was.
//
// Numbers are decimal: optional sign, digits, point and exponent. "inf", "nan" and hexadecimal
// forms are no numbers, and neither is one that its type can't hold.
//
// Keeps no copy of the text, which must outlive the reader. Never reads beyond its end.
class PerceptReader {
 public:
  explicit PerceptReader(std::string_view text) : text_(text) {}

  // False once a read has failed.
  bool ok() const { return ok_; }

  // Each reads one item, skipping white space before it, and returns ok().
  bool read(std::string_view& word);
  bool read(char& character);
  bool read(int& number);
  bool read(float& number);
  bool read(double& number);

  // Reads several items from left to right.
  template <typename First, typename Second, typename... More>
  bool read(First& first, Second& second, More&... more) {
    return read(first) && read(second, more...);
  }

  // Passes over `count` words.
  bool skip(int count);

 private:
  void skipBlanks();
  template <typename Number>
  bool readNumber(Number& number, std::string_view literal);

  std::string_view text_;  // what has not been read yet
  bool ok_ = true;
};

// The character at `position` of a word, or NUL beyond its end.
inline char letter(std::string_view word, std::size_t position) {
  return position < word.size() ? word[position] : '\0';
}

#endif  // QUOLNARIS_WORLDMODEL_PERCEPTREADER_H_
