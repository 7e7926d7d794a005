// Problems as rows of CSV or JSON Lines.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "HostFramework/ImportObserver.h"
#include "library/outputs/ByteSink.h"
#include "library/outputs/ProblemRow.h"
#include "library/report/ProblemRows.h"
#include "library/report/ProblemSink.h"
#include "library/report/ReportVariable.h"

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
  void BeginFile(std::string_view name) override { made_.SetFile(name); }
  // What stands before the rows: the header of CSV.
  void WriteHeader();
  void Write(const ImportProblem& problem) override;
  void WriteRow(const ProblemRow& row);
  // Hands what is buffered to the sink.
  void Flush();

 private:
  // What a row says of a value, as it was written: the same text often comes again.
  struct Said {
    ImportProblemKind kind;
    std::int32_t variable;
    std::int64_t amount;
    std::string text;
    std::string written;
    bool IsOf(const ImportProblem& problem) const {
      return text == problem.text && variable == problem.variable && kind == problem.kind &&
             amount == problem.amount && !written.empty();
    }
  };

  // Where what is said of the problem is kept, or what can make way for it.
  Said& SaidOf(const ImportProblem& problem);
  // A row is where the problem is, then what it is.
  void AppendPlace(std::string_view file, std::string_view kind, std::int64_t caseNumber,
                   std::int64_t line, std::int64_t byte);
  void AppendSaid(const ProblemRow& row);
  void EndRow();
  void AppendNumber(std::int64_t number);
  void AppendCsvField(std::string_view text);
  void AppendJsonText(std::string_view text);

  const ProblemFormat format_;
  const Files files_;
  std::int64_t left_;
  ByteSink& sink_;
  ProblemRows made_;
  std::string rows_;
  // By a hash of the text, two places for each. Made with the first.
  std::vector<Said> said_;
  bool replacesOther_ = false;
};

}  // namespace library
