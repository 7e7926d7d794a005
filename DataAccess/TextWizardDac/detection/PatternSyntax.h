// The regular expressions of the pattern table, as automata: a small compiler for the part of the
// syntax that the table uses.
#pragma once

#include <bitset>
#include <cstddef>
#include <optional>
#include <string_view>
#include <vector>

namespace textwizard {

// A set of ASCII characters, and whether some character beyond ASCII belongs to it too: one that is
// a digit or a space, or another one.
inline constexpr std::size_t kAsciiCount = 128;
inline constexpr std::size_t kWideDigitOrSpace = kAsciiCount;
inline constexpr std::size_t kWideOther = kAsciiCount + 1;
using CharacterSet = std::bitset<kAsciiCount + 2>;

// A nondeterministic automaton: state 0 is the start.
struct PatternNfa {
  static constexpr std::size_t kNone = static_cast<std::size_t>(-1);

  struct State {
    // Characters that lead to `next`.
    CharacterSet characters;
    std::size_t next = kNone;
    // States that stand for this one too, without a character.
    std::vector<std::size_t> alternatives;
  };
  std::vector<State> states;
  std::size_t accept = kNone;
};

// Compiles `pattern` (UTF-8) as a test of a whole text: exact for ASCII texts, and on a text with
// other characters it never dies before the first of them where the expression could still match.
//
// Known: "^" at the start and "$" at the end, groups "(" and "(?:", "|", "." and other literal
// characters, classes of letters, digits and "|" with ranges, \d, \s, escaped punctuation, and the
// quantifiers ? * + {n} {n,} {n,m}. Anything else, and an expression that would grow too large,
// gives nothing: then only the regular-expression library can tell. That compiles whatever is
// compiled here.
std::optional<PatternNfa> CompilePattern(std::string_view pattern);

}  // namespace textwizard
