// Finds the dialect that describes lines of text best, among all that their characters suggest.
#pragma once

#include <cstddef>
#include <optional>
#include <string_view>
#include <vector>

#include "library/sniff/CellKinds.h"
#include "library/sniff/Dialect.h"
#include "library/sniff/DialectScore.h"
#include "library/sniff/SniffSettings.h"

namespace library {

struct DialectAnswer {
  Dialect dialect;
  DialectScore score;
  // The best one that cuts otherwise.
  std::optional<Dialect> runnerUp;
  DialectScore runnerUpScore;
  // Another one cuts all records alike, and nothing in the lines says which is meant.
  bool open = false;
};

// `lines` as SampleText gives them; as many of the first are looked at as kMostText bytes hold.
// What the settings give is not looked for.
DialectAnswer FindDialect(const std::vector<std::string_view>& lines, const SniffSettings& settings,
                          CellKinds& kinds);

// Lines that FindDialect looks at.
std::size_t LinesForDialect(const std::vector<std::string_view>& lines);

}  // namespace library
