// Where in a table the data is: what stands above it, which rows name the columns, what stands
// behind it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "library/sniff/SampleTable.h"
#include "library/sniff/SniffResult.h"
#include "library/sniff/SniffSettings.h"

namespace library {

struct TableShape {
  // Indices of rows. The header is [headerBegin, headerEnd), empty where there is none.
  std::size_t headerBegin = 0;
  std::size_t headerEnd = 0;
  // One behind the last row where there is no data.
  std::size_t firstData = 0;
  // One behind the last row of data.
  std::size_t endData = 0;
  // Rows above the first row of data, below the header, that were found to be totals.
  std::size_t totals = 0;
  // Rows of data have more than one filled cell: a row with one is a title.
  bool titles = false;
  // How sure the header and the first row are, and why, in a few words.
  Verdict headerVerdict = Verdict::kGuess;
  Verdict firstVerdict = Verdict::kGuess;
  std::string headerEvidence;
  std::string firstEvidence;
};

// `end`: the table's last row is the file's last.
TableShape FindShape(const SampleTable& table, bool end, const SniffSettings& settings);

}  // namespace library
