// Numbers whose text says more than a double keeps.
#pragma once

#include <cstddef>
#include <string_view>

namespace textwizard {

// With fewer significant digits every number reads back to its text's digits.
inline constexpr std::size_t kRoundedDigits = 16;

// Whether a double that was read from `text` (a number of any format, whole or as part of a field)
// has other digits than the text, which has kRoundedDigits or more of them: zeros before the first
// and behind the last other digit do not count. Exact; any thread; allocates nothing.
bool IsRounded(std::string_view text, double value);

}  // namespace textwizard
