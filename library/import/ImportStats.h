// The figures of an import.
#pragma once

namespace library {

// Of one command, or of several added up.
struct ImportStats {
  long long cases = 0;
  long long variables = 0;
  long long bytes = 0;           // size of the data file
  double dictionarySeconds = 0;  // until the command had made its dictionary
  double readSeconds = 0;        // in the reading loop, less writing
  double writeSeconds = 0;       // in the writer of cases
  int threads = 0;               // that read and convert: the largest number of any command

  void Add(const ImportStats& other);
};

// The most memory that this process has had at a time, in bytes.
long long PeakMemory();

}  // namespace library
