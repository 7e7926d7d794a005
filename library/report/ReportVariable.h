// A variable as reports name it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "HostFramework/DataSource.h"

namespace library {

struct ReportVariable {
  std::string name;    // UTF-8
  std::string format;  // as a command writes it: "F8.2"
  int formatType = 0;  // its display-format code
  int bytes = 0;       // of a string; 0 for a number
};

using ReportVariables = std::vector<ReportVariable>;

// The variables of a source, in its order.
ReportVariables ReportVariablesOf(const QANT_DataSource& source);

// The variable of a problem's index; null for -1, the record's.
inline const ReportVariable* VariableAt(const ReportVariables& variables, std::int32_t index) {
  return index < 0 || static_cast<std::size_t>(index) >= variables.size()
             ? nullptr
             : &variables[static_cast<std::size_t>(index)];
}

}  // namespace library
