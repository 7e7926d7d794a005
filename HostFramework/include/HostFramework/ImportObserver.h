// What a host may watch while a text file is imported: the problems of the cases that are
// delivered, what became of every byte and every cell, what type detection saw, and whole batches
// of cases while they are still with the thread that converted them.
//
// A host asks for it by an adapter that derives from ImportObserving besides DACAdapterBase. A host
// that does not sees what it would see without this header, at no cost.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "HostFramework/DataSource.h"

// --- Problems

enum class ImportProblemKind : std::uint8_t {
  kUnreadable,      // a text, not blank and no null text, that its format cannot read
  kRounded,         // a number with more digits than a double keeps
  kCut,             // a string longer than its variable, blanks at its end aside
  kUndecodable,     // bytes that are no character of the encoding, in the field's text
  kFewFields,       // the record ended before the field of the last variable
  kSurplus,         // fields behind those of the variables that are not empty or blank all
  kOpenQuote,       // the record ended inside a qualified field
  kStrayQuote,      // a qualifier inside an unqualified field, or text behind the closing one
  kShortRecord,     // fixed columns: the record ends before the variable's column begins
  kIncompleteCase,  // the file ended inside a case
  kNul,             // NUL bytes that were dropped
};
inline constexpr std::size_t kImportProblemKinds = 11;

// A text of a problem or of evidence holds at most so many bytes: a longer one is cut at a whole
// character.
inline constexpr std::size_t kImportTextBytes = 1024;

// A problem of a field (unreadable, rounded, cut, undecodable, and open or stray quotes) stands at
// the field, any other at the record. Where a case has several records, an incomplete one is told
// of the record that it begins in.
struct ImportProblem {
  ImportProblemKind kind;
  // Index of the variable among the source's; -1 when it is the record's problem or one of a field
  // that no variable takes. A short record names the variable whose column is missing.
  std::int32_t variable;
  // From 1; 0 when no case came of it.
  std::int64_t caseNumber;
  // Physical line of the data file, from 1, and offset in bytes, where the field or the record
  // begins.
  std::int64_t line;
  std::int64_t byte;
  // Variables without a field (few fields, incomplete case), bytes that are no character, bytes
  // dropped; else 0.
  std::int64_t amount;
  // Host text: the field as it was cut, what was left of the record (surplus), or the record.
  // Good during the call.
  std::string_view text;
};

// Problems of one kind of one variable.
struct ImportProblemCount {
  ImportProblemKind kind;
  std::int32_t variable;
  std::int64_t count;
};

// The bytes of the file that make one case: its records with their line ends and the empty lines
// between them. Where values run across lines, from the first byte of its first field to behind the
// delimiter or line end that ended its last one.
struct ImportCaseSpan {
  std::int64_t caseNumber;
  std::int64_t line;
  std::int64_t begin;
  std::int64_t end;
};

// --- Bytes and cells

// A stretch of the file and what was made of it. The stretches of a pass join without a gap from
// the file's first byte to its last; none is empty, and no two of a kind follow one another.
struct ImportSpan {
  enum Kind : std::uint8_t {
    kMark,      // the byte-order mark
    kPreamble,  // the lines before the first case's, with their ends
    kSkipped,   // empty lines that make no record, with their ends
    kRecords,   // records of delivered cases, with their line ends
    kUnread,    // what a case limit, an interrupt or a failure left
  };
  Kind kind;
  std::int64_t offset;
  std::int64_t bytes;
  // Of kRecords. Of its bytes are line ends, and dropped: NUL bytes, of 16-bit records also what
  // follows one in its line. The others are the records' text, an odd last byte included.
  std::int64_t records;
  std::int64_t lineEndBytes;
  std::int64_t droppedBytes;
};

// What became of cells: every cell of a delivered case is one of these.
struct ImportCellCounts {
  std::int64_t read = 0;
  std::int64_t empty = 0;       // an empty or blank field
  std::int64_t null = 0;        // a null text of the observer's
  std::int64_t unreadable = 0;  // a problem of that kind
  std::int64_t absent = 0;      // the record had no such field
};

// Counted where cases are delivered, not taken from the spans.
struct ImportPassEnd {
  std::int64_t cases = 0;
  std::int64_t recordsInCases = 0;
  // Records that were read for a case that was not delivered.
  std::int64_t recordsWithoutCase = 0;
  // Bytes of the file when it was opened.
  std::int64_t bytes = 0;
  // The pass came to the end of the data or to the case limit: it was not interrupted and did not
  // fail.
  bool complete = false;
  // Fixed columns, else null: for each variable of the source the cases whose text goes up to the
  // column's end and on behind it, where the command takes no other column. Good during the call.
  const std::vector<std::int64_t>* textsBeyondColumn = nullptr;
};

// --- What type detection saw

// How many, and the first of them in the file: its physical line and its text. Line 0: none.
struct ImportWitness {
  std::int64_t count = 0;
  std::int64_t line = 0;
  std::string text;
};

enum class ImportValueClass : std::uint8_t {
  kString,
  kNumber,
  kDate,  // dates, times and durations
  kDollar,
  kPercent,
  kComma,
  kDot,
};
inline constexpr std::size_t kImportValueClasses = 7;

struct ImportDateLayout {
  // "dd.MM.yyyy" and "EDATE10".
  std::string pattern;
  std::string format;
  ImportWitness seen;
};

// The values of an AUTO variable that detection has counted. The same for every number of workers,
// batches and block sizes.
struct ImportEvidence {
  std::array<ImportWitness, kImportValueClasses> classes;
  // Fields of blanks only (detection counts them as numbers, and so do the classes), and empty
  // ones, which it does not count. A field that the record does not have is neither.
  std::int64_t blanks = 0;
  std::int64_t empties = 0;
  // Of dates, by the first layout of the table that a value has; in the table's order.
  std::vector<ImportDateLayout> layouts;
  // Texts of three numbers that begin with a day and a month, whatever their class: those that can
  // only be day first, only month first, and those that have either order.
  ImportWitness dayFirst;
  ImportWitness monthFirst;
  ImportWitness eitherOrder;
  // Numbers and amounts with commas, by what these can be: the decimal character only, grouping
  // only, either.
  ImportWitness decimalComma;
  ImportWitness groupingComma;
  ImportWitness eitherComma;
  // Numbers of digits that begin with a zero and another digit.
  ImportWitness leadingZeros;
  // The longest value in bytes of host text, which is the count; the first where several are.
  ImportWitness longest;
};

// --- Batches

// What a host makes of a batch of cases on the thread that converted it (columns, text, a digest).
class ImportBatchProduct {
 public:
  virtual ~ImportBatchProduct() = default;
};

// --- The observer

// Every operation is called on the host's thread unless it says otherwise, and none may throw.
// Calls of a pass are the same for every number of workers, both engines and any block size, but
// for how cases are spread over batches.
class ImportObserver {
 public:
  virtual ~ImportObserver() = default;

  // --- What the host wants: constant while a source and its iterators live. Any thread.

  // Passes: problems, spans, cells.
  virtual bool WantsProblems() const { return false; }
  // Problems told one by one, at most; the first of each kind of each variable is always told.
  virtual std::int64_t ProblemLimit() const { return 1000000; }
  virtual bool WantsProblemCases() const { return false; }
  virtual bool WantsCellsPerCase() const { return false; }
  virtual bool WantsEvidence() const { return false; }
  virtual bool WantsBatches() const { return false; }
  // Cases are read on the host's thread also where the component would take several.
  virtual bool ReadsOnOneThread() const { return false; }
  // Field texts (host text, without the blanks around them) that mean a missing number, whether or
  // not a format can read them. They are no problem and no missing value of the variable map.
  virtual const std::vector<std::string>& NullTexts() const {
    static const std::vector<std::string> none;
    return none;
  }
  // A qualifier inside an unqualified field is an ordinary character of it, when types are detected
  // and when cases are read.
  virtual bool KeepsStrayQualifiers() const { return false; }

  // --- Type detection

  // Once for each AUTO variable when the dictionary is made; `variable` is its index among the
  // source's.
  virtual void OnEvidence(std::size_t /*variable*/, const ImportEvidence&) {}

  // --- Reading. A pass begins with the Next of an iterator that stands before the first case and
  // is to deliver that. It ends with the Next that returns false, with a Seek to another case than
  // the next one, or with the iterator. What is read outside a pass is told to nobody.
  //
  // What is told of a case comes within the Next that delivers it: its problems in the order of the
  // file (a record's own before those of its fields), the case span when it has a problem, its
  // cells when they are wanted for each case.

  virtual void OnPassBegin() {}
  virtual void OnProblem(const ImportProblem&) {}
  // Some of one case that follow one another: what the component calls. Whoever does not care for
  // several at once leaves it as it is.
  virtual void OnProblems(const ImportProblem* problems, std::size_t count) {
    for (const ImportProblem* end = problems + count; problems != end; ++problems) {
      OnProblem(*problems);
    }
  }
  virtual void OnProblemCase(const ImportCaseSpan&) {}
  // A stretch, once it is known to be at its end.
  virtual void OnSpan(const ImportSpan&) {}
  // Of one case when wanted for each; else once, of all delivered cases, when the pass ends.
  virtual void OnCells(const ImportCellCounts&) {}
  // Once when the pass ends: all problems of delivered cases, told or not, by variable and kind.
  virtual void OnProblemCounts(const ImportProblemCount*, std::size_t /*count*/) {}
  // The last call of a pass.
  virtual void OnPassEnd(const ImportPassEnd&) {}

  // --- Batches. A host that wants them gets cases by the batch: a Next delivers all cases of one
  // and leaves the last of them in the case buffer; Tell says how many were delivered. Batches are
  // of any size, in the order of the file, and end with the case limit. Such an iterator does not
  // seek (see IsSeekOK).

  // A worker calls this, several at the same time, right after it has converted `count` cases of
  // the source's layout, which follow `firstCase` cases; `cases` is good during the call. An
  // iterator of one thread calls it on that. May throw std::bad_alloc: the pass fails before these
  // cases.
  virtual std::unique_ptr<ImportBatchProduct> MakeProduct(const OBS* /*cases*/,
                                                          std::size_t /*count*/,
                                                          std::int64_t /*firstCase*/) {
    return nullptr;
  }
  // The first call of the Next that delivers these cases, which are good during the call.
  virtual void OnProduct(std::unique_ptr<ImportBatchProduct>, const OBS* /*cases*/,
                         std::size_t /*count*/, std::int64_t /*firstCase*/) {}
};

// What an adapter derives from, besides DACAdapterBase, when its host watches the import.
class ImportObserving {
 public:
  virtual ~ImportObserving() = default;
  // Outlives the data source and its iterators; null for none. Asked once for each data source.
  virtual ImportObserver* GetImportObserver() = 0;
};
