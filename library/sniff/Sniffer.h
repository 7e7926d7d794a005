// Understands a bare file: encoding, dialect, where the data begins and ends, its columns.
#pragma once

#include <string>

#include "library/input/ByteSource.h"
#include "library/sniff/SniffResult.h"
#include "library/sniff/SniffSettings.h"

namespace library {

// Reads the whole source where it is below 4 MB, else its head, eight spread blocks and its tail.
// False when the source cannot be read, is no text (an executable, a picture, an archive ...) or a
// setting cannot be used; *problem is then a sentence (UTF-8) that says which and what would help.
// One thread at a time; the host works in UTF-8 mode. Cost: a few passes over what is read.
bool Sniff(ByteSource& source, const SniffSettings& settings, SniffResult* result,
           std::string* problem);

}  // namespace library
