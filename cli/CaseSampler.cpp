#include "cli/CaseSampler.h"

#include <cstdlib>
#include <ctime>

namespace cli {
namespace {

// Largest number that the process's random numbers reach.
constexpr double kLargestDraw = 2147483647.0;

}  // namespace

CaseSampler::CaseSampler(std::optional<double> fraction, std::optional<unsigned> seed)
    : fraction_(fraction) {
  if (fraction_) std::srand(seed.value_or(static_cast<unsigned>(std::time(nullptr))));
}

bool CaseSampler::Keep() { return !fraction_ || !(std::rand() / kLargestDraw > *fraction_); }

}  // namespace cli
