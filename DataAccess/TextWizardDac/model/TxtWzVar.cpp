#include "model/TxtWzVar.h"

#include "HostFramework/Text.h"

namespace textwizard {

TxtWzVar::TxtWzVar() { ClearAllValues(); }

TxtWzVar::~TxtWzVar() = default;

void TxtWzVar::ClearAllValues() {
  startColumn = recordNumber = width = maxStringLength = formatType = 0;
  decimals = 0;
  name.clear();
  upperName.clear();
  stringCount = numericCount = dateCount = percentCount = dollarCount = commaCount = dotCount = 0;
  dateKey = 0;
  hasExponent = missingStored = stringTruncated = false;
}

void TxtWzVar::SetVarName(const char* newName) {
  name = newName;
  upperName = name;
  QANTMBstrupr_A(upperName.data());
}

}  // namespace textwizard
