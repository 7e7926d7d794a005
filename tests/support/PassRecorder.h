// An observer that keeps all that it is told of a pass, to be compared with what was to be told.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "HostFramework/ImportObserver.h"
#include "tests/differential/NaiveWatch.h"

namespace whole {

// The wishes are set before the import is made. Keeps the latest pass.
class PassRecorder : public ImportObserver {
 public:
  bool WantsProblems() const override { return true; }
  std::int64_t ProblemLimit() const override { return problemLimit; }
  bool WantsProblemCases() const override { return true; }
  bool WantsCellsPerCase() const override { return cellsPerCase; }
  bool WantsBatches() const override { return batches; }
  const std::vector<std::string>& NullTexts() const override { return nullTexts; }
  bool KeepsStrayQualifiers() const override { return keepsStrayQualifiers; }

  void OnPassBegin() override;
  void OnProblem(const ImportProblem& problem) override;
  void OnProblemCase(const ImportCaseSpan& span) override;
  void OnSpan(const ImportSpan& span) override;
  void OnCells(const ImportCellCounts& counts) override;
  void OnProblemCounts(const ImportProblemCount* given, std::size_t count) override;
  void OnPassEnd(const ImportPassEnd& given) override;
  // Any thread.
  std::unique_ptr<ImportBatchProduct> MakeProduct(const OBS* cases, std::size_t count,
                                                  std::int64_t firstCase) override;
  void OnProduct(std::unique_ptr<ImportBatchProduct> product, const OBS* cases, std::size_t count,
                 std::int64_t firstCase) override;

  // What contradicts itself in what was told of the pass; empty when nothing does. `variables`:
  // those of the source.
  std::string Contradiction(std::int64_t cases, std::int64_t variables,
                            std::int64_t fileBytes) const;

  std::int64_t problemLimit = 1000000;
  bool cellsPerCase = true;
  bool batches = false;
  std::vector<std::string> nullTexts;
  bool keepsStrayQualifiers = false;
  // Bytes of a case, for batches.
  std::size_t caseBytes = 0;

  naive::Watched told;
  std::vector<ImportProblemCount> counts;
  ImportPassEnd end;
  int begun = 0;
  int ended = 0;
  // The cases of all batches of the pass.
  std::string bytes;
  std::int64_t batchCases = 0;
  // A call that came when it must not.
  std::string wrong;

 private:
  bool PassRuns(const char* call);
};

}  // namespace whole
