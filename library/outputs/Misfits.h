// What columns could not hold, for people.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "library/columns/ColumnBuilder.h"
#include "library/columns/ColumnField.h"
#include "library/outputs/ProblemRow.h"

namespace library {

// The kind of such a problem.
inline constexpr char kMisfitKind[] = "misfit";

// All values of one column that its type could not hold; UTF-8.
struct Misfit {
  std::int64_t count;
  std::int64_t caseNumber;  // of the first
  std::string variable;
  std::string format;
  std::string text;    // the first value
  std::string detail;  // what happened, and what would help: a sentence
};

// The row of a problem; good as long as the misfit.
inline ProblemRow RowOf(const Misfit& misfit) {
  return {kMisfitKind,     misfit.caseNumber, 0,           -1,
          misfit.variable, misfit.format,     misfit.text, misfit.detail};
}

// In the order of the columns.
std::vector<Misfit> MisfitsOf(const std::vector<ColumnField>& fields, const ColumnMisfits& misfits);

}  // namespace library
