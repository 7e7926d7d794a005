#include "library/report/SaidProblems.h"

namespace library {

void SaidProblems::Keep(const ImportProblem& problem, std::string_view written) {
  if (said_.empty()) said_.resize(kPlaces);
  const Ends ends = EndsOf(problem.text);
  const std::size_t place = PlaceOf(problem, ends);
  Said* said = &said_[place];
  if (said->variable >= 0) {
    Said& other = said_[place ^ 1];
    if (other.variable < 0 || (replacesOther_ = !replacesOther_)) said = &other;
  }
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
