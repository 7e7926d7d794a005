// Lines that are remarks for a reader: they begin with a sign that other lines do not begin with.
#pragma once

#include <cstddef>
#include <string_view>
#include <vector>

namespace library {

// The sign that begins remarks among the first `count` lines: "#", "//" or "%"; empty when no line
// or every line begins with it.
std::string_view CommentSign(const std::vector<std::string_view>& lines, std::size_t count);

// Whether the line begins with the sign, blanks aside; false for an empty sign.
bool IsCommentLine(std::string_view line, std::string_view sign);

}  // namespace library
