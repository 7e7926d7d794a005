#include "library/import/CaseSampler.h"

#include "HostFramework/Sampling.h"

namespace library {

CaseSampler::CaseSampler(std::optional<double> fraction, std::optional<unsigned> seed)
    : fraction_(fraction) {
  if (!fraction_) return;
  if (seed) {
    SeedSampling(*seed);
  } else {
    SeedSampling();
  }
}

bool CaseSampler::Keep() { return !fraction_ || SampleNextCase(*fraction_); }

}  // namespace library
