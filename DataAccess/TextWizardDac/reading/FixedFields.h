// Records of fixed columns into fields, by position.
#pragma once

#include <cstdint>
#include <string_view>

#include "model/TxtWzVar.h"

namespace textwizard {

// The text of `variable` in `record`, in bytes: from its start column, as wide as its string width
// (strings) or field width (others), cut at the record's end. False, with an empty field, when the
// record is shorter than the start column. Why bytes: docs/decisions.md.
bool CutFixedField(std::string_view record, const TxtWzVar& variable, std::string_view& field);

// The same by the bytes of a variable's column, found once.
struct FixedColumn {
  FixedColumn() = default;
  explicit FixedColumn(const TxtWzVar& variable);
  bool Cut(std::string_view record, std::string_view& field) const {
    field = {};
    if (record.size() < start) return false;
    field = record.substr(start, length);
    return true;
  }

  std::uint32_t start = 0;
  std::uint32_t length = 0;
};

}  // namespace textwizard
