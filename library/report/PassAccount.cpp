#include "library/report/PassAccount.h"

#include <algorithm>

#include <fmt/format.h>
#include <xxhash.h>

#include "library/report/ProblemKind.h"

namespace library {
namespace {

std::string Described(const ProblemMark& mark, const ReportVariables& variables) {
  const ReportVariable* variable = VariableAt(variables, mark.variable);
  return fmt::format("{} in line {}{}{}", NameOf(mark.kind), mark.line,
                     variable == nullptr ? "" : " of ", variable == nullptr ? "" : variable->name);
}

// The first place where the problems told differ; empty when they do not.
std::string FirstDifference(const std::vector<ProblemMark>& first,
                            const std::vector<ProblemMark>& second,
                            const ReportVariables& variables) {
  const auto [one, other] = std::mismatch(first.begin(), first.end(), second.begin(), second.end());
  if (one == first.end() && other == second.end()) return {};
  const auto describe = [&variables](auto at, auto end) {
    return at == end ? std::string("no further one") : Described(*at, variables);
  };
  return fmt::format("problem {} is {} and {}", one - first.begin() + 1, describe(one, first.end()),
                     describe(other, second.end()));
}

}  // namespace

ProblemMark MarkOf(const ImportProblem& problem) {
  const std::int64_t numbers[] = {problem.caseNumber, problem.byte, problem.amount};
  const XXH64_hash_t seed = XXH3_64bits(numbers, sizeof numbers);
  return {problem.kind, problem.variable, problem.line,
          XXH3_64bits_withSeed(problem.text.data(), problem.text.size(), seed)};
}

std::string InShort(const ProblemLog& problems) {
  if (problems.total() == 0) return {};
  const std::vector<ProblemLog::Entry> entries = problems.Entries();
  const auto first = std::min_element(
      entries.begin(), entries.end(),
      [](const auto& left, const auto& right) { return left.firstLine < right.firstLine; });
  std::string text =
      fmt::format("{} problem{}, ", problems.total(), problems.total() == 1 ? "" : "s");
  // Which of several files comes first is not known here.
  return text + (first->firstFile.empty()
                     ? fmt::format("the first in line {}", first->firstLine)
                     : fmt::format("one in line {} of {}", first->firstLine, first->firstFile));
}

std::vector<std::string> Differences(const PassAccount& first, const PassAccount& second,
                                     const ReportVariables& variables) {
  std::vector<std::string> differences;
  if (first.cases != second.cases) {
    differences.push_back(
        fmt::format("the numbers of cases are {} and {}", first.cases, second.cases));
  }
  if (first.digest != second.digest) {
    const auto hex = [](const std::optional<Digest>& digest) {
      return digest ? digest->Hex() : std::string("none");
    };
    differences.push_back(
        fmt::format("the digests are {} and {}", hex(first.digest), hex(second.digest)));
  }
  if (std::string what = FirstDifference(first.trail, second.trail, variables); !what.empty()) {
    differences.push_back(std::move(what));
  } else if (first.problems.Entries() != second.problems.Entries()) {
    differences.push_back(fmt::format("the problems are {} and {} by variable and kind",
                                      first.problems.total(), second.problems.total()));
  }
  if (!(first.ledger == second.ledger)) {
    differences.push_back(fmt::format("the ledgers are \"{}\" and \"{}\"", first.ledger.Line(),
                                      second.ledger.Line()));
  }
  return differences;
}

}  // namespace library
