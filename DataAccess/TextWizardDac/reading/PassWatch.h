// A pass of the single-thread iterator for a host that watches it: what is noted of the case or
// batch in hand, and who tells of it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include "HostFramework/ImportObserver.h"
#include "reading/CaseWatch.h"
#include "reading/ImportSource.h"
#include "reading/RecordReader.h"
#include "watch/PassTeller.h"
#include "watch/WatchedBatch.h"

namespace textwizard {

// One thread. All that it is given outlives it.
class PassWatch {
 public:
  PassWatch(ImportObserver& observer, const ImportSource& source, FieldSplitter& fields,
            RecordReader& reader);
  // Ends a pass that has not come to its end.
  ~PassWatch();
  PassWatch(const PassWatch&) = delete;
  PassWatch& operator=(const PassWatch&) = delete;

  CaseWatch& cases() { return cases_; }

  // See PassTeller.
  void Begin(std::int64_t markBytes, std::int64_t preambleEnd) {
    teller_.Begin(markBytes, preambleEnd);
  }
  // The pass goes on elsewhere than behind the latest case.
  void Leave();
  void StartBatch();
  // All cases of the batch are delivered.
  void Deliver(std::uint32_t cases, std::int64_t firstCase);
  // `dataEnded`: no case was left, rather than none allowed.
  void End(bool complete, bool dataEnded);

  // The record that the reader read last, with its host text.
  WatchedRecord Record(std::string_view text) const;

 private:
  RecordReader& reader_;
  NulRuns nuls_;
  WatchedBatch batch_;
  CaseWatch cases_;
  PassTeller teller_;
};

// Batches of cases that an iterator of one thread gathers for a host that wants them.
class CaseGatherer {
 public:
  CaseGatherer(ImportObserver& observer, std::size_t caseBytes);

  bool IsFull() const { return count_ == most_; }
  std::uint32_t count() const { return count_; }
  void Clear() { count_ = 0; }
  // Takes a copy of the case.
  void Add(const OBS* obs);
  // Gives the batch to the observer. Throws what its product does.
  void Deliver(std::int64_t firstCase) const;

 private:
  ImportObserver& observer_;
  const std::size_t cells_;
  const std::uint32_t most_;
  std::unique_ptr<OBS[]> cases_;
  std::uint32_t count_ = 0;
};

}  // namespace textwizard
