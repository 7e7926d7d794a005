// One look at a whole data file, by several threads.
#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include "library/parts/PartSummary.h"
#include "library/rewriting/StandIns.h"

namespace library {

struct FileSummarySettings {
  // What the component opens (host text).
  std::string path;
  ColumnCut cut;
  std::vector<std::string> nulls;
  // Those that the file is shown with; null where it is shown as it is.
  const StandIns* standIns = nullptr;
  // How the walk over the quotes stands in front of a shown byte; null where it is shown as it is.
  std::function<bool(std::int64_t offset, QuotePosition* position)> quotesAt;
  // The bytes that hold the data: the lines that begin in them. The line that `begin` lies in is
  // one of them where it begins there, or unless `beginsInLine`.
  std::int64_t begin = 0;
  std::int64_t end = 0;
  bool beginsInLine = false;
  // Physical lines in front of `begin`.
  std::int64_t linesBefore = 0;
  // Stops behind so many physical lines of the file; 0: reads them all.
  std::int64_t lastLine = 0;
  // 0: one a processor.
  int threads = 0;
  // Bytes that a thread takes at once.
  std::int64_t partBytes = std::int64_t{4} << 20;
  // Told now and then, on the caller's thread, how many bytes were read.
  std::function<void(std::int64_t bytes)> progress;
  // Told now and then, on the caller's thread, what the parts come to that were read one behind the
  // other from the first on; not when that has not changed.
  std::function<void(const PartSummary& soFar)> grown;
};

// Sums the data up; lines are those of the file. The same for any number of threads and size of
// parts. False when the file cannot be read, memory is short or the user asked to interrupt;
// *problem is then a sentence (UTF-8), empty after an interrupt.
bool SummarizeFile(const FileSummarySettings& settings, PartSummary* summary, std::string* problem);

}  // namespace library
