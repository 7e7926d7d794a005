#include "library/report/ReportText.h"

#include <algorithm>

#include <fmt/format.h>

namespace library {
namespace {

constexpr std::size_t kLongestCharacter = 4;
constexpr unsigned char kFirstC1Lead = 0xC2;

bool IsPlain(char character) {
  const auto byte = static_cast<unsigned char>(character);
  return byte >= 0x20 && byte < 0x7F;
}

// Bytes of the UTF-8 character that `byte` begins.
std::size_t LengthOf(unsigned char byte) {
  if (byte < 0x80) return 1;
  if (byte < 0xE0) return 2;
  return byte < 0xF0 ? 3 : 4;
}

// What stands for the character at the start of `text`, when it is a control character; else empty.
std::string Escape(std::string_view text) {
  const auto byte = static_cast<unsigned char>(text.front());
  if (byte == kFirstC1Lead && text.size() > 1) {
    const auto next = static_cast<unsigned char>(text[1]);
    return next < 0xA0 ? fmt::format("\\u00{:02X}", next) : std::string();
  }
  if (byte >= 0x20 && byte != 0x7F) return {};
  switch (text.front()) {
    case '\t':
      return "\\t";
    case '\n':
      return "\\n";
    case '\r':
      return "\\r";
    default:
      return fmt::format("\\x{:02X}", byte);
  }
}

}  // namespace

std::string_view ReportText::Escaped(std::string_view hostText, std::size_t characters) {
  if (hostText.size() <= characters && std::all_of(hostText.begin(), hostText.end(), IsPlain)) {
    escaped_.assign(hostText);
    return escaped_;
  }
  // What is beyond the characters wanted need not be converted: no character is longer.
  QANTMBCodePageToU8(converter_.get(), utf8_,
                     hostText.substr(0, kLongestCharacter * (characters + 1)));
  escaped_.clear();
  std::size_t written = 0;
  for (std::string_view rest = utf8_; !rest.empty() && written < characters;) {
    const std::size_t length =
        std::min(rest.size(), LengthOf(static_cast<unsigned char>(rest.front())));
    if (const std::string escape = Escape(rest); escape.empty()) {
      escaped_.append(rest.substr(0, length));
      ++written;
    } else if (written + escape.size() > characters) {
      break;
    } else {
      escaped_.append(escape);
      written += escape.size();
    }
    rest.remove_prefix(length);
  }
  return escaped_;
}

}  // namespace library
