// JSON strings, written without a document in memory.
#pragma once

#include <cstddef>
#include <string_view>

namespace library {

inline bool IsPlainInJson(char character) {
  return static_cast<unsigned char>(character) >= 0x20 && character != '"' && character != '\\';
}

// `Out` has Append for a character and for a text: an OutputFile, a TextBlock.
template <class Out>
void AppendJsonEscape(Out& out, char character) {
  constexpr char kHex[] = "0123456789abcdef";
  out.Append('\\');
  switch (character) {
    case '"':
    case '\\':
      out.Append(character);
      break;
    case '\n':
      out.Append('n');
      break;
    case '\r':
      out.Append('r');
      break;
    case '\t':
      out.Append('t');
      break;
    default:
      out.Append("u00");
      out.Append(kHex[static_cast<unsigned char>(character) >> 4U]);
      out.Append(kHex[static_cast<unsigned char>(character) & 0xFU]);
  }
}

// Appends `text` (valid UTF-8) as a JSON string, quotes included.
template <class Out>
void AppendJsonString(Out& out, std::string_view text) {
  out.Append('"');
  std::size_t begin = 0;
  for (std::size_t at = 0; at < text.size(); ++at) {
    if (IsPlainInJson(text[at])) continue;
    out.Append(text.substr(begin, at - begin));
    AppendJsonEscape(out, text[at]);
    begin = at + 1;
  }
  out.Append(text.substr(begin));
  out.Append('"');
}

}  // namespace library
