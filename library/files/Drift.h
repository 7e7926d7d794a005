// How the files of a data set differ from one another.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

namespace library {

enum class DriftKind : std::uint8_t {
  kLeftOut,     // a file that does not belong
  kEmpty,       // a file that holds nothing
  kHeaderOnly,  // a file that holds names and no data
  kNoHeader,    // a file without names, whose columns are taken by place
  kMissing,     // a column that the file lacks
  kAdded,       // a column that most files lack
  kRenamed,     // a column whose name differs by letter case or blanks only, or by place
  kReordered,   // columns in another order
  kDecimal,     // numbers with the other decimal character
  kType,        // values that are not of the type that most files have
};

// "left-out", "missing".
const char* NameOf(DriftKind kind);

// Texts are UTF-8.
struct Drift {
  DriftKind kind = DriftKind::kLeftOut;
  std::size_t file = 0;
  // The data set's column; empty for what is of the whole file.
  std::string column;
  // What is said of it: a sentence without the file's name and without a full stop.
  std::string detail;
  // The first value that it is about, its line in the file (from 1), and how many there are.
  std::string value;
  std::int64_t line = 0;
  std::int64_t count = 0;
};

// Lines for a person, each kind and column once with the first file and how many more there are; no
// more than `most` lines, and the last says how many are left. `names` are the files'.
std::vector<std::string> DriftLines(const std::vector<Drift>& drift,
                                    const std::vector<std::string>& names, std::size_t most);

// [{"kind":"missing","file":"b.csv","column":"x",...}]
nlohmann::ordered_json DriftJson(const std::vector<Drift>& drift,
                                 const std::vector<std::string>& names);

}  // namespace library
