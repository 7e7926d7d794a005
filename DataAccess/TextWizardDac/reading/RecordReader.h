// Bytes of a file into raw records: line ends, NUL bytes, byte-order marks.
#pragma once

#include <atomic>
#include <cstdint>
#include <string>
#include <string_view>

#include "HostFramework/FileStream.h"
#include "watch/RecordPlace.h"

namespace textwizard {

enum class ByteOrderMark { kNone, kUtf8, kUtf16BigEndian, kUtf16LittleEndian };

// Owns its own copy of a stream. One thread. A record is a view into the stream's block as long as
// it lies within one and nothing in it must change; else into a buffer of the reader's.
class RecordReader {
 public:
  explicit RecordReader(const QANT_FileStream& stream);

  // When set, reading stops as if the data ended once *stop is not 0; looked at for every record,
  // run and block. Outlives the reader or is reset to null.
  void SetStop(const std::atomic<std::int32_t>* stop) { stop_ = stop; }

  // Keeps where NUL bytes were dropped of the record read last, in memory of the caller's that
  // outlives the reader; null for nobody.
  void KeepNuls(NulRuns* nuls) { nuls_ = nuls; }

  // Moves to offset 0; false when that fails.
  bool SeekBegin();
  bool SeekTo(std::int64_t position);
  // At the start of the file: steps behind a byte-order mark, or back to offset 0 when there is
  // none. Once found, a mark stays known (isUtf16 and mark).
  void HandleByteOrderMark();
  // A mark was found by the latest HandleByteOrderMark.
  bool hasMark() const { return hasMark_; }
  ByteOrderMark mark() const { return mark_; }
  // By its mark alone (docs/decisions.md).
  bool isUtf16() const {
    return mark_ == ByteOrderMark::kUtf16BigEndian || mark_ == ByteOrderMark::kUtf16LittleEndian;
  }

  // Reads the next record, without its line end: 8-bit bytes without NULs, or 16-bit units in the
  // file's order after a UTF-16 mark, up to the first unit that is zero. Empty lines are skipped
  // unless `keepEmpty`. False at the end, and from then on until the next Seek. A unit FFFF counts
  // as the end for the one call that meets it; the next call reads on behind it.
  bool Read(bool keepEmpty) { return isUtf16() ? Read16(keepEmpty) : Read8(keepEmpty); }
  // The same in one of the two widths, whatever mark was found.
  bool Read8(bool keepEmpty);
  bool Read16(bool keepEmpty);
  // Copies whole lines to `out` as they stand in the file, line ends and empty lines included:
  // those that follow without a NUL and lie in the block in hand. A record of them is what lies
  // between line ends (LF and CR, in any number); *count becomes the number of records, `most` at
  // most. Returns the bytes, fewer than `room`. Any other record, and every 16-bit one, waits for
  // Read. Leaves record() empty; recordPosition() is that of the first byte copied. With
  // `keepEmpty` every line is a record; it ends with LF, CR or CR LF.
  std::size_t ReadRun(char* out, std::size_t room, std::uint32_t most, std::uint32_t* count,
                      bool keepEmpty = false);
  // The record read last; valid until the next Read or Seek.
  std::string_view record() const { return record_; }
  // File position in bytes where that record, or the latest run, began.
  std::int64_t recordPosition() const { return recordPosition_; }
  // The place of the record read last, right after it was read. Lines are counted from the latest
  // seek on, and without those of runs.
  RecordPlace place() const;
  std::int64_t recordLine() const { return recordLine_; }
  std::int64_t nextLine() const { return linesEnded_ + 1; }
  // File position in bytes of what is read next.
  std::int64_t position() const { return stream_.Position(); }
  std::int64_t fileBytes() const { return stream_.Size(); }
  // Reads lines, empty ones too, while the count that starts at `count` differs from `firstCase`;
  // false when the data ended before.
  bool SkipLines(std::int64_t count, std::int64_t firstCase);
  // The stream could not be opened again for this reader, or failed (it did not just end).
  bool failed() const { return !stream_.IsOpen() || stream_.ReadFailed(); }

 private:
  // What ended a line.
  enum class LineEnd { kMark, kEndOfData };
  // Two bytes of the file; a missing one counts as 0xFF.
  struct Unit {
    unsigned char bytes[2] = {0xFF, 0xFF};
    int read = 0;
    unsigned value() const { return bytes[0] + 256U * bytes[1]; }
  };

  template <LineEnd (RecordReader::*ReadLine)()>
  bool ReadRecord(bool keepEmpty);
  bool AtLineEnd();
  void SkipEmptyLines8();
  LineEnd ReadLine8();
  LineEnd ReadLine16();
  LineEnd EndData();
  LineEnd EndLine(std::uint32_t lineEndBytes);
  void NoteNul();
  Unit ReadUnit();
  bool EndsCarriageReturn(unsigned unit) const;
  bool stopped() const { return stop_ != nullptr && stop_->load() != 0; }

  QANT_FileStream stream_;
  const std::atomic<std::int32_t>* stop_ = nullptr;
  bool hasMark_ = false;
  ByteOrderMark mark_ = ByteOrderMark::kNone;
  // Nothing is left, or reading was stopped or failed.
  bool ended_ = false;
  std::string_view record_;
  std::string buffer_;
  std::int64_t recordPosition_ = 0;
  NulRuns* nuls_ = nullptr;
  std::int64_t linesEnded_ = 0;
  std::int64_t recordLine_ = 1;
  std::uint32_t lineEndBytes_ = 0;
};

}  // namespace textwizard
