// Files that are no text, by their first bytes.
#pragma once

#include <string>
#include <string_view>

namespace library {

// What a file is that begins with `head` and is no text, as a noun with its article ("a PNG
// picture", "an Excel workbook (xlsx)", "a gzip archive"); empty where nothing speaks against text.
std::string NameOfBinary(std::string_view head);

// Whether bytes of no known kind are no text either: too many of them are control characters.
// `zeros`: zero bytes are such.
bool IsControlHeavy(std::string_view head, bool zeros);

}  // namespace library
