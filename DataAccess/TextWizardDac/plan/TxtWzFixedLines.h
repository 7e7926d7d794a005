// The plan of a file of fixed columns, one or more lines per case.
#pragma once

#include "plan/TxtWzExecFile.h"

namespace textwizard {

class TxtWzFixedLines : public TxtWzExecFile {
 public:
  TxtWzFixedLines();
  int SetDataSource(QANT_TextWizardSrc* source) override;
  // For a host that cuts a record by the plan, without iterator: copies the field of `variable` out
  // of `record` (NUL-terminated) into `out` (room for the record's text and a NUL), whole
  // characters only; false, with an empty field, when the record is null or ends before the field's
  // start.
  bool GetVarBuffer(char* out, const TxtWzVar* variable, const char* record) const;
};

}  // namespace textwizard
