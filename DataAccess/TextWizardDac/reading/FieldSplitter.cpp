#include "reading/FieldSplitter.h"

#include <algorithm>
#include <bit>

namespace textwizard {
namespace {

// The longest character that is decoded, in bytes.
constexpr std::ptrdiff_t kLongestCharacter = 8;

constexpr bool IsContinuation(char byte) {
  return (static_cast<unsigned char>(byte) & 0xC0) == 0x80;
}

std::string_view Text(const char* begin, const char* end) {
  return {begin, static_cast<std::size_t>(end - begin)};
}

}  // namespace

FieldSplitter::FieldSplitter(const FieldRules& rules, SplitUse use, UndecodableListener* listener)
    : rules_(rules),
      use_(use),
      listener_(listener),
      converter_(QANTMBConverterNew_A(nullptr)),
      utf8_(qUTF8mode()) {
  UseRules();
}

FieldSplitter::~FieldSplitter() { QANTMBConverterDelete_A(converter_); }

FieldSplitter::Kind FieldSplitter::KindOfCharacter(std::uint32_t ch) const {
  if (rules_.IsDelimiter(ch)) return ch == ' ' ? kBlankDelimiter : kDelimiter;
  return rules_.IsQualifier(ch) ? kQualifier : kData;
}

void FieldSplitter::UseRules() {
  spaceOptions_ = rules_.leadingSpaces() || rules_.multipleSpaces();
  blankDelimits_ = rules_.IsDelimiter(' ');
  holdsBlanks_ = blankDelimits_ && (rules_.multipleSpaces() ||
                                    (use_ == SplitUse::kReading && rules_.leadingSpaces()));
  rulesAreAscii_ = rules_.qualifier() < 0x80 &&
                   std::all_of(rules_.delimiters().begin(), rules_.delimiters().end(),
                               [](std::uint32_t ch) { return ch < 0x80; });

  // Asks of every byte whether it is a character by itself. In a multibyte code page a byte that
  // starts a longer character is none.
  kinds_.fill(kData);
  cutting_ = {};
  asciiIsPlain_ = bytesArePlain_ = true;
  for (unsigned byte = 1; byte < 256; ++byte) {
    dropsBlank_[byte] = byte != ' ' && rules_.IsDelimiter(byte);
    const char text[2] = {static_cast<char>(byte), '\0'};
    std::uint32_t ch = 0;
    if (QANTMBU32GetC_A(converter_, &ch, text, 0, 1) != 1) {
      bytesArePlain_ = false;
      if (byte < 0x80) asciiIsPlain_ = false;
      continue;
    }
    kinds_[byte] = KindOfCharacter(ch);
    if (kinds_[byte] == kData) continue;
    if (cutting_.count == ByteSet::kMax) {
      asciiIsPlain_ = bytesArePlain_ = false;
      continue;
    }
    cutting_.bytes[cutting_.count++] = static_cast<std::uint8_t>(byte);
  }
  markCount_ = 0;
  mode_ = Mode::kUnknown;
}

void FieldSplitter::SetRecord(std::string_view record) {
  SetByteRecord(record);
  mode_ = Mode::kUnknown;
}

void FieldSplitter::SetByteRecord(std::string_view record) {
  SetByteText(record);
  SetRecordOfText(record);
}

void FieldSplitter::SetByteText(std::string_view text) {
  text_ = text;
  markCount_ = 0;
}

void FieldSplitter::SetRecordOfText(std::string_view record) {
  begin_ = cursor_ = told_ = record.data();
  end_ = begin_ + record.size();
  mode_ = Mode::kBytes;
}

bool FieldSplitter::CutsByBytes(std::string_view text) const {
  if (!asciiIsPlain_) return false;
  if (bytesArePlain_) return text.find('\0') == std::string_view::npos;
  return IsAscii(text) || (utf8_ && rulesAreAscii_ && IsUtf8(text));
}

FieldSplitter::Mode FieldSplitter::ModeOf(std::string_view record) const {
  if (CutsByBytes(record)) return Mode::kBytes;
  const bool byBytes = utf8_ && asciiIsPlain_ && rulesAreAscii_;
  return byBytes && record.find('\0') == std::string_view::npos ? Mode::kBroken : Mode::kCharacters;
}

bool FieldSplitter::Next(std::string_view& field) {
  if (cursor_ == end_) {
    field = {};
    return false;
  }
  if (mode_ == Mode::kUnknown) mode_ = ModeOf(Text(begin_, end_));
  if (mode_ == Mode::kCharacters) {
    WalkCharacters(field);
  } else if (spaceOptions_ || CutViews(&field, 1) == 0) {
    NextOfBytes(field);
  }
  if (mode_ == Mode::kBroken) TellBroken();
  return true;
}

std::size_t FieldSplitter::Cut(std::string_view* fields, std::size_t count) {
  std::size_t done = 0;
  while (done < count) {
    // Blanks are data or cut like any other delimiter.
    if ((mode_ == Mode::kBytes || mode_ == Mode::kBroken) && !spaceOptions_) {
      done += CutViews(fields + done, count - done);
      if (mode_ == Mode::kBroken) TellBroken();
      if (done == count) break;
    }
    const std::string_view& field = fields[done];
    if (!Next(fields[done++])) {
      std::fill(fields + done, fields + count, std::string_view());
      return count;
    }
    if (field.data() < begin_ || field.data() > end_) break;
  }
  return done;
}

// Cuts fields without a qualifier and fields enclosed in two, at most `count`. Returns how many
// those were: less when the record was used up or the next field has qualifiers elsewhere.
std::size_t FieldSplitter::CutViews(std::string_view* fields, std::size_t count) {
  const char* const end = end_;
  const char* start = cursor_;
  std::string_view* field = fields;
  std::string_view* const last = fields + count;
  while (start != end && field != last) {
    // The word of marks in hand, whose first byte is at `base`; marks that were passed are cleared.
    const std::size_t offset = static_cast<std::size_t>(start - text_.data());
    const char* base = start - offset % 64;
    std::uint64_t marks = MarksAt(offset / 64) & ~std::uint64_t{0} << offset % 64;
    const char* mark = end;
    for (; field != last; ++field) {
      while (marks == 0 && (base += 64) < end) {
        marks = MarksAt(static_cast<std::size_t>(base - text_.data()) / 64);
      }
      // Without a mark the place is beyond the end.
      mark = base + static_cast<std::size_t>(std::countr_zero(marks));
      if (mark >= end || KindOf(*mark) == kQualifier) break;
      *field = Text(start, mark);
      start = mark + 1;
      marks &= marks - 1;
    }
    if (field == last) break;
    if (mark >= end) {
      if (start != end) *field++ = Text(start, end);
      start = end;
    } else if (mark != start) {
      break;
    } else {
      // Most such fields end at the next mark.
      marks &= marks - 1;
      const char* close = marks != 0 ? base + std::countr_zero(marks) : NextMark(start + 1);
      close = std::min(close, end);
      if (close != end && KindOf(*close) != kQualifier) close = NextQualifier(close + 1);
      if (!ClosesField(close)) break;
      start = TakeEnclosed(start, close, *field++);
    }
  }
  cursor_ = start;
  return static_cast<std::size_t>(field - fields);
}

// The field between two qualifiers of which `close` ends it; returns where the next one begins.
inline const char* FieldSplitter::TakeEnclosed(const char* open, const char* close,
                                               std::string_view& field) const {
  field = Text(open + 1, close);
  return end_ - close <= 2 ? end_ : close + 2;
}

void FieldSplitter::MarkFrom(std::size_t word) {
  const std::string_view text = text_.substr(64 * word, 64 * kMarkWords);
  MarkBytes(text, cutting_, marks_.data());
  firstMark_ = word;
  markCount_ = (text.size() + 63) / 64;
}

inline std::uint64_t FieldSplitter::MarksAt(std::size_t word) {
  if (word - firstMark_ >= markCount_) MarkFrom(word);
  return marks_[word - firstMark_];
}

// The first byte at `from` or behind it that can cut; the record's end when there is none.
inline const char* FieldSplitter::NextMark(const char* from) {
  if (from == end_) return end_;
  const auto at = static_cast<std::size_t>(from - text_.data());
  std::size_t word = at / 64;
  const std::uint64_t marks = MarksAt(word) >> (at % 64);
  if (marks != 0) {
    const char* const found = from + std::countr_zero(marks);
    return found < end_ ? found : end_;
  }
  const auto size = static_cast<std::size_t>(end_ - text_.data());
  while (64 * ++word < size) {
    if (const std::uint64_t more = MarksAt(word); more != 0) {
      const char* const found = text_.data() + 64 * word + std::countr_zero(more);
      return found < end_ ? found : end_;
    }
  }
  return end_;
}

const char* FieldSplitter::NextQualifier(const char* from) {
  const char* at = NextMark(from);
  while (at != end_ && KindOf(*at) != kQualifier) at = NextMark(at + 1);
  return at;
}

// The field is a view of the record unless a qualifier stands where bytes have to go.
void FieldSplitter::NextOfBytes(std::string_view& field) {
  const char* const start = cursor_;
  const char* text = start;
  if (holdsBlanks_) {
    while (text != end_ && *text == ' ') ++text;
  }
  const char* const mark = NextMark(text);
  if (mark == end_) {
    field = Text(start, end_);
    cursor_ = end_;
    return Finish(field, true);
  }
  switch (KindOf(*mark)) {
    case kData:
      break;
    case kDelimiter:
      field = Text(start, mark);
      cursor_ = mark + 1;
      return Finish(field, true);
    case kBlankDelimiter: {
      const bool drops = mark != start && DropsBlankBefore(mark + 1);
      // A byte may have a delimiter's number and be another character, which the field takes in.
      if (drops && KindOf(mark[1]) != kDelimiter) break;
      field = Text(start, mark);
      cursor_ = mark + (drops ? 2 : 1);
      return Finish(field, true);
    }
    case kQualifier: {
      if (mark != text || (text != start && !rules_.leadingSpaces())) break;
      const char* const close = NextQualifier(mark + 1);
      if (!ClosesField(close)) break;
      cursor_ = TakeEnclosed(mark, close, field);
      return Finish(field, false);
    }
  }
  // Where qualifiers join pieces, bytes that are no character could look like one.
  if (mode_ == Mode::kBroken) return WalkCharacters(field);
  WalkBytes(field);
}

std::size_t FieldSplitter::ByteCharacterLength(char lead) const {
  const auto byte = static_cast<unsigned char>(lead);
  if (!utf8_ || byte < 0xC0) return 1;
  return byte < 0xE0 ? 2 : byte < 0xF0 ? 3 : 4;
}

void FieldSplitter::RemoveLastByteCharacter() {
  while (utf8_ && buffer_.size() > 1 && IsContinuation(buffer_.back())) buffer_.pop_back();
  buffer_.pop_back();
}

void FieldSplitter::WalkBytes(std::string_view& field) {
  buffer_.clear();
  State state = State::kStart;
  const char* at = cursor_;
  bool ended = false;
  while (at != end_ && !ended) {
    switch (state) {
      case State::kStart: {
        const char* const first = at;
        if (holdsBlanks_) {
          while (at != end_ && *at == ' ') ++at;
        }
        buffer_.append(first, at);
        if (at == end_) break;
        const Kind kind = KindOf(*at);
        ended = kind >= kDelimiter;
        state = kind == kQualifier ? State::kQualified : State::kPlain;
        if (kind != kData) ++at;
        break;
      }
      case State::kPlain: {
        const char* const mark = NextMark(at);
        buffer_.append(at, mark);
        if (mark == end_) {
          at = end_;
          break;
        }
        at = mark + 1;
        if (KindOf(*mark) == kQualifier) {
          if (!buffer_.empty() && buffer_.front() == ' ') RemoveLastByteCharacter();
          state = State::kQualified;
        } else {
          ended = KindOf(*mark) == kDelimiter || !DropsBlankBefore(at);
        }
        break;
      }
      case State::kQualified: {
        const char* const close = NextQualifier(at);
        buffer_.append(at, close);
        at = close == end_ ? end_ : close + 1;
        state = State::kAfterQualifier;
        break;
      }
      case State::kAfterQualifier:
        switch (KindOf(*at)) {
          case kQualifier:
            buffer_.push_back(*at++);
            state = State::kQualified;
            break;
          case kDelimiter:
          case kBlankDelimiter:
            ++at;
            ended = true;
            break;
          case kData:
            at += ByteCharacterLength(*at);
            state = State::kPlain;
            break;
        }
        break;
    }
  }
  cursor_ = at;
  field = buffer_;
  Finish(field, false);
}

// Decodes the character at `at` and returns its length. A byte that is no character is taken as one
// and joins `run`; when it does not follow it, the run is told first.
int FieldSplitter::Decode(const char* at, std::uint32_t* ch, UndecodableRun* run) {
  const auto limit = static_cast<int>(std::min(end_ - at, kLongestCharacter));
  const int length = QANTMBU32GetC_A(converter_, ch, at, 0, limit);
  if (length > 0) return length;
  *ch = static_cast<unsigned char>(*at);
  const auto position = static_cast<std::size_t>(at - begin_);
  if (position != run->position + run->count) Tell(run);
  if (run->count == 0) run->position = position;
  ++run->count;
  return 1;
}

void FieldSplitter::Tell(UndecodableRun* run) {
  if (listener_ && run->count != 0) listener_->OnUndecodable(*run);
  run->count = 0;
}

void FieldSplitter::TellBroken() {
  if (!listener_) return;
  // The cut ends behind an ASCII character or with the record.
  const std::string_view cut = Text(begin_, cursor_);
  auto from = static_cast<std::size_t>(told_ - begin_);
  told_ = cursor_;
  for (;;) {
    const UndecodableRun run = FindUndecodable(cut, from);
    if (run.count == 0) return;
    listener_->OnUndecodable(run);
    from = run.position + run.count;
  }
}

void FieldSplitter::WalkCharacters(std::string_view& field) {
  buffer_.clear();
  lengths_.clear();
  UndecodableRun run;
  State state = State::kStart;
  const char* at = cursor_;
  bool ended = false;
  while (at != end_ && !ended) {
    std::uint32_t ch = 0;
    const int length = Decode(at, &ch, &run);
    const Kind kind = KindOfCharacter(ch);
    const char* const next = at + length;
    bool append = false;
    switch (state) {
      case State::kStart:
        if (ch == ' ' && holdsBlanks_) {
          append = true;
        } else if (kind >= kDelimiter) {
          ended = true;
        } else if (kind == kQualifier) {
          state = State::kQualified;
        } else {
          append = true;
          state = State::kPlain;
        }
        break;
      case State::kPlain:
        if (kind == kBlankDelimiter) {
          ended = !DropsBlankBefore(next);
        } else if (kind == kDelimiter) {
          ended = true;
        } else if (kind == kQualifier) {
          if (!buffer_.empty() && buffer_.front() == ' ') {
            buffer_.resize(buffer_.size() - static_cast<std::size_t>(lengths_.back()));
            lengths_.pop_back();
          }
          state = State::kQualified;
        } else {
          append = true;
        }
        break;
      case State::kQualified:
        if (kind == kQualifier) {
          state = State::kAfterQualifier;
        } else {
          append = true;
        }
        break;
      case State::kAfterQualifier:
        if (kind == kQualifier) {
          append = true;
          state = State::kQualified;
        } else if (kind >= kDelimiter) {
          ended = true;
        } else {
          state = State::kPlain;
        }
        break;
    }
    if (append) {
      buffer_.append(at, next);
      if (buffer_.front() == ' ') lengths_.push_back(static_cast<char>(length));
    }
    at = next;
  }
  Tell(&run);
  cursor_ = told_ = at;
  field = buffer_;
  Finish(field, false);
}

void FieldSplitter::Finish(std::string_view& field, bool unqualified) {
  if (rules_.leadingSpaces()) {
    field.remove_prefix(std::min(field.find_first_not_of(' '), field.size()));
  }
  if (!rules_.multipleSpaces() || !blankDelimits_) return;
  while (field.size() > 1 && field[0] == ' ' && field[1] == ' ') field.remove_prefix(1);
  if (unqualified) return;
  const std::size_t twoBlanks = field.find("  ");
  if (twoBlanks == std::string_view::npos) return;
  // A view of buffer_ is squeezed where it lies.
  const bool own = !buffer_.empty() && field.data() >= buffer_.data() &&
                   field.data() < buffer_.data() + buffer_.size();
  if (!own) {
    buffer_.assign(field);
  } else {
    buffer_.erase(0, static_cast<std::size_t>(field.data() - buffer_.data()));
  }
  const auto blanks = [](char left, char right) { return left == ' ' && right == ' '; };
  buffer_.erase(std::unique(buffer_.begin(), buffer_.end(), blanks), buffer_.end());
  field = buffer_;
}

}  // namespace textwizard
