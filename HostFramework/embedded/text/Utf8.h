// One character at a time, and UTF-8.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

namespace embedded {

// What stands at a place of a text: a character, or bytes that are none.
struct Character {
  // Values of `code` that are no character: bytes that cannot be one, and the beginning of one that
  // the end of the text cuts off.
  static constexpr char32_t kInvalid = 0xFFFFFFFF;
  static constexpr char32_t kIncomplete = 0xFFFFFFFE;

  char32_t code;
  // Bytes it takes, at least 1. Of bytes that are no character: those that one substitute replaces.
  int length;

  bool IsCharacter() const { return code < kIncomplete; }
};

inline constexpr char32_t kReplacementCharacter = 0xFFFD;

// The longest code of any code page, in bytes.
inline constexpr std::size_t kLongestCode = 8;

// Number of ASCII bytes that `text` begins with.
inline std::size_t AsciiPrefix(const char* text, std::size_t length) {
  constexpr std::uint64_t kHighBits = 0x8080808080808080;
  std::size_t at = 0;
  for (; at + 32 <= length; at += 32) {
    std::uint64_t words[4];
    std::memcpy(words, text + at, sizeof words);
    if (((words[0] | words[1] | words[2] | words[3]) & kHighBits) != 0) break;
  }
  for (; at + 8 <= length; at += 8) {
    std::uint64_t word;
    std::memcpy(&word, text + at, sizeof word);
    if ((word & kHighBits) != 0) break;
  }
  while (at < length && static_cast<signed char>(text[at]) >= 0) ++at;
  return at;
}

// Decodes the first of `available` (at least 1) bytes of UTF-8. Exact: no overlong form, surrogate
// or code above 10FFFF is a character. Reads byte after byte and stops at the first that cannot
// follow, so it never reads past a NUL. One substitute replaces the longest beginning of a
// character.
inline Character DecodeUtf8(const char* text, std::size_t available) {
  const auto byte = [text](int at) { return static_cast<unsigned char>(text[at]); };
  const unsigned lead = byte(0);
  if (lead < 0x80) return {lead, 1};
  if (lead < 0xC2 || lead > 0xF4) return {Character::kInvalid, 1};
  const int length = lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
  // The second byte alone tells overlong forms, surrogates and too large codes from the rest.
  unsigned low = lead == 0xE0 ? 0xA0 : lead == 0xF0 ? 0x90 : 0x80;
  unsigned high = lead == 0xED ? 0x9F : lead == 0xF4 ? 0x8F : 0xBF;
  char32_t code = lead & (0x7Fu >> length);
  for (int at = 1; at < length; ++at) {
    if (static_cast<std::size_t>(at) == available) return {Character::kIncomplete, at};
    const unsigned next = byte(at);
    if (next < low || next > high) return {Character::kInvalid, at};
    code = (code << 6) | (next & 0x3F);
    low = 0x80;
    high = 0xBF;
  }
  return {code, length};
}

// Writes a character (not a surrogate, not above 10FFFF) in 1 to 4 bytes and returns their number.
inline std::size_t EncodeUtf8(char32_t code, char* out) {
  const auto put = [out](std::size_t at, char32_t byte) { out[at] = static_cast<char>(byte); };
  const auto tail = [code](int shift) { return 0x80 | ((code >> shift) & 0x3F); };
  if (code < 0x80) {
    put(0, code);
    return 1;
  }
  if (code < 0x800) {
    put(0, 0xC0 | (code >> 6));
    put(1, tail(0));
    return 2;
  }
  if (code < 0x10000) {
    put(0, 0xE0 | (code >> 12));
    put(1, tail(6));
    put(2, tail(0));
    return 3;
  }
  put(0, 0xF0 | (code >> 18));
  put(1, tail(12));
  put(2, tail(6));
  put(3, tail(0));
  return 4;
}

}  // namespace embedded
