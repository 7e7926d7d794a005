// The records of cases that are watched: the line of one case, and records that several cases share
// or that one case has several of.
#include <algorithm>
#include <utility>

#include "reading/CaseWatch.h"

namespace textwizard {

using Kind = ImportProblemKind;

// One case in a line.

void CaseWatch::EndUnusual(const WatchedRecord& record) {
  if (HasFindingsAlone(record)) return EndFound(record);
  record_ = record;
  recordNumber_ = 0;
  originStarted_ = false;
  substitutes_ = record.raw.data() != record.text.data() && HasSubstitutes(record);
  bytes_ = {case_, record.place.line, record.place.begin, record.place.end};
  const std::size_t rest = fields_.offset();
  const bool restIsEmpty = fields_.RestIsEmpty();
  if (cells_.absent > 0 && fields_.EndsInDelimiter()) SettleEmptyField();
  if (cells_.absent > 0) AddOfRecord(Kind::kFewFields, cells_.absent, record.text);
  if (!restIsEmpty) AddOfRecord(Kind::kSurplus, 0, record.text.substr(rest));
  if (record.place.droppedBytes > 0) {
    AddOfRecord(Kind::kNul, record.place.droppedBytes, record.text);
  }
  if (substitutes_ || undecodable_ || fields_.MetQuotes() || AnyWantsDetail()) {
    ExamineFields();
  } else {
    for (const Finding& finding : findings_) {
      Add(finding.kind, columns_[finding.variable], true, 0, 0, {});
    }
  }
  if (!restIsEmpty) ExamineRest(rest);
  fields_.TakeQuotes();
  findings_.clear();
  undecodable_ = false;
  Flush();
  EndCells();
}

// Nothing is wrong with the record but values, which stand in the file as they were cut. Where
// their places are wanted, they must tell these by themselves.
bool CaseWatch::HasFindingsAlone(const WatchedRecord& record) const {
  const bool valuesAlone = cells_.absent == 0 && !undecodable_ && !fields_.MetQuotes() &&
                           fields_.offset() == record.text.size() &&
                           record.place.droppedBytes == 0 &&
                           record.raw.data() == record.text.data() && !findings_.empty();
  if (!valuesAlone || !AnyWantsDetail()) return valuesAlone;
  const auto address = [](const char* at) { return reinterpret_cast<std::uintptr_t>(at); };
  const std::uintptr_t begin = address(record.text.data());
  return keepsSpaces_ &&
         std::all_of(findings_.begin(), findings_.end(), [&](const Finding& finding) {
           return address(finding.field.data()) - begin < record.text.size();
         });
}

// Findings come by rising variable, which is the order of their problems.
void CaseWatch::EndFound(const WatchedRecord& record) {
  NotedProblems& problems = batch_->problems;
  for (const Finding& finding : findings_) {
    const std::uint32_t code = ProblemCode(finding.kind, columns_[finding.variable]);
    if (problems.WantsDetail(code)) {
      const auto offset = static_cast<std::int64_t>(fields_.OffsetOf(finding.field));
      problems.Add(case_, code, record.place.line, record.place.begin + offset,
                   AmountOf(finding.kind, finding.field), problems.KeepNew(finding.field));
    } else {
      problems.Add(case_, code);
    }
  }
  if (notesCases_) {
    batch_->cases.push_back({case_, record.place.line, record.place.begin, record.place.end});
  }
  findings_.clear();
  EndCells();
}

// Behind a delimiter that ends the record is one more field, an empty one.
void CaseWatch::SettleEmptyField() {
  if (anySkipped_) {
    // It may be one that is skipped.
    examining_ = true;
    fields_.SetOffset(0);
    std::size_t variable = 0;
    for (std::string_view field; fields_.Next(field);) ++variable;
    examining_ = false;
    if (columns_[variable] < 0) return;
  }
  --cells_.absent;
  ++cells_.empty;
}

void CaseWatch::ExamineFields() {
  examining_ = true;
  fields_.SetOffset(0);
  const bool all = substitutes_ || undecodable_ || fields_.MetQuotes();
  fields_.TakeQuotes();
  auto finding = findings_.begin();
  for (std::uint32_t variable = 0; variable < columns_.size(); ++variable) {
    if (!all && finding == findings_.end()) break;
    const std::size_t begin = fields_.offset();
    std::string_view field;
    if (!fields_.Next(field)) break;
    const bool found = finding != findings_.end() && finding->variable == variable;
    if (!all && !found) continue;
    AddFieldProblems(found ? &*finding : nullptr, columns_[variable], field, begin,
                     fields_.offset());
    if (found) ++finding;
  }
  examining_ = false;
}

void CaseWatch::ExamineRest(std::size_t offset) {
  examining_ = true;
  fields_.SetOffset(offset);
  fields_.TakeQuotes();
  for (std::string_view field; fields_.Next(field); offset = fields_.offset()) {
    if (fields_.MetQuotes()) AddQuotes(fields_.TakeQuotes(), -1, field, OffsetOf(offset));
  }
  examining_ = false;
}

bool CaseWatch::AnyWantsDetail() const {
  return std::any_of(findings_.begin(), findings_.end(), [this](const Finding& finding) {
    return batch_->problems.WantsDetail(ProblemCode(finding.kind, columns_[finding.variable]));
  });
}

// Cases that share records or have several of them.

void CaseWatch::TakeRecord(const WatchedRecord& record) {
  record_ = record;
  originStarted_ = false;
  recordIsNew_ = true;
  fieldsEnd_ = 0;
  ++recordNumber_;
  const bool converted = record.raw.data() != record.text.data();
  substitutes_ = converted ? HasSubstitutes(record)
                           : !countsValues_ && !record.clean && !fields_.CutsByBytes(record.text);
}

void CaseWatch::UseRecord() { TakeFieldOfRecord(0); }

void CaseWatch::AddRecord() {
  recordIsNew_ = false;
  batch_->AddRecord(record_.place);
  ++records_;
  if (record_.place.droppedBytes > 0) {
    AddOfRecord(Kind::kNul, record_.place.droppedBytes, record_.text);
  }
}

// The case has something of the record, from `begin` on.
void CaseWatch::TakeFieldOfRecord(std::size_t begin) {
  if (recordIsNew_) AddRecord();
  if (begun_) return;
  begun_ = true;
  bytes_.line = record_.place.line;
  bytes_.begin = OffsetOf(begin);
  if (!keepsFirst_ || firstPlace_.begin == record_.place.begin) return;
  firstPlace_ = record_.place;
  firstText_ = record_.text.substr(0, 2 * kImportTextBytes);
}

void CaseWatch::EndOddField(std::uint32_t variable, std::string_view field, std::size_t begin,
                            std::size_t end) {
  AddFieldProblems(findings_.empty() ? nullptr : findings_.data(), columns_[variable], field, begin,
                   end);
  findings_.clear();
  undecodable_ = false;
}

void CaseWatch::EndColumn(std::uint32_t variable, std::string_view field, std::size_t begin) {
  CountBeyond(variable);
  if (findings_.empty() && !substitutes_) return;
  const std::size_t behind = edges_[variable].behind;
  AddFieldProblems(findings_.empty() ? nullptr : findings_.data(), columns_[variable],
                   field.substr(0, behind - begin), begin, behind);
  findings_.clear();
}

void CaseWatch::CountBeyond(std::uint32_t variable) {
  const auto [behind, free] = edges_[variable];
  const std::string_view text = record_.text;
  if (!free || text.size() <= behind || text[behind] == ' ' || text[behind - 1] == ' ') return;
  batch_->beyondColumn.push_back({case_, static_cast<std::uint32_t>(columns_[variable])});
}

void CaseWatch::TakeShortRecord(std::uint32_t variable) {
  ++cells_.absent;
  AddOfRecord(Kind::kShortRecord, 0, record_.text, columns_[variable]);
}

void CaseWatch::EndCase(std::int64_t absent, std::int64_t lost) {
  cells_.absent += static_cast<std::uint32_t>(absent);
  if (lost != kComplete) AddIncomplete(lost);
  if (!noted_.empty()) {
    // The rest of a record that values were cut from is the next case's.
    const bool whole = lost != kComplete || !countsValues_ || fieldsEnd_ == record_.text.size();
    bytes_.end = whole ? record_.place.end : OffsetOf(fieldsEnd_);
  }
  Flush();
  EndCells();
  if (notesEnds_) {
    batch_->ends.push_back(records_ == 0 ? 0 : batch_->stretches.back().end);
    batch_->recordsBehind.push_back(records_);
  }
  ++case_;
  begun_ = false;
}

// At the record that the case begins in.
void CaseWatch::AddIncomplete(std::int64_t lost) {
  const RecordPlace last = std::exchange(record_.place, firstPlace_);
  const std::uint32_t number = std::exchange(recordNumber_, 0U);
  AddOfRecord(Kind::kIncompleteCase, lost, firstText_);
  record_.place = last;
  recordNumber_ = number;
}

}  // namespace textwizard
