// The bytes of a file as the component is to see them: line breaks and escapes inside qualified
// fields replaced, byte for byte, so that every offset stays what it is.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

#include "library/rewriting/QuoteRules.h"
#include "library/rewriting/StandIns.h"
#include "reading/ByteScan.h"

namespace library {

// Where a walk over a file stands, between two units (bytes or 16-bit units).
struct QuotePosition {
  // Of the field, only what decides about the next qualifier: FieldSplitter cuts the same fields.
  enum State : std::uint8_t {
    kPreamble,   // in the lines before the data
    kStart,      // at the start of a field
    kBlank,      // in an unqualified field of blanks so far
    kPlain,      // in an unqualified field
    kQualified,  // inside qualified text
    kAfter,      // behind a qualifier in qualified text
    kBehind,     // in text behind the closing qualifier
    kEscape,     // behind an escaping backslash
    kCutOff,     // 16-bit: behind a zero unit, which ends the text of its line
  };
  enum Return : std::uint8_t { kNoReturn, kLineReturn, kJoinedReturn };

  State state = kStart;
  // The unit before was a carriage return that ended a line of the preamble, or one that was
  // joined.
  Return afterReturn = kNoReturn;
  // A byte that begins a character of several; 0 when the byte before does not.
  char lead = 0;
  // The units before, the last one lowest, where delimiters are longer than a unit; else 0.
  std::uint32_t history = 0;
  // Lines of the preamble that are left.
  std::int64_t linesLeft = 0;
  // So far: physical line ends that do not end a record, backslashes that escape, qualifiers inside
  // unqualified fields.
  std::int64_t joinedLines = 0;
  std::int64_t escapes = 0;
  std::int64_t strays = 0;
  // Of the field in hand, and of the field that has most.
  std::int64_t joinedHere = 0;
  std::int64_t longestJoin = 0;
  // Characters that were replaced, by what stands for them.
  std::int64_t feeds = 0;
  std::int64_t returns = 0;
  std::int64_t removed = 0;

  // A field is open that only a qualifier closes.
  bool IsOpen() const { return state == kQualified || state == kEscape; }

  // Goes on with the walk over the lines behind, which began anew at a line.
  void Append(const QuotePosition& next);
  bool operator==(const QuotePosition&) const = default;
};

// Constant after construction; any thread.
class QuoteRewriter {
 public:
  QuoteRewriter(QuoteRules rules, const StandIns& standIns);

  const QuoteRules& rules() const { return rules_; }
  const StandIns& standIns() const { return standIns_; }
  // Bytes of a unit.
  std::size_t unitBytes() const { return wide_ ? 2 : 1; }
  // Behind the mark.
  QuotePosition Begin() const;
  // Walks over `bytes`, whole units.
  void Advance(std::string_view bytes, QuotePosition& position) const;
  // The same, and replaces bytes in place. `following`: the unit behind them, empty at the end of
  // the file; looked at only where Escapes says so of the last one.
  void Rewrite(char* bytes, std::size_t count, std::string_view following,
               QuotePosition& position) const;
  // The unit at `at`.
  unsigned UnitAt(const char* at) const {
    const auto byte = [at](std::size_t i) -> unsigned { return static_cast<unsigned char>(at[i]); };
    if (!wide_) return byte(0);
    return rules_.units == FileUnits::kUtf16BigEndian ? byte(0) << 8 | byte(1)
                                                      : byte(1) << 8 | byte(0);
  }
  // What the unit at `at` becomes can depend on the one behind it.
  bool Escapes(const char* at) const {
    return rules_.options.backslashEscapes && UnitAt(at) == '\\';
  }

 private:
  class Watching;
  class Replacing;
  class PlainRun;
  // A delimiter of several units, as the history behind it.
  struct LongDelimiter {
    std::uint32_t bits;
    std::uint32_t mask;
  };

  bool EndsDelimiter(unsigned unit, QuotePosition& position) const;
  bool IsTrail(char byte, QuotePosition& position) const;
  template <class Sink>
  void Walk(const char* begin, const char* end, QuotePosition& position, const Sink& sink) const;
  template <class Sink>
  void WalkUnits(const char* begin, const char* end, QuotePosition& position,
                 const Sink& sink) const;
  template <class Sink>
  void WalkBlock(const char* begin, std::size_t words, QuotePosition& position,
                 const Sink& sink) const;
  template <class Sink>
  const char* WalkFields(const char* at, const char* end, QuotePosition& position,
                         const Sink& sink) const;
  template <class Sink>
  void Step(const char* at, QuotePosition& position, const Sink& sink) const;
  template <class Sink>
  void Join(const char* at, unsigned unit, QuotePosition::Return before, QuotePosition& position,
            const Sink& sink) const;
  void StepPreamble(unsigned unit, QuotePosition::Return before, QuotePosition& position) const;
  QuotePosition::State StateBehind(const char* begin, const char* end,
                                   QuotePosition::State state) const;

  const QuoteRules rules_;
  const StandIns standIns_;
  const bool wide_;
  const unsigned qualifier_;
  // Bytes tell characters, and every delimiter is one.
  bool byBytes_ = false;
  // By unit below 256.
  std::array<bool, 256> delimits_{};
  // By byte: it ends a field, or has to be looked at inside qualified text.
  std::array<bool, 256> endsField_{};
  std::array<bool, 256> matters_{};
  std::vector<LongDelimiter> longDelimiters_;
  // Blocks are looked at by marks: of the qualifier, of what ends a field, of what must not stand
  // inside qualified text that is passed unseen.
  bool byMarks_ = false;
  textwizard::ByteSet qualifierMark_;
  textwizard::ByteSet fieldEndMarks_;
  textwizard::ByteSet insideMarks_;
};

}  // namespace library
