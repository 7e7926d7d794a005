// Display-format codes: the numeric types that the host's variables carry.
#pragma once

#include <cstdint>

namespace textwizard {

enum FormatCode : std::uint32_t {
  kFormatSkip = 0,  // a field that is read and discarded; no variable is made
  kFormatA = 1,
  kFormatAHex = 2,
  kFormatComma = 3,
  kFormatDollar = 4,
  kFormatF = 5,
  kFormatN = 16,
  kFormatE = 17,
  kFormatDate = 20,
  kFormatTime = 21,
  kFormatDateTime = 22,
  kFormatADate = 23,
  kFormatJDate = 24,
  kFormatDTime = 25,
  kFormatWkday = 26,
  kFormatMonth = 27,
  kFormatMoyr = 28,
  kFormatQyr = 29,
  kFormatWkyr = 30,
  kFormatPct = 31,
  kFormatDot = 32,
  kFormatEDate = 38,
  kFormatSDate = 39,
  kFormatMTime = 85,
  kFormatYmdhms = 86,
  kFormatAuto = 9999,  // the type is found from the data
};

// Widths that no format may exceed.
inline constexpr std::uint32_t kMaxStringWidth = 32767;
inline constexpr std::uint32_t kMaxNumberWidth = 40;

// Decimals that no format may exceed.
inline constexpr std::uint32_t kMaxDecimals = 16;

}  // namespace textwizard
