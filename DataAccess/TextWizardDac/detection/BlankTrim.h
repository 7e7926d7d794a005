// Blanks at the ends of a text. Blanks (character 32) are all that is ever trimmed.
#pragma once

#include <string_view>

namespace textwizard {

inline std::string_view TrimLeft(std::string_view text) {
  while (!text.empty() && text.front() == ' ') text.remove_prefix(1);
  return text;
}

inline std::string_view TrimRight(std::string_view text) {
  while (!text.empty() && text.back() == ' ') text.remove_suffix(1);
  return text;
}

// Whether nothing but blanks is there.
inline bool IsBlank(std::string_view text) { return TrimLeft(text).empty(); }

}  // namespace textwizard
