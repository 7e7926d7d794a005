#include <cstring>

#include "HostFramework/Text.h"
#include "plan/TxtWzExecFile.h"
#include "source/QANT_TextWizardSrc.h"

namespace textwizard {
namespace {

// True when the character at `text`, `length` bytes long, is one of `set`'s.
bool IsOneOf(const char* text, int length, const std::string& set) {
  std::uint32_t wanted = 0;
  if (QANTMBU32Get_A(&wanted, text, 0, length) <= 0) return false;
  const char* p = set.c_str();
  while (*p != '\0') {
    std::uint32_t ch = 0;
    const int step = QANTMBmbclen_A(p);
    if (QANTMBU32Get_A(&ch, p, 0, step) > 0 && ch == wanted) return true;
    p += step;
  }
  return false;
}

}  // namespace

TxtWzDlmLines::TxtWzDlmLines() { settings.arrangement = kDelimitedLines; }

TxtWzDlmCount::TxtWzDlmCount() { settings.arrangement = kDelimitedCount; }

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
  lastWasDelimiter_ = *p != ' ' && IsOneOf(p, delimiter, settings.delimiters);
  p += delimiter;
  return true;
}

}  // namespace textwizard
