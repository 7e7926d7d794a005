#include "library/capi/Failure.h"

#include <charconv>

namespace library {

std::int32_t MessageNumber(const std::string& text) {
  std::int32_t number = 0;
  if (text.empty() || text.front() != '[') return 0;
  const char* const end = text.data() + text.size();
  const auto [behind, error] = std::from_chars(text.data() + 1, end, number);
  return error == std::errc() && behind != end && *behind == ']' ? number : 0;
}

}  // namespace library
