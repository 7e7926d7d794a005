#include "TxtWzMultiThreadMgr/ColumnDetection.h"

#include <algorithm>
#include <string>

#include "detection/SamplingPass.h"
#include "model/MessageText.h"

namespace textwizard {

bool ColumnDetection::Detects(const ImportSource& source) {
  const ImportSettings& settings = source.settings();
  return settings.arrangement == kFixedColumns && settings.recordsPerCase == 1 &&
         settings.caseLimit <= 0;
}

ColumnDetection::ColumnDetection(const ImportSource& source, QANT_InputCaseIterator& iterator,
                                 const std::vector<TxtWzVar*>& slots, ErrorMonitor& monitor,
                                 DetectionEvidence* evidence)
    : fSlots(slots),
      fMonitor(monitor),
      fEvidence(evidence),
      fManager(source, iterator, true, source.decimalCharacter()) {
  fManager.DetectColumns(slots, evidence != nullptr, fKnown);
  const WorkerPlan& plan = fManager.plan();
  for (const std::uint32_t slot : plan.autoVariables) {
    fStates.emplace_back(*slots[slot]);
    fCounters.emplace_back();
    fStates.back().Put(fCounters.back());
  }
  if (evidence) fAdded.resize(fStates.size());
  fKnown.Set(fStates);
}

ColumnDetection::Outcome ColumnDetection::Run() {
  const bool complete = fManager.TakeBatches(
      [this](const CaseBatch& batch, const RecordBatch& records) { return Take(batch, records); });
  if (!complete && !fInterrupted) return Outcome::kFailed;
  SamplingPass::ReportEnd(fMonitor);
  if (fInterrupted) return Outcome::kInterrupted;
  const std::vector<std::uint32_t>& slots = fManager.plan().autoVariables;
  for (std::size_t i = 0; i < slots.size(); ++i) {
    DetectionCounters::Merge(fCounters[i], *fSlots[slots[i]]);
    fStates[i].Put(*fSlots[slots[i]]);
    if (fEvidence) std::swap(fEvidence[slots[i]], fAdded[i]);
  }
  return Outcome::kDone;
}

bool ColumnDetection::Take(const CaseBatch& batch, const RecordBatch& records) {
  fOthers.clear();
  for (std::uint32_t i = 0; i < fStates.size(); ++i) {
    if (batch.begun[i] != fStates[i]) fOthers.push_back(i);
  }
  if (!fOthers.empty()) {
    if (!fCounter) fCounter = std::make_unique<ColumnCounter>(fManager.plan());
    fAgain.begun = fStates;
    if (!fCounter->Count(records, fOthers, fAgain)) return false;
    fRecounted += static_cast<std::int64_t>(fOthers.size());
  }
  bool changed = false;
  auto other = fOthers.begin();
  for (std::uint32_t i = 0; i < fStates.size(); ++i) {
    const bool again = other != fOthers.end() && *other == i;
    if (again) ++other;
    const CaseBatch& counted = again ? fAgain : batch;
    DetectionCounters::Merge(counted.counters[i], fCounters[i]);
    if (fEvidence) fAdded[i].Merge(counted.evidence[i], fLines);
    const SamplingState behind(counted.counters[i]);
    changed = changed || behind != fStates[i];
    fStates[i] = behind;
  }
  if (changed) fKnown.Set(fStates);
  fLines += batch.runLines;
  return ReportProgress(batch.recordCount());
}

// As a pass over one record after another does it.
bool ColumnDetection::ReportProgress(std::int64_t records) {
  constexpr std::int64_t kStep = SamplingPass::kProgressStep;
  const std::int64_t next = fRecords + 1;
  fRecords += records;
  for (std::int64_t step = next / kStep + 1; step <= (fRecords + 1) / kStep; ++step) {
    SamplingPass::ReportProgress(fMonitor, step * kStep);
    fMonitor.AttentionCheck(&fInterrupted);
    if (fInterrupted) return false;
  }
  return true;
}

}  // namespace textwizard
