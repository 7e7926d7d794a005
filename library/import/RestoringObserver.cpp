#include "library/import/RestoringObserver.h"

#include <algorithm>

namespace library {

RestoringObserver::RestoringObserver(ImportObserver* observer, const ShownFile& file,
                                     bool keepStrayQualifiers)
    : ForwardingObserver(observer), file_(file), keepStrayQualifiers_(keepStrayQualifiers) {
  if (file.standIns() != nullptr) texts_.emplace(*file.standIns());
}

void RestoringObserver::SetSource(const QANT_DataSource& source) {
  if (file_.standIns() != nullptr) cases_.emplace(*file_.standIns(), source);
}

bool RestoringObserver::KeepsStrayQualifiers() const {
  return keepStrayQualifiers_ || observer().KeepsStrayQualifiers();
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
  observer().OnEvidence(variable, restored);
}

void RestoringObserver::OnProblem(const ImportProblem& problem) {
  ImportProblem restored = problem;
  restored.line = file_.PhysicalLine(problem.line, problem.byte);
  restored.byte = file_.FileOffset(problem.byte);
  if (texts_) restored.text = texts_->Restore(problem.text, room_);
  observer().OnProblem(restored);
}

void RestoringObserver::OnProblemCase(const ImportCaseSpan& span) {
  ImportCaseSpan restored = span;
  restored.line = file_.PhysicalLine(span.line, span.begin);
  restored.begin = file_.FileOffset(span.begin);
  restored.end = file_.FileOffset(span.end);
  observer().OnProblemCase(restored);
}

void RestoringObserver::OnPassBegin() {
  begin_ = -1;
  observer().OnPassBegin();
}

void RestoringObserver::OnSpan(const ImportSpan& span) {
  if (begin_ < 0) begin_ = span.offset;
  // A mark that the file has not.
  if (span.kind == ImportSpan::kMark && file_.markBytes() > 0) return;
  ImportSpan restored = span;
  restored.offset = file_.FileOffset(span.offset);
  observer().OnSpan(restored);
}

void RestoringObserver::OnPassEnd(const ImportPassEnd& end) {
  ImportPassEnd restored = end;
  const std::int64_t begin = std::max<std::int64_t>(0, begin_);
  restored.bytes = file_.FileOffset(begin + end.bytes) - file_.FileOffset(begin);
  observer().OnPassEnd(restored);
}

std::unique_ptr<ImportBatchProduct> RestoringObserver::MakeProduct(const OBS* cases,
                                                                   std::size_t count,
                                                                   std::int64_t firstCase) {
  // The cases are where the engine made them, and nobody reads them before this returns.
  if (cases_) cases_->Restore(const_cast<OBS*>(cases), count);
  return observer().MakeProduct(cases, count, firstCase);
}

}  // namespace library
