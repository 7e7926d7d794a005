// The rule of IMPORTCASE PERCENT, which iterators leave to whoever reads them.
#pragma once

#include <optional>
#include <vector>

#include "HostFramework/embedded/command/CommandLanguage.h"

namespace cli {

// The share of cases (0 to 1) that a command keeps by IMPORTCASE PERCENT; nothing when it has none.
// The tokens are those of a command that the component accepted.
std::optional<double> SampleFraction(const std::vector<embedded::CommandToken>& tokens);

// Draws for every case in turn whether it is kept.
class CaseSampler {
 public:
  // Keeps all cases without a fraction. Otherwise starts the process's random numbers, from `seed`
  // or from the time.
  CaseSampler(std::optional<double> fraction, std::optional<unsigned> seed);
  bool Keep();

 private:
  std::optional<double> fraction_;
};

}  // namespace cli
