// What a format code can be besides a display format, and the limits of widths and decimals.
#pragma once

#include <cstdint>

#include "HostFramework/Formats.h"

namespace textwizard {

using enum ::FormatCode;
using ::FormatCode;

inline constexpr std::uint32_t kFormatSkip = 0;     // a field that is read and discarded
inline constexpr std::uint32_t kFormatAuto = 9999;  // the type is found from the data

// Widths that no format may exceed.
inline constexpr std::uint32_t kMaxStringWidth = 32767;
inline constexpr std::uint32_t kMaxNumberWidth = 40;

// Decimals that no format may exceed.
inline constexpr std::uint32_t kMaxDecimals = 16;

}  // namespace textwizard
