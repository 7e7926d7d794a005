#include "detection/NumericRule.h"

#include <cctype>
#include <cstdlib>

#include <langinfo.h>

namespace textwizard {

namespace {

bool IsDigit(char c) { return c >= '0' && c <= '9'; }
// White space as strtod skips it: by the process's locale. Every locale has the printing characters
// of ASCII in common.
bool IsSpace(char c) {
  if (c > ' ' && c <= '~') return false;
  return std::isspace(static_cast<unsigned char>(c)) != 0;
}
bool IsEither(char c, char lower, char upper) { return c == lower || c == upper; }

// Infinity and not-a-number are spelled out.
bool MayBeName(const char* p, const char* end) {
  if (end - p < 3) return false;
  return (IsEither(p[0], 'i', 'I') && IsEither(p[1], 'n', 'N') && IsEither(p[2], 'f', 'F')) ||
         (IsEither(p[0], 'n', 'N') && IsEither(p[1], 'a', 'A') && IsEither(p[2], 'n', 'N'));
}

const char* SkipDigits(const char* p, const char* end) {
  while (p != end && IsDigit(*p)) ++p;
  return p;
}

}  // namespace

NumericRule::NumericRule() {
  const char* decimal = nl_langinfo(RADIXCHAR);
  const bool oneByte = decimal[0] && !decimal[1];
  if (oneByte && std::ispunct(static_cast<unsigned char>(decimal[0]))) decimal_ = decimal[0];
  // What strtod skips, a sign, a digit, a decimal character, the comma after no number, a name.
  for (std::size_t byte = 0; byte < begins_.size(); ++byte) {
    const char c = static_cast<char>(byte);
    const bool mayBeName = IsEither(c, 'i', 'I') || IsEither(c, 'n', 'N');
    begins_[byte] = decimal_ == 0 || c == decimal_ || IsSpace(c) || IsDigit(c) || mayBeName ||
                    c == '+' || c == '-' || c == ',' || c == '.';
  }
}

bool NumericRule::Accepts(std::string_view text) {
  while (!text.empty() && text.back() == ' ') text.remove_suffix(1);
  copy_.clear();
  const char* begin = text.data();
  const char* const end = begin + text.size();
  for (;;) {
    if (end - begin == 1 && (*begin == ',' || *begin == '.')) return false;
    const char* stop = EndOfNumber(begin, end);
    if (!stop) stop = EndByStrtod(text, begin);
    if (stop == end) return true;
    if (*stop != ',') return false;
    begin = stop + 1;
    if (begin == end) return true;
  }
}

bool NumericRule::AcceptsLongPlain(std::string_view text, std::size_t* point) {
  const char* p = text.data();
  const char* const end = p + text.size();
  if (*p == '-' || *p == '+') ++p;
  const char* const digits = p;
  p = SkipDigits(p, end);
  *point = std::string_view::npos;
  if (p == digits) return false;
  if (p != end && *p == '.') {
    *point = static_cast<std::size_t>(p - text.data());
    p = SkipDigits(p + 1, end);
  }
  return p == end;
}

// Where strtod would stop: `begin` when it converts nothing. Null for what only strtod can tell.
const char* NumericRule::EndOfNumber(const char* begin, const char* end) const {
  if (!decimal_) return nullptr;
  const char* p = begin;
  while (p != end && IsSpace(*p)) ++p;
  if (p != end && (*p == '+' || *p == '-')) ++p;
  if (p == end) return begin;
  const char* const digits = p;
  p = SkipDigits(p, end);
  if (p != end && p == digits + 1 && *digits == '0' && IsEither(*p, 'x', 'X')) return nullptr;
  bool hasDigits = p != digits;
  if (p != end && *p == decimal_) {
    const char* const fraction = p + 1;
    const char* const after = SkipDigits(fraction, end);
    hasDigits = hasDigits || after != fraction;
    if (hasDigits) p = after;
  }
  if (!hasDigits) return MayBeName(digits, end) ? nullptr : begin;
  if (p != end && IsEither(*p, 'e', 'E')) {
    const char* exponent = p + 1;
    if (exponent != end && (*exponent == '+' || *exponent == '-')) ++exponent;
    if (exponent != end && IsDigit(*exponent)) p = SkipDigits(exponent, end);
  }
  return p;
}

const char* NumericRule::EndByStrtod(std::string_view text, const char* begin) {
  if (copy_.empty()) copy_.assign(text);
  const auto offset = static_cast<std::size_t>(begin - text.data());
  char* stop = nullptr;
  std::strtod(copy_.c_str() + offset, &stop);
  return text.data() + (stop - copy_.c_str());
}

}  // namespace textwizard
