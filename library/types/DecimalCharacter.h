// The character before a number's decimals.
#pragma once

#include <cstdint>

namespace library {

enum class DecimalCharacter : std::uint8_t { kPoint, kComma };

}  // namespace library
