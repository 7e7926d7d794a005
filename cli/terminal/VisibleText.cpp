#include "cli/terminal/VisibleText.h"

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <memory>

#include <fmt/format.h>

#include "HostFramework/Text.h"

namespace cli {
namespace {

constexpr char kReplacement[] = "\xEF\xBF\xBD";
constexpr char kEllipsis[] = "\xE2\x80\xA6";
constexpr std::uint32_t kFirstNonAscii = 0x80;

struct Range {
  std::uint32_t first;
  std::uint32_t last;
};

// Control and format characters: a terminal obeys or hides them.
constexpr Range kInvisible[] = {{0x00, 0x1F},     {0x7F, 0x9F},      {0x00AD, 0x00AD},
                                {0x061C, 0x061C}, {0x180E, 0x180E},  {0x200B, 0x200F},
                                {0x2028, 0x202E}, {0x2060, 0x206F},  {0xFEFF, 0xFEFF},
                                {0xFFF9, 0xFFFB}, {0xE0001, 0xE007F}};
constexpr Range kCombining[] = {
    {0x0300, 0x036F}, {0x0483, 0x0489}, {0x0591, 0x05BD}, {0x0610, 0x061A},  {0x064B, 0x065F},
    {0x0E34, 0x0E3A}, {0x0E47, 0x0E4E}, {0x1AB0, 0x1AFF}, {0x1DC0, 0x1DFF},  {0x20D0, 0x20FF},
    {0x3099, 0x309A}, {0xFE00, 0xFE0F}, {0xFE20, 0xFE2F}, {0xE0100, 0xE01EF}};
constexpr Range kWide[] = {
    {0x1100, 0x115F},   {0x2E80, 0x303E},   {0x3041, 0x33FF},   {0x3400, 0x4DBF},
    {0x4E00, 0x9FFF},   {0xA000, 0xA4CF},   {0xA960, 0xA97F},   {0xAC00, 0xD7A3},
    {0xF900, 0xFAFF},   {0xFE30, 0xFE6F},   {0xFF00, 0xFF60},   {0xFFE0, 0xFFE6},
    {0x1F300, 0x1F64F}, {0x1F680, 0x1F6FF}, {0x1F900, 0x1F9FF}, {0x20000, 0x3FFFD}};

template <std::size_t kCount>
bool IsIn(const Range (&ranges)[kCount], std::uint32_t character) {
  return std::any_of(std::begin(ranges), std::end(ranges), [character](const Range& range) {
    return character >= range.first && character <= range.last;
  });
}

struct Character {
  std::uint32_t code;
  std::string_view bytes;
  bool valid;
};

// The first character of a text that is not empty. One that is not UTF-8 is one byte long.
Character First(std::string_view text) {
  const auto byte = static_cast<unsigned char>(text.front());
  if (byte < kFirstNonAscii) return {byte, text.substr(0, 1), true};
  struct Release {
    void operator()(QANTMBConverter* made) const { QANTMBConverterDelete_A(made); }
  };
  thread_local const std::unique_ptr<QANTMBConverter, Release> utf8(QANTMBConverterNew_A("UTF-8"));
  std::uint32_t code = 0;
  constexpr std::size_t kLongest = 4;
  const int longest = static_cast<int>(std::min(text.size(), kLongest));
  const int length = QANTMBU32GetC_A(utf8.get(), &code, text.data(), 0, longest);
  if (length <= 0) return {0, text.substr(0, 1), false};
  return {code, text.substr(0, static_cast<std::size_t>(length)), true};
}

std::string Shown(const Character& character) {
  if (!character.valid) return kReplacement;
  if (!IsIn(kInvisible, character.code)) return std::string(character.bytes);
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

}  // namespace

std::string VisibleText(std::string_view text, std::size_t columns) {
  std::string visible;
  std::size_t width = 0;
  // Where to cut when the whole does not fit: the ellipsis takes the last column.
  std::size_t fitting = 0;
  while (!text.empty()) {
    const Character character = First(text);
    text.remove_prefix(character.bytes.size());
    const std::string shown = Shown(character);
    width += DisplayWidth(shown);
    if (width > columns) {
      visible.resize(fitting);
      return columns > 0 ? visible + kEllipsis : visible;
    }
    visible += shown;
    if (width < columns) fitting = visible.size();
  }
  return visible;
}

std::size_t DisplayWidth(std::string_view visible) {
  std::size_t width = 0;
  while (!visible.empty()) {
    const Character character = First(visible);
    visible.remove_prefix(character.bytes.size());
    if (IsIn(kCombining, character.code) && character.valid) continue;
    width += character.valid && IsIn(kWide, character.code) ? 2 : 1;
  }
  return width;
}

}  // namespace cli
