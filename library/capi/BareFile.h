// Files without a command: how they are built, and their first records.
#pragma once

#include <cstdint>
#include <string>

#include "library/sniff/SniffSettings.h"

namespace library {

// JSON; `path` is bytes of the file system, "-" standard input for PreviewedFile. Throw Failure.
std::string SniffedFile(const std::string& path, const SniffSettings& settings);
// `count` records from record `first` (from 1) on, in an encoding of the wizard's names.
std::string PreviewedFile(const std::string& path, const std::string& encoding, std::int64_t first,
                          std::int64_t count);

}  // namespace library
