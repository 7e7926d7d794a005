// What a person should be told of an import that the component accepts without a word.
#pragma once

#include <string>

#include "library/command/CommandOutline.h"
#include "reading/ImportSource.h"

namespace library {

// Texts are sentences in host text without a full stop; empty where there is nothing to say.

// DELIMITERS whose text is taken letter by letter where it looks like an escape: it holds a letter,
// or a backslash that no other one announces.
std::string DelimiterAdvice(const CommandOutline& outline);

// A data file of which not one case came, though it was read to its end: it is empty, FIRSTCASE
// lies behind its end, or its lines make none. Reads the file once more. `file` is its name.
std::string NoCaseAdvice(const textwizard::ImportSource& source, const std::string& file);

}  // namespace library
