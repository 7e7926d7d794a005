// Host text, character by character.
#pragma once

#include <algorithm>
#include <cstdint>
#include <string_view>

#include "HostFramework/Text.h"

namespace library {

// Of bytes that are no character: one byte, and no code.
struct HostCharacter {
  std::string_view bytes;
  std::uint32_t code;
};

// The first character of a host text that is not empty.
inline HostCharacter FirstCharacter(std::string_view text) {
  constexpr std::size_t kLongest = 8;
  std::uint32_t code = 0;
  const int length =
      QANTMBU32Get_A(&code, text.data(), 0, static_cast<int>(std::min(text.size(), kLongest)));
  if (length <= 0) return {text.substr(0, 1), 0};
  return {text.substr(0, static_cast<std::size_t>(length)), code};
}

}  // namespace library
