// Reading dates with a time of day: DATETIME and YMDHMS.
#pragma once

#include <string_view>

namespace embedded {

// Each of these reads `text` (not empty, without blanks and tabs around it) to its end. Returns
// false and leaves *value alone when it is not a value of the format. Any thread; allocates
// nothing.
bool ReadDateTime(std::string_view text, double* value);
bool ReadYmdhms(std::string_view text, double* value);

}  // namespace embedded
