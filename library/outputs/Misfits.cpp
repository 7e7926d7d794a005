#include "library/outputs/Misfits.h"

#include <algorithm>

#include <fmt/format.h>

namespace library {
namespace {

const char* WhatItHolds(ColumnType type) {
  switch (type) {
    case ColumnType::kInt64:
      return "whole numbers up to 2^53";
    case ColumnType::kInt8:
      return "whole numbers up to 127";
    case ColumnType::kDate32:
      return "whole days";
    case ColumnType::kTimestampMicros:
    case ColumnType::kDurationMicros:
      return "whole microseconds";
    case ColumnType::kFloat64:
    case ColumnType::kUtf8:
    case ColumnType::kLargeUtf8:
      break;
  }
  return "numbers";
}

const char* WayOut(ColumnType type) {
  return type == ColumnType::kInt64 ? "without whole-number columns every value is kept"
                                    : "outputs of text with raw values keep them";
}

}  // namespace

std::vector<Misfit> MisfitsOf(const std::vector<ColumnField>& fields,
                              const ColumnMisfits& misfits) {
  std::vector<ColumnMisfit> first = misfits.first;
  std::sort(first.begin(), first.end(), [](const ColumnMisfit& left, const ColumnMisfit& right) {
    return left.column < right.column;
  });
  std::vector<Misfit> found;
  found.reserve(first.size());
  for (const ColumnMisfit& misfit : first) {
    const ColumnField& field = fields[misfit.column];
    const std::int64_t count = misfits.counts[misfit.column];
    found.push_back(
        {count, misfit.caseNumber, field.variable, field.format, fmt::format("{}", misfit.value),
         fmt::format("the column of {} holds {}, and {} value{} missing in it, the "
                     "first {} in case {}; {}",
                     field.variable, WhatItHolds(field.type), count, count == 1 ? " is" : "s are",
                     misfit.value, misfit.caseNumber, WayOut(field.type))});
  }
  return found;
}

}  // namespace library
