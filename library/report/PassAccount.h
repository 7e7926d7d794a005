// What one pass over the cases of an import came to, and how two passes differ.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "library/report/Digest.h"
#include "library/report/Ledger.h"
#include "library/report/ProblemLog.h"
#include "library/report/ReportVariable.h"

namespace library {

// One problem as it is compared: its place, and a hash of all that was told of it.
struct ProblemMark {
  ImportProblemKind kind;
  std::int32_t variable;
  std::int64_t line;
  std::uint64_t hash;
  bool operator==(const ProblemMark&) const = default;
};

ProblemMark MarkOf(const ImportProblem& problem);

struct PassAccount {
  // Cases delivered, or kept where the host samples.
  std::int64_t cases = 0;
  // The pass came to its end.
  bool complete = false;
  ProblemLog problems;
  Ledger ledger;
  std::optional<Digest> digest;
  // The problems that were told, when two passes are to be compared.
  std::vector<ProblemMark> trail;
  // Fixed columns: for each variable the cases whose text goes on behind its column; else empty.
  std::vector<std::int64_t> textsBeyondColumn;
};

// "3 problems, the first in line 2"; empty when there is none.
std::string InShort(const ProblemLog& problems);

// What differs between two passes over the same cases, a line each such as "the digests are ... and
// ..."; empty when nothing does.
std::vector<std::string> Differences(const PassAccount& first, const PassAccount& second,
                                     const ReportVariables& variables);

}  // namespace library
