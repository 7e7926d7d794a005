// A bare file understood: how it is built, what is in its columns, and the command that imports it.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "library/import/BareColumns.h"
#include "library/import/BareCut.h"
#include "library/input/InputFiles.h"
#include "library/parts/FileSummary.h"
#include "library/rewriting/StandIns.h"
#include "library/sniff/SniffResult.h"
#include "library/sniff/SniffSettings.h"
#include "library/types/TypeChoice.h"

namespace library {

struct BareImport;

struct BareImportSettings {
  SniffSettings sniff;
  // How the file is built, where somebody has found that already; null: it is found.
  const SniffResult* sniffed = nullptr;
  // Of all columns, or none: names given instead of found (UTF-8).
  std::vector<std::string> names;
  // Formats given instead of found, by name: "F8.2", "ADATE"; without a width they fit the values.
  // "X" leaves the column out.
  std::vector<std::pair<std::string, std::string>> types;
  // Whether blanks in front of a value are passed over; without a value as the reading needs it. Of
  // delimited fields.
  std::optional<bool> leadingBlanks;
  // Texts that mean a missing number.
  std::vector<std::string> nulls;
  // Types from the first lines only; 0: from all.
  std::int64_t sampleLines = 0;
  // A first look: nothing but the sample's lines is read of the data, so that this takes the same
  // time for every size. What only the whole file shows is left open: quotes that run on, stand-ins
  // that occur. How the file is built is found as if all of it were read.
  bool firstLook = false;
  // Share of a column's values that its format has to read, in percent.
  double leastShare = 95.0;
  // 0: one a processor.
  int threads = 0;
  // Bytes of the parts whose summaries are merged; 0: of any size.
  std::int64_t partBytes = 0;
  // Sums the data up instead of SummarizeFile; `rewriting` is how the file is shown meanwhile, with
  // a mark of `shownMark` bytes that it lacks.
  std::function<bool(const FileSummarySettings& data, const RewritingOptions& rewriting,
                     std::int64_t shownMark, PartSummary* summary, std::string* problem)>
      summarize;
  // Where in a file of so many bytes `summarize` begins to read; without it at the beginning.
  std::function<std::int64_t(std::int64_t bytes)> readsFrom;
  // Told now and then how many bytes of how many were read.
  std::function<void(std::int64_t bytes, std::int64_t size)> progress;
  // Told now and then, while all values are read: the columns, their types and the summary as the
  // first lines of the data have them.
  std::function<void(const BareImport& soFar)> grown;
};

struct BareImport {
  SniffResult sniff;
  // How its lines are cut.
  ColumnCut cut;
  HostNeeds host;
  // How the file has to be shown to the component.
  RewritingOptions rewriting;
  std::string shownMark;
  // The encoding from which the file is converted to UTF-8 to be read; empty where it need not be.
  std::string transcoding;
  // Where the file's columns are padded to be read (ColumnPadder); empty where they stand as they
  // are.
  std::vector<std::int64_t> paddedAt;
  std::optional<StandIns> standIns;
  // Chosen with the columns' types, from all values.
  TypeChoice types;
  std::vector<BareColumn> columns;
  // Lines, records and what does not fit, of the data; texts as the file means them (UTF-8).
  PartSummary summary;
  // Fixed columns are counted in bytes, and characters of several stand in the data.
  bool countsBytes = false;
  // Host text.
  std::string command;
};

// Understands the file `name` (host text; "-" is standard input) and sets the host for its import.
// `files` opens it and keeps it open. False when the file cannot be read, is no text, or a setting
// cannot be used; *problem is then a sentence (UTF-8), empty after an interrupt. The host is in
// UTF-8 mode before. Host's thread.
bool UnderstandFile(const std::string& name, InputFiles& files, const BareImportSettings& settings,
                    BareImport* import, std::string* problem);

// The command that imports the file `name` with the columns of `import`, as they are by now.
// `sampled`: types come from a sample, so that nobody knows how many records there are. The host is
// that of the import. False when a command cannot name the file; *problem is then a sentence.
bool MakeCommand(const std::string& name, bool sampled, BareImport* import, std::string* problem);

}  // namespace library
