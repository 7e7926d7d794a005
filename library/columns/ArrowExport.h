// Columns for other libraries: the Arrow C data interface.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "library/columns/ColumnBatch.h"
#include "library/columns/ColumnField.h"
#include "library/include/textwizard/arrow_c.h"

namespace library {

// Keys and values (UTF-8) that go with a schema.
using ArrowMetadata = std::vector<std::pair<std::string, std::string>>;

// The format string of a type, such as "g" or "tdD".
const char* ArrowFormat(ColumnType type);

// What is known about a column besides its type: "variable", "label" (where there is one), "format"
// and "width".
ArrowMetadata MetadataOf(const ColumnField& field);

// Fills *out with the schema of a table of those columns; every column may have missing values. Who
// gets it releases it, on any thread. Throws std::bad_alloc and leaves *out released.
void ExportSchema(const std::vector<ColumnField>& fields, const ArrowMetadata& metadata,
                  ArrowSchema* out);

// Fills *out with the columns, which it owns from then on; a column that is moved out of it keeps
// what it needs. Who gets it releases it, on any thread. Throws std::bad_alloc and leaves *out
// released.
void ExportBatch(const std::vector<ColumnField>& fields, ColumnBatch batch, ArrowArray* out);

}  // namespace library
