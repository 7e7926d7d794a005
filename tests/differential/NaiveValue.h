// Value input written as plainly as the rules are: one pass over the text, no fast ways, the
// standard's calendar and number parser. The fuzz target compares the host's with it.
#pragma once

#include <optional>
#include <string_view>

namespace naive {

struct Value {
  // Nothing: the text is not a value of the format.
  std::optional<double> number;
};

// The value of `text`, which is not empty and has no blanks or tabs around it, under a format code
// of numbers, dates or times, in the "C" locale. Nothing when this reader cannot tell: dates and
// times with characters beyond ASCII or with very long counts, and YMDHMS with glued parts.
std::optional<Value> ReadValue(std::string_view text, int format, char decimal);

}  // namespace naive
