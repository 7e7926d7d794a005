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

bool IsBlankText(std::string_view text) {
  return text.find_first_not_of(' ') == std::string_view::npos;
}

}  // namespace

FieldSplitter::FieldSplitter(const FieldRules& rules, SplitUse use, UndecodableListener* listener)
    : rules_(rules),
      use_(use),
      listener_(listener),
      converter_(QANTMBConverterNew_A(nullptr)),
      kinds_(rules) {
  UseRules();
}

FieldSplitter::~FieldSplitter() = default;

void FieldSplitter::UseRules() {
  spaceOptions_ = rules_.leadingSpaces() || rules_.multipleSpaces();
  blankDelimits_ = rules_.IsDelimiter(' ');
  holdsBlanks_ = blankDelimits_ && (rules_.multipleSpaces() ||
                                    (use_ == SplitUse::kReading && rules_.leadingSpaces()));
  kinds_.UseRules(converter_.get());
  dropsBlanks_ = holdsBlanks_ && rules_.leadingSpaces();
  text_.SetBytes(kinds_.cutting());
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

void FieldSplitter::SetByteText(std::string_view text) { text_.SetText(text); }

void FieldSplitter::SetRecordOfText(std::string_view record) {
  begin_ = cursor_ = told_ = record.data();
  end_ = begin_ + record.size();
  mode_ = Mode::kBytes;
}

FieldSplitter::Mode FieldSplitter::ModeOf(std::string_view record) const {
  if (CutsByBytes(record)) return Mode::kBytes;
  return kinds_.CutsBrokenTextByBytes(record) ? Mode::kBroken : Mode::kCharacters;
}

bool FieldSplitter::Next(std::string_view& field) {
  if (cursor_ == end_) {
    field = {};
    return false;
  }
  if (mode_ != Mode::kBytes) [[unlikely]] {
    NextOfOther(field);
  } else if (spaceOptions_ || CutViews(&field, 1) == 0) {
    NextOfBytes(field);
  }
  return true;
}

// Of a record that was not cut yet, or is not cut by bytes alone.
void FieldSplitter::NextOfOther(std::string_view& field) {
  if (mode_ == Mode::kUnknown) mode_ = ModeOf(Text(begin_, end_));
  if (mode_ == Mode::kCharacters) return Walk<DecodedCharacters>(field);
  if (spaceOptions_ || CutViews(&field, 1) == 0) NextOfBytes(field);
  if (mode_ == Mode::kBroken) TellBroken();
}

std::size_t FieldSplitter::Cut(std::string_view* fields, std::size_t count) {
  if (mode_ == Mode::kUnknown && cursor_ != end_) mode_ = ModeOf(Text(begin_, end_));
  // Blanks are data or cut like any other delimiter.
  const bool cutsViews = !spaceOptions_ && mode_ != Mode::kCharacters;
  std::size_t done = 0;
  while (done < count) {
    if (cutsViews) {
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
    const std::size_t offset = static_cast<std::size_t>(start - text_.begin());
    const char* base = start - offset % 64;
    std::uint64_t marks = text_.MarksAt(offset / 64) & ~std::uint64_t{0} << offset % 64;
    const char* mark = end;
    for (; field != last; ++field) {
      while (marks == 0 && (base += 64) < end) {
        marks = text_.MarksAt(static_cast<std::size_t>(base - text_.begin()) / 64);
      }
      // Without a mark the place is beyond the end.
      mark = base + static_cast<std::size_t>(std::countr_zero(marks));
      if (mark >= end || kinds_.OfByte(*mark) == Kind::kQualifier) break;
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
      if (close != end && kinds_.OfByte(*close) != Kind::kQualifier)
        close = NextQualifier(close + 1);
      if (!ClosesField(close)) break;
      start = TakeEnclosed(start, close, *field++);
    }
  }
  cursor_ = start;
  return static_cast<std::size_t>(field - fields);
}

// The field between two qualifiers of which `close` ends it; returns where the next one begins.
inline const char* FieldSplitter::TakeEnclosed(const char* open, const char* close,
                                               std::string_view& field) {
  field = Text(open + 1, close);
  if (end_ - close > 2) return close + 2;
  if (close == end_) quotes_ |= kOpenQuote | kInsideQuote;
  return end_;
}

const char* FieldSplitter::NextQualifier(const char* from) {
  const char* at = NextMark(from);
  while (at != end_ && kinds_.OfByte(*at) != Kind::kQualifier) at = NextMark(at + 1);
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
  delimited_ = mark != end_;
  // Unqualified, up to the mark.
  const auto take = [&] {
    if (dropsBlanks_) {
      field = Text(text, mark);
    } else {
      field = Text(start, mark);
      Finish(field, true);
    }
  };
  if (mark == end_) {
    cursor_ = end_;
    return take();
  }
  switch (kinds_.OfByte(*mark)) {
    case Kind::kData:
      break;
    case Kind::kDelimiter:
      cursor_ = mark + 1;
      return take();
    case Kind::kBlankDelimiter: {
      const bool drops = mark != start && DropsBlankBefore(mark + 1);
      // A byte may have a delimiter's number and be another character, which the field takes in.
      if (drops && kinds_.OfByte(mark[1]) != Kind::kDelimiter) break;
      cursor_ = mark + (drops ? 2 : 1);
      return take();
    }
    case Kind::kQualifier: {
      if (mark != text || (text != start && !rules_.leadingSpaces())) break;
      const char* const close = NextQualifier(mark + 1);
      if (!ClosesField(close)) break;
      cursor_ = TakeEnclosed(mark, close, field);
      delimited_ = end_ - close > 1;
      return Finish(field, false);
    }
  }
  // Where qualifiers join pieces, bytes that are no character could look like one.
  if (mode_ == Mode::kBroken) return Walk<DecodedCharacters>(field);
  Walk<ByteCharacters>(field);
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

// Characters for Walk. Both kinds have a current one until AtEnd(), and kind() tells what it does.
// The rest passes characters, into the field or not: Mark one that is not kData, Data one
// that is; End is called behind the field's last one.

// Bytes that are characters by themselves where they can cut: runs are passed from mark to mark.
class FieldSplitter::ByteCharacters {
 public:
  explicit ByteCharacters(FieldSplitter& splitter)
      : splitter_(splitter), at_(splitter.cursor_), end_(splitter.end_) {}

  const char* at() const { return at_; }
  bool AtEnd() const { return at_ == end_; }
  void End() {}
  Kind kind() const { return splitter_.kinds_.OfByte(*at_); }
  bool IsBlank() const { return *at_ == ' '; }
  void SkipMark() { ++at_; }
  void SkipData() {
    const auto byte = static_cast<unsigned char>(*at_);
    at_ += !splitter_.kinds_.utf8() || byte < 0xC0 ? 1 : byte < 0xE0 ? 2 : byte < 0xF0 ? 3 : 4;
  }
  void AppendBlank() { splitter_.buffer_.push_back(*at_++); }
  void AppendMark() { splitter_.buffer_.push_back(*at_++); }
  // All up to the next mark.
  void AppendData() { AppendTo(splitter_.NextMark(at_)); }
  void AppendToQualifier() { AppendTo(splitter_.NextQualifier(at_)); }
  // Takes the field's last one out again, which begins with a blank.
  void RemoveLast() {
    std::string& field = splitter_.buffer_;
    while (splitter_.kinds_.utf8() && field.size() > 1 && IsContinuation(field.back()))
      field.pop_back();
    field.pop_back();
  }

 private:
  void AppendTo(const char* end) {
    splitter_.buffer_.append(at_, end);
    at_ = end;
  }

  FieldSplitter& splitter_;
  const char* at_;
  const char* const end_;
};

// Characters that the host decodes, each when it is first asked about. A byte that is no character
// is taken as one; the listener is told of runs of them, at the end of the last.
class FieldSplitter::DecodedCharacters {
 public:
  explicit DecodedCharacters(FieldSplitter& splitter) : splitter_(splitter), at_(splitter.cursor_) {
    splitter.lengths_.clear();
  }

  const char* at() const { return at_; }
  bool AtEnd() const { return at_ == splitter_.end_; }
  void End() {
    Tell();
    splitter_.told_ = at_;
  }
  Kind kind() { return splitter_.kinds_.Of(Character()); }
  bool IsBlank() { return Character() == ' '; }
  void SkipMark() { Skip(); }
  void SkipData() { Skip(); }
  void AppendBlank() { Append(); }
  void AppendMark() { Append(); }
  void AppendData() {
    while (!AtEnd() && kind() == Kind::kData) Append();
  }
  void AppendToQualifier() {
    while (!AtEnd() && kind() != Kind::kQualifier) Append();
  }
  void RemoveLast() {
    std::string& field = splitter_.buffer_;
    field.resize(field.size() - static_cast<std::size_t>(splitter_.lengths_.back()));
    splitter_.lengths_.pop_back();
  }

 private:
  std::uint32_t Character() {
    if (length_ == 0) Decode();
    return ch_;
  }
  void Decode() {
    const auto limit = static_cast<int>(std::min(splitter_.end_ - at_, kLongestCharacter));
    length_ = QANTMBU32GetC_A(splitter_.converter_.get(), &ch_, at_, 0, limit);
    if (length_ > 0) return;
    ch_ = static_cast<unsigned char>(*at_);
    length_ = 1;
    const auto position = static_cast<std::size_t>(at_ - splitter_.begin_);
    if (position != run_.position + run_.count) Tell();
    if (run_.count == 0) run_.position = position;
    ++run_.count;
  }
  void Tell() {
    if (splitter_.listener_ && run_.count != 0) splitter_.listener_->OnUndecodable(run_);
    run_.count = 0;
  }
  void Skip() {
    Character();
    at_ += length_;
    length_ = 0;
  }
  void Append() {
    Character();
    splitter_.buffer_.append(at_, static_cast<std::size_t>(length_));
    // Needed only by RemoveLast.
    if (splitter_.buffer_.front() == ' ') splitter_.lengths_.push_back(static_cast<char>(length_));
    Skip();
  }

  FieldSplitter& splitter_;
  const char* at_;
  std::uint32_t ch_ = 0;
  // Of the current character; 0 until it is decoded.
  int length_ = 0;
  // Of bytes that are no character, up to the current one; not told of yet.
  UndecodableRun run_;
};

template <class Characters>
void FieldSplitter::Walk(std::string_view& field) {
  buffer_.clear();
  Characters text(*this);
  State state = State::kStart;
  bool ended = false;
  // The field begins with a qualifier, blanks before it aside.
  bool qualified = false;
  while (!ended && !text.AtEnd()) {
    switch (state) {
      case State::kStart:
        if (holdsBlanks_ && text.IsBlank()) {
          text.AppendBlank();
          break;
        }
        state = State::kPlain;
        switch (text.kind()) {
          case Kind::kData:
            break;
          case Kind::kQualifier:
            text.SkipMark();
            qualified = true;
            state = State::kQualified;
            break;
          case Kind::kDelimiter:
          case Kind::kBlankDelimiter:
            text.SkipMark();
            ended = true;
            break;
        }
        break;
      case State::kPlain: {
        const std::size_t behind = buffer_.size();
        text.AppendData();
        // Behind a closing qualifier.
        if (qualified && !IsBlankText(std::string_view(buffer_).substr(behind))) {
          quotes_ |= kStrayQuote;
        }
        if (text.AtEnd()) break;
        switch (text.kind()) {
          case Kind::kData:
            break;
          case Kind::kQualifier:
            if (KeepsQualifier(qualified)) {
              text.AppendMark();
              break;
            }
            if (!buffer_.empty() && buffer_.front() == ' ') text.RemoveLast();
            text.SkipMark();
            state = State::kQualified;
            break;
          case Kind::kDelimiter:
            text.SkipMark();
            ended = true;
            break;
          case Kind::kBlankDelimiter:
            text.SkipMark();
            ended = !DropsBlankBefore(text.at());
            break;
        }
        break;
      }
      case State::kQualified:
        text.AppendToQualifier();
        if (text.AtEnd()) break;
        text.SkipMark();
        state = State::kAfterQualifier;
        break;
      case State::kAfterQualifier:
        switch (text.kind()) {
          case Kind::kData:
            if (qualified && !text.IsBlank()) quotes_ |= kStrayQuote;
            text.SkipData();
            state = State::kPlain;
            break;
          case Kind::kQualifier:
            text.AppendMark();
            state = State::kQualified;
            break;
          case Kind::kDelimiter:
          case Kind::kBlankDelimiter:
            text.SkipMark();
            ended = true;
            break;
        }
        break;
    }
  }
  text.End();
  cursor_ = text.at();
  delimited_ = ended;
  if (!ended && state == State::kQualified) {
    quotes_ |= kInsideQuote | (qualified ? unsigned{kOpenQuote} : 0U);
  }
  field = buffer_;
  Finish(field, false);
}

bool FieldSplitter::KeepsQualifier(bool& qualified) {
  const bool opens = !qualified && IsBlankText(buffer_);
  if (!opens && !qualified && rules_.keepsStrayQualifiers()) return true;
  if (!opens) quotes_ |= kStrayQuote;
  qualified = qualified || opens;
  return false;
}

bool FieldSplitter::RestIsEmpty() const {
  for (const char* at = cursor_; at != end_;) {
    std::uint32_t ch = 0;
    const auto limit = static_cast<int>(std::min(end_ - at, kLongestCharacter));
    const int length = QANTMBU32GetC_A(converter_.get(), &ch, at, 0, limit);
    if (length <= 0) ch = static_cast<unsigned char>(*at);
    if (ch != ' ' && !rules_.IsDelimiter(ch)) return false;
    at += std::max(length, 1);
  }
  return true;
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
