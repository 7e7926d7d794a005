// Whether a text is a number, as the system's strtod reads one.
#pragma once

#include <array>
#include <cstddef>
#include <string>
#include <string_view>

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

}  // namespace textwizard
