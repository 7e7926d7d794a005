// Stands between the component and a host's observer, and hands on all that it is asked and told.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "HostFramework/ImportObserver.h"

namespace library {

// A base: whoever derives from it overrides what it tells otherwise. Threads as those of
// ImportObserver.
class ForwardingObserver : public ImportObserver {
 public:
  // `observer` may be null, for a host that wants nothing; it outlives this object.
  explicit ForwardingObserver(ImportObserver* observer)
      : observer_(observer != nullptr ? *observer : none_) {}
  ForwardingObserver(const ForwardingObserver&) = delete;
  ForwardingObserver& operator=(const ForwardingObserver&) = delete;

  bool WantsProblems() const override { return observer_.WantsProblems(); }
  std::int64_t ProblemLimit() const override { return observer_.ProblemLimit(); }
  bool WantsProblemCases() const override { return observer_.WantsProblemCases(); }
  bool WantsCellsPerCase() const override { return observer_.WantsCellsPerCase(); }
  bool WantsEvidence() const override { return observer_.WantsEvidence(); }
  bool WantsBatches() const override { return observer_.WantsBatches(); }
  bool ReadsOnOneThread() const override { return observer_.ReadsOnOneThread(); }
  const std::vector<std::string>& NullTexts() const override { return observer_.NullTexts(); }
  bool KeepsStrayQualifiers() const override { return observer_.KeepsStrayQualifiers(); }

  void OnEvidence(std::size_t variable, const ImportEvidence& evidence) override {
    observer_.OnEvidence(variable, evidence);
  }
  void OnPassBegin() override { observer_.OnPassBegin(); }
  void OnProblem(const ImportProblem& problem) override { observer_.OnProblem(problem); }
  void OnProblemCase(const ImportCaseSpan& span) override { observer_.OnProblemCase(span); }
  void OnSpan(const ImportSpan& span) override { observer_.OnSpan(span); }
  void OnCells(const ImportCellCounts& cells) override { observer_.OnCells(cells); }
  void OnProblemCounts(const ImportProblemCount* counts, std::size_t count) override {
    observer_.OnProblemCounts(counts, count);
  }
  void OnPassEnd(const ImportPassEnd& end) override { observer_.OnPassEnd(end); }
  std::unique_ptr<ImportBatchProduct> MakeProduct(const OBS* cases, std::size_t count,
                                                  std::int64_t firstCase) override {
    return observer_.MakeProduct(cases, count, firstCase);
  }
  void OnProduct(std::unique_ptr<ImportBatchProduct> product, const OBS* cases, std::size_t count,
                 std::int64_t firstCase) override {
    observer_.OnProduct(std::move(product), cases, count, firstCase);
  }

 protected:
  ImportObserver& observer() { return observer_; }
  const ImportObserver& observer() const { return observer_; }

 private:
  ImportObserver none_;
  ImportObserver& observer_;
};

}  // namespace library
