// Watches the reading of one import for the program: its problems and its ledger, and hands its
// cases to whoever takes them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <exception>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "HostFramework/ImportObserver.h"
#include "library/outputs/CaseSink.h"
#include "library/report/PassAccount.h"
#include "library/report/ProblemSink.h"
#include "library/report/RejectsFile.h"

namespace library {

// The texts that mean a missing number unless a person names others.
const std::vector<std::string>& DefaultNullTexts();
// Texts in the host's encoding.
std::vector<std::string> HostTexts(const std::vector<std::string>& utf8);

// What the host wants of its watch; constant.
struct WatchSettings {
  // Problems that are told one by one, at most; all are counted.
  std::int64_t problemLimit = 0;
  bool rejects = false;
  bool evidence = false;
  // Keeps what a second pass is compared with, of as many problems.
  bool trail = false;
  bool keepStrayQualifiers = false;
  // Texts that mean a missing number.
  std::vector<std::string> nullTexts = DefaultNullTexts();
};

// Outlives the data source and its iterators. What is told of a pass that did not end is not asked
// for: destroy the iterator first. Host's thread, but for what ImportObserver says otherwise.
class ImportWatch final : public ImportObserver {
 public:
  explicit ImportWatch(WatchSettings settings);

  // Gets all cases that are delivered, or kept; before the iterator is made. Outlives the pass.
  void Use(CaseSink& sink) { sinks_.push_back(&sink); }
  // From now on nobody gets cases.
  void UseNone() { sinks_.clear(); }

  // Where a pass writes; they outlive the pass. Null: no rejects.
  struct Outputs {
    std::vector<ProblemSink*> problems = {};
    RejectsFile* rejects = nullptr;
  };
  // How a pass is read.
  struct Mode {
    // Cases come by the batch where there is a sink; else one by one, and the host hands them on
    // by Keep.
    bool batches = false;
    // The host keeps a share of the cases and says of each whether it is kept. No batches then;
    // problems, cells and numbers are those of the kept ones.
    bool sampled = false;
    // On the host's thread alone.
    bool oneThread = false;
  };
  // Before the iterator of a pass over the source's cases is made.
  void Prepare(const QANT_DataSource& source, const Outputs& outputs, const Mode& mode);

  // Where cases come one by one: the host keeps the case that Next delivered, or does not. Kept
  // cases are gathered, and gone to the sinks once the pass has ended.
  void Keep(const OBS* obs);
  void Drop();
  // False where neither needs to be called.
  bool TakesCases() const { return mode_.sampled || !sinks_.empty(); }

  // Cases that were handed to sinks, or kept, so far.
  std::int64_t cases() const { return cases_; }
  // Bytes of the file that the cases so far, and what lies between them, account for.
  std::int64_t bytes() const { return bytes_; }
  // Time that the host's thread spent with the sinks.
  double sinkSeconds() const { return sinkSeconds_; }
  // A sink could not take its cases: nobody gets more, and the pass should be given up.
  bool failed() const { return failure_ != nullptr; }
  // Throws what the sink threw; nothing where none did.
  void Rethrow() const {
    if (failure_ != nullptr) std::rethrow_exception(failure_);
  }

  // What the last pass came to, once it has ended.
  const PassAccount& account() const { return account_; }
  PassAccount TakeAccount() { return std::move(account_); }
  // What detection saw of variable `index`; null for one whose type was declared.
  const ImportEvidence* EvidenceOf(std::size_t index) const {
    return index < evidence_.size() && evidence_[index] ? &*evidence_[index] : nullptr;
  }

  bool WantsProblems() const override { return true; }
  std::int64_t ProblemLimit() const override;
  bool WantsProblemCases() const override { return settings_.rejects; }
  bool WantsCellsPerCase() const override { return mode_.sampled; }
  bool WantsEvidence() const override { return settings_.evidence; }
  bool WantsBatches() const override;
  bool ReadsOnOneThread() const override { return mode_.oneThread; }
  const std::vector<std::string>& NullTexts() const override { return settings_.nullTexts; }
  bool KeepsStrayQualifiers() const override { return settings_.keepStrayQualifiers; }

  void OnEvidence(std::size_t variable, const ImportEvidence& evidence) override;
  void OnPassBegin() override;
  void OnProblem(const ImportProblem& problem) override { OnProblems(&problem, 1); }
  void OnProblems(const ImportProblem* problems, std::size_t count) override;
  void OnProblemCase(const ImportCaseSpan& span) override;
  void OnSpan(const ImportSpan& span) override;
  void OnCells(const ImportCellCounts& cells) override;
  void OnProblemCounts(const ImportProblemCount* counts, std::size_t count) override;
  void OnPassEnd(const ImportPassEnd& end) override;
  std::unique_ptr<ImportBatchProduct> MakeProduct(const OBS* cases, std::size_t count,
                                                  std::int64_t firstCase) override;
  void OnProduct(std::unique_ptr<ImportBatchProduct> product, const OBS* cases, std::size_t count,
                 std::int64_t firstCase) override;

 private:
  // What was told of a case before the host said whether it is kept.
  struct HeldCase {
    struct Problem {
      ImportProblem problem;
      std::string text;
    };
    std::vector<Problem> problems;
    std::size_t count = 0;  // of `problems`, which are reused
    std::optional<ImportCaseSpan> span;
    ImportCellCounts cells;
  };

  void TakeProblems(const ImportProblem* problems, std::size_t count);
  // What a sink throws is kept: an observer throws nothing.
  template <typename Work>
  void Guarded(Work work);
  void TakeCaseSpan(const ImportCaseSpan& span);
  void Gather(const OBS* obs);
  void HandOnGathered();
  // What the sinks make of a batch, in their order.
  using Parts = std::vector<std::unique_ptr<CasePart>>;
  Parts MakeParts(const OBS* cases, std::size_t count, std::int64_t firstCase) const;
  void TakeParts(Parts parts);
  // The same, with the time that it takes.
  template <typename Work>
  void WithSinks(Work work);

  const WatchSettings settings_;
  std::vector<CaseSink*> sinks_;
  std::vector<std::optional<ImportEvidence>> evidence_;

  const QANT_DataSource* source_ = nullptr;
  Outputs outputs_;
  Mode mode_;
  HeldCase held_;
  std::int64_t cases_ = 0;
  std::int64_t bytes_ = 0;
  // Kept cases that wait for the sinks.
  std::vector<OBS> gathered_;
  std::size_t gatheredCases_ = 0;
  std::exception_ptr failure_;
  double sinkSeconds_ = 0;
  PassAccount account_;
};

}  // namespace library
