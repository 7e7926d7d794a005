// Evidence of columns for tests.
#pragma once

#include <string>
#include <vector>

#include "library/report/ImportWatch.h"
#include "library/types/ColumnEvidence.h"

namespace library::testing_support {

// The evidence of a column of these values, one a line, from line `first` on.
inline ColumnEvidence EvidenceOf(const std::vector<std::string>& values, std::int64_t first = 2,
                                 const std::vector<std::string>& nulls = DefaultNullTexts()) {
  ColumnEvidence evidence;
  const textwizard::NullTexts texts(nulls);
  for (const std::string& value : values) evidence.Count(value, first++, texts);
  return evidence;
}

}  // namespace library::testing_support
