// The texts above the columns, and what each row of the data's region is.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "library/sniff/SampleTable.h"
#include "library/sniff/TableShape.h"

namespace library {

enum class RowKind : std::uint8_t { kData, kBlank, kTitle, kTotal, kNote };

// What a row from the first row of data on is.
RowKind KindOfRow(const SampleTable& table, std::size_t row, const TableShape& shape);

// Columns of the table: as many fields as its records have, those aside that only few have, and
// trailing ones without a text in the header and without a value where the whole table is known.
std::size_t WidthOf(const SampleTable& table, const TableShape& shape, const Dialect& dialect,
                    bool whole);

// One text for each column: the cells of the header's rows one below the other, joined by blanks;
// a cell above several columns counts for each of them. Empty where the header says nothing.
std::vector<std::string> HeaderLabels(const SampleTable& table, const TableShape& shape,
                                      std::size_t width);

}  // namespace library
