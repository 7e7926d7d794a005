// Counts the lines of parts of a data file.
#pragma once

#include <atomic>
#include <cstdint>

#include "HostFramework/FileStream.h"
#include "library/parts/PartLines.h"
#include "model/ImportSettings.h"
#include "reading/FieldRules.h"
#include "reading/FieldSplitter.h"
#include "reading/RecordDecoder.h"
#include "reading/RecordReader.h"

namespace library {

// Where the data of a file begins.
struct DataStart {
  std::int64_t byte = 0;
  // Physical lines before it.
  std::int64_t lines = 0;
  bool operator==(const DataStart&) const = default;
};

// One thread. The stream and the settings, which are those of the import, outlive it.
class LineCounter {
 public:
  // `unitsPerCase` is that of the command, see UnitsPerCase.
  LineCounter(const QANT_FileStream& stream, const textwizard::ImportSettings& settings,
              std::int64_t unitsPerCase);

  // Counting stops when *stop is not 0: what was counted then is of no use.
  void SetStop(const std::atomic<std::int32_t>* stop) { reader_.SetStop(stop); }

  std::int64_t fileBytes() const { return reader_.fileBytes(); }
  std::int64_t markBytes() const { return markBytes_; }
  // Bytes of a character's unit, by the mark.
  std::int64_t unitBytes() const { return reader_.isUtf16() ? 2 : 1; }
  bool isBigEndian() const { return reader_.mark() == textwizard::ByteOrderMark::kUtf16BigEndian; }

  // Where the command says the data begins; costs the bytes before. False when the file has nothing
  // there, or cannot be read (failed).
  bool FindDataStart(DataStart* start);
  // Adds the lines that begin at byte `from` or behind it and before `to` to `lines`, which is that
  // of no lines. `atStart`: a line begins at `from`; else the line that it lies in belongs to the
  // part before, unless it begins there. Costs the bytes from one to the other and the rest of the
  // last line, which may be long; a part in which no line begins costs its bytes. False when the
  // file cannot be read.
  bool Count(std::int64_t from, std::int64_t to, bool atStart, PartLines* lines);
  // The same where a line begins at `from` that is not the first of the data.
  bool CountFrom(std::int64_t from, std::int64_t to, PartLines* lines);
  // Reads the lines that begin at `from`, where one does, and before `to`, until `units` units are
  // read; *end is then behind the line that the last of them is in. Returns how many units are
  // left: 0 when they end with the line, fewer when that has more, more when `to` comes before.
  std::int64_t FindEnd(std::int64_t from, std::int64_t to, std::int64_t units, std::int64_t* end);

  bool failed() const { return reader_.failed(); }

 private:
  bool CountLines(std::int64_t to, bool first, PartLines* lines);
  std::int64_t UnitsOfRecord();
  bool LooksMarked() const;

  const textwizard::ImportSettings& settings_;
  const std::int64_t unitsPerCase_;
  const textwizard::FieldRules rules_;
  QANT_FileStream stream_;
  textwizard::RecordReader reader_;
  textwizard::RecordDecoder decoder_;
  textwizard::FieldSplitter splitter_;
  std::int64_t markBytes_ = 0;
};

// What cases are made of: records of the command's lines a case, or `values` values, skipped ones
// among them, where these run across lines.
std::int64_t UnitsPerCase(const textwizard::ImportSettings& settings, std::size_t values);

}  // namespace library
