#include "cli/terminal/VisibleText.h"

#include <algorithm>
#include <cstdint>
#include <memory>

#include <fmt/format.h>
#include <unicode/uchar.h>

#include "HostFramework/Text.h"

namespace cli {
namespace {

constexpr char kReplacement[] = "\xEF\xBF\xBD";
constexpr char kEllipsis[] = "\xE2\x80\xA6";
constexpr std::uint32_t kReplacementCode = 0xFFFD;
constexpr std::uint32_t kFirstNonAscii = 0x80;

// Control and format characters, and others that are not seen: a terminal obeys or hides them.
bool IsInvisible(std::uint32_t code) {
  const auto character = static_cast<UChar32>(code);
  switch (u_charType(character)) {
    case U_CONTROL_CHAR:
    case U_LINE_SEPARATOR:
    case U_PARAGRAPH_SEPARATOR:
      return true;
    case U_FORMAT_CHAR:
      // Some signs that stand under the digits behind them count as format characters.
      return !u_hasBinaryProperty(character, UCHAR_PREPENDED_CONCATENATION_MARK);
    case U_NON_SPACING_MARK:
      return false;
    default:
      return u_hasBinaryProperty(character, UCHAR_DEFAULT_IGNORABLE_CODE_POINT) != 0;
  }
}

// Vowels and final consonants of Korean that are written into the syllable before them.
bool JoinsSyllable(UChar32 character) {
  const int type = u_getIntPropertyValue(character, UCHAR_HANGUL_SYLLABLE_TYPE);
  return type == U_HST_VOWEL_JAMO || type == U_HST_TRAILING_JAMO;
}

bool IsWide(UChar32 character) {
  const int width = u_getIntPropertyValue(character, UCHAR_EAST_ASIAN_WIDTH);
  return width == U_EA_WIDE || width == U_EA_FULLWIDTH;
}

// Adds up the columns of visible characters, of which some change what stands before them. Where
// terminals differ, as they do with emoji of several characters, the larger number counts: a line
// must not be wider than its terminal.
class ColumnCount {
 public:
  // True when the character stands for itself and not with the one before it.
  bool Add(std::uint32_t code) {
    if (code >= kFirstNonAscii) return AddOther(static_cast<UChar32>(code));
    ++columns_;
    last_ = static_cast<UChar32>(code);
    lastIsWide_ = false;
    return true;
  }
  std::size_t columns() const { return columns_; }

 private:
  bool AddOther(UChar32 character) {
    if (character == kEmojiPresentation) {
      // A sign that is also an emoji is shown as one.
      if (!lastIsWide_ && u_hasBinaryProperty(last_, UCHAR_EMOJI)) ++columns_;
      lastIsWide_ = true;
      return false;
    }
    const auto type = u_charType(character);
    if (type == U_NON_SPACING_MARK || type == U_ENCLOSING_MARK || JoinsSyllable(character)) {
      return false;
    }
    last_ = character;
    lastIsWide_ = IsWide(character);
    columns_ += lastIsWide_ ? 2 : 1;
    return true;
  }

  static constexpr UChar32 kEmojiPresentation = 0xFE0F;
  std::size_t columns_ = 0;
  UChar32 last_ = 0;
  bool lastIsWide_ = true;  // no column is added in front of the first character
};

struct Character {
  std::uint32_t code;
  std::string_view bytes;
  bool valid;
};

// The first character of a text that is not empty. One that is not UTF-8 is one byte long.
Character First(std::string_view text) {
  const auto byte = static_cast<unsigned char>(text.front());
  if (byte < kFirstNonAscii) return {byte, text.substr(0, 1), true};
  thread_local const ConverterHandle utf8(QANTMBConverterNew_A("UTF-8"));
  std::uint32_t code = 0;
  constexpr std::size_t kLongest = 4;
  const int longest = static_cast<int>(std::min(text.size(), kLongest));
  const int length = QANTMBU32GetC_A(utf8.get(), &code, text.data(), 0, longest);
  if (length <= 0) return {0, text.substr(0, 1), false};
  return {code, text.substr(0, static_cast<std::size_t>(length)), true};
}

std::string Shown(const Character& character) {
  if (!character.valid) return kReplacement;
  if (!IsInvisible(character.code)) return std::string(character.bytes);
  switch (character.code) {
    case '\t':
      return "\\t";
    case '\n':
      return "\\n";
    case '\r':
      return "\\r";
    default:
      break;
  }
  if (character.code < kFirstNonAscii) return fmt::format("\\x{:02X}", character.code);
  return fmt::format("\\u{{{:04X}}}", character.code);
}

// Counts a visible text. True when its first character stands for itself.
bool AddAll(std::string_view visible, ColumnCount& count) {
  bool first = true;
  bool begins = false;
  while (!visible.empty()) {
    const Character character = First(visible);
    visible.remove_prefix(character.bytes.size());
    const bool alone = count.Add(character.valid ? character.code : kReplacementCode);
    if (first) begins = alone;
    first = false;
  }
  return begins;
}

}  // namespace

std::string VisibleText(std::string_view text, std::size_t columns) {
  std::string visible;
  ColumnCount count;
  // Where to cut when the whole does not fit: the ellipsis takes the last column.
  std::size_t fitting = 0;
  while (!text.empty()) {
    const Character character = First(text);
    text.remove_prefix(character.bytes.size());
    const std::string shown = Shown(character);
    const std::size_t before = count.columns();
    if (AddAll(shown, count) && before < columns) fitting = visible.size();
    if (count.columns() > columns) {
      visible.resize(fitting);
      return columns > 0 ? visible + kEllipsis : visible;
    }
    visible += shown;
  }
  return visible;
}

std::size_t DisplayWidth(std::string_view visible) {
  ColumnCount count;
  AddAll(visible, count);
  return count.columns();
}

std::string WrappedText(std::string_view visible, std::size_t width) {
  constexpr std::string_view kIndent = "  ";
  std::string text;
  std::string line;
  while (!visible.empty()) {
    const std::size_t blank = std::min(visible.find(' '), visible.size());
    const std::string_view word = visible.substr(0, blank);
    visible.remove_prefix(std::min(blank + 1, visible.size()));
    if (line.empty()) {
      line = word;
    } else if (DisplayWidth(line) + 1 + DisplayWidth(word) <= width) {
      line.append(1, ' ').append(word);
    } else {
      text += line + "\n";
      line.assign(kIndent).append(word);
    }
  }
  return text + line + "\n";
}

std::vector<std::string> WrappedLines(std::string_view visible, std::size_t width) {
  std::vector<std::string> lines(1);
  while (!visible.empty()) {
    const std::size_t blank = std::min(visible.find(' '), visible.size());
    std::string_view word = visible.substr(0, blank);
    visible.remove_prefix(std::min(blank + 1, visible.size()));
    const std::size_t before = DisplayWidth(lines.back());
    if (before > 0 && before + 1 + DisplayWidth(word) <= width) {
      lines.back() += ' ';
    } else if (before > 0) {
      lines.emplace_back();
    }
    while (!word.empty()) {
      // As many characters as fit.
      std::size_t end = word.size();
      if (DisplayWidth(lines.back()) + DisplayWidth(word) > width) {
        end = 0;
        for (std::size_t next = 0; next < word.size();) {
          do {
            ++next;
          } while (next < word.size() && (static_cast<unsigned char>(word[next]) & 0xC0) == 0x80);
          if (DisplayWidth(word.substr(0, next)) > width && end > 0) break;
          end = next;
        }
      }
      lines.back().append(word.substr(0, end));
      word.remove_prefix(end);
      if (!word.empty()) lines.emplace_back();
    }
  }
  return lines;
}

}  // namespace cli
