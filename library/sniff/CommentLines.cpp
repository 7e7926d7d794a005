#include "library/sniff/CommentLines.h"

#include <algorithm>

namespace library {

bool IsCommentLine(std::string_view line, std::string_view sign) {
  if (sign.empty()) return false;
  const std::size_t first = line.find_first_not_of(" \t");
  return first != std::string_view::npos && line.substr(first).starts_with(sign);
}

std::string_view CommentSign(const std::vector<std::string_view>& lines, std::size_t count) {
  count = std::min(count, lines.size());
  for (const std::string_view sign : {"#", "//", "%"}) {
    std::size_t comments = 0;
    std::size_t others = 0;
    for (std::size_t i = 0; i < count; ++i) {
      if (lines[i].find_first_not_of(" \t") == std::string_view::npos) continue;
      ++(IsCommentLine(lines[i], sign) ? comments : others);
    }
    if (comments > 0 && others > 0) return sign;
  }
  return {};
}

}  // namespace library
