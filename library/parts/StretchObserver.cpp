#include "library/parts/StretchObserver.h"

#include <algorithm>
#include <utility>

namespace library {

void StretchObserver::Begin(const Whole& whole) {
  whole_ = whole;
  begun_ = ended_ = false;
  complete_ = true;
  counts_.clear();
  for (std::int32_t variable = -1; variable < static_cast<std::int32_t>(whole.variables);
       ++variable) {
    for (std::size_t kind = 0; kind < kImportProblemKinds; ++kind) {
      counts_.push_back({static_cast<ImportProblemKind>(kind), variable, 0});
    }
  }
  told_.assign(counts_.size(), false);
  toldProblems_ = 0;
  cells_ = {};
  end_ = {};
  end_.complete = true;
  fixedColumns_ = false;
  textsBeyondColumn_.assign(whole.variables, 0);
  span_ = {};
  offset_ = whole.begin;
}

void StretchObserver::BeginPass(const Pass& pass) {
  pass_ = pass;
  offset_ = pass.stretch.begin;
}

void StretchObserver::EndWithoutPass() {
  OnPassBegin();
  End();
}

std::int64_t StretchObserver::ProblemLimit() const {
  return std::max<std::int64_t>(observer().ProblemLimit() - toldProblems_, 0);
}

void StretchObserver::OnPassBegin() {
  if (!std::exchange(begun_, true)) observer().OnPassBegin();
}

void StretchObserver::OnProblem(const ImportProblem& problem) {
  // The first of its kind in the stretch is told whatever the limit.
  const std::size_t code = CodeOf(problem.kind, problem.variable);
  if (toldProblems_ >= observer().ProblemLimit() && told_[code]) return;
  told_[code] = true;
  ++toldProblems_;
  ImportProblem shifted = problem;
  shifted.caseNumber = CaseShift(problem.caseNumber);
  shifted.line += lineShift();
  shifted.byte += byteShift();
  observer().OnProblem(shifted);
}

void StretchObserver::OnProblemCase(const ImportCaseSpan& span) {
  observer().OnProblemCase({CaseShift(span.caseNumber), span.line + lineShift(),
                            span.begin + byteShift(), span.end + byteShift()});
}

void StretchObserver::OnSpan(const ImportSpan& span) {
  // What is not read is known of the stretches.
  if (span.kind == ImportSpan::kUnread) return;
  const bool isHead = span.kind == ImportSpan::kMark || span.kind == ImportSpan::kPreamble;
  if (isHead && pass_.headBytes > 0) return;
  ImportSpan shifted = span;
  shifted.offset += byteShift();
  AddSpan(shifted);
}

void StretchObserver::AddSpan(const ImportSpan& span) {
  offset_ = span.offset + span.bytes;
  if (span_.bytes > 0 && span_.kind == span.kind && span_.offset + span_.bytes == span.offset) {
    span_.bytes += span.bytes;
    span_.records += span.records;
    span_.lineEndBytes += span.lineEndBytes;
    span_.droppedBytes += span.droppedBytes;
    return;
  }
  TellSpan();
  span_ = span;
}

void StretchObserver::TellSpan() {
  if (span_.bytes > 0) observer().OnSpan(span_);
  span_ = {};
}

void StretchObserver::OnCells(const ImportCellCounts& cells) {
  if (observer().WantsCellsPerCase()) {
    observer().OnCells(cells);
    return;
  }
  cells_.read += cells.read;
  cells_.empty += cells.empty;
  cells_.null += cells.null;
  cells_.unreadable += cells.unreadable;
  cells_.absent += cells.absent;
}

void StretchObserver::OnProblemCounts(const ImportProblemCount* counts, std::size_t count) {
  for (std::size_t index = 0; index < count; ++index) {
    counts_[CodeOf(counts[index].kind, counts[index].variable)].count += counts[index].count;
  }
}

void StretchObserver::OnPassEnd(const ImportPassEnd& end) {
  if (ended_) return;
  end_.cases += end.cases;
  end_.recordsInCases += end.recordsInCases;
  end_.recordsWithoutCase += end.recordsWithoutCase;
  if (end.textsBeyondColumn != nullptr) {
    fixedColumns_ = true;
    for (std::size_t i = 0; i < textsBeyondColumn_.size(); ++i) {
      textsBeyondColumn_[i] += (*end.textsBeyondColumn)[i];
    }
  }
  complete_ = end_.complete = end.complete;
  if (pass_.isLast || !complete_) End();
}

void StretchObserver::End() {
  ended_ = true;
  if (offset_ < whole_.end) {
    AddSpan({ImportSpan::kUnread, offset_, whole_.end - offset_, 0, 0, 0});
  }
  TellSpan();
  if (!observer().WantsCellsPerCase()) observer().OnCells(cells_);
  // In place: there need not be memory when an iterator is destroyed.
  std::erase_if(counts_, [](const ImportProblemCount& count) { return count.count == 0; });
  observer().OnProblemCounts(counts_.data(), counts_.size());
  end_.bytes = whole_.end - whole_.begin;
  end_.textsBeyondColumn = fixedColumns_ ? &textsBeyondColumn_ : nullptr;
  observer().OnPassEnd(end_);
}

std::unique_ptr<ImportBatchProduct> StretchObserver::MakeProduct(const OBS* cases,
                                                                 std::size_t count,
                                                                 std::int64_t firstCase) {
  return observer().MakeProduct(cases, count, firstCase + pass_.stretch.cases);
}

void StretchObserver::OnProduct(std::unique_ptr<ImportBatchProduct> product, const OBS* cases,
                                std::size_t count, std::int64_t firstCase) {
  observer().OnProduct(std::move(product), cases, count, firstCase + pass_.stretch.cases);
}

}  // namespace library
