#include "library/report/ProblemRows.h"

#include "library/report/ProblemKind.h"

namespace library {

ProblemRow ProblemRows::Of(const ImportProblem& problem) {
  ProblemRow row{.kind = NameOf(problem.kind),
                 .caseNumber = problem.caseNumber,
                 .line = problem.line,
                 .byte = problem.byte,
                 .variable = {},
                 .format = {},
                 .text = text_.Escaped(problem.text),
                 .detail = detail_.Of(problem),
                 .file = file_};
  if (const ReportVariable* variable = VariableAt(variables_, problem.variable)) {
    row.variable = variable->name;
    row.format = variable->format;
  }
  return row;
}

}  // namespace library
