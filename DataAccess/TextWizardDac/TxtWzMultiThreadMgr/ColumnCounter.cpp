#include "TxtWzMultiThreadMgr/ColumnCounter.h"

#include "reading/ImportSource.h"
#include "reading/QANT_TextWizardIterator.h"

namespace textwizard {

ColumnCounter::ColumnCounter(const WorkerPlan& plan)
    : fPlan(plan),
      fCounters(fRegEx, plan.detectionRules),
      fDecoder(plan.source.settings().encoding) {}

bool ColumnCounter::Count(const RecordBatch& records, const std::vector<std::uint32_t>& columns,
                          CaseBatch& result) {
  const std::size_t count = fPlan.detectedColumns.size();
  if (result.begun.size() != count) return false;
  result.counters.resize(count);
  if (fPlan.evidence) result.evidence.resize(count);
  for (const std::uint32_t column : columns) {
    result.counters[column].ClearAllValues();
    result.begun[column].Put(result.counters[column]);
    if (fPlan.evidence) result.evidence[column].Clear();
  }
  if (fPlan.keepsPlaces) fPlaces.Start(records.places(), records.text());
  fRecords.Start(records);
  for (std::uint32_t left = records.recordCount(); left > 0; --left) {
    const std::string_view raw = fRecords.Next();
    const std::string_view record = records.decoded() ? raw : fDecoder.Decode8(raw);
    // A host's text of a case that says so has ever been its end.
    if (record == kEndOfDataText) return false;
    if (fPlan.keepsPlaces) fPlaces.Step(raw);
    fPlan.evidence ? CountRecord<true>(record, columns, result)
                   : CountRecord<false>(record, columns, result);
  }
  if (fPlan.keepsPlaces) result.runLines = fPlaces.runLines();
  return true;
}

template <bool kWatched>
inline void ColumnCounter::CountRecord(std::string_view record,
                                       const std::vector<std::uint32_t>& columns,
                                       CaseBatch& result) {
  for (const std::uint32_t column : columns) {
    const DetectedColumn& place = fPlan.detectedColumns[column];
    // Nor has it anything of those behind it in the list.
    if (record.size() < place.reach) return;
    TxtWzVar& counters = result.counters[column];
    const std::string_view field = record.substr(place.start, counters.width);
    if (field.empty()) {
      if constexpr (kWatched) result.evidence[column].AddEmpty();
      continue;
    }
    const CountedAs as = fCounters.Count(field, counters);
    if constexpr (kWatched) {
      DetectionEvidence& evidence = result.evidence[column];
      if (!evidence.Takes(field, as, fCounters)) {
        evidence.Add(field, as, fPlaces.place().line, fCounters);
      }
    }
  }
}

}  // namespace textwizard
