// Reading numbers: the formats F, E, PCT, COMMA, DOLLAR, DOT and N.
#pragma once

#include <string_view>

namespace embedded {

// Reads `text` (not empty, without blanks and tabs around it) under the number format `code`.
// Digits are those of any script; white space of any kind may stand behind a COMMA, DOLLAR or DOT
// number. `decimal` is the process's decimal character. Returns false and leaves *value alone when
// the text is not such a number or is too large. Any thread; allocates nothing; a text of up to 16
// characters costs a few operations on whole words, any other at most three passes.
bool ReadNumber(std::string_view text, int code, char decimal, double* value);

}  // namespace embedded
