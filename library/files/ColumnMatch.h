// Which column of one file is which of another, by what stands above them.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace library {

// What names of columns have in common that differ by letter case and blanks only (UTF-8).
std::string ColumnKey(const std::string& label);

// Of each column of a file the one of `known` that it is; nothing where it is none of them. The
// same text first, then the same key; of several the first that is left.
std::vector<std::optional<std::size_t>> MatchColumns(const std::vector<std::string>& labels,
                                                     const std::vector<std::string>& known);

}  // namespace library
