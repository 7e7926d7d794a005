#include "library/rewriting/QuoteRewriter.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <utility>

namespace library {
namespace {

using State = QuotePosition::State;

// Line ends of 16-bit text are such in either byte order; those of the other order cannot be
// replaced, as no one unit would bring them back.
constexpr bool IsSwappedLineEnd(unsigned unit) { return unit == 0x0A00 || unit == 0x0D00; }
constexpr bool IsOwnLineEnd(unsigned unit) { return unit == '\n' || unit == '\r'; }
// Where the reader of 16-bit records sees the end of the data.
constexpr unsigned kEndUnit = 0xFFFF;

// Bytes that a word of marks stands for, and words that are marked at once.
constexpr std::size_t kWord = 64;
constexpr std::size_t kWordsAtOnce = 64;

unsigned Number(char byte) { return static_cast<unsigned char>(byte); }

// False when the set has no room for it.
bool AddTo(textwizard::ByteSet& set, unsigned byte) {
  if (set.count == textwizard::ByteSet::kMax) return false;
  set.bytes[set.count++] = static_cast<std::uint8_t>(byte);
  return true;
}

}  // namespace

// Looks only.
class QuoteRewriter::Watching {
 public:
  void Put(const char*, char) const {}
  void Escape(const char*) const {}
};

// Replaces units of the text that is walked over.
class QuoteRewriter::Replacing {
 public:
  Replacing(const QuoteRewriter& rewriter, char* bytes, std::size_t count,
            std::string_view following)
      : rewriter_(rewriter), bytes_(bytes), end_(bytes + count), following_(following) {}

  void Put(const char* at, char character) const {
    char* const place = bytes_ + (at - bytes_);
    if (!rewriter_.wide_) {
      *place = character;
      return;
    }
    const bool bigEndian = rewriter_.rules_.units == FileUnits::kUtf16BigEndian;
    place[bigEndian ? 1 : 0] = character;
    place[bigEndian ? 0 : 1] = '\0';
  }
  // The backslash at `at` escapes: before a qualifier the two become a doubled one.
  void Escape(const char* at) const {
    const char* next = at + rewriter_.unitBytes();
    if (next == end_) {
      if (following_.size() < rewriter_.unitBytes()) return;
      next = following_.data();
    }
    const bool doubles = rewriter_.UnitAt(next) == rewriter_.qualifier_;
    Put(at, doubles ? rewriter_.rules_.qualifier : rewriter_.standIns_.nothing);
  }

 private:
  const QuoteRewriter& rewriter_;
  char* const bytes_;
  const char* const end_;
  const std::string_view following_;
};

// Bytes that are passed a word of marks after the other: qualifiers stand where fields begin and
// end, or double one another, and nothing between them asks for more. How the walk stands behind
// them is found out once they end.
class QuoteRewriter::PlainRun {
 public:
  PlainRun(const QuoteRewriter& rewriter, const char* begin, QuotePosition& position)
      : rewriter_(rewriter), position_(position) {
    Begin(begin);
  }

  // Passes the word of bytes at `at`, where the run ends, when it is such; its marks are given.
  bool Pass(const char* at, std::uint64_t qualifiers, std::uint64_t fieldEnds,
            std::uint64_t inside) {
    if (!canPass_) return false;
    const std::uint64_t qualified = textwizard::PrefixXor(qualifiers) ^ carriedInside_;
    const std::uint64_t before = (fieldEnds | qualifiers) << 1 | carriedEnd_;
    if ((qualifiers & qualified & ~before) != 0 || (inside & qualified) != 0) return false;
    if (qualifiers != 0) {
      behindQualifier_ = at + kWord - std::countl_zero(qualifiers);
      closes_ = closes_ || (qualifiers & ~qualified) != 0;
    }
    carriedInside_ = std::uint64_t{0} - (qualified >> (kWord - 1));
    carriedEnd_ = (fieldEnds | qualifiers) >> (kWord - 1);
    return true;
  }
  // The run ends at `end`, up to which everything was passed.
  void End(const char* end) {
    if (end == begin_) return;
    State& state = position_.state;
    if (carriedInside_ != 0) {
      state = QuotePosition::kQualified;
    } else if (behindQualifier_ != nullptr) {
      state = rewriter_.StateBehind(behindQualifier_, end, QuotePosition::kAfter);
    } else {
      state = rewriter_.StateBehind(begin_, end, state);
    }
    if (closes_) position_.joinedHere = 0;
    position_.afterReturn = QuotePosition::kNoReturn;
  }
  // Another one begins.
  void Begin(const char* begin) {
    const State state = position_.state;
    begin_ = begin;
    behindQualifier_ = nullptr;
    closes_ = false;
    canPass_ = state != QuotePosition::kPreamble && state != QuotePosition::kEscape &&
               state != QuotePosition::kCutOff;
    carriedInside_ = state == QuotePosition::kQualified ? ~std::uint64_t{0} : 0;
    carriedEnd_ = state == QuotePosition::kStart || state == QuotePosition::kAfter ? 1 : 0;
  }

 private:
  const QuoteRewriter& rewriter_;
  QuotePosition& position_;
  const char* begin_ = nullptr;
  // The byte behind the last qualifier of the run; null when it has none.
  const char* behindQualifier_ = nullptr;
  bool closes_ = false;
  bool canPass_ = false;
  // All bits when the byte before is inside qualified text.
  std::uint64_t carriedInside_ = 0;
  // Bit 0 when a qualifier may stand here outside of it.
  std::uint64_t carriedEnd_ = 0;
};

void QuotePosition::Append(const QuotePosition& next) {
  QuotePosition all = next;
  all.joinedLines += joinedLines;
  all.escapes += escapes;
  all.strays += strays;
  all.longestJoin = std::max(longestJoin, next.longestJoin);
  all.feeds += feeds;
  all.returns += returns;
  all.removed += removed;
  *this = all;
}

QuoteRewriter::QuoteRewriter(QuoteRules rules, const StandIns& standIns)
    : rules_(std::move(rules)),
      standIns_(standIns),
      wide_(IsUtf16(rules_.units)),
      qualifier_(Number(rules_.qualifier)) {
  for (const std::string& delimiter : rules_.delimiters) {
    const unsigned unit = delimiter.size() < unitBytes() ? 0 : UnitAt(delimiter.data());
    if (delimiter.size() == unitBytes() && unit < delimits_.size()) {
      delimits_[unit] = true;
      continue;
    }
    LongDelimiter found{0, 0};
    for (std::size_t at = 0; at < delimiter.size(); at += unitBytes()) {
      const unsigned bits = wide_ ? 16 : 8;
      found.bits = found.bits << bits | UnitAt(delimiter.data() + at);
      found.mask = found.mask << bits | ((1U << bits) - 1);
    }
    longDelimiters_.push_back(found);
  }
  byBytes_ = !wide_ && longDelimiters_.empty() && rules_.page == nullptr;
  endsField_ = delimits_;
  for (const char end : {'\n', '\r'}) endsField_[Number(end)] = matters_[Number(end)] = true;
  matters_[qualifier_] = true;
  matters_[Number('\\')] = rules_.options.backslashEscapes || matters_[Number('\\')];

  byMarks_ = byBytes_ && !endsField_[qualifier_] && AddTo(qualifierMark_, qualifier_);
  for (unsigned byte = 0; byte < matters_.size(); ++byte) {
    if (endsField_[byte]) byMarks_ = byMarks_ && AddTo(fieldEndMarks_, byte);
    if (matters_[byte] && byte != qualifier_) byMarks_ = byMarks_ && AddTo(insideMarks_, byte);
  }
}

QuotePosition QuoteRewriter::Begin() const {
  QuotePosition position;
  position.linesLeft = rules_.linesBefore;
  if (position.linesLeft > 0) position.state = QuotePosition::kPreamble;
  return position;
}

void QuoteRewriter::Advance(std::string_view bytes, QuotePosition& position) const {
  Walk(bytes.data(), bytes.data() + bytes.size(), position, Watching());
}

void QuoteRewriter::Rewrite(char* bytes, std::size_t count, std::string_view following,
                            QuotePosition& position) const {
  Walk(bytes, bytes + count, position, Replacing(*this, bytes, count, following));
}

template <class Sink>
void QuoteRewriter::Walk(const char* begin, const char* end, QuotePosition& position,
                         const Sink& sink) const {
  const char* at = begin;
  while (byMarks_) {
    // Nothing is marked where there is no qualifier.
    if (!position.IsOpen()) at = WalkFields(at, end, position, sink);
    if (static_cast<std::size_t>(end - at) < kWord) break;
    const std::size_t words = std::min(static_cast<std::size_t>(end - at) / kWord, kWordsAtOnce);
    WalkBlock(at, words, position, sink);
    at += words * kWord;
  }
  WalkUnits(at, end, position, sink);
}

template <class Sink>
void QuoteRewriter::WalkBlock(const char* begin, std::size_t words, QuotePosition& position,
                              const Sink& sink) const {
  std::array<std::uint64_t, kWordsAtOnce> qualifiers;
  std::array<std::uint64_t, kWordsAtOnce> fieldEnds;
  std::array<std::uint64_t, kWordsAtOnce> inside;
  const std::string_view bytes(begin, words * kWord);
  textwizard::MarkBytes(bytes, qualifierMark_, qualifiers.data());
  textwizard::MarkBytes(bytes, fieldEndMarks_, fieldEnds.data());
  textwizard::MarkBytes(bytes, insideMarks_, inside.data());
  PlainRun run(*this, begin, position);
  for (std::size_t word = 0; word < words; ++word) {
    const char* const at = begin + word * kWord;
    if (run.Pass(at, qualifiers[word], fieldEnds[word], inside[word])) continue;
    run.End(at);
    WalkUnits(at, at + kWord, position, sink);
    run.Begin(at + kWord);
  }
  run.End(begin + words * kWord);
}

template <class Sink>
void QuoteRewriter::WalkUnits(const char* begin, const char* end, QuotePosition& position,
                              const Sink& sink) const {
  const char* at = begin;
  while (at != end) {
    if (byBytes_) {
      at = WalkFields(at, end, position, sink);
      if (at == end) return;
    }
    Step(at, position, sink);
    at += unitBytes();
  }
}

// Passes the bytes of fields up to the next one that has to be looked at by itself.
template <class Sink>
const char* QuoteRewriter::WalkFields(const char* at, const char* end, QuotePosition& position,
                                      const Sink&) const {
  const char* stop = at;
  switch (position.state) {
    case QuotePosition::kPreamble:
    case QuotePosition::kEscape:
    case QuotePosition::kCutOff:
      return at;
    case QuotePosition::kQualified:
      while (stop != end && !matters_[Number(*stop)]) ++stop;
      break;
    default: {
      const void* const found =
          std::memchr(at, rules_.qualifier, static_cast<std::size_t>(end - at));
      stop = found != nullptr ? static_cast<const char*>(found) : end;
      position.state = StateBehind(at, stop, position.state);
    }
  }
  if (stop != at) position.afterReturn = QuotePosition::kNoReturn;
  return stop;
}

// The state behind bytes without a qualifier that begin in `state`, outside of qualified text.
State QuoteRewriter::StateBehind(const char* begin, const char* end, State state) const {
  const bool wasQualified = state == QuotePosition::kAfter || state == QuotePosition::kBehind;
  bool blanks = false;
  bool text = false;
  for (const char* at = end; at != begin;) {
    const char byte = *--at;
    if (endsField_[Number(byte)]) {
      return text ? QuotePosition::kPlain : blanks ? QuotePosition::kBlank : QuotePosition::kStart;
    }
    // A NUL is dropped before fields are cut.
    if (byte == '\0') continue;
    (byte == ' ' ? blanks : text) = true;
    // What the field began with matters only where it may have been a qualifier.
    if (text && !wasQualified) return QuotePosition::kPlain;
  }
  if (!text && !blanks) return state;
  if (wasQualified) return QuotePosition::kBehind;
  return state == QuotePosition::kStart ? QuotePosition::kBlank : state;
}

// Whether the unit, or it and those before it, is a delimiter.
inline bool QuoteRewriter::EndsDelimiter(unsigned unit, QuotePosition& position) const {
  if (!longDelimiters_.empty()) {
    position.history = position.history << (wide_ ? 16 : 8) | unit;
    for (const LongDelimiter& delimiter : longDelimiters_) {
      if ((position.history & delimiter.mask) == delimiter.bits) return true;
    }
  }
  return unit < delimits_.size() && delimits_[unit];
}

// Whether the byte belongs to the character that the byte before began.
bool QuoteRewriter::IsTrail(char byte, QuotePosition& position) const {
  const char lead = std::exchange(position.lead, '\0');
  if (lead != '\0') {
    const char pair[] = {lead, byte};
    const embedded::Character character = rules_.page->Decode(pair, sizeof pair);
    // The rest of a longer character comes in pairs too.
    if (character.code == embedded::Character::kIncomplete || character.length == 2) return true;
  }
  if (byte == '\0') return false;
  if (rules_.page->Decode(&byte, 1).code == embedded::Character::kIncomplete) position.lead = byte;
  return false;
}

void QuoteRewriter::StepPreamble(unsigned unit, QuotePosition::Return before,
                                 QuotePosition& position) const {
  const bool isReturn = unit == '\r' || (wide_ && unit == 0x0D00);
  const bool isFeed = unit == '\n' || (wide_ && unit == 0x0A00);
  if (unit == '\n' && before == QuotePosition::kLineReturn) return;
  if (!isReturn && !isFeed) return;
  if (isReturn) position.afterReturn = QuotePosition::kLineReturn;
  if (--position.linesLeft == 0) position.state = QuotePosition::kStart;
}

// A line end that stays in its value.
template <class Sink>
void QuoteRewriter::Join(const char* at, unsigned unit, QuotePosition::Return before,
                         QuotePosition& position, const Sink& sink) const {
  const bool isReturn = unit == '\r';
  if (isReturn || before != QuotePosition::kJoinedReturn) {
    ++position.joinedLines;
    position.longestJoin = std::max(position.longestJoin, ++position.joinedHere);
  }
  ++(isReturn ? position.returns : position.feeds);
  if (isReturn) position.afterReturn = QuotePosition::kJoinedReturn;
  sink.Put(at, isReturn ? standIns_.carriageReturn : standIns_.lineFeed);
}

template <class Sink>
void QuoteRewriter::Step(const char* at, QuotePosition& position, const Sink& sink) const {
  const unsigned unit = UnitAt(at);
  const QuotePosition::Return before =
      std::exchange(position.afterReturn, QuotePosition::kNoReturn);
  State& state = position.state;
  if (state == QuotePosition::kPreamble) return StepPreamble(unit, before, position);
  // In front of a qualifier the backslash has become another one.
  if (state == QuotePosition::kEscape && unit != qualifier_) ++position.removed;
  if (rules_.page != nullptr && IsTrail(*at, position)) {
    if (state == QuotePosition::kEscape) {
      state = QuotePosition::kQualified;
    } else if (state == QuotePosition::kAfter) {
      state = QuotePosition::kBehind;
    } else if (state != QuotePosition::kQualified && state != QuotePosition::kBehind) {
      state = QuotePosition::kPlain;
    }
    return;
  }

  const bool delimits = EndsDelimiter(unit, position);
  if (IsOwnLineEnd(unit)) {
    const bool qualified = state == QuotePosition::kQualified;
    const bool joins = state == QuotePosition::kEscape ||
                       (qualified && (rules_.options.joinQuotedLines ||
                                      (unit == '\n' && before == QuotePosition::kJoinedReturn)));
    if (joins) Join(at, unit, before, position, sink);
    state = joins ? QuotePosition::kQualified : QuotePosition::kStart;
    return;
  }
  if (wide_ && (IsSwappedLineEnd(unit) || unit == kEndUnit)) {
    state = QuotePosition::kStart;
    return;
  }
  if (unit == 0 && state != QuotePosition::kEscape) {
    if (wide_) state = QuotePosition::kCutOff;
    return;
  }

  switch (state) {
    case QuotePosition::kPreamble:
    case QuotePosition::kCutOff:
      return;
    case QuotePosition::kEscape:
      state = QuotePosition::kQualified;
      return;
    case QuotePosition::kQualified:
      if (unit == qualifier_) {
        state = QuotePosition::kAfter;
        position.joinedHere = 0;
      } else if (unit == '\\' && rules_.options.backslashEscapes) {
        ++position.escapes;
        sink.Escape(at);
        state = QuotePosition::kEscape;
      }
      return;
    case QuotePosition::kAfter:
      state = unit == qualifier_ ? QuotePosition::kQualified
              : delimits         ? QuotePosition::kStart
                                 : QuotePosition::kBehind;
      return;
    case QuotePosition::kStart:
    case QuotePosition::kBlank:
      if (unit == qualifier_) {
        state = QuotePosition::kQualified;
      } else if (delimits) {
        state = QuotePosition::kStart;
      } else {
        state = unit == ' ' ? QuotePosition::kBlank : QuotePosition::kPlain;
      }
      return;
    case QuotePosition::kPlain:
    case QuotePosition::kBehind:
      if (unit == qualifier_) {
        ++position.strays;
        const bool kept = state == QuotePosition::kPlain && rules_.options.keepStrayQualifiers;
        if (!kept) state = QuotePosition::kQualified;
      } else if (delimits) {
        state = QuotePosition::kStart;
      }
      return;
  }
}

}  // namespace library
