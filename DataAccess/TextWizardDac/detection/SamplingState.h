// What a pass of detection knows of a variable besides its counts, one record after another: on it
// depends how the next value is cut from fixed columns and counted.
#pragma once

#include <cstdint>

#include "model/TxtWzVar.h"

namespace textwizard {

struct SamplingState {
  SamplingState() = default;
  explicit SamplingState(const TxtWzVar& variable)
      : width(variable.width),
        decimals(variable.decimals),
        maxStringLength(variable.maxStringLength),
        dateKey(variable.dateKey) {}
  void Put(TxtWzVar& variable) const {
    variable.width = width;
    variable.decimals = decimals;
    variable.maxStringLength = maxStringLength;
    variable.dateKey = dateKey;
  }
  bool operator==(const SamplingState&) const = default;

  std::uint32_t width = 0;
  std::int32_t decimals = 0;
  std::uint32_t maxStringLength = 0;
  std::int32_t dateKey = 0;
};

}  // namespace textwizard
