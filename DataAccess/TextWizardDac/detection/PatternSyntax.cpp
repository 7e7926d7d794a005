#include "detection/PatternSyntax.h"

#include <memory>
#include <utility>

namespace textwizard {

namespace {

// Bounds of what is worth compiling.
constexpr int kMaxDepth = 32;
constexpr int kMaxRepeat = 64;
constexpr std::size_t kMaxStates = 20000;

bool IsDigit(char c) { return c >= '0' && c <= '9'; }
bool IsLetter(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }
bool IsAscii(char c) { return static_cast<unsigned char>(c) < kAsciiCount; }

struct Node {
  enum class Kind { kCharacters, kSequence, kChoice, kRepeat };
  static constexpr int kUnbounded = -1;

  Kind kind = Kind::kSequence;
  CharacterSet characters;
  std::vector<Node> children;
  int min = 0;
  int max = 0;
};

CharacterSet Range(char first, char last) {
  CharacterSet set;
  const auto end = static_cast<unsigned char>(last);
  for (std::size_t c = static_cast<unsigned char>(first); c <= end; ++c) set.set(c);
  return set;
}

CharacterSet Digits() { return Range('0', '9').set(kWideDigitOrSpace); }

CharacterSet Spaces() { return Range('\t', '\r').set(' ').set(kWideDigitOrSpace); }

// "." stands for everything but the line ends, which ASCII has four of.
CharacterSet AnyButLineEnds() { return ~Range('\n', '\r'); }

class Parser {
 public:
  explicit Parser(std::string_view pattern) : rest_(pattern) {}

  std::optional<Node> Parse() {
    if (!Take('^')) return std::nullopt;
    Node node = ParseChoice(0);
    if (!Take('$') || !rest_.empty()) return std::nullopt;
    if (failed_) return std::nullopt;
    return node;
  }

 private:
  bool At(char c) const { return !rest_.empty() && rest_.front() == c; }
  bool Take(char c) {
    if (!At(c)) return false;
    rest_.remove_prefix(1);
    return true;
  }
  char TakeAny() {
    const char c = rest_.front();
    rest_.remove_prefix(1);
    return c;
  }
  Node Fail() {
    failed_ = true;
    rest_ = {};
    return {};
  }
  static Node Characters(CharacterSet set) {
    Node node;
    node.kind = Node::Kind::kCharacters;
    node.characters = set;
    return node;
  }

  Node ParseChoice(int depth) {
    if (depth > kMaxDepth) return Fail();
    Node choice;
    choice.kind = Node::Kind::kChoice;
    do choice.children.push_back(ParseSequence(depth));
    while (Take('|'));
    return choice;
  }

  Node ParseSequence(int depth) {
    Node sequence;
    while (!rest_.empty() && !At('|') && !At(')') && !At('$')) {
      const bool wide = !IsAscii(rest_.front());
      Node item = ParseItem(depth);
      // A quantifier after a character of several bytes would be bound to its last byte here.
      sequence.children.push_back(ParseQuantifier(std::move(item), wide));
    }
    return sequence;
  }

  Node ParseItem(int depth) {
    const char c = TakeAny();
    switch (c) {
      case '(':
        return ParseGroup(depth);
      case '[':
        return ParseClass();
      case '\\':
        return ParseEscape();
      case '.':
        return Characters(AnyButLineEnds());
      case '^':
      case ']':
      case '{':
      case '}':
      case '?':
      case '*':
      case '+':
        return Fail();
      default:
        return Characters(Literal(c));
    }
  }

  static CharacterSet Literal(char c) {
    if (IsAscii(c)) return CharacterSet().set(static_cast<std::size_t>(c));
    return CharacterSet().set(kWideDigitOrSpace).set(kWideOther);
  }

  Node ParseGroup(int depth) {
    if (Take('?') && !Take(':')) return Fail();
    Node node = ParseChoice(depth + 1);
    return Take(')') ? node : Fail();
  }

  Node ParseEscape() {
    if (rest_.empty()) return Fail();
    const char c = TakeAny();
    if (c == 'd') return Characters(Digits());
    if (c == 's') return Characters(Spaces());
    if (IsLetter(c) || IsDigit(c) || !IsAscii(c)) return Fail();
    return Characters(Literal(c));
  }

  Node ParseClass() {
    CharacterSet set;
    while (!rest_.empty() && !At(']')) {
      const char first = TakeAny();
      if (!IsLetter(first) && !IsDigit(first) && first != '|') return Fail();
      char last = first;
      if (Take('-')) {
        if (rest_.empty()) return Fail();
        last = TakeAny();
        if ((!IsLetter(last) && !IsDigit(last)) || last < first) return Fail();
      }
      set |= Range(first, last);
    }
    if (set.none() || !Take(']')) return Fail();
    return Characters(set);
  }

  Node ParseQuantifier(Node item, bool wide) {
    if (!At('?') && !At('*') && !At('+') && !At('{')) return item;
    if (wide) return Fail();
    Node repeat;
    repeat.kind = Node::Kind::kRepeat;
    switch (TakeAny()) {
      case '?':
        repeat.max = 1;
        break;
      case '*':
        repeat.max = Node::kUnbounded;
        break;
      case '+':
        repeat.min = 1;
        repeat.max = Node::kUnbounded;
        break;
      default:
        if (!ParseBounds(repeat)) return Fail();
    }
    // "??" and "?+" are other quantifiers.
    if (At('?') || At('*') || At('+') || At('{')) return Fail();
    repeat.children.push_back(std::move(item));
    return repeat;
  }

  bool ParseBounds(Node& repeat) {
    if (!ParseCount(repeat.min)) return false;
    repeat.max = repeat.min;
    if (Take(',')) {
      repeat.max = Node::kUnbounded;
      if (!At('}') && !ParseCount(repeat.max)) return false;
    }
    return Take('}') && (repeat.max == Node::kUnbounded || repeat.max >= repeat.min);
  }

  bool ParseCount(int& count) {
    if (rest_.empty() || !IsDigit(rest_.front())) return false;
    count = 0;
    while (!rest_.empty() && IsDigit(rest_.front()) && count <= kMaxRepeat) {
      count = count * 10 + (TakeAny() - '0');
    }
    return count <= kMaxRepeat;
  }

  std::string_view rest_;
  bool failed_ = false;
};

class Builder {
 public:
  std::optional<PatternNfa> Build(const Node& node) {
    const std::size_t start = Add();
    nfa_.accept = Append(node, start);
    if (nfa_.states.size() > kMaxStates) return std::nullopt;
    return std::move(nfa_);
  }

 private:
  std::size_t Add() {
    nfa_.states.emplace_back();
    return nfa_.states.size() - 1;
  }
  void Link(std::size_t from, std::size_t to) { nfa_.states[from].alternatives.push_back(to); }

  // Appends `node` behind state `from`; returns the state where it ends.
  std::size_t Append(const Node& node, std::size_t from) {
    if (nfa_.states.size() > kMaxStates) return from;
    switch (node.kind) {
      case Node::Kind::kCharacters: {
        // A state has one character edge: the edge gets a state of its own.
        const std::size_t edge = Add();
        const std::size_t end = Add();
        Link(from, edge);
        nfa_.states[edge].characters = node.characters;
        nfa_.states[edge].next = end;
        return end;
      }
      case Node::Kind::kSequence: {
        for (const Node& child : node.children) from = Append(child, from);
        return from;
      }
      case Node::Kind::kChoice: {
        const std::size_t end = Add();
        for (const Node& child : node.children) {
          const std::size_t branch = Add();
          Link(from, branch);
          Link(Append(child, branch), end);
        }
        return end;
      }
      case Node::Kind::kRepeat:
        return AppendRepeat(node, from);
    }
    return from;
  }

  std::size_t AppendRepeat(const Node& node, std::size_t from) {
    const Node& body = node.children.front();
    for (int i = 0; i < node.min; ++i) from = Append(body, from);
    if (node.max == Node::kUnbounded) {
      const std::size_t loop = Add();
      Link(from, loop);
      Link(Append(body, loop), loop);
      return loop;
    }
    const std::size_t end = Add();
    for (int i = node.min; i < node.max; ++i) {
      Link(from, end);
      const std::size_t optional = Add();
      Link(from, optional);
      from = Append(body, optional);
    }
    Link(from, end);
    return end;
  }

  PatternNfa nfa_;
};

}  // namespace

std::optional<PatternNfa> CompilePattern(std::string_view pattern) {
  const std::optional<Node> node = Parser(pattern).Parse();
  if (!node) return std::nullopt;
  return Builder().Build(*node);
}

}  // namespace textwizard
