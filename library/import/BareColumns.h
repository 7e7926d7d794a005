// The columns of bare files: their names, and their types from what is known of all values.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "library/types/ColumnEvidence.h"
#include "library/types/GivenFormat.h"
#include "library/types/TypeChoice.h"

namespace library {

struct BareColumn {
  // UTF-8; the label is the header's text, empty without one.
  std::string name;
  std::string label;
  ChosenType type;
  bool typeGiven = false;
  // Left out of the import.
  bool skipped = false;
};

// Of each column the format that a person gave, if any.
using GivenFormats = std::vector<std::optional<GivenFormat>>;

// Puts names that are given in place of those found; none changes nothing. All become such as a
// command can write. False when they are not as many, or not names; *problem is then a sentence.
bool NameColumns(const std::vector<std::string>& given, std::vector<BareColumn>* columns,
                 std::string* problem);

// Reads formats given by name, "X" for a column that is left out. False when there is no such
// column or format; *problem is then a sentence.
bool ReadGivenTypes(const std::vector<std::pair<std::string, std::string>>& types,
                    std::vector<BareColumn>* columns, GivenFormats* given, std::string* problem);

// Chooses the type of every column by its evidence, or fits the one that is given to it. As many
// columns, formats and pieces of evidence.
TypeChoice ChooseColumnTypes(const std::vector<ColumnEvidence>& evidence,
                             const TypeSettings& settings, const GivenFormats& given,
                             std::vector<BareColumn>* columns);

}  // namespace library
