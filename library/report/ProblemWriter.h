// Problems as rows of CSV or JSON Lines.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "HostFramework/ImportObserver.h"
#include "library/outputs/ByteSink.h"
#include "library/report/ProblemDetail.h"
#include "library/report/ReportText.h"
#include "library/report/ReportVariable.h"

namespace library {

enum class ProblemFormat { kCsv, kJsonLines };

// Writes rows with the columns kind, case, line, byte, variable, format, text and detail. A problem
// of which no case came has no case (JSON: no such key), one of a record no variable and no format
// (JSON: null). Allocates nothing per row in the steady state. One thread; the variables outlive
// it.
class ProblemWriter {
 public:
  // At most `limit` rows, the first ones.
  ProblemWriter(ProblemFormat format, const ReportVariables& variables, std::int64_t limit,
                ByteSink& sink);
  // What stands before the rows: the header of CSV.
  void WriteHeader();
  void Write(const ImportProblem& problem);
  // Hands what is buffered to the sink.
  void Flush();

 private:
  void AppendCsv(const ImportProblem& problem, const ReportVariable* variable);
  void AppendJson(const ImportProblem& problem, const ReportVariable* variable);
  void AppendNumber(std::int64_t number);
  void AppendCsvField(std::string_view text);
  void AppendJsonText(std::string_view text);

  const ProblemFormat format_;
  const ReportVariables& variables_;
  std::int64_t left_;
  ByteSink& sink_;
  ReportText text_;
  ProblemDetail detail_;
  std::string rows_;
};

}  // namespace library
