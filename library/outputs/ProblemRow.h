// A problem of an import as files and tables have it.
#pragma once

#include <cstdint>
#include <string_view>

namespace library {

// Texts are UTF-8 and belong to whoever made the row.
struct ProblemRow {
  std::string_view kind;
  std::int64_t caseNumber;  // from 1; 0: none
  std::int64_t line;        // from 1; 0: none
  std::int64_t byte;        // -1: none
  // Both empty for a problem of a record.
  std::string_view variable;
  std::string_view format;
  std::string_view text;
  std::string_view detail;
  // One of several; empty where there is one only.
  std::string_view file = {};
};

}  // namespace library
