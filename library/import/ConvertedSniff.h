// How a file is built that has to be converted before the component can read it.
#pragma once

#include <string>

#include "library/input/InputFiles.h"
#include "library/sniff/SniffResult.h"
#include "library/sniff/SniffSettings.h"

namespace library {

// Looks at the UTF-8 text that `input` was converted to: places in *sniff are those of the text,
// encoding, mark and size those of the file. *sniff: what is known of the file as it is, or as
// made. False when it is no text; *problem is then a sentence (UTF-8).
bool SniffConverted(const InputFiles::Input& input, const SniffSettings& settings,
                    SniffResult* sniff, std::string* problem);

}  // namespace library
