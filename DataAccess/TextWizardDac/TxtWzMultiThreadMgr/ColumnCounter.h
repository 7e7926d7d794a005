// A worker's part in the detection of fixed columns: a batch of records into counters. What a value
// is counted as depends on the values before it (detection/SamplingState.h). A worker supposes that
// the state at its batch's begin is the latest one that is known, which nearly always is so, since
// a state hardly changes behind the first records; whoever adds the batches up knows whether it was
// (ColumnDetection.h).
#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "HostFramework/Threads.h"
#include "TxtWzMultiThreadMgr/CaseBatch.h"
#include "TxtWzMultiThreadMgr/RecordBatch.h"
#include "TxtWzMultiThreadMgr/WorkerPlan.h"
#include "detection/DetectionCounters.h"
#include "detection/RegExMappings.h"
#include "detection/SamplingState.h"
#include "reading/RecordDecoder.h"
#include "watch/RecordPlaces.h"

namespace textwizard {

// The latest states that are known, one for each column. Any thread.
class KnownStates {
 public:
  void Set(const std::vector<SamplingState>& states) SF_EXCLUDES(fMutex) {
    const sfGuard guard(fMutex);
    fStates = states;
  }
  // Copies them to `states`.
  void Get(std::vector<SamplingState>& states) SF_EXCLUDES(fMutex) {
    const sfGuard guard(fMutex);
    states = fStates;
  }

 private:
  sfMutex fMutex;
  std::vector<SamplingState> fStates SF_GUARDED_BY(fMutex);
};

// One thread; the plan outlives it and detects columns.
class ColumnCounter {
 public:
  explicit ColumnCounter(const WorkerPlan& plan);

  // Counts the `columns` (indices among the plan's detectedColumns) of all records, from the states
  // `result.begun` on, into the counters and the evidence of the result; others are left as they
  // are. False when a record says that the pass over one after another would end with it, or when
  // there is nothing to count by.
  bool Count(const RecordBatch& records, const std::vector<std::uint32_t>& columns,
             CaseBatch& result);

 private:
  template <bool kWatched>
  void CountRecord(std::string_view record, const std::vector<std::uint32_t>& columns,
                   CaseBatch& result);

  const WorkerPlan& fPlan;
  const RegExMappings fRegEx;
  DetectionCounters fCounters;
  RecordDecoder fDecoder;
  BatchRecords fRecords;
  PlaceWalk fPlaces;
};

}  // namespace textwizard
