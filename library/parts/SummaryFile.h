// What one look at a part of a data file says, as a file of some kilobytes.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "library/parts/CasePlan.h"
#include "library/parts/PartLines.h"
#include "library/parts/PartSummary.h"
#include "library/rewriting/RewritingOptions.h"

namespace library {

// A file as it was when it was read.
struct FileState {
  std::int64_t bytes = 0;
  // Nanoseconds since 1970.
  std::int64_t modified = 0;
  bool operator==(const FileState&) const = default;
};

// False when there is no such file (host text), or it is none that keeps its bytes.
bool GetFileState(const std::string& path, FileState* state);

// Two summaries of parts that follow one another become one by Append, in any grouping the same.
struct FilePartSummary {
  // As it was named (host text).
  std::string file;
  FileState state;
  // Bytes of the data file, decompressed.
  std::int64_t fileBytes = 0;
  PartRange range;
  // Of how many parts.
  std::int64_t parts = 1;
  // Bytes of a byte-order mark that the file lacks and is shown with: `lines` counts them.
  std::int64_t shownMark = 0;
  // How the file was shown when it was summed up, and how its columns were cut.
  RewritingOptions rewriting;
  std::string cut;
  PartLines lines;
  PartSummary values = PartSummary();

  bool isWhole() const { return range.from == 0 && range.to == fileBytes; }
  // Whether lines of `next` begin where those of this end: what each tried by itself was right.
  bool JoinsLines(const FilePartSummary& next) const;
  // False, with a sentence (UTF-8), when `next` is not what follows in the same file.
  bool Append(const FilePartSummary& next, std::string* problem);
  bool operator==(const FilePartSummary&) const = default;
};

// The bytes of a summary file (CBOR), and back. False when they are none, or of another version.
std::string SummaryBytes(const FilePartSummary& summary);
bool ReadSummary(std::string_view bytes, FilePartSummary* summary);

}  // namespace library
