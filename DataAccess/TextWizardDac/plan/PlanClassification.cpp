// The plan's tests of one value: calls into the units of detection.

#include <string>
#include <string_view>

#include "detection/BlankTrim.h"
#include "detection/NumericRule.h"
#include "detection/ValueClassifier.h"
#include "detection/VariableWidening.h"
#include "plan/TxtWzExecFile.h"

namespace textwizard {

std::string TxtWzExecFile::TrimLeft(const std::string& value) {
  return std::string(textwizard::TrimLeft(value));
}

std::string TxtWzExecFile::TrimRight(const std::string& value) {
  return std::string(textwizard::TrimRight(value));
}

bool TxtWzExecFile::IsEmptyString(const std::string& value) { return IsBlank(value); }

bool TxtWzExecFile::IsNumeric(const std::string& value) const {
  return NumericRule().Accepts(value);
}

bool TxtWzExecFile::IsPercentage(const std::string& value) const {
  return ValueClassifier(patterns_, settings.arrangement).Is(NumberForm::kPercentage, value);
}

bool TxtWzExecFile::IsDollar(const std::string& value) const {
  return ValueClassifier(patterns_, settings.arrangement).Is(NumberForm::kDollar, value);
}

bool TxtWzExecFile::IsComma(const std::string& value) const {
  return ValueClassifier(patterns_, settings.arrangement).Is(NumberForm::kComma, value);
}

bool TxtWzExecFile::IsDot(const std::string& value) const {
  return ValueClassifier(patterns_, settings.arrangement).Is(NumberForm::kDot, value);
}

int TxtWzExecFile::IsDateTime(const std::string& value) const {
  return ValueClassifier(patterns_, settings.arrangement).IsDateTime(value);
}

void TxtWzExecFile::UpdateVarSizes(int slot, const std::string& value,
                                   const std::string& decimalChars) {
  if (slot < 0 || static_cast<std::size_t>(slot) >= slots_.size()) return;
  textwizard::UpdateVarSizes(*slots_[static_cast<std::size_t>(slot)], value, decimalChars,
                             settings.arrangement);
}

}  // namespace textwizard
