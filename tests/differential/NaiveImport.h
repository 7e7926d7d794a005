// A reader written as plainly as the rules are: byte by byte, one copy after another, nothing
// shared with the component. The differential test compares both engines with it.
//
// Only value input itself (text of a field to a number) is the host's.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "tests/differential/NaiveText.h"
#include "tests/differential/NaiveWatch.h"

namespace naive {

enum class Lines { kOneCase, kCounted, kFixed };

struct Variable {
  int format = 5;  // display-format code; 0 is skipped, 1 is a string
  std::size_t width = 8;
  // Bytes of a string's field, where an encoding gives it more than the width; else 0.
  std::size_t fieldWidth = 0;
  std::size_t record = 1;  // fixed: from 1
  std::size_t start = 0;   // fixed: from 0
};

struct Settings {
  Lines lines = Lines::kOneCase;
  std::int64_t firstCase = 1;
  std::u32string delimiters;
  char32_t qualifier = 0;
  bool leadingSpaces = false;
  bool multipleSpaces = false;
  std::size_t recordsPerCase = 1;
  std::optional<std::size_t> caseLimit;
  // Cases after which the host stops.
  std::optional<std::size_t> interrupt;
  // What an observer may ask for.
  std::vector<std::string> nullTexts;
  bool keepsStrayQualifiers = false;
};

// One cell: a string variable's text without the blanks that pad it, or a number (none: missing).
struct Cell {
  bool isString = false;
  std::string text;
  std::optional<double> number;
  bool operator==(const Cell&) const = default;
};

using Case = std::vector<Cell>;

struct Import {
  std::vector<Case> cases;
  // Case number (from 1) and byte position of every byte that is no character.
  std::vector<std::pair<std::int64_t, std::size_t>> undecodable;
  Watched watched;
};

Import Read(const std::string& bytes, const Settings& settings,
            const std::vector<Variable>& variables, const HostText& host = HostText());

}  // namespace naive
