// What the plans of delimited files share.
#pragma once

#include "plan/TxtWzExecFile.h"

namespace textwizard {

class TxtWzDelimiters : public TxtWzExecFile {
 public:
  // Keeps a copy of the delimiter characters on the first call; later calls change nothing.
  void SetDelimiters(const char* delimiters);
  int SetDataSource(QANT_TextWizardSrc* source) override;
  // For a host that cuts a record by the plan, without iterator: cuts the next field at *cursor
  // into `out` (room for the rest of the text and a NUL) and moves the cursor past it and its
  // delimiter; a simple cut without qualifier. False, with an empty field, at the end of the text
  // and where only blanks that are delimiters are left.
  bool GetNextVar(char* out, char** cursor);

 private:
  bool delimitersSet_ = false;
  bool lastWasDelimiter_ = false;
};

}  // namespace textwizard
