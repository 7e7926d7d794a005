#include "TxtWzMultiThreadMgr/WorkerPlan.h"

#include <algorithm>

#include "model/FormatCode.h"
#include "reading/ImportSource.h"

namespace textwizard {
namespace {

// Room for the cases of one batch. Wide strings make cases that are thousands of times longer than
// their records; without a bound the cases of one batch text could take gigabytes. Which records
// share a batch does not change a case.
constexpr std::size_t kCaseArrayBudget = std::size_t{4} << 20;

}  // namespace

WorkerPlan::WorkerPlan(const ImportSource& src)
    : source(src), fieldRules(src.settings()), caseBytes(src.GetObsAreaSize()) {
  stringRules.leadingSpaces = src.settings().leadingSpaces;
  stringRules.enclosedFitsUnmarked = true;
}

void WorkerPlan::Convert() {
  variableCount = source.variables().size();
  if (caseBytes > 0) {
    maxRecords = static_cast<std::uint32_t>(std::max<std::size_t>(1, kCaseArrayBudget / caseBytes));
  }
  clearCases = true;
  if (source.settings().arrangement != kDelimitedLines) return;
  fields.reserve(variableCount);
  std::size_t column = 0;
  for (std::uint32_t i = 0; i < variableCount; ++i) {
    const TxtWzVar& variable = *source.variables()[i];
    FieldTask& task = fields.emplace_back();
    task.variable = i;
    if (variable.formatType == kFormatSkip || column == source.GetNVariables()) continue;
    const QANT_Variable& target = *source.GetVariable(column++);
    task.formatType = variable.formatType;
    task.offset = target.ObsIndex() * sizeof(OBS);
    if (variable.formatType == kFormatA) {
      task.use = FieldUse::kString;
      task.cellWidth = static_cast<std::uint32_t>(target.GetType());
      task.cellBytes = (task.cellWidth + 7) / 8 * 8;
    } else {
      task.use = FieldUse::kNumber;
    }
  }
  clearCases = column < source.GetNVariables();
}

void WorkerPlan::TakeNulls(const std::vector<std::string>& texts) {
  const auto mayBeValue = [](const std::string& text, std::uint32_t format) {
    double value = 0;
    return text.find_first_of("0123456789") != std::string::npos ||
           ConvertNumber(text, format, &value) || ConvertNumber(" " + text + " ", format, &value);
  };
  for (FieldTask& task : fields) {
    if (task.use != FieldUse::kNumber) continue;
    task.nullsAreValues = std::any_of(texts.begin(), texts.end(), [&](const std::string& text) {
      return mayBeValue(text, task.formatType);
    });
  }
}

void WorkerPlan::Detect(TxtWzVar* const* variables, std::size_t count) {
  detection = true;
  variableCount = count;
  fields.reserve(count);
  for (std::uint32_t i = 0; i < count; ++i) {
    FieldTask& task = fields.emplace_back();
    task.variable = i;
    if (variables[i]->formatType != kFormatAuto) continue;
    task.use = FieldUse::kDetect;
    autoVariables.push_back(i);
  }
}

}  // namespace textwizard
