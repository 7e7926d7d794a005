#include "watch/PassTeller.h"

#include <algorithm>
#include <utility>

namespace textwizard {
namespace {

// Problems that are brought nearer before their turn comes.
constexpr std::size_t kAhead = 48;

}  // namespace

PassTeller::PassTeller(ImportObserver& observer, std::size_t variables, bool fixedColumns)
    : observer_(observer),
      variables_(variables),
      problemLimit_(observer.ProblemLimit()),
      tellsProblemCases_(observer.WantsProblemCases()),
      tellsCellsPerCase_(observer.WantsCellsPerCase()),
      limitReached_(problemLimit_ <= 0),
      fixedColumns_(fixedColumns),
      textsBeyondColumn_(fixedColumns ? variables : 0) {
  const auto codes = static_cast<std::uint32_t>((variables + 1) * kImportProblemKinds);
  counts_.reserve(codes);
  for (std::uint32_t code = 0; code < codes; ++code) {
    counts_.push_back({KindOf(code), VariableOf(code), 0});
  }
  told_.resize(codes);
}

void PassTeller::Begin(std::int64_t markBytes, std::int64_t preambleEnd) {
  if (state_ != State::kBefore) return;
  state_ = State::kTelling;
  observer_.OnPassBegin();
  AddSpan(ImportSpan::kMark, markBytes);
  AddSpan(ImportSpan::kPreamble, preambleEnd);
  TellSpan();
}

void PassTeller::StartBatch(const WatchedBatch& batch, std::int64_t firstCase) {
  batch_ = &batch;
  firstCase_ = firstCase;
  delivered_ = 0;
  nextDetail_ = nextProblemCase_ = nextCells_ = 0;
  nextNoted_ = 0;
  FindNoted();
}

void PassTeller::FindNoted() {
  // Else every case has cells to tell of.
  if (tellsCellsPerCase_) return;
  nextNoted_ = UINT32_MAX;
  const NotedProblems& noted = batch_->problems;
  if (nextDetail_ < noted.details().size()) nextNoted_ = noted.ProblemOf(nextDetail_).record;
  if (tellsProblemCases_ && nextProblemCase_ < batch_->cases.size()) {
    nextNoted_ = std::min(nextNoted_, batch_->cases[nextProblemCase_].record);
  }
}

void PassTeller::TellNoted() {
  while (nextNoted_ < delivered_) {
    TellCase(nextNoted_);
    if (tellsCellsPerCase_) ++nextNoted_;
    FindNoted();
  }
}

void PassTeller::TellCase(std::uint32_t record) {
  // Details are missing only of problems that nobody is told of.
  TellProblems(record);
  const auto& cases = batch_->cases;
  if (nextProblemCase_ < cases.size() && cases[nextProblemCase_].record == record) {
    const WatchedBatch::ProblemCase& bytes = cases[nextProblemCase_++];
    if (tellsProblemCases_) {
      observer_.OnProblemCase(
          {firstCase_ + record + 1, bytes.line + runLines_, bytes.begin, bytes.end});
    }
  }
  if (!tellsCellsPerCase_) return;
  ImportCellCounts counts;
  if (nextCells_ < batch_->cells.size() && batch_->cells[nextCells_].record == record) {
    const WatchedBatch::CellsNotRead& cells = batch_->cells[nextCells_++];
    counts = {0, cells.empty, cells.null, cells.unreadable, cells.absent};
  }
  counts.read = static_cast<std::int64_t>(variables_) - counts.empty - counts.null -
                counts.unreadable - counts.absent;
  observer_.OnCells(counts);
}

void PassTeller::TellProblems(std::uint32_t record) {
  std::size_t count = 0;
  const NotedProblems& noted = batch_->problems;
  const std::int64_t caseNumber = firstCase_ + record + 1;
  for (const std::size_t end = noted.details().size(); nextDetail_ < end; ++nextDetail_) {
    const NotedProblems::Problem& problem = noted.ProblemOf(nextDetail_);
    if (problem.record != record) break;
    if (!Tells(problem)) continue;
    const NotedProblems::Detail& detail = noted.details()[nextDetail_];
    // Another processor has written it.
    if (end - nextDetail_ > kAhead) __builtin_prefetch(&detail + kAhead);
    // Member by member: a copy of what was just put together would have to wait for its parts.
    ImportProblem& told = together_[count++];
    told.kind = KindOf(problem.code);
    told.variable = VariableOf(problem.code);
    told.caseNumber = caseNumber;
    told.line = detail.line + runLines_;
    told.byte = detail.byte;
    told.amount = detail.amount;
    told.text = noted.TextOf(detail);
    if (count == together_.size()) observer_.OnProblems(together_.data(), std::exchange(count, 0));
  }
  if (count > 0) observer_.OnProblems(together_.data(), count);
}

bool PassTeller::Tells(const NotedProblems::Problem& problem) {
  if (told_[problem.code] && toldProblems_ >= problemLimit_) return false;
  told_[problem.code] = 1;
  ++toldProblems_;
  if (toldProblems_ >= problemLimit_) limitReached_.store(true, std::memory_order_relaxed);
  return true;
}

void PassTeller::CountProblems() {
  const NotedProblems& noted = batch_->problems;
  const auto& problems = noted.problems();
  if (problems.empty() || problems.back().record < delivered_) {
    for (const std::uint32_t code : noted.codes()) counts_[code].count += noted.CountOf(code);
    return;
  }
  for (const NotedProblems::Problem& problem : problems) {
    if (problem.record >= delivered_) break;
    ++counts_[problem.code].count;
  }
}

void PassTeller::EndBatch(std::int64_t runLines) {
  if (!batch_) return;
  CountProblems();
  std::uint32_t left = batch_->RecordsOf(delivered_);
  for (const WatchedBatch::Stretch& stretch : batch_->stretches) {
    if (left == 0) break;
    std::int64_t end = stretch.end;
    std::int64_t records = stretch.records;
    // Cut where delivery stopped.
    if (stretch.records > left) {
      records = left;
      end = batch_->ends[delivered_ - 1];
    }
    left -= static_cast<std::uint32_t>(records);
    AddSpan(ImportSpan::kSkipped, stretch.begin);
    AddSpan(ImportSpan::kRecords, end, records, records * std::int64_t{stretch.lineEndBytes},
            stretch.droppedBytes);
    records_ += records;
  }
  ImportCellCounts sums;
  for (const WatchedBatch::CellsNotRead& cells : batch_->cells) {
    if (cells.record >= delivered_) break;
    sums.empty += cells.empty;
    sums.null += cells.null;
    sums.unreadable += cells.unreadable;
    sums.absent += cells.absent;
  }
  cells_.empty += sums.empty;
  cells_.null += sums.null;
  cells_.unreadable += sums.unreadable;
  cells_.absent += sums.absent;
  for (const WatchedBatch::BeyondColumn& text : batch_->beyondColumn) {
    if (text.record >= delivered_) break;
    ++textsBeyondColumn_[text.variable];
  }
  cases_ += delivered_;
  runLines_ += runLines;
  batch_ = nullptr;
  delivered_ = 0;
  nextNoted_ = UINT32_MAX;
}

void PassTeller::AddSpan(ImportSpan::Kind kind, std::int64_t end, std::int64_t records,
                         std::int64_t lineEndBytes, std::int64_t droppedBytes) {
  const std::int64_t begin = span_.offset + span_.bytes;
  // An empty stretch would part what belongs together; a record takes a byte at least, but for one
  // of a case that the file ended in.
  if (end <= begin && records == 0) return;
  if (span_.kind != kind || span_.bytes == 0) {
    TellSpan();
    span_ = {kind, begin, 0, 0, 0, 0};
  }
  span_.bytes += end - begin;
  span_.records += records;
  span_.lineEndBytes += lineEndBytes;
  span_.droppedBytes += droppedBytes;
}

void PassTeller::TellSpan() {
  if (span_.bytes == 0) return;
  observer_.OnSpan(span_);
  span_ = {span_.kind, span_.offset + span_.bytes, 0, 0, 0, 0};
}

void PassTeller::End(bool complete, std::int64_t dataEnd, std::int64_t fileBytes) {
  if (std::exchange(state_, State::kOver) != State::kTelling) return;
  EndBatch();
  AddSpan(ImportSpan::kSkipped, dataEnd);
  AddSpan(ImportSpan::kUnread, fileBytes);
  TellSpan();
  cells_.read = cases_ * static_cast<std::int64_t>(variables_) - cells_.empty - cells_.null -
                cells_.unreadable - cells_.absent;
  if (!tellsCellsPerCase_) observer_.OnCells(cells_);
  // In place: there need not be memory when an iterator is destroyed.
  std::erase_if(counts_, [](const ImportProblemCount& count) { return count.count == 0; });
  observer_.OnProblemCounts(counts_.data(), counts_.size());
  ImportPassEnd end;
  end.cases = cases_;
  end.recordsInCases = records_;
  end.bytes = fileBytes;
  end.complete = complete;
  if (fixedColumns_) end.textsBeyondColumn = &textsBeyondColumn_;
  observer_.OnPassEnd(end);
}

}  // namespace textwizard
