// Problems as rows.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <utility>

#include "library/outputs/ProblemRow.h"
#include "library/report/ProblemDetail.h"
#include "library/report/ProblemSink.h"
#include "library/report/ReportText.h"
#include "library/report/ReportVariable.h"

namespace library {

// Makes rows. Allocates nothing per row in the steady state. One thread; the variables outlive it.
class ProblemRows {
 public:
  explicit ProblemRows(const ReportVariables& variables)
      : variables_(variables), detail_(variables) {}
  // Those that follow are of the file of that name (UTF-8), one of several.
  void SetFile(std::string_view name) { file_ = name; }
  const std::string& file() const { return file_; }
  // Good until the next call.
  ProblemRow Of(const ImportProblem& problem);

 private:
  const ReportVariables& variables_;
  std::string file_;
  ReportText text_;
  ProblemDetail detail_;
};

// Hands the first rows to a function.
class ProblemRowSink : public ProblemSink {
 public:
  // At most `limit` rows. The variables outlive it.
  ProblemRowSink(const ReportVariables& variables, std::int64_t limit,
                 std::function<void(const ProblemRow&)> take)
      : rows_(variables), left_(limit), take_(std::move(take)) {}
  void BeginFile(std::string_view name) override { rows_.SetFile(name); }
  void Write(const ImportProblem& problem) override {
    if (left_ > 0) --left_, take_(rows_.Of(problem));
  }

 private:
  ProblemRows rows_;
  std::int64_t left_;
  const std::function<void(const ProblemRow&)> take_;
};

}  // namespace library
