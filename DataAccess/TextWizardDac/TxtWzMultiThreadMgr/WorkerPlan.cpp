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

// A batch holds whole cases, so that it takes the memory of one at least.
constexpr std::uint32_t kMostRecordsPerCase = 1000;

void TakeCells(const TxtWzVar& variable, const QANT_Variable& target, FieldTask& task) {
  task.formatType = variable.formatType;
  task.offset = target.ObsIndex() * sizeof(OBS);
  if (variable.formatType != kFormatA) {
    task.use = FieldUse::kNumber;
    return;
  }
  task.use = FieldUse::kString;
  task.cellWidth = static_cast<std::uint32_t>(target.GetType());
  task.cellBytes = (task.cellWidth + 7) / 8 * 8;
}

}  // namespace

WorkerPlan::WorkerPlan(const ImportSource& src)
    : source(src), fieldRules(src.settings()), caseBytes(src.GetObsAreaSize()) {
  stringRules.leadingSpaces = src.settings().leadingSpaces;
  stringRules.enclosedFitsUnmarked = true;
}

bool WorkerPlan::Converts(const ImportSource& source) {
  const ImportSettings& settings = source.settings();
  switch (settings.arrangement) {
    case kDelimitedLines:
      return true;
    case kDelimitedCount:
      return !source.variables().empty();
    case kFixedColumns:
      return settings.recordsPerCase > 0 && settings.recordsPerCase <= kMostRecordsPerCase;
  }
  return false;
}

void WorkerPlan::Convert(bool anyArrangement) {
  const ImportSettings& settings = source.settings();
  caseIsLine = settings.arrangement == kDelimitedLines || !anyArrangement;
  keepsEmpty = settings.arrangement == kFixedColumns && !caseIsLine;
  if (!caseIsLine) {
    if (keepsEmpty) recordsPerCase = settings.recordsPerCase;
    // On one thread such a field is counted as any other.
    stringRules.enclosedFitsUnmarked = false;
  }
  variableCount = source.variables().size();
  // A case without a cell takes none.
  const std::size_t bytes = std::max(caseBytes, sizeof(OBS));
  const std::size_t cases = std::max<std::size_t>(1, kCaseArrayBudget / bytes);
  if (settings.arrangement == kDelimitedCount && !caseIsLine) {
    fieldsPerCase = variableCount;
    maxFields = cases * fieldsPerCase;
  } else {
    maxRecords = static_cast<std::uint32_t>(cases * recordsPerCase);
  }
  clearCases = true;
  if (caseIsLine && settings.arrangement != kDelimitedLines) return;
  std::size_t stored = 0;
  std::size_t column = 0;
  for (std::uint32_t i = 0; i < variableCount; ++i) {
    const TxtWzVar& variable = *source.variables()[i];
    FieldTask task;
    task.variable = i;
    if (variable.formatType != kFormatSkip && column < source.GetNVariables()) {
      TakeCells(variable, *source.GetVariable(column++), task);
    }
    if (settings.arrangement != kFixedColumns) {
      fields.push_back(task);
      stored += task.use != FieldUse::kDiscard ? 1 : 0;
    } else if (task.use != FieldUse::kDiscard) {
      const std::uint32_t line = variable.recordNumber;
      columns.push_back({task, line, FixedColumn(variable)});
      stored += line > 0 && line <= recordsPerCase ? 1 : 0;
      unreachable += line > recordsPerCase ? 1 : 0;
    }
  }
  std::stable_sort(columns.begin(), columns.end(),
                   [](const ColumnTask& a, const ColumnTask& b) { return a.line < b.line; });
  clearCases = stored < source.GetNVariables();
}

void WorkerPlan::TakeNulls(const std::vector<std::string>& texts) {
  const auto mayBeValue = [](const std::string& text, std::uint32_t format) {
    double value = 0;
    return text.find_first_of("0123456789") != std::string::npos ||
           ConvertNumber(text, format, &value) || ConvertNumber(" " + text + " ", format, &value);
  };
  const auto take = [&](FieldTask& task) {
    if (task.use != FieldUse::kNumber) return;
    task.nullsAreValues = std::any_of(texts.begin(), texts.end(), [&](const std::string& text) {
      return mayBeValue(text, task.formatType);
    });
  };
  std::for_each(fields.begin(), fields.end(), take);
  std::for_each(columns.begin(), columns.end(), take);
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

void WorkerPlan::DetectColumns(const std::vector<TxtWzVar*>& variables, KnownStates& states) {
  detection = true;
  keepsEmpty = true;
  known = &states;
  detectionRules = DetectionRules(source.settings(), DetectionPass::kSampling);
  variableCount = variables.size();
  std::uint32_t reach = 0;
  for (std::uint32_t i = 0; i < variables.size(); ++i) {
    reach = std::max(reach, variables[i]->startColumn);
    if (variables[i]->formatType != kFormatAuto) continue;
    autoVariables.push_back(i);
    columnNumbers.push_back(static_cast<std::uint32_t>(columnNumbers.size()));
    detectedColumns.push_back({variables[i]->startColumn, reach});
  }
}

}  // namespace textwizard
