// Cases into columns.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "HostFramework/DataSource.h"
#include "library/columns/ColumnBatch.h"
#include "library/columns/ColumnField.h"

namespace library {

// A value that its column's type cannot hold: it is missing there.
struct ColumnMisfit {
  std::int64_t caseNumber;  // from 1
  std::size_t column;
  double value;
};

// How often that happened, and where first: for each column, in the order of the columns.
struct ColumnMisfits {
  std::vector<std::int64_t> counts;  // empty while there was none
  std::vector<ColumnMisfit> first;   // one of each column that had any
};

// Adds the misfits of later cases.
void MergeMisfits(const ColumnMisfits& from, ColumnMisfits& into);

// Turns `count` cases, one behind the other and each of `cells` cells, into a batch of their own.
// `firstCase`: cases before them. Missing numbers, and those that are no finite number, are
// missing; strings lose the blanks that pad them and become UTF-8, where bytes that are no
// character are U+FFFD. Adds to *misfits what a type cannot hold. Any thread; converts text with a
// converter of its own. `batch` has no cases; its memory is used. Throws std::bad_alloc.
ColumnBatch BuildColumns(const std::vector<ColumnField>& fields, const OBS* cases,
                         std::size_t count, std::size_t cells, std::int64_t firstCase,
                         ColumnMisfits* misfits, ColumnBatch batch = {});

}  // namespace library
