#include "tests/differential/NaiveText.h"

namespace naive {

std::size_t HostText::Decode(const std::string& text, std::size_t at, char32_t* ch) const {
  const auto byte = [&](std::size_t i) -> unsigned {
    return at + i < text.size() ? static_cast<unsigned char>(text[at + i]) : 0U;
  };
  const auto tail = [&](std::size_t i) { return (byte(i) & 0xC0U) == 0x80U; };
  const unsigned first = byte(0);
  if (first < 0x80) {
    *ch = first;
    return first == 0 ? 0 : 1;
  }
  if (first >= 0xC2 && first <= 0xDF && tail(1)) {
    *ch = (first & 0x1FU) << 6 | (byte(1) & 0x3FU);
    return 2;
  }
  if ((first & 0xF0U) == 0xE0U && tail(1) && tail(2)) {
    const char32_t c = (first & 0x0FU) << 12 | (byte(1) & 0x3FU) << 6 | (byte(2) & 0x3FU);
    if (c < 0x800 || (c >= 0xD800 && c <= 0xDFFF)) return 0;
    *ch = c;
    return 3;
  }
  if (first >= 0xF0 && first <= 0xF4 && tail(1) && tail(2) && tail(3)) {
    const char32_t c = (first & 0x07U) << 18 | (byte(1) & 0x3FU) << 12 | (byte(2) & 0x3FU) << 6 |
                       (byte(3) & 0x3FU);
    if (c < 0x10000 || c > 0x10FFFF) return 0;
    *ch = c;
    return 4;
  }
  return 0;
}

bool HostText::Append(std::string& out, char32_t c) const {
  const bool invalid = c == kInvalid;
  if (invalid) c = 0xFFFD;
  const auto put = [&](char32_t value) { out += static_cast<char>(value); };
  if (c < 0x80) {
    put(c);
  } else if (c < 0x800) {
    put(0xC0 | c >> 6);
    put(0x80 | (c & 0x3F));
  } else if (c < 0x10000) {
    put(0xE0 | c >> 12);
    put(0x80 | (c >> 6 & 0x3F));
    put(0x80 | (c & 0x3F));
  } else {
    put(0xF0 | c >> 18);
    put(0x80 | (c >> 12 & 0x3F));
    put(0x80 | (c >> 6 & 0x3F));
    put(0x80 | (c & 0x3F));
  }
  return !invalid;
}

std::size_t HostText::UnfinishedTail(const std::string& text) const {
  for (std::size_t length = 3; length > 0; --length) {
    if (length > text.size()) continue;
    const std::string tail = text.substr(text.size() - length);
    char32_t ch = 0;
    if (static_cast<unsigned char>(tail[0]) < 0xC2 || Decode(tail, 0, &ch) != 0) continue;
    for (const char* rest : {"\x80", "\xBF", "\x80\x80", "\xBF\x80", "\x80\x80\x80"}) {
      const std::string whole = tail + rest;
      if (Decode(whole, 0, &ch) == whole.size()) return length;
    }
    // A second byte that the first allows decides what may follow.
    if (length == 1) {
      for (const char* rest : {"\xA0\x80", "\x90\x80\x80"}) {
        const std::string whole = tail + rest;
        if (Decode(whole, 0, &ch) == whole.size()) return length;
      }
    }
  }
  return 0;
}

std::vector<Piece> HostText::Pieces(const std::string& raw) const {
  std::vector<Piece> pieces;
  for (const char byte : raw) pieces.push_back({std::string(1, byte), 1, false});
  return pieces;
}

}  // namespace naive
