// Rows of problems a second, for texts that differ and for one that comes again.

#include <string>
#include <vector>

#include <benchmark/benchmark.h>

#include "library/report/ProblemWriter.h"
#include "library/report/testing/ReportTesting.h"

namespace library {
namespace {

class Nowhere : public ByteSink {
 public:
  void Append(std::string_view bytes) override { benchmark::DoNotOptimize(bytes.data()); }
};

void Write(benchmark::State& state, ProblemFormat format, const std::vector<std::string>& texts) {
  const ReportVariables variables = {{"income", "F8.2", 5, 0}};
  Nowhere nowhere;
  ProblemWriter writer(format, variables, INT64_MAX, nowhere);
  std::size_t next = 0;
  for (auto _ : state) {
    writer.Write(Problem(ImportProblemKind::kUnreadable, 0, texts[next]));
    next = next + 1 == texts.size() ? 0 : next + 1;
  }
  state.SetItemsProcessed(state.iterations());
}

std::vector<std::string> Numbered(const std::string& before, const std::string& behind) {
  std::vector<std::string> texts;
  for (int number = 1000; number < 2000; ++number) {
    texts.push_back(before + std::to_string(number) + behind);
  }
  return texts;
}

// Of ten variables, none of whose values can be read.
void BM_Records(benchmark::State& state) {
  const std::vector<std::string> texts = Numbered("x", "y");
  ReportVariables variables;
  for (int n = 0; n < 10; ++n) variables.push_back({"v" + std::to_string(n), "F8.2", 5, 0});
  Nowhere nowhere;
  ProblemWriter writer(ProblemFormat::kCsv, variables, INT64_MAX, nowhere);
  std::vector<ImportProblem> problems;
  for (const std::string& text : texts) {
    const auto variable = static_cast<std::int32_t>(problems.size() % 10);
    problems.push_back(Problem(ImportProblemKind::kUnreadable, variable, text));
    problems.back().byte = 1000000 + 7 * static_cast<std::int64_t>(problems.size());
  }
  std::size_t next = 0;
  std::int64_t line = 100000;
  for (auto _ : state) {
    ImportProblem* const record = &problems[next];
    for (int n = 0; n < 10; ++n) record[n].line = record[n].caseNumber = line;
    ++line;
    writer.WriteAll(record, 10);
    next = next + 10 == problems.size() ? 0 : next + 10;
  }
  state.SetItemsProcessed(state.iterations() * 10);
}

void BM_Same(benchmark::State& state) { Write(state, ProblemFormat::kCsv, {"none"}); }
void BM_Words(benchmark::State& state) { Write(state, ProblemFormat::kCsv, Numbered("x", "y")); }
void BM_Amounts(benchmark::State& state) { Write(state, ProblemFormat::kCsv, Numbered("$", "")); }
void BM_Dates(benchmark::State& state) { Write(state, ProblemFormat::kCsv, Numbered("1.2.", "")); }
void BM_JsonWords(benchmark::State& state) {
  Write(state, ProblemFormat::kJsonLines, Numbered("x", "y"));
}
BENCHMARK(BM_Records);
BENCHMARK(BM_Same);
BENCHMARK(BM_Words);
BENCHMARK(BM_Amounts);
BENCHMARK(BM_Dates);
BENCHMARK(BM_JsonWords);

}  // namespace
}  // namespace library
