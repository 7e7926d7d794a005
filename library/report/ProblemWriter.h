// Problems as rows of CSV or JSON Lines.
#pragma once

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
  void Write(const ImportProblem& problem) override;
  void WriteRow(const ProblemRow& row);
  // Hands what is buffered to the sink.
  void Flush();

 private:
  // A row is where the problem is, then what it is.
  bool PlaceIsOf(const ImportProblem& problem) const {
    return placeKnown_ && problem.caseNumber == case_ && problem.line == line_ &&
           problem.kind == kind_ && (problem.byte >= 0) == hasByte_;
  }
  void MakePlace(std::string_view file, std::string_view kind, std::int64_t caseNumber,
                 std::int64_t line, bool hasByte);
  void MakeSaid(const ProblemRow& row);
  // Of the place that was made.
  void AppendRow(std::int64_t byte, std::string_view said);

  const ProblemFormat format_;
  const Files files_;
  std::int64_t left_;
  ByteSink& sink_;
  ProblemRows made_;
  TextBlock rows_;
  // What stands before the byte's number in a row: the problems of a case have it in common. Those
  // of which, where it is known.
  std::string place_;
  bool placeKnown_ = false;
  ImportProblemKind kind_ = {};
  std::int64_t case_ = 0;
  std::int64_t line_ = 0;
  bool hasByte_ = false;
  RisingNumber byte_;
  // What stands behind that number.
  std::string written_;
  SaidProblems said_;
};

}  // namespace library
