// Whether a row of texts names the columns of the texts below it.
#pragma once

#include <cstddef>

#include "library/sniff/SampleTable.h"

namespace library {

// Above 0 where the row differs from the rows below as names differ from values; below 0 where it
// is one of them.
double HeaderContrast(const SampleTable& table, std::size_t row);
// From the row on there are two columns: texts that are all different, and values of several kinds
// beside them. Such a table has a thing a line, and no header.
bool HoldsKeysAndValues(const SampleTable& table, std::size_t row);
// The row alone: every cell of it is a short text without digits, all of them different.
bool LooksLikeNames(const SampleTable& table, std::size_t row);

// The row's texts say both: one of them is a value of its column further down as well, and another
// one is a word that names columns, or is none of the values though most of those come again.
bool NamesContradict(const SampleTable& table, std::size_t row);

}  // namespace library
