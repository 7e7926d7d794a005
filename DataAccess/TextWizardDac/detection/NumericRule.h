// Whether a text is a number, as the system's strtod reads one.
#pragma once

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "reading/ShortText.h"

namespace textwizard {

// Reads by the numeric locale that the process had when the object was made. One thread.
class NumericRule {
 public:
  NumericRule();

  // True when strtod consumes `text`, without trailing blanks, whole, or stops at a comma and the
  // text behind that is accepted in turn (so 1,000,000 and "5," and ",5"). "," and "." alone are
  // not accepted, an empty text is. Cost linear in the text; allocates only for the rare forms
  // (hexadecimal, infinity, not-a-number) that grow the buffer.
  bool Accepts(std::string_view text);
  // False when no number begins with this byte: then Accepts is false of every text that does.
  bool MayBegin(char first) const { return begins_[static_cast<unsigned char>(first)]; }
  // The commonest form at a fraction of the cost: a sign or none, digits, perhaps one point and
  // digits. Then *point is the point's offset, or npos; every such text is a number, but not every
  // number such a text.
  bool AcceptsPlain(std::string_view text, std::size_t* point) const;

 private:
  static bool AcceptsLongPlain(std::string_view text, std::size_t* point);
  const char* EndOfNumber(const char* begin, const char* end) const;
  const char* EndByStrtod(std::string_view text, const char* begin);

  // The locale's decimal character when it is one ASCII byte; else 0, and strtod reads everything.
  char decimal_ = 0;
  std::array<bool, 256> begins_{};
  // A terminated copy of the text in hand; empty until strtod is needed.
  std::string copy_;
};

inline bool NumericRule::AcceptsPlain(std::string_view text, std::size_t* point) const {
  constexpr std::size_t kWord = sizeof(std::uint64_t);
  if (decimal_ != '.' || text.empty()) return false;
  const std::size_t sign = text.front() == '-' || text.front() == '+';
  const char* const digits = text.data() + sign;
  const std::size_t length = text.size() - sign;
  if (length - 1 >= 2 * kWord) return length > 0 && AcceptsLongPlain(text, point);

  constexpr std::uint64_t kZeros = 0x3030303030303030;
  // The high bit of each byte above 9, up to one far above it: what is said of the bytes behind
  // that can be wrong.
  const auto notDigits = [](std::uint64_t bytes) {
    constexpr std::uint64_t kAboveNine = 0x7676767676767676;  // 10 more reaches the high bit
    return (bytes | (bytes + kAboveNine)) & 0x8080808080808080;
  };
  // The last word of the text, and the part of it before that; digits stand for what they lack.
  std::uint64_t others = 0, before = 0;
  if (length <= kWord) {
    others = notDigits((LoadShortText(digits, length) ^ kZeros) << (kWord - length) * 8);
  } else {
    others = notDigits(LoadWord(digits + length - kWord) ^ kZeros);
    before = notDigits((LoadWord(digits) ^ kZeros) << (2 * kWord - length) * 8);
  }
  *point = std::string_view::npos;
  if ((others | before) == 0) return true;
  if (others != 0 && before != 0) return false;
  std::size_t at = length - (others != 0 ? kWord : 2 * kWord);
  others |= before;
  at += static_cast<std::size_t>(std::countr_zero(others)) / 8;
  // A digit before the point is the commoner form; the others are not plain.
  if ((others & (others - 1)) != 0 || digits[at] != '.' || at == 0) return false;
  *point = sign + at;
  return true;
}

}  // namespace textwizard
