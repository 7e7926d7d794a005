// Problems as rows of CSV or JSON Lines.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

#include "HostFramework/ImportObserver.h"
#include "library/outputs/ByteSink.h"
#include "library/outputs/ProblemRow.h"
#include "library/outputs/TextBlock.h"
#include "library/report/ProblemRows.h"
#include "library/report/ProblemSink.h"
#include "library/report/ReportVariable.h"
#include "library/report/RisingNumber.h"
#include "library/report/SaidProblems.h"

namespace library {

enum class ProblemFormat { kCsv, kJsonLines };

// Writes rows with the columns kind, case, line, byte, variable, format, text and detail. A problem
// of which no case came has no case (JSON: no such key), one of a record no variable and no format
// (JSON: null). Of several files there is a column `file`, the first one. Allocates nothing per row
// in the steady state. One thread; the variables outlive it.
class ProblemWriter : public ProblemSink {
 public:
  enum class Files { kOne, kSeveral };
  // At most `limit` rows, the first ones.
  ProblemWriter(ProblemFormat format, const ReportVariables& variables, std::int64_t limit,
                ByteSink& sink, Files files = Files::kOne);
  void BeginFile(std::string_view name) override {
    made_.SetFile(name);
    placeKnown_ = false;
  }
  // What stands before the rows: the header of CSV.
  void WriteHeader();
  void Write(const ImportProblem& problem) override { WriteAll(&problem, 1); }
  void WriteAll(const ImportProblem* problems, std::size_t count) override;
  void WriteRow(const ProblemRow& row);
  // Hands what is buffered to the sink.
  void Flush();

 private:
  // A row is where the problem is, then what it is.
  bool PlaceIsOf(const ImportProblem& problem) const {
    return problem.caseNumber == case_ && problem.line == line_ && problem.kind == kind_ &&
           (problem.byte >= 0) == hasByte_ && placeKnown_;
  }
  void MakePlace(const ImportProblem& problem);
  void MakePlace(std::string_view file, std::string_view kind, std::int64_t caseNumber,
                 std::int64_t line, bool hasByte);
  void MakeSaid(const ProblemRow& row);
  // The rows of problems, of which keys_ has room for the keys, up to one before `end` of which it
  // is not known what is said; returns that one.
  const ImportProblem* WriteKnown(const ImportProblem* problems, const ImportProblem* end);
  // The row of any problem.
  void WriteNew(const ImportProblem& problem);
  // Writes the place that was made, with the byte where it has one, and returns the end.
  char* WritePlace(std::int64_t byte, char* to);
  // A row that says what MakeSaid made.
  void AppendWritten(std::int64_t byte);
  void EndRows(const char* end);

  const ProblemFormat format_;
  const Files files_;
  std::int64_t left_;
  ByteSink& sink_;
  ProblemRows made_;
  TextBlock rows_;
  // What stands before the byte's number in a row: the problems of a case have it in common; with a
  // block behind it. Those of which, where it is known.
  std::string place_;
  bool placeKnown_ = false;
  ImportProblemKind kind_ = {};
  std::int64_t case_ = 0;
  std::int64_t line_ = 0;
  bool hasByte_ = false;
  RisingNumber caseDigits_;
  RisingNumber lineDigits_;
  RisingNumber byteDigits_;
  // What stands behind that number.
  std::string written_;
  SaidProblems said_;
  // Of the problems in hand.
  std::array<SaidProblems::Key, 16> keys_;
  std::array<std::string_view, 16> texts_;
};

}  // namespace library
