// The figures of a run.
#pragma once

#include <string>

namespace cli {

// Of one command, or of several added up.
struct RunStats {
  long long cases = 0;
  long long variables = 0;
  long long bytes = 0;           // size of the data file
  double dictionarySeconds = 0;  // until the command had made its dictionary
  double readSeconds = 0;        // in the reading loop, less writing
  double writeSeconds = 0;       // in the writer of cases
  int threads = 0;               // that read and convert: the largest number of any command

  void Add(const RunStats& other);
  // One line of JSON without a line end; adds the peak memory of the process.
  std::string Json() const;
};

}  // namespace cli
