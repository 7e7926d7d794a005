// Writing to descriptors that may make a writer wait.
#pragma once

#include <string_view>
#include <vector>

namespace library {

// Writes all of `text`; false, with errno set, when that fails. A write that waits for a reader is
// given up (EINTR) as soon as the user asks to interrupt, and from then on only what is taken
// without waiting is written. Any thread.
bool WriteWhole(int descriptor, std::string_view text);
// The same of pieces, one behind the other.
bool WriteWhole(int descriptor, const std::vector<std::string_view>& pieces);

}  // namespace library
