// The display-format codes that value input tells apart. The codes are the host's: its variables
// carry them, and callers hand them in as plain integers.
#pragma once

namespace embedded {

enum FormatCode : int {
  kComma = 3,
  kDollar = 4,
  kF = 5,
  kN = 16,
  kE = 17,
  kDate = 20,
  kTime = 21,
  kDateTime = 22,
  kADate = 23,
  kJDate = 24,
  kDTime = 25,
  kWkday = 26,
  kMonth = 27,
  kMoyr = 28,
  kQyr = 29,
  kWkyr = 30,
  kPct = 31,
  kDot = 32,
  kEDate = 38,
  kSDate = 39,
  kMTime = 85,
  kYmdhms = 86,
};

}  // namespace embedded
