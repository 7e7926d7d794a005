// What is noted of the cases that an engine converts, for a host that watches the import: what
// became of every cell, the problems with their places, the bytes of the records.
//
// An engine tells of each field what its conversion came to, which costs next to nothing for a
// field without a problem. A delimited record with one case to a line is looked at again, field by
// field, only when something was wrong with it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "HostFramework/ImportObserver.h"
#include "model/FormatCode.h"
#include "reading/FieldSplitter.h"
#include "reading/ImportSource.h"
#include "reading/TextOrigin.h"
#include "watch/NullTexts.h"
#include "watch/Rounding.h"
#include "watch/WatchedBatch.h"

namespace textwizard {

// A record that cases are made of. What the views show outlives the record's case.
struct WatchedRecord {
  // As the reader gave it and as host text; see TextOrigin.
  std::string_view raw;
  std::string_view text;
  ByteOrderMark mark = ByteOrderMark::kNone;
  RecordPlace place;
  const NulRun* nulsBegin = nullptr;
  const NulRun* nulsEnd = nullptr;
  // It is known that all bytes of a text that is the raw record are of characters.
  bool clean = false;
};

// One thread. Variables are named by their position in the source's list, skipped ones included.
class CaseWatch {
 public:
  // `fields` cuts the records that are watched; its listener tells NoteUndecodable, unless
  // examining. All outlive this.
  CaseWatch(const ImportObserver& observer, const ImportSource& source, FieldSplitter& fields);

  // Notes go there from now on, for cases from number 0 of the batch on. `notesEnds`: the batch may
  // be delivered in part.
  void StartBatch(WatchedBatch& batch, bool notesEnds);
  WatchedBatch& batch() { return *batch_; }

  // --- Fields of the case in hand, once each and in the order of the records
  // The text means a missing number.
  bool TakesNull(std::string_view field) {
    if (!nulls_.Holds(field)) return false;
    ++cells_.null;
    return true;
  }
  // A number that was not null; a field without any text that even has no place in memory is one
  // that the record does not have. `value`: when it could be read.
  void TakeNumber(std::uint32_t variable, std::string_view field, std::uint32_t format,
                  const double* value) {
    if (!value) {
      TakeUnread(variable, field);
    } else if (field.size() >= kRoundedDigits) {
      TakeLong(variable, field, format, *value);
    }
  }
  // The same in parts: of a number that could not be read, and of one of kRoundedDigits bytes or
  // more. There is nothing to tell of others.
  void TakeUnread(std::uint32_t variable, std::string_view field) {
    if (field.empty() || IsBlankCharacter(field.front())) return TakeBlankUnread(variable, field);
    ++cells_.unreadable;
    TakeFinding(variable, ImportProblemKind::kUnreadable, field);
  }
  void TakeLong(std::uint32_t variable, std::string_view field, std::uint32_t format, double value);
  // A string; `width`: bytes of the variable's cells. There is nothing to tell of one that fits
  // them and does not begin with a blank.
  void TakeString(std::uint32_t variable, std::string_view field, std::size_t width) {
    if (field.empty() || field.front() == ' ') {
      TakeBlank(variable, field, width);
    } else if (field.size() > width) {
      TakeLong(variable, field, width);
    }
  }
  // The splitter met bytes that are no character, in a field of the case.
  void NoteUndecodable() { undecodable_ = odd_ = true; }
  // A field is cut again: what the splitter meets in it was met before.
  bool examining() const { return examining_; }

  // --- Records, one case in a line: after its fields
  // A record of `size` bytes that stands in the file as it was cut, right behind the one before and
  // with a line end of the same length; `end`: place behind it. False when there is more to tell of
  // it, so that its EndLine is wanted.
  bool EndPlainLine(std::size_t size, std::int64_t end) {
    if (odd_ || fields_.MetQuotes() || fields_.offset() != size) return false;
    batch_->ends.push_back(end);
    batch_->AddNext(end);
    EndCells();
    ++case_;
    return true;
  }
  void EndLine(const WatchedRecord& record) {
    batch_->AddRecord(record.place);
    if (notesEnds_) batch_->ends.push_back(record.place.end);
    if (IsPlain(record)) {
      EndCells();
    } else {
      EndUnusual(record);
    }
    odd_ = false;
    ++case_;
  }

  // --- Records, other arrangements
  // A record was read. It belongs to the case that has something of it first.
  void TakeRecord(const WatchedRecord& record);
  // The same of a record that a case of an earlier batch began with.
  void ResumeRecord(const WatchedRecord& record) {
    TakeRecord(record);
    recordIsNew_ = false;
  }
  // The field of `variable` has been cut, and converted unless it is skipped: the record's text
  // from `begin` to `end`.
  void EndField(std::uint32_t variable, std::string_view field, std::size_t begin,
                std::size_t end) {
    if (recordIsNew_ || !begun_) TakeFieldOfRecord(begin);
    fieldsEnd_ = end;
    if (!findings_.empty() || substitutes_ || undecodable_ || fields_.MetQuotes()) {
      EndOddField(variable, field, begin, end);
    }
  }
  // The record in hand belongs to the case as a whole.
  void UseRecord();
  // The column of `variable` has been converted: the record's text from `begin` on.
  void EndColumn(std::uint32_t variable, std::string_view field, std::size_t begin);
  // The record in hand ends before the variable's column.
  void TakeShortRecord(std::uint32_t variable);
  // The case has been read. `absent`: cells for which there is no field, those of short records
  // left out. `lost`: those among them that the file ended before, kComplete when it did not end
  // inside the case.
  static constexpr std::int64_t kComplete = -1;
  void EndCase(std::int64_t absent, std::int64_t lost);

 private:
  // What the conversion of a field came to that has to be looked at with its record; the field as
  // it was cut, which need not be there any more unless it lies in the record.
  struct Finding {
    std::uint32_t variable = 0;
    ImportProblemKind kind = {};
    std::string_view field;
  };
  // A problem of the case in hand, by whose members the problems of a case are ordered.
  struct Noted {
    std::uint32_t record;
    bool ofField;
    std::int64_t byte;
    std::uint32_t code;
    bool detailed;
    NotedProblems::Detail detail;
  };

  bool IsPlain(const WatchedRecord& record) const {
    return findings_.empty() && cells_.absent == 0 && !undecodable_ && !fields_.MetQuotes() &&
           fields_.offset() == record.text.size() && record.place.droppedBytes == 0 &&
           (record.raw.data() == record.text.data() || !HasSubstitutes(record));
  }
  // Of a problem whose details nobody asks for there is nothing to keep.
  void TakeFinding(std::uint32_t variable, ImportProblemKind kind, std::string_view field) {
    const std::uint32_t code = ProblemCode(kind, columns_[variable]);
    if (notesCases_ || !batch_->problems.AddCounted(case_, code)) {
      KeepFinding(variable, kind, field);
    }
  }
  // Of one that has not been counted.
  void KeepFinding(std::uint32_t variable, ImportProblemKind kind, std::string_view field);
  void TakeBlankUnread(std::uint32_t variable, std::string_view field);
  void TakeLong(std::uint32_t variable, std::string_view field, std::size_t width);
  // A field that is empty, blank, or not there.
  void TakeNothing(std::string_view field) {
    if (field.data() != nullptr) {
      ++cells_.empty;
    } else {
      ++cells_.absent;
      odd_ = true;
    }
  }
  void TakeBlank(std::uint32_t variable, std::string_view field, std::size_t width);
  bool HasSubstitutes(const WatchedRecord& record) const;
  void EndUnusual(const WatchedRecord& record);
  bool HasFindingsAlone(const WatchedRecord& record) const;
  void EndFound(const WatchedRecord& record);
  void SettleEmptyField();
  void ExamineFields();
  void ExamineRest(std::size_t offset);
  bool AnyWantsDetail() const;
  // Of a problem of a value.
  static std::int64_t AmountOf(ImportProblemKind kind, std::string_view field);
  void AddFieldProblems(const Finding* finding, std::int32_t column, std::string_view field,
                        std::size_t begin, std::size_t end);
  void AddQuotes(unsigned quotes, std::int32_t column, std::string_view field, std::int64_t byte);
  TextOrigin& Origin();
  // Offset in the file of the record's text from `at` on: right behind what precedes it.
  std::int64_t OffsetOf(std::size_t at);
  void Add(ImportProblemKind kind, std::int32_t column, bool ofField, std::int64_t byte,
           std::int64_t amount, std::string_view text);
  void AddOfRecord(ImportProblemKind kind, std::int64_t amount, std::string_view text,
                   std::int32_t column = -1);
  void TakeFieldOfRecord(std::size_t begin);
  void EndOddField(std::uint32_t variable, std::string_view field, std::size_t begin,
                   std::size_t end);
  void AddIncomplete(std::int64_t lost);
  void AddRecord();
  void CountBeyond(std::uint32_t variable);
  void Flush();
  void EndCells() {
    if ((cells_.empty | cells_.null | cells_.unreadable | cells_.absent) == 0) return;
    // Member by member: a copy as a whole would have to wait for what was counted last.
    WatchedBatch::CellsNotRead& cells = batch_->cells.emplace_back();
    cells.record = case_;
    cells.empty = cells_.empty;
    cells.null = cells_.null;
    cells.unreadable = cells_.unreadable;
    cells.absent = cells_.absent;
    cells_ = {};
  }

  FieldSplitter& fields_;
  const NullTexts nulls_;
  const bool leadingSpaces_;
  // A field's text is what lies between its delimiters or qualifiers.
  const bool keepsSpaces_;
  const bool countsValues_;
  // Who watches wants the bytes of cases with problems.
  const bool notesCases_;
  // By position in the source's list: index among its variables, -1 for a skipped one.
  std::vector<std::int32_t> columns_;
  bool anySkipped_ = false;
  // Fixed columns, by position in the list: the first byte behind the column, and whether no other
  // column has it.
  struct Edge {
    std::size_t behind;
    bool free;
  };
  std::vector<Edge> edges_;
  TextOrigin origin_;

  WatchedBatch* batch_ = nullptr;
  bool notesEnds_ = false;
  // Number of the case in hand.
  std::uint32_t case_ = 0;
  WatchedBatch::CellsNotRead cells_{};
  std::vector<Finding> findings_;
  bool undecodable_ = false;
  // The line in hand has to be looked at: there are findings, absent cells, or bytes that are no
  // character.
  bool odd_ = false;
  bool examining_ = false;
  std::vector<Noted> noted_;

  // The record in hand, where problems stand.
  WatchedRecord record_;
  bool originStarted_ = false;
  bool substitutes_ = false;
  // It is no case's yet.
  bool recordIsNew_ = false;
  // Records of the batch in hand that belong to a case.
  std::uint32_t records_ = 0;
  std::uint32_t recordNumber_ = 0;
  std::size_t fieldsEnd_ = 0;
  // The bytes of the case in hand, and the record that it begins in; its text is kept while the
  // file may end in the case.
  bool begun_ = false;
  WatchedBatch::ProblemCase bytes_{};
  bool keepsFirst_ = false;
  RecordPlace firstPlace_;
  std::string firstText_;
};

}  // namespace textwizard
