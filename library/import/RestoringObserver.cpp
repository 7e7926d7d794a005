#include "library/import/RestoringObserver.h"

#include <utility>

namespace library {

RestoringObserver::RestoringObserver(ImportObserver* observer, const ShownFile& file,
                                     bool keepStrayQualifiers)
    : observer_(observer != nullptr ? *observer : none_),
      file_(file),
      keepStrayQualifiers_(keepStrayQualifiers) {
  if (file.standIns() != nullptr) texts_.emplace(*file.standIns());
}

void RestoringObserver::SetSource(const QANT_DataSource& source) {
  if (file_.standIns() != nullptr) cases_.emplace(*file_.standIns(), source);
}

bool RestoringObserver::WantsProblems() const { return observer_.WantsProblems(); }
std::int64_t RestoringObserver::ProblemLimit() const { return observer_.ProblemLimit(); }
bool RestoringObserver::WantsProblemCases() const { return observer_.WantsProblemCases(); }
bool RestoringObserver::WantsCellsPerCase() const { return observer_.WantsCellsPerCase(); }
bool RestoringObserver::WantsEvidence() const { return observer_.WantsEvidence(); }
bool RestoringObserver::WantsBatches() const { return observer_.WantsBatches(); }
bool RestoringObserver::ReadsOnOneThread() const { return observer_.ReadsOnOneThread(); }
const std::vector<std::string>& RestoringObserver::NullTexts() const {
  return observer_.NullTexts();
}
bool RestoringObserver::KeepsStrayQualifiers() const {
  return keepStrayQualifiers_ || observer_.KeepsStrayQualifiers();
}

void RestoringObserver::Restore(ImportWitness* witness) {
  if (witness->line > 0) witness->line = file_.PhysicalLine(witness->line);
  if (texts_) witness->text = std::string(texts_->Restore(witness->text, room_));
}

void RestoringObserver::OnEvidence(std::size_t variable, const ImportEvidence& evidence) {
  ImportEvidence restored = evidence;
  for (ImportWitness& witness : restored.classes) Restore(&witness);
  for (ImportDateLayout& layout : restored.layouts) Restore(&layout.seen);
  for (ImportWitness* witness :
       {&restored.dayFirst, &restored.monthFirst, &restored.eitherOrder, &restored.decimalComma,
        &restored.groupingComma, &restored.eitherComma, &restored.leadingZeros,
        &restored.longest}) {
    Restore(witness);
  }
  observer_.OnEvidence(variable, restored);
}

void RestoringObserver::OnPassBegin() { observer_.OnPassBegin(); }

void RestoringObserver::OnProblem(const ImportProblem& problem) {
  ImportProblem restored = problem;
  restored.line = file_.PhysicalLine(problem.line, problem.byte);
  restored.byte = file_.FileOffset(problem.byte);
  if (texts_) restored.text = texts_->Restore(problem.text, room_);
  observer_.OnProblem(restored);
}

void RestoringObserver::OnProblemCase(const ImportCaseSpan& span) {
  ImportCaseSpan restored = span;
  restored.line = file_.PhysicalLine(span.line, span.begin);
  restored.begin = file_.FileOffset(span.begin);
  restored.end = file_.FileOffset(span.end);
  observer_.OnProblemCase(restored);
}

void RestoringObserver::OnSpan(const ImportSpan& span) {
  // A mark that the file has not.
  if (span.kind == ImportSpan::kMark && file_.markBytes() > 0) return;
  ImportSpan restored = span;
  restored.offset = file_.FileOffset(span.offset);
  observer_.OnSpan(restored);
}

void RestoringObserver::OnCells(const ImportCellCounts& cells) { observer_.OnCells(cells); }

void RestoringObserver::OnProblemCounts(const ImportProblemCount* counts, std::size_t count) {
  observer_.OnProblemCounts(counts, count);
}

void RestoringObserver::OnPassEnd(const ImportPassEnd& end) {
  ImportPassEnd restored = end;
  restored.bytes = file_.FileOffset(end.bytes);
  observer_.OnPassEnd(restored);
}

std::unique_ptr<ImportBatchProduct> RestoringObserver::MakeProduct(const OBS* cases,
                                                                   std::size_t count,
                                                                   std::int64_t firstCase) {
  // The cases are where the engine made them, and nobody reads them before this returns.
  if (cases_) cases_->Restore(const_cast<OBS*>(cases), count);
  return observer_.MakeProduct(cases, count, firstCase);
}

void RestoringObserver::OnProduct(std::unique_ptr<ImportBatchProduct> product, const OBS* cases,
                                  std::size_t count, std::int64_t firstCase) {
  observer_.OnProduct(std::move(product), cases, count, firstCase);
}

}  // namespace library
