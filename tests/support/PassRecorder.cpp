#include "tests/support/PassRecorder.h"

#include <string_view>

namespace whole {
namespace {

struct Product : ImportBatchProduct {
  std::string bytes;
  std::int64_t firstCase = 0;
};

}  // namespace

bool PassRecorder::PassRuns(const char* call) {
  const bool runs = begun == ended + 1;
  if (!runs && wrong.empty()) wrong = std::string(call) + " outside a pass";
  return runs;
}

void PassRecorder::OnPassBegin() {
  if (begun != ended) wrong = "a pass within a pass";
  ++begun;
  told = naive::Watched();
  counts.clear();
}

void PassRecorder::OnProblem(const ImportProblem& p) {
  if (!PassRuns("a problem")) return;
  told.problems.push_back(
      {p.kind, p.variable, p.caseNumber, p.line, p.byte, p.amount, std::string(p.text)});
}

void PassRecorder::OnProblemCase(const ImportCaseSpan& s) {
  if (PassRuns("a case")) told.cases.push_back({s.caseNumber, s.line, s.begin, s.end});
}

void PassRecorder::OnSpan(const ImportSpan& s) {
  if (!PassRuns("a span")) return;
  told.spans.push_back({s.kind, s.offset, s.bytes, s.records, s.lineEndBytes, s.droppedBytes});
}

void PassRecorder::OnCells(const ImportCellCounts& c) {
  if (PassRuns("cells")) told.cells.push_back({c.read, c.empty, c.null, c.unreadable, c.absent});
}

void PassRecorder::OnProblemCounts(const ImportProblemCount* given, std::size_t count) {
  if (PassRuns("counts")) counts.assign(given, given + count);
}

void PassRecorder::OnPassEnd(const ImportPassEnd& given) {
  if (!PassRuns("the end")) return;
  ++ended;
  end = given;
  told.recordsInCases = end.recordsInCases;
  if (end.textsBeyondColumn) told.textsBeyondColumn = *end.textsBeyondColumn;
  end.textsBeyondColumn = nullptr;
}

std::unique_ptr<ImportBatchProduct> PassRecorder::MakeProduct(const OBS* cases, std::size_t count,
                                                              std::int64_t firstCase) {
  auto product = std::make_unique<Product>();
  product->bytes.assign(reinterpret_cast<const char*>(cases), count * caseBytes);
  product->firstCase = firstCase;
  return product;
}

void PassRecorder::OnProduct(std::unique_ptr<ImportBatchProduct> product, const OBS* cases,
                             std::size_t count, std::int64_t firstCase) {
  const auto* const made = dynamic_cast<const Product*>(product.get());
  const std::string_view given(reinterpret_cast<const char*>(cases), count * caseBytes);
  if (!made || made->bytes != given || made->firstCase != firstCase || count == 0) {
    wrong = "another product than was made of the cases";
    return;
  }
  if (firstCase == 0) {
    bytes.clear();
    batchCases = 0;
  }
  if (firstCase != batchCases) wrong = "batches do not follow one another";
  bytes += made->bytes;
  batchCases += static_cast<std::int64_t>(count);
}

std::string PassRecorder::Contradiction(std::int64_t cases, std::int64_t variables,
                                        std::int64_t fileBytes) const {
  if (!wrong.empty()) return wrong;
  if (begun != ended || begun == 0) return "no whole pass";
  std::int64_t offset = 0;
  std::int64_t records = 0;
  for (std::size_t i = 0; i < told.spans.size(); ++i) {
    const naive::Span& span = told.spans[i];
    if (span.offset != offset || span.bytes <= 0) return "spans with a gap";
    if (i > 0 && told.spans[i - 1].kind == span.kind) return "a span in two";
    if (span.lineEndBytes < 0 || span.droppedBytes < 0) return "a negative count";
    if (span.lineEndBytes + span.droppedBytes > span.bytes) return "more ends than bytes";
    offset += span.bytes;
    records += span.records;
  }
  if (offset != fileBytes) return "spans that do not fill the file";
  if (records != end.recordsInCases) return "records that are not those of the spans";
  if (end.cases != cases) return "another number of cases";
  if (end.bytes != fileBytes) return "another size of the file";
  naive::Cells sum;
  for (const naive::Cells& cells : told.cells) {
    sum.read += cells.read;
    sum.empty += cells.empty;
    sum.null += cells.null;
    sum.unreadable += cells.unreadable;
    sum.absent += cells.absent;
  }
  if (sum.read + sum.empty + sum.null + sum.unreadable + sum.absent != cases * variables) {
    return "cells that are not cases times variables";
  }
  const auto toldCells = static_cast<std::int64_t>(told.cells.size());
  if (toldCells != (cellsPerCase ? cases : 1)) return "cells of another number of cases";
  std::int64_t counted = 0;
  std::int64_t unreadable = 0;
  for (const ImportProblemCount& count : counts) {
    counted += count.count;
    if (count.kind == ImportProblemKind::kUnreadable) unreadable += count.count;
  }
  if (unreadable != sum.unreadable) return "unreadable cells that are no problem";
  const auto problems = static_cast<std::int64_t>(told.problems.size());
  if (counted < problems || (counted > problems && problems < problemLimit)) {
    return "problems that are neither told nor beyond the limit";
  }
  if (batches && (cases > 0 || batchCases > 0) && batchCases != cases) {
    return "batches of another number of cases";
  }
  return {};
}

}  // namespace whole
