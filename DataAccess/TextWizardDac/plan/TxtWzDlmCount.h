// The plan of a delimited file with a fixed number of values per case, across lines.
#pragma once

#include "plan/TxtWzDelimiters.h"

namespace textwizard {

class TxtWzDlmCount : public TxtWzDelimiters {
 public:
  TxtWzDlmCount() { settings.arrangement = kDelimitedCount; }
};

}  // namespace textwizard
