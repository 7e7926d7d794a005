#include "library/outputs/JsonText.h"

#include <cstddef>

namespace library {
namespace {

bool IsPlain(char character) {
  return static_cast<unsigned char>(character) >= 0x20 && character != '"' && character != '\\';
}

void AppendEscape(OutputFile& file, char character) {
  constexpr char kHex[] = "0123456789abcdef";
  file.Append('\\');
  switch (character) {
    case '"':
    case '\\':
      file.Append(character);
      break;
    case '\n':
      file.Append('n');
      break;
    case '\r':
      file.Append('r');
      break;
    case '\t':
      file.Append('t');
      break;
    default:
      file.Append("u00");
      file.Append(kHex[static_cast<unsigned char>(character) >> 4U]);
      file.Append(kHex[static_cast<unsigned char>(character) & 0xFU]);
  }
}

}  // namespace

void AppendJsonString(OutputFile& file, std::string_view text) {
  file.Append('"');
  std::size_t begin = 0;
  for (std::size_t at = 0; at < text.size(); ++at) {
    if (IsPlain(text[at])) continue;
    file.Append(text.substr(begin, at - begin));
    AppendEscape(file, text[at]);
    begin = at + 1;
  }
  file.Append(text.substr(begin));
  file.Append('"');
}

}  // namespace library
