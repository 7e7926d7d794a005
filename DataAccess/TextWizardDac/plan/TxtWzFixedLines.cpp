#include "plan/TxtWzFixedLines.h"

#include "HostFramework/Text.h"
#include "reading/FixedFields.h"
#include "source/QANT_TextWizardSrc.h"

namespace textwizard {

TxtWzFixedLines::TxtWzFixedLines() { settings.arrangement = kFixedColumns; }

int TxtWzFixedLines::SetDataSource(QANT_TextWizardSrc* source) {
  ImportSettings given = source->settings();
  given.recordsPerCase = settings.recordsPerCase;
  source->SetSettings(given);
  return 1;
}

bool TxtWzFixedLines::GetVarBuffer(char* out, const TxtWzVar* variable, const char* record) const {
  *out = '\0';
  std::string_view field;
  if (!record || !CutFixedField(record, *variable, field)) return false;
  QANTMBstrncpy_A(out, field.data(), field.size());
  return true;
}

}  // namespace textwizard
