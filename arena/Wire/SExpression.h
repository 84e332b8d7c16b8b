#ifndef QUOLNARIS_WIRE_SEXPRESSION_H_
#define QUOLNARIS_WIRE_SEXPRESSION_H_

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace arena {

// Reader of the S-expressions of one frame, from agents, trainers and (in tests) to them.
//
// - Space, tab, carriage return and line feed separate tokens; brackets end them.
// - Atoms consist of '!', '#'..'&', '*'..'~' and bytes above 127.
// - ';' at the start of a token begins a comment that runs to the end of the line.
// - '"' and ''' start a token that runs to the same character again; it may hold separators and
//   brackets. The quotes are not part of the value.
// - A backslash before a bracket or a quote makes it an ordinary character of the token; before
//   anything else the backslash stands for itself.
// - Atoms outside a list and closing brackets without a list are ignored.
// - Any other byte, an unfinished list or quote, and what exceeds a limit end the reading: the top
//   level lists finished before that are kept, the rest of the frame is dropped.
//
// Storage is reused from frame to frame, so that reading does not allocate once it is warm.
class SExpression {
 public:
  enum class Status { Complete, Unfinished, IllegalByte, TooDeep, TooLarge };

  // Nested lists allowed, the outermost included.
  static constexpr int kMaxDepth = 32;
  // Lists and atoms together that one frame may hold; more than any frame in earnest needs.
  static constexpr std::size_t kMaxNodes = 65536;

  class Iterator;

  // A list or an atom of the frame read last. A default one is an empty atom.
  class Node {
   public:
    Node() = default;

    bool isList() const;
    bool isAtom() const { return !isList(); }
    // The text of an atom; empty for a list.
    std::string_view text() const;
    // The value of an atom by the rules of C's atof: leading garbage gives 0, trailing garbage is
    // ignored; infinities and not-a-number are possible. 0 for a list.
    double number() const;
    // The same by the rules of atoi, held within the range of int.
    int integer() const;

    // Children of a list; an atom has none.
    Iterator begin() const;
    Iterator end() const;
    // Number of children, counted anew at every call.
    std::size_t size() const;
    // The child with this number, or a default Node if there is none.
    Node child(std::size_t position) const;
    // The text of the first child if that is an atom: the name of a term. Otherwise empty.
    std::string_view name() const { return child(0).text(); }
    // The first child that is a list of this name, or a default Node.
    Node find(std::string_view name) const;
    // Whether this node stands for something that was read.
    explicit operator bool() const { return owner_ != nullptr; }

   private:
    friend class SExpression;
    friend class Iterator;
    Node(const SExpression* owner, std::uint32_t position) : owner_(owner), position_(position) {}

    const SExpression* owner_ = nullptr;
    std::uint32_t position_ = 0;
  };

  class Iterator {
   public:
    Node operator*() const { return {owner_, position_}; }
    Iterator& operator++();
    bool operator==(const Iterator&) const = default;

   private:
    friend class SExpression;
    friend class Node;
    Iterator(const SExpression* owner, std::uint32_t position)
        : owner_(owner), position_(position) {}

    const SExpression* owner_ = nullptr;
    std::uint32_t position_ = 0;
  };

  // Whether the text, written as it is and whatever follows it, is read as one atom.
  static bool isPlainAtom(std::string_view text);

  // Reads a frame; what was read before is forgotten. `frame` must outlive the use of the nodes.
  Status read(std::string_view frame);

  // The top level lists.
  Iterator begin() const { return {this, 0}; }
  Iterator end() const { return {this, static_cast<std::uint32_t>(items_.size())}; }
  std::size_t size() const;

 private:
  // Items lie in the order of reading; the children of the list at i are the items from i + 1 up
  // to its `after`.
  struct Item {
    bool list = false;
    bool unescaped = false;  // the text lies in unescaped_ instead of in the frame
    std::uint32_t begin = 0;
    std::uint32_t length = 0;
    std::uint32_t after = 0;
  };

  void readAtom(std::size_t& at, bool keep, Status& status);

  std::string_view frame_;
  std::string unescaped_;
  std::vector<Item> items_;
};

}  // namespace arena

#endif  // QUOLNARIS_WIRE_SEXPRESSION_H_
