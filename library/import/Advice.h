// What a person should be told of an import that the component accepts without a word.
#pragma once

#include <cstdint>
#include <string>

#include "library/import/CommandOutline.h"
#include "reading/ImportSource.h"

namespace library {

// Texts are sentences in host text without a full stop; empty where there is nothing to say.

// DELIMITERS whose text is taken letter by letter where it looks like an escape: it holds a letter,
// or a backslash that no other one announces.
std::string DelimiterAdvice(const CommandOutline& outline);

// A data file of which not one case came, though it was read to its end: it is empty, FIRSTCASE
// lies behind its end, or its lines make none. Reads the file once more. `file` is its name.
std::string NoCaseAdvice(const textwizard::ImportSource& source, const std::string& file);

// Fixed columns of which an edge falls inside a character, in the lines of the first `cases` cases:
// the first such place. Reads those lines once more where the host's text has characters of several
// bytes and the file has any that are not ASCII.
std::string ColumnEdgeAdvice(const textwizard::ImportSource& source, std::int64_t cases);

}  // namespace library
