// A file's bytes into records, byte by byte, with the place of everything in the file.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "tests/differential/NaiveText.h"

namespace naive {

// A record as host text.
struct Record {
  std::string text;
  // For each byte of the text: the offset in the file behind what it stands for; of a byte that is
  // not the last of its character, the offset behind what precedes that.
  std::vector<std::int64_t> ends;
  // For each byte of the text: it is the first of a text that only stands in for something.
  std::vector<bool> substitutes;
  // Physical line, from 1.
  std::int64_t line = 0;
  // Offsets in the file: of its first byte, and behind its line end.
  std::int64_t begin = 0;
  std::int64_t end = 0;
  std::int64_t lineEndBytes = 0;
  std::int64_t droppedBytes = 0;

  // Offset in the file where the text from `at` on begins: right behind what precedes it.
  std::int64_t PlaceOf(std::size_t at) const { return at == 0 ? begin : ends[at - 1]; }
};

class RecordCutter {
 public:
  // Both outlive this.
  RecordCutter(const std::string& bytes, const HostText& host);

  // The next record; false at the end of the data. Lines without text are records when `keepEmpty`.
  bool Next(bool keepEmpty, Record& record);

  std::int64_t markBytes() const { return mark_; }
  // Bytes that were looked at.
  std::int64_t position() const { return static_cast<std::int64_t>(at_); }

 private:
  struct Unit {
    unsigned value = 0;
    std::size_t read = 0;
  };

  Unit ReadUnit();
  void AppendPiece(const Piece& piece, std::int64_t end, Record& record) const;
  // Each reads to the end of a line; true at the end of the data.
  bool ReadBytes(Record& record);
  bool ReadUnits(Record& record);

  const std::string& bytes_;
  const HostText& host_;
  std::size_t at_ = 0;
  std::int64_t mark_ = 0;
  bool bigEndian_ = false;
  bool littleEndian_ = false;
  std::int64_t linesEnded_ = 0;
};

}  // namespace naive
