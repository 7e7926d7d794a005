#include "library/report/SaidProblems.h"

#include <algorithm>

namespace library {

void SaidProblems::Keep(const ImportProblem& problem, std::string_view written) {
  if (said_.empty()) said_.resize(kRows * kWays);
  const Ends ends = EndsOf(problem.text);
  Said* const row = &said_[kWays * RowOf(problem, ends)];
  Said* said = std::find_if(row, row + kWays, [](const Said& place) { return place.variable < 0; });
  if (said == row + kWays) said = row + nextWay_++ % kWays;
  // Nothing is known of the place until all of it is there.
  said->variable = -1;
  said->text = problem.text;
  said->written = written;
  said->ends = ends;
  said->amount = problem.amount;
  said->kind = problem.kind;
  said->variable = problem.variable;
}

}  // namespace library
