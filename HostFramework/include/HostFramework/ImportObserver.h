// What a host may watch while a text file is imported: the problems of the cases that are
// delivered, what became of every byte and every cell, what type detection saw, and whole batches
// of cases while they are still with the thread that converted them.
//
// A host asks for it by an adapter that derives from ImportObserving besides DACAdapterBase. A host
// that does not sees what it would see without this header, at no cost.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "HostFramework/DataSource.h"

enum class ImportProblemKind : std::uint8_t {
  kUnreadable,      // a text that its format cannot read: the number is missing
  kRounded,         // a number with more digits than a double keeps
  kCut,             // a string longer than its variable
  kUndecodable,     // bytes that are no character of the encoding
  kFewFields,       // the record ended before the last variable's field
  kSurplus,         // more fields than variables
  kOpenQuote,       // the record ended inside a qualified field
  kStrayQuote,      // a qualifier inside an unqualified field, or text behind the closing one
  kShortRecord,     // fixed columns: the record ends before a column begins
  kIncompleteCase,  // the file ended inside a case
  kNul,             // NUL bytes that were dropped
};
inline constexpr std::size_t kImportProblemKinds = 11;

struct ImportProblem {
  ImportProblemKind kind;
  // Index of the variable among the source's; -1 when the problem is the record's.
  std::int32_t variable;
  // From 1; 0 when no case came of it.
  std::int64_t caseNumber;
  // Physical line of the data file, from 1, and offset in bytes, where the field (the record, when
  // there is no variable) begins.
  std::int64_t line;
  std::int64_t byte;
  // Fields missing, bytes dropped, bytes of the run that are no character; else 0.
  std::int64_t amount;
  // The field, or what was left of the record, as host text. Good during the call.
  std::string_view text;
};

// The bytes of the file that hold the records of one case, with their line ends.
struct ImportCaseSpan {
  std::int64_t caseNumber;
  std::int64_t line;
  std::int64_t begin;
  std::int64_t end;
};

// A stretch of the file and what was made of it. The stretches of a pass join without a gap.
struct ImportSpan {
  enum Kind : std::uint8_t {
    kMark,     // the byte-order mark
    kSkipped,  // lines before the first case, and empty lines that make no record, with their ends
    kRecords,  // records and their line ends
    kUnread,   // what a case limit or an interrupt left
  };
  Kind kind;
  std::int64_t offset;
  std::int64_t bytes;
  // Of the bytes of kRecords: line ends, and NUL bytes that were dropped; the others are text.
  std::int64_t lineEndBytes;
  std::int64_t droppedBytes;
  // Of kRecords: how many.
  std::int64_t records;
};

// What became of the cells of delivered cases.
struct ImportCellCounts {
  std::int64_t read = 0;
  std::int64_t empty = 0;       // an empty or blank field
  std::int64_t null = 0;        // a null text of the observer's
  std::int64_t unreadable = 0;  // a problem of that kind
  std::int64_t absent = 0;      // the record had no such field
};

// Problems of one kind of one variable, those that are not told one by one included.
struct ImportProblemCount {
  ImportProblemKind kind;
  std::int32_t variable;
  std::int64_t count;
};

// What a host makes of a batch of cases on the thread that converted it (columns, text, a digest).
class ImportBatchProduct {
 public:
  virtual ~ImportBatchProduct() = default;
};

// Every operation is called on the host's thread unless it says otherwise, and none may throw.
// Calls of a pass come in the order of the file: they are the same for every number of workers,
// both engines and any block size.
class ImportObserver {
 public:
  virtual ~ImportObserver() = default;

  // --- What the host wants; constant while the import runs. Any thread.
  virtual bool WantsProblems() const { return false; }
  // Problems told one by one, at most; the first of each kind of each variable is always told.
  virtual std::int64_t ProblemLimit() const { return 1000000; }
  virtual bool WantsProblemCases() const { return false; }
  virtual bool WantsEvidence() const { return false; }
  virtual bool WantsBatches() const { return false; }
  // Field texts that mean a missing number, without blanks around them; they are no problem.
  virtual const std::vector<std::string>& NullTexts() const = 0;
  // A qualifier inside an unqualified field is data: no problem of that kind.
  virtual bool KeepsStrayQualifiers() const { return false; }

  // --- Reading. A pass begins with the first Next of an iterator that stands before the first case
  // and ends with the Next that returns false, or with the iterator.
  virtual void OnPassBegin() {}
  virtual void OnProblem(const ImportProblem&) {}
  // Problems beyond the limit, added up, of the cases up to the one delivered.
  virtual void OnProblemCounts(const ImportProblemCount*, std::size_t) {}
  // A case with at least one problem, after its problems.
  virtual void OnProblemCase(const ImportCaseSpan&) {}
  virtual void OnSpan(const ImportSpan&) {}
  virtual void OnCells(const ImportCellCounts&) {}
  virtual void OnPassEnd() {}

  // --- Batches. A worker calls the first, several at the same time, right after it has converted
  // `count` cases of the source's layout that follow `firstCase` cases; `cases` is good during the
  // call. The engine of one thread gathers batches itself. The host's thread gets the product
  // before Next delivers the first case of the batch; cases of it that are never delivered (a
  // limit, an interrupt) are the host's to leave out.
  virtual std::unique_ptr<ImportBatchProduct> MakeProduct(const OBS*, std::size_t /*count*/,
                                                          std::int64_t /*firstCase*/) {
    return nullptr;
  }
  virtual void OnProduct(std::unique_ptr<ImportBatchProduct>, std::size_t /*count*/,
                         std::int64_t /*firstCase*/) {}
};

// What an adapter derives from, besides DACAdapterBase, when its host watches the import.
class ImportObserving {
 public:
  virtual ~ImportObserving() = default;
  // Outlives the data source and its iterators; null for none.
  virtual ImportObserver* GetImportObserver() = 0;
};
