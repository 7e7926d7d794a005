// What goes wrong behind the C interface.
#pragma once

#include <cstdint>
#include <string>

#include "library/include/textwizard/textwizard.h"

// Also what the interface gives to its users.
struct textwizard_error {
  textwizard_status status = TEXTWIZARD_COMMAND_FAILED;
  std::string text;  // UTF-8
  // Of the message; 0 where it has none.
  std::int32_t number = 0;
  // In the command's text; 0 where it is not about the text.
  std::int32_t line = 0;
  std::int32_t column = 0;
};

namespace library {

// Thrown, and caught where the interface ends.
using Failure = textwizard_error;

// The number in front of a message, "[2265] ..."; 0 where there is none.
std::int32_t MessageNumber(const std::string& text);

}  // namespace library
