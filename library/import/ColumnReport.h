// The columns of a bare file: their formats, how the values fit them, and what else they could be.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include <nlohmann/json.hpp>

#include "library/import/BareImport.h"

namespace library {

// A text of the column is longer than its format holds.
bool MayBeCut(const BareImport& import, std::size_t column);

// One object a column, skipped ones included: `name`, `label`, `format` ("X" when it is skipped),
// `final`, counts of what was read so far (`read`, `empty`, `null`, `unreadable`, and `cut` where
// `cut` has them, a count for each column), `longest` with `line` and `text` where texts are longer
// than the format holds, `offending` (the first values of each kind that cannot be read, in their
// order), `day_month` and `decimal` where there is something to say. Texts are UTF-8.
nlohmann::json ColumnReport(const BareImport& import, bool final,
                            const std::vector<std::int64_t>& cut = {});

// What the format of each column was found from, skipped ones included: what ColumnReport says of
// it but for what a dictionary has anyway, and `values` (neither empty nor a null text) and
// `candidates`: of every way to read them that one value at least has, its format, the values that
// it reads (`read`) and does not (`unread`, with `line` and `text` of the first), most first, of
// equal ones the chosen first. While the host is as the import has set it.
nlohmann::json FoundEvidence(const BareImport& import);

}  // namespace library
