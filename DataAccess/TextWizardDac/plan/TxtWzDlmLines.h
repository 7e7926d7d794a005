// The plan of a delimited file with one case per line.
#pragma once

#include "plan/TxtWzDelimiters.h"

namespace textwizard {

class TxtWzDlmLines : public TxtWzDelimiters {
 public:
  TxtWzDlmLines() { settings.arrangement = kDelimitedLines; }
};

}  // namespace textwizard
