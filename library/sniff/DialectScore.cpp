#include "library/sniff/DialectScore.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <functional>
#include <map>
#include <optional>
#include <unordered_map>

#include "detection/BlankTrim.h"
#include "library/sniff/SampleRecords.h"

namespace library {
namespace {

// Bits of a character of text. A digit among letters surprises more than one among digits, and
// punctuation most.
constexpr double kLetterBits = 4.5;
constexpr double kDigitBits = 5.0;
constexpr double kBlankBits = 3.5;
constexpr double kPunctuationBits = 7.0;
constexpr double kOtherCharacterBits = 6.0;
// Where a text ends, and where a number does.
constexpr double kTextEndBits = 4.0;
constexpr double kNumberEndBits = 2.0;
// A digit, sign or point of a number; a digit of a date.
constexpr double kNumberCharacterBits = 3.3;
constexpr double kDateDigitBits = 2.5;
constexpr double kDateBits = 3.0;
constexpr double kMissingBits = 2.0;
// A blank beside a number, a date or a time.
constexpr double kPaddingBits = 0.5;
// What begins a web address or a path is one sign, not three.
constexpr double kSchemeBits = 4.0;
constexpr std::size_t kLongestScheme = 12;
// A record that is not as wide as most, and one that is no more than a line of text.
constexpr double kOtherWidthBits = 8.0;
// The more records of other widths, the less does any width mean.
constexpr double kRaggedBits = 30.0;
constexpr double kLoneTextBits = 4.0;
// What cuts most files, in a file that nothing cuts.
constexpr double kUncutBits = 3.0;
// A record with tabs that are data, where every record has as many: they cut.
constexpr double kTabsBits = 20.0;
// A date or a time that is cut up; and each record that is cut by what rarely cuts.
constexpr double kCutTimeBits = 10.0;
constexpr double kUnusualBits = 6.0;
// Every column there is, and every kind of value in it.
constexpr double kColumnBits = 2.0;
constexpr double kVoidColumnBits = 8.0;
constexpr double kKindBits = 2.0;
// Qualifiers: a doubled or escaped one, one with text behind it, one that nothing
// closes.
constexpr double kDoubledBits = 2.0;
// Saved by every field that qualifiers enclose, where none does anything else.
constexpr double kEnclosedBits = 1.5;
constexpr double kBehindBits = 20.0;
constexpr double kHalfQuotedBits = 20.0;
// A bracket that is opened and not closed in a field, or closed and not opened.
constexpr double kHalfBracketBits = 8.0;
constexpr double kUnclosedBits = 60.0;
constexpr double kUnfitBits = 200.0;
// Two words side by side with a blank between them are most often one text.
constexpr double kWordBits = 8.0;
// A fixed arrangement, and each place where it cuts.
constexpr double kFixedBits = 12.0;
constexpr double kFixedColumnBits = 6.0;
// Columns that are told apart; what lies to the right of them counts as one.
constexpr std::size_t kMostColumns = 1000;
// Texts that are remembered of a column.
constexpr std::size_t kMostRepeated = 64;
// A text that was there before costs at least this share of what it cost then.
constexpr double kRepeatedShare = 0.5;

bool IsAsciiLetter(unsigned char byte) {
  return (byte >= 'a' && byte <= 'z') || (byte >= 'A' && byte <= 'Z');
}

std::array<float, 256> TextBits() {
  std::array<float, 256> bits{};
  for (unsigned byte = 0; byte < 256; ++byte) {
    const auto ch = static_cast<unsigned char>(byte);
    double cost = kPunctuationBits;
    if (IsAsciiLetter(ch) || ch == '_') {
      cost = kLetterBits;
    } else if (ch >= '0' && ch <= '9') {
      cost = kDigitBits;
    } else if (ch == ' ') {
      cost = kBlankBits;
    } else if (ch >= 0x80) {
      cost = ch < 0xC0 ? 0.0 : kOtherCharacterBits;
    }
    bits[byte] = static_cast<float>(cost);
  }
  return bits;
}

double BitsOfText(std::string_view text, bool qualified) {
  static const std::array<float, 256> kBits = TextBits();
  double bits = kTextEndBits;
  // A field is cut wrongly where it begins with a quote and does not end with one, or ends with
  // one.
  if (!qualified && text.starts_with('"') != text.ends_with('"')) bits += kHalfQuotedBits;
  int open = 0;
  bool halfBracket = false;
  for (const char byte : text) {
    open += byte == '(' || byte == '[' || byte == '{' ? 1 : 0;
    open -= byte == ')' || byte == ']' || byte == '}' ? 1 : 0;
    halfBracket |= open < 0;
  }
  if (halfBracket || open != 0) bits += kHalfBracketBits;
  if (const std::size_t scheme = text.find("://");
      scheme < kLongestScheme &&
      std::all_of(text.begin(), text.begin() + static_cast<std::ptrdiff_t>(scheme),
                  IsAsciiLetter)) {
    bits += kSchemeBits;
    text.remove_prefix(scheme + 3);
  } else if (text.size() > 2 && text[1] == ':' && (text[2] == '\\' || text[2] == '/')) {
    bits += kSchemeBits;
    text.remove_prefix(3);
  }
  for (const char byte : text) bits += kBits[static_cast<unsigned char>(byte)];
  return bits;
}

double BitsOfValue(CellKind kind, std::string_view text, bool qualified) {
  if (kind >= CellKind::kNumber && kind <= CellKind::kTime) {
    const std::string_view value = textwizard::TrimRight(textwizard::TrimLeft(text));
    if (value.size() != text.size()) {
      return kPaddingBits * static_cast<double>(text.size() - value.size()) +
             BitsOfValue(kind, value, qualified);
    }
  }
  switch (kind) {
    case CellKind::kEmpty:
      return 0.5 * static_cast<double>(text.size());
    case CellKind::kMissing:
      return kMissingBits;
    case CellKind::kNumber:
    case CellKind::kCommaNumber:
    case CellKind::kAmount:
      return kNumberEndBits + kNumberCharacterBits * static_cast<double>(text.size());
    case CellKind::kDate:
    case CellKind::kTime:
      return kDateBits + kDateDigitBits * static_cast<double>(text.size());
    case CellKind::kText:
      break;
  }
  return BitsOfText(text, qualified);
}

// -log2 of the share, for every one of `count`.
double EntropyBits(double count, double total) {
  return count > 0 ? -count * std::log2(count / total) : 0.0;
}

// What the values of one column cost.
class Column {
 public:
  void Add(std::string_view text, bool qualified, CellKind kind) {
    ++kinds_[static_cast<std::size_t>(kind)];
    qualified_ += qualified ? 1 : 0;
    double bits = BitsOfValue(kind, text, qualified);
    if (kind >= CellKind::kNumber) {
      const std::size_t hash = std::hash<std::string_view>()(text);
      const auto seen = std::find(repeated_.begin(), repeated_.end(), hash);
      if (seen != repeated_.end()) {
        const double place = 1.0 + std::log2(static_cast<double>(repeated_.size()) + 1.0);
        bits = std::max(kRepeatedShare * bits, std::min(bits, place));
      } else if (repeated_.size() < kMostRepeated) {
        repeated_.push_back(hash);
      }
    }
    bits_ += bits;
  }

  double Bits() const {
    double total = 0;
    for (const std::int64_t count : kinds_) total += static_cast<double>(count);
    double bits = bits_ + kColumnBits;
    // Nobody makes a column for nothing.
    if (static_cast<double>(kinds_[0]) == total) bits += kVoidColumnBits;
    for (const std::int64_t count : kinds_) {
      bits += EntropyBits(static_cast<double>(count), total) + (count > 0 ? kKindBits : 0.0);
    }
    const auto qualified = static_cast<double>(qualified_);
    return bits + EntropyBits(qualified, total) + EntropyBits(total - qualified, total);
  }

 private:
  std::array<std::int64_t, kCellKinds> kinds_{};
  std::int64_t qualified_ = 0;
  double bits_ = 0.0;
  std::vector<std::size_t> repeated_;
};

bool IsDigit(char byte) { return byte >= '0' && byte <= '9'; }

bool IsWord(std::string_view text) { return std::none_of(text.begin(), text.end(), IsDigit); }

// Hours and minutes, or minutes and seconds, with the colon between them gone.
bool IsClock(std::string_view left, std::string_view right) {
  return !left.empty() && IsDigit(left.back()) && right.size() >= 2 && right[0] >= '0' &&
         right[0] <= '5' && IsDigit(right[1]) && (right.size() == 2 || !IsDigit(right[2]));
}

// How rare a dialect is, in bits.
double RarityBits(const Dialect& dialect) {
  if (dialect.fixed())
    return kFixedBits + kFixedColumnBits * static_cast<double>(dialect.columns.size());
  double bits = 0.0;
  const std::string& delimiter = dialect.delimiter;
  if (delimiter.empty()) {
    bits = 4.0;
  } else if (delimiter.size() > 1) {
    bits = 14.0;
  } else {
    switch (delimiter[0]) {
      case ',':
        bits = 1.0;
        break;
      case '\t':
      case ';':
        bits = 2.0;
        break;
      case '|':
        bits = 3.0;
        break;
      case ' ':
        bits = dialect.multipleBlanks ? 9.0 : 10.0;
        break;
      case '\x1F':
        bits = 4.0;
        break;
      case '^':
      case '~':
        bits = 14.0;
        break;
      case ':':
        bits = 16.0;
        break;
      case '#':
        bits = 25.0;
        break;
      default:
        bits = 25.0;
    }
  }
  if (dialect.qualifier.empty()) {
    bits += 1.0;
  } else if (dialect.qualifier != "\"") {
    bits += 8.0;
  }
  if (dialect.escape == Escape::kBackslash) bits += 4.0;
  return bits;
}

}  // namespace

DialectScore CountQuotes(const std::vector<std::string_view>& lines, std::size_t count,
                         const Dialect& dialect) {
  DialectScore score;
  const SampleRecords joined = JoinRecords(lines, count, dialect);
  RecordCutter cutter(dialect);
  std::vector<RecordCutter::Field> fields;
  for (const SampleRecord& record : joined.records) {
    if (record.text.find(dialect.qualifier) != std::string_view::npos) {
      cutter.Cut(record.text, &fields);
    }
  }
  score.records = joined.records.size();
  score.quotes = cutter.quotes();
  score.unclosed = joined.unclosed;
  score.escapes = joined.escapes;
  score.strays = joined.strays;
  return score;
}

DialectScore ScoreDialect(const std::vector<std::string_view>& lines, std::size_t count,
                          const Dialect& dialect, CellKinds& kinds) {
  DialectScore score;
  const SampleRecords joined = JoinRecords(lines, count, dialect);
  RecordCutter cutter(dialect);
  std::vector<RecordCutter::Field> fields;
  std::vector<Column> columns;
  std::map<std::size_t, std::size_t> widths;
  double bits = RarityBits(dialect);
  const bool blanks = dialect.delimiter == " ";
  const bool colons = dialect.delimiter == ":";
  const bool unusual = dialect.delimiter.size() == 1 &&
                       std::string_view("!*`").find(dialect.delimiter[0]) != std::string_view::npos;
  const bool uncut = dialect.delimiter.empty() && !dialect.fixed();
  std::optional<std::ptrdiff_t> tabs;
  bool evenTabs = dialect.delimiter != "\t" && !dialect.fixed();
  for (const SampleRecord& record : joined.records) {
    score.unfit += cutter.Cut(record.text, &fields);
    if (evenTabs) {
      const auto here = std::count(record.text.begin(), record.text.end(), '\t');
      evenTabs = here > 0 && here == tabs.value_or(here);
      tabs = here;
    }
    ++widths[fields.size()];
    if (uncut && record.text.find_first_of(",;\t|") != std::string_view::npos) bits += kUncutBits;
    if (fields.size() > 1) {
      if (unusual) bits += kUnusualBits;
      // A comma may stand before a fraction of a second, and as well between two values.
      const CellKind whole = dialect.delimiter == "," ? CellKind::kText : kinds.Of(record.text);
      if (whole == CellKind::kDate || whole == CellKind::kTime) bits += kCutTimeBits;
    }
    bool afterWord = false;
    for (std::size_t i = 0; i < fields.size(); ++i) {
      const std::size_t column = std::min(i, kMostColumns);
      if (column == columns.size()) columns.emplace_back();
      // The blanks that fill a fixed column are no part of its value.
      const std::string_view text =
          dialect.fixed() ? textwizard::TrimRight(textwizard::TrimLeft(fields[i].text))
                          : fields[i].text;
      const CellKind kind = kinds.Of(text);
      columns[column].Add(text, fields[i].qualified, kind);
      const bool isWord = kind == CellKind::kText && !fields[i].qualified && IsWord(text);
      if (blanks && isWord && afterWord) bits += kWordBits;
      afterWord = isWord;
      if (colons && i > 0 && IsClock(fields[i - 1].text, text)) bits += kCutTimeBits;
    }
  }
  score.records = joined.records.size();
  if (evenTabs) bits += kTabsBits * static_cast<double>(score.records);
  for (const auto& [width, records] : widths) {
    if (records > score.modalRecords || (records == score.modalRecords && width > 1)) {
      score.modalWidth = width;
      score.modalRecords = records;
    }
  }
  const auto all = static_cast<double>(score.records);
  const auto lone = widths.find(1);
  const double ragged =
      all - static_cast<double>(score.modalRecords) -
      (lone == widths.end() || score.modalWidth == 1 ? 0.0 : static_cast<double>(lone->second));
  for (const auto& [width, records] : widths) {
    const auto number = static_cast<double>(records);
    bits += EntropyBits(number, all);
    if (width != score.modalWidth) {
      bits += number * (width == 1 ? kLoneTextBits : kOtherWidthBits + kRaggedBits * ragged / all);
    }
  }
  for (const Column& column : columns) bits += column.Bits();
  score.quotes = cutter.quotes();
  score.unclosed = joined.unclosed;
  score.escapes = joined.escapes;
  score.strays = joined.strays;
  if (score.quotes.behind == 0 && score.unclosed == 0) {
    bits -= kEnclosedBits * static_cast<double>(score.quotes.qualified);
  }
  bits += kDoubledBits * static_cast<double>(score.quotes.doubled) +
          kBehindBits * static_cast<double>(score.quotes.behind) +
          kUnclosedBits * static_cast<double>(score.unclosed) +
          kUnfitBits * static_cast<double>(score.unfit);
  score.bits = bits;
  return score;
}

}  // namespace library
