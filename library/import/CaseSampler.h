// The rule of IMPORTCASE PERCENT, which iterators leave to whoever reads them.
#pragma once

#include <optional>

namespace library {

// Draws for every case in turn whether it is kept.
class CaseSampler {
 public:
  // Keeps all cases without a fraction (0 to 1). Otherwise starts the process's random numbers,
  // from `seed` or from the time.
  CaseSampler(std::optional<double> fraction, std::optional<unsigned> seed);
  bool Keep();

 private:
  std::optional<double> fraction_;
};

}  // namespace library
