// Rows that sum up others.
#pragma once

#include <cstddef>

#include "library/sniff/RowFacts.h"
#include "library/sniff/SampleTable.h"

namespace library {

// Whether the row says that it is a total, or its numbers are the sums of rows that follow it.
bool IsTotalAbove(const SampleTable& table, const TableFacts& facts, std::size_t row);
// Whether the first text of the row says that it is a total: "Total", "TOTAL 1/", "Grand total",
// "United States, total", "All industries".
bool IsCalledTotal(const SampleTable& table, std::size_t row);

}  // namespace library
