#include "library/report/ProblemKind.h"

#include <array>
#include <cstddef>

namespace library {

std::string_view NameOf(ImportProblemKind kind) {
  static constexpr std::array<std::string_view, kImportProblemKinds> kNames = {
      "unreadable", "rounded",     "cut",          "undecodable",     "few-fields", "surplus",
      "open-quote", "stray-quote", "short-record", "incomplete-case", "nul"};
  return kNames[static_cast<std::size_t>(kind)];
}

}  // namespace library
