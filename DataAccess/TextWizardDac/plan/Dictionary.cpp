// From the plan's variables to those of the host's data source.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <utility>
#include <vector>

#include "HostFramework/DataSource.h"
#include "HostFramework/Messages.h"
#include "TxtWzMultiThreadMgr/ColumnDetection.h"
#include "TxtWzMultiThreadMgr/QANT_TextWizardMultiThreadedIterator.h"
#include "detection/DetectionEvidence.h"
#include "detection/SamplingPass.h"
#include "detection/TypeSettling.h"
#include "model/FormatCode.h"
#include "plan/TxtWzExecFile.h"
#include "reading/QANT_TextWizardIterator.h"
#include "source/QANT_TextWizardSrc.h"

namespace textwizard {

namespace {

using Slots = std::vector<TxtWzVar*>;

bool AnyToDetect(const Slots& slots) {
  return std::any_of(slots.begin(), slots.end(),
                     [](const TxtWzVar* variable) { return variable->formatType == kFormatAuto; });
}

}  // namespace

int TxtWzExecFile::SetDictionary(QANT_DataSource* source) {
  // The width of a variable in fixed columns does two things: it says where the field ends, and how
  // wide the format is. Detection and normalising speak of the format; the field ends where the
  // command said (docs/decisions.md).
  std::vector<std::uint32_t> columnWidths;
  columnWidths.reserve(slots_.size());
  for (const TxtWzVar* slot : slots_) columnWidths.push_back(slot->width);

  std::vector<DetectionEvidence> evidence;
  if (AnyToDetect(slots_) && !DetectTypes(source, evidence)) return 0;

  for (std::size_t k = 0; k < slots_.size(); ++k) {
    TxtWzVar& variable = *slots_[k];
    if (variable.formatType == kFormatAuto) {
      if (!evidence.empty()) Tell(evidence[k], variable, *source);
      SettleType(variable, settings.dataTypeMinPercentage, patterns_);
      // From here on the flags speak of the values that are stored. What detection noted in them
      // has served its purpose; its counters stay.
      variable.missingStored = variable.stringTruncated = false;
    }
    const bool inColumns = settings.arrangement == kFixedColumns;
    if (inColumns && variable.formatType == kFormatA) variable.width = columnWidths[k];
    NormaliseFormat(variable);
    DefineVariable(source, variable, settings.encoding);
    if (inColumns) variable.width = columnWidths[k];
  }
  return 1;
}

bool TxtWzExecFile::DetectTypes(QANT_DataSource* source, std::vector<DetectionEvidence>& evidence) {
  auto* const textSource = dynamic_cast<QANT_TextWizardSrc*>(source);
  if (!textSource) return true;
  const ImportObserver* const observer = textSource->observer();
  if (observer && observer->WantsEvidence()) evidence.resize(slots_.size());
  // An iterator over a fixed number of values per case ends a case by the source's variables.
  GiveVariables(*textSource);
  const std::unique_ptr<QANT_InputCaseIterator> iterator(
      textSource->MakeAutoDetectIterator(nullptr));
  if (!iterator) return true;
  iterator->Seek(0);
  if (auto* const threaded = dynamic_cast<QANT_TextWizardMultiThreadedIterator*>(iterator.get())) {
    // Interrupted, it leaves what was counted so far, which then decides.
    threaded->PerformAutoDetection(slots_.data(), slots_.size(),
                                   evidence.empty() ? nullptr : evidence.data());
    return true;
  }
  auto* const single = dynamic_cast<QANT_TextWizardIterator*>(iterator.get());
  if (!single) return true;
  single->Seek(0);
  QantErrorMonitor monitor(errorMonitorHandle);
  monitor.SetContext(errorContext);
  if (!textSource->DetectsOnOneThread() && ColumnDetection::Detects(*textSource)) {
    using Outcome = ColumnDetection::Outcome;
    const Outcome outcome = ColumnDetection(*textSource, *single, slots_, monitor,
                                            evidence.empty() ? nullptr : evidence.data())
                                .Run();
    if (outcome != Outcome::kFailed) return outcome == Outcome::kDone;
  }
  return SamplingPass(*single, settings, slots_, patterns_, monitor,
                      evidence.empty() ? nullptr : evidence.data())
      .Run();
}

// The variable is the next that is made.
void TxtWzExecFile::Tell(const DetectionEvidence& evidence, const TxtWzVar& variable,
                         const QANT_DataSource& source) const {
  const auto* const textSource = dynamic_cast<const QANT_TextWizardSrc*>(&source);
  if (!textSource) return;
  textSource->observer()->OnEvidence(source.GetNVariables(), evidence.Told(variable, patterns_));
}

}  // namespace textwizard
