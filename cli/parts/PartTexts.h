// What a person writes of parts of a file.
#pragma once

#include <cstdint>
#include <string>

#include "library/parts/CasePlan.h"

namespace cli {

// A number of bytes, one at least: 1000000, 64k, 64MB (decimal), 64KiB, 64MiB, 2GiB. False, with
// the end of a sentence, for another text.
bool ReadSize(const std::string& text, std::int64_t* bytes, std::string* error);

// "K/N": part K of N, from 1.
struct PartNumber {
  std::int64_t number = 0;
  std::int64_t count = 0;
};
bool ReadPartNumber(const std::string& text, PartNumber* part, std::string* error);

// "FROM-TO": from byte FROM on, before byte TO.
bool ReadPartRange(const std::string& text, library::PartRange* range, std::string* error);

}  // namespace cli
