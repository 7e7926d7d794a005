// Cuts the cases of a data file at the parts that they begin in.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "library/parts/LineCounter.h"
#include "library/parts/PartLines.h"
#include "library/parts/Stretch.h"

namespace library {

// A range of bytes of a file.
struct PartRange {
  std::int64_t from = 0;
  std::int64_t to = 0;
  bool operator==(const PartRange&) const = default;
};

// The parts of `bytes` bytes, `partBytes` (at least one) each; one, empty, of an empty file.
std::vector<PartRange> PartsOfSize(std::int64_t bytes, std::int64_t partBytes);
// Part `number` (from 1) of `count` as even ones.
PartRange PartOf(std::int64_t bytes, std::int64_t number, std::int64_t count);

// How the reading of a file is cut.
struct CasePlan {
  // At least one, in their order: the last ends with the file, or with the last case that the
  // command reads.
  std::vector<Stretch> stretches;
  // Why the cases are not cut though there are several parts: a sentence (UTF-8); else empty.
  std::string uncut;
};

// Cases of more units are not cut: the starts of cases would take as much memory as the data.
inline constexpr std::int64_t kMostUnitsPerCase = 65536;

// Reads the file, which `stream` has open, to find where the cases begin that the command reads. At
// `values` values a case where these run across lines. False when it cannot be read, or reading was
// stopped.
bool PlanCases(const QANT_FileStream& stream, const textwizard::ImportSettings& settings,
               std::size_t values, const std::vector<PartRange>& parts, CasePlan* plan);

// What one part is read for.
struct PartPlan {
  // What of the file the cases that begin in the part account for: those of all parts join.
  std::int64_t begin = 0;
  std::int64_t end = 0;
  // What of that is read; nothing where no case is.
  std::optional<Stretch> read;
};

// Finds it, when `before` is what stands in the parts before; null: the bytes before are read for
// that. Costs the part's bytes, those before the data and the lines of its last case. False when
// the file cannot be read, *problem being empty, or when no part alone can be read; *problem is
// then a sentence (UTF-8).
bool PlanPart(const QANT_FileStream& stream, const textwizard::ImportSettings& settings,
              std::size_t values, const PartRange& part, const PartLines* before, PartPlan* plan,
              std::string* problem);

// What the lines of a part come to, for the parts behind it. False when the file cannot be read.
bool CountPart(const QANT_FileStream& stream, const textwizard::ImportSettings& settings,
               std::size_t values, const PartRange& part, PartLines* lines);

}  // namespace library
