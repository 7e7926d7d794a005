// Tells a host that watches an import, which is read stretch after stretch, what it would be told
// of the file as a whole.
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "library/parts/Stretch.h"
#include "library/report/ForwardingObserver.h"

namespace library {

// Stands between the component and the host's observer. Several passes, one for each stretch and in
// their order, are one to the host: cases, lines and offsets are those of the file, counts are of
// all stretches. Threads as those of ImportObserver.
class StretchObserver final : public ForwardingObserver {
 public:
  // `observer` may be null; it outlives this object.
  explicit StretchObserver(ImportObserver* observer) : ForwardingObserver(observer) {}

  // Before the first pass: what of the file is told, from `begin` to `end`, and the variables of
  // the source.
  struct Whole {
    std::int64_t begin = 0;
    std::int64_t end = 0;
    std::size_t variables = 0;
  };
  void Begin(const Whole& whole);
  // Before the iterator of a pass: it shows the stretch behind `headBytes` bytes and `headLines`
  // lines of its own. `isLast`: no more passes follow, and this is the end of the host's.
  struct Pass {
    Stretch stretch;
    std::int64_t headBytes = 0;
    std::int64_t headLines = 0;
    bool isLast = false;
  };
  void BeginPass(const Pass& pass);

  // Instead of passes, where there is nothing to read.
  void EndWithoutPass();

  // Whether the pass that ended was complete, so that the next one may begin.
  bool complete() const { return complete_; }

  std::int64_t ProblemLimit() const override;

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
  static std::size_t CodeOf(ImportProblemKind kind, std::int32_t variable) {
    return static_cast<std::size_t>(variable + 1) * kImportProblemKinds +
           static_cast<std::size_t>(kind);
  }
  // What the component is shown at an offset stands in the file so much farther on.
  std::int64_t byteShift() const { return pass_.stretch.begin - pass_.headBytes; }
  std::int64_t lineShift() const { return pass_.stretch.lines - pass_.headLines; }
  std::int64_t CaseShift(std::int64_t caseNumber) const {
    return caseNumber > 0 ? caseNumber + pass_.stretch.cases : 0;
  }
  void AddSpan(const ImportSpan& span);
  void TellSpan();
  void End();

  Whole whole_;
  Pass pass_;
  bool begun_ = false;
  bool ended_ = false;
  bool complete_ = true;

  // By kind and variable: how many there are, and whether one was told.
  std::vector<ImportProblemCount> counts_;
  std::vector<bool> told_;
  std::int64_t toldProblems_ = 0;
  ImportCellCounts cells_;
  ImportPassEnd end_;
  bool fixedColumns_ = false;
  std::vector<std::int64_t> textsBeyondColumn_;
  // The latest, which may go on; of no bytes when there is none.
  ImportSpan span_{};
  // Where the stretches told so far end.
  std::int64_t offset_ = 0;
};

}  // namespace library
