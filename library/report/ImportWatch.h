// Watches the reading of one import for the program: its problems, its ledger, its digest.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "HostFramework/ImportObserver.h"
#include "library/report/BatchUser.h"
#include "library/report/Digest.h"
#include "library/report/PassAccount.h"
#include "library/report/ProblemWriter.h"
#include "library/report/RejectsFile.h"

namespace library {

// The texts that mean a missing number unless a person names others.
const std::vector<std::string>& DefaultNullTexts();

// What the host wants of its watch; constant but for `oneThread`.
struct WatchSettings {
  // Problems that are told one by one, at most; all are counted.
  std::int64_t problemLimit = 0;
  bool rejects = false;
  bool evidence = false;
  bool digest = false;
  // Keeps what a second pass is compared with, of as many problems.
  bool trail = false;
  // The host keeps a share of the cases and says of each whether it is kept. Cases then come one by
  // one; problems, cells, digest and numbers are those of the kept ones.
  bool sampled = false;
  bool keepStrayQualifiers = false;
  // Texts that mean a missing number.
  std::vector<std::string> nullTexts = DefaultNullTexts();
};

// Outlives the data source and its iterators. What is told of a pass that did not end is not asked
// for: destroy the iterator first. Host's thread, but for what ImportObserver says otherwise.
class ImportWatch final : public ImportObserver {
 public:
  explicit ImportWatch(WatchSettings settings);

  // Gets all batches, in this order; before the first iterator is made. Outlives it. Cases come by
  // the batch when there is one who uses them.
  void Use(BatchUser& user) { users_.push_back(&user); }

  // Where a pass writes, each may be null; they outlive the pass.
  struct Outputs {
    ProblemWriter* problems = nullptr;
    RejectsFile* rejects = nullptr;
  };
  // Before a pass: of the source's cases, on the host's thread alone where `oneThread`.
  void Prepare(const QANT_DataSource& source, const Outputs& outputs, bool oneThread = false);

  // Where the host samples: what becomes of the case that Next delivered.
  void Keep(const OBS* obs);
  void Drop();

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
  bool WantsCellsPerCase() const override { return settings_.sampled; }
  bool WantsEvidence() const override { return settings_.evidence; }
  bool WantsBatches() const override;
  bool ReadsOnOneThread() const override { return oneThread_; }
  const std::vector<std::string>& NullTexts() const override { return settings_.nullTexts; }
  bool KeepsStrayQualifiers() const override { return settings_.keepStrayQualifiers; }

  void OnEvidence(std::size_t variable, const ImportEvidence& evidence) override;
  void OnPassBegin() override;
  void OnProblem(const ImportProblem& problem) override;
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

  void TakeProblem(const ImportProblem& problem);
  void TakeCaseSpan(const ImportCaseSpan& span);

  const WatchSettings settings_;
  std::vector<BatchUser*> users_;
  std::vector<std::optional<ImportEvidence>> evidence_;

  const QANT_DataSource* source_ = nullptr;
  Outputs outputs_;
  bool oneThread_ = false;
  std::unique_ptr<DigestMaker> digests_;      // of batches
  std::unique_ptr<CaseDigester> keptDigest_;  // of kept cases
  HeldCase held_;
  std::int64_t kept_ = 0;
  PassAccount account_;
};

}  // namespace library
