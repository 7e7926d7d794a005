#include "plan/TxtWzDelimiters.h"

#include <cstring>

#include "HostFramework/Text.h"
#include "reading/FieldRules.h"
#include "source/QANT_TextWizardSrc.h"

namespace textwizard {
void TxtWzDelimiters::SetDelimiters(const char* delimiters) {
  if (delimitersSet_) return;
  delimitersSet_ = true;
  settings.delimiters = delimiters;
}

int TxtWzDelimiters::SetDataSource(QANT_TextWizardSrc* source) {
  ImportSettings given = source->settings();
  given.delimiters = settings.delimiters;
  source->SetSettings(given);
  return 1;
}

bool TxtWzDelimiters::GetNextVar(char* out, char** cursor) {
  *out = '\0';
  if (!cursor || !*cursor || **cursor == '\0') return false;
  const char* delimiters = settings.delimiters.c_str();
  char*& p = *cursor;
  std::size_t length = QANTMBstrcspn_A(p, delimiters);
  if (length == 0 && *p == ' ') {
    // A run of blanks that are delimiters counts as one; behind another delimiter it is not even
    // that, and the field follows it.
    while (p[1] == ' ') ++p;
    if (p[1] == '\0') {
      ++p;
      return false;
    }
    if (lastWasDelimiter_) {
      ++p;
      length = QANTMBstrcspn_A(p, delimiters);
    }
  }
  std::memcpy(out, p, length);
  out[length] = '\0';
  p += length;
  if (*p == '\0') return true;
  const int delimiter = QANTMBmbclen_A(p);
  lastWasDelimiter_ =
      *p != ' ' && HoldsCharacter(settings.delimiters, {p, static_cast<std::size_t>(delimiter)});
  p += delimiter;
  return true;
}

}  // namespace textwizard
