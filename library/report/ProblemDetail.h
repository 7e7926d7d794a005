// What a problem did to the value and what would help, in a sentence.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "HostFramework/ImportObserver.h"
#include "library/report/ReportVariable.h"

namespace library {

// The formats, with a usual width, that read `text` (host text) as a value, in the order in which a
// person would try them: numbers, amounts, dates, times. The component's own conversion decides.
// At most `most`.
std::vector<std::string_view> FormatsThatRead(std::string_view text, std::size_t most);

// The way out where the host's other decimal character reads `text` (host text), a number without
// grouping: "--decimal comma" or "--decimal point"; else empty.
std::string_view DecimalThatReads(std::string_view text);

// Makes the sentences. One thread; the variables outlive it.
class ProblemDetail {
 public:
  explicit ProblemDetail(const ReportVariables& variables) : variables_(variables) {}
  // UTF-8 without control characters; valid until the next call.
  std::string_view Of(const ImportProblem& problem);

 private:
  void Unreadable(const ImportProblem& problem, const ReportVariable& variable);
  void AppendWayOut(std::string_view text);
  void OfValue(const ImportProblem& problem, const ReportVariable& variable);
  void OfRecord(const ImportProblem& problem);

  const ReportVariables& variables_;
  std::string sentence_;
  // What would help short texts that were met: they often come again. By a hash of the text; the
  // one met last stays.
  struct Met {
    std::string text;
    std::string wayOut;
  };
  std::vector<Met> met_;
};

}  // namespace library
