// Where the fields of the first records stand in their lines.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "library/import/BareImport.h"
#include "reading/ImportSource.h"

namespace library {

// Texts are UTF-8; places are characters of the record's text, from 0.
struct PlacedField {
  std::string text;
  std::int64_t from = 0;
  std::int64_t to = 0;
};

struct PlacedRecord {
  std::int64_t line = 0;  // physical, from 1
  std::vector<PlacedField> fields;
};

// The first `count` records of the source's data, cut by the component's own readers as the source
// has them cut: the fields of `import`'s columns, as many as a record has. Worker's thread.
std::vector<PlacedRecord> PlaceFields(const textwizard::ImportSource& source,
                                      const BareImport& import, std::int64_t count);

}  // namespace library
