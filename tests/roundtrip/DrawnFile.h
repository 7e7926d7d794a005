// Files of drawn tables: dialect, encoding and line ends drawn at random, written by a writer that
// knows nothing of who reads them.
#pragma once

#include <cstdint>
#include <random>
#include <string>

#include "tests/roundtrip/DrawnTable.h"

namespace roundtrip {

struct DrawnDialect {
  // A name that iconv knows.
  std::string encoding;
  std::string mark;
  std::string lineEnd;
  bool fixed = false;
  char delimiter = ',';
  // 0: none.
  char qualifier = '"';
  // A backslash stands before a qualifier in a value, instead of a second one.
  bool backslash = false;
  bool quotesAll = false;
  bool header = true;
  bool lastLineEnd = true;
  // Lines of a title above.
  int titles = 0;
};

struct DrawnFile {
  DrawnDialect dialect;
  DrawnTable table;
  std::string bytes;
};

// The file of that number, always the same.
DrawnFile DrawFile(std::uint64_t number);

// What the file is like, in a few words.
std::string Describe(const DrawnFile& file);

}  // namespace roundtrip
