#include "reading/RecordReader.h"

#include <algorithm>
#include <cstring>

#include "reading/ByteScan.h"

namespace textwizard {
namespace {

constexpr bool IsCarriageReturn(unsigned unit) { return unit == 0x000D || unit == 0x0D00; }
constexpr bool IsLineFeed(unsigned unit) { return unit == 0x000A || unit == 0x0A00; }
// Stands for the end of the file, and has its effect where the file holds it.
constexpr unsigned kEndUnit = 0xFFFF;

unsigned UnitAt(std::string_view text, std::size_t index) {
  return static_cast<unsigned char>(text[index]) +
         256U * static_cast<unsigned char>(text[index + 1]);
}

}  // namespace

RecordReader::RecordReader(const QANT_FileStream& stream) : stream_(stream) {}

bool RecordReader::SeekBegin() { return SeekTo(0); }

bool RecordReader::SeekTo(std::int64_t position) {
  record_ = {};
  ended_ = false;
  linesEnded_ = 0;
  return stream_.Seek(position, QANT_FileStream::kFromStart) == 0;
}

void RecordReader::HandleByteOrderMark() {
  hasMark_ = false;
  // The first byte alone decides which mark it may be.
  unsigned char first = 0;
  const auto follows = [&](unsigned char wanted) {
    unsigned char byte = 0;
    return stream_.ReadByte(&byte) && byte == wanted;
  };
  if (stream_.ReadByte(&first)) {
    if (first == 0xEF && follows(0xBB) && follows(0xBF)) {
      mark_ = ByteOrderMark::kUtf8;
      hasMark_ = true;
    } else if (first == 0xFE && follows(0xFF)) {
      mark_ = ByteOrderMark::kUtf16BigEndian;
      hasMark_ = true;
    } else if (first == 0xFF && follows(0xFE)) {
      mark_ = ByteOrderMark::kUtf16LittleEndian;
      hasMark_ = true;
    }
  }
  if (!hasMark_) SeekBegin();
}

template <RecordReader::LineEnd (RecordReader::*ReadLine)()>
bool RecordReader::ReadRecord(bool keepEmpty) {
  for (;;) {
    record_ = {};
    if (ended_ || stopped()) return false;
    recordPosition_ = stream_.Position();
    recordLine_ = nextLine();
    buffer_.clear();
    if (nuls_) nuls_->clear();
    const LineEnd end = (this->*ReadLine)();
    if (end == LineEnd::kMark) ++linesEnded_;
    if (!record_.empty()) return true;
    if (end == LineEnd::kEndOfData) return false;
    if (keepEmpty) return true;
  }
}

// The next byte ends a line.
inline bool RecordReader::AtLineEnd() {
  if (ended_) return false;
  const std::string_view block = stream_.Buffered();
  return !block.empty() && (block.front() == '\n' || block.front() == '\r');
}

bool RecordReader::Read8(bool keepEmpty) {
  if (!keepEmpty && AtLineEnd()) SkipEmptyLines8();
  return ReadRecord<&RecordReader::ReadLine8>(keepEmpty);
}

// The line ends that nothing stands before.
void RecordReader::SkipEmptyLines8() {
  char before = '\0';
  while (!stopped()) {
    const std::string_view block = stream_.Buffered();
    const auto text =
        std::find_if(block.begin(), block.end(), [](char ch) { return ch != '\n' && ch != '\r'; });
    const auto length = static_cast<std::size_t>(text - block.begin());
    for (const char ch : block.substr(0, length)) {
      if (ch == '\r' || before != '\r') ++linesEnded_;
      before = ch;
    }
    stream_.Consume(length);
    if (text != block.end() || block.empty()) return;
  }
}

bool RecordReader::Read16(bool keepEmpty) {
  return ReadRecord<&RecordReader::ReadLine16>(keepEmpty);
}

std::size_t RecordReader::ReadRun(char* out, std::size_t room, std::uint32_t most,
                                  std::uint32_t* count, bool keepEmpty) {
  *count = 0;
  record_ = {};
  if (isUtf16() || ended_ || stopped()) return 0;
  recordPosition_ = stream_.Position();
  if (room == 0) return 0;
  const std::string_view block = stream_.Buffered();
  const std::string_view lines = block.substr(0, room - 1);
  const LineRun run = keepEmpty ? FindRunOfAllLines(lines, most) : FindLineRun(lines, most);
  if (run.records == 0) return 0;
  std::memcpy(out, block.data(), run.length);
  stream_.Consume(run.length);
  *count = run.records;
  return run.length;
}

bool RecordReader::SkipLines(std::int64_t count, std::int64_t firstCase) {
  while (count != firstCase && Read(true)) ++count;
  return count == firstCase;
}

RecordPlace RecordReader::place() const {
  RecordPlace place;
  place.line = recordLine_;
  place.begin = recordPosition_;
  place.end = stream_.Position();
  place.lineEndBytes = lineEndBytes_;
  // What is neither text nor line end was dropped; one byte too few is one that the text has made
  // up for the missing half of a unit.
  place.droppedBytes = place.end - place.begin - static_cast<std::int64_t>(record_.size()) -
                       static_cast<std::int64_t>(lineEndBytes_);
  place.halfUnit = place.droppedBytes < 0;
  if (place.halfUnit) place.droppedBytes = 0;
  return place;
}

// The data ends here. What was read of the last line is a record, unless reading was stopped: then
// nobody wants it.
RecordReader::LineEnd RecordReader::EndData() {
  ended_ = true;
  lineEndBytes_ = 0;
  record_ = stopped() ? std::string_view() : std::string_view(buffer_);
  return LineEnd::kEndOfData;
}

RecordReader::LineEnd RecordReader::ReadLine8() {
  for (;;) {
    const std::string_view block = stream_.Buffered();
    if (block.empty() || stopped()) return EndData();
    const std::size_t length = FindLineEnd8(block);
    if (length == block.size()) {
      buffer_.append(block);
      stream_.Consume(length);
      continue;
    }
    const char end = block[length];
    const std::size_t next = length + 1;
    if (end == '\0') {
      buffer_.append(block.substr(0, length));
      stream_.Consume(next);
      if (nuls_) NoteNul();
      continue;
    }
    if (end == '\r' && next == block.size()) {
      // Whether a LF follows is known only from the next block, which replaces this one.
      buffer_.append(block.substr(0, length));
      stream_.Consume(next);
      const std::string_view following = stream_.Buffered();
      const bool two = !following.empty() && following.front() == '\n';
      stream_.Consume(two ? 1 : 0);
      return EndLine(two ? 2 : 1);
    }
    if (buffer_.empty()) {
      record_ = block.substr(0, length);
    } else {
      buffer_.append(block.substr(0, length));
      record_ = buffer_;
    }
    const bool two = end == '\r' && block[next] == '\n';
    stream_.Consume(two ? next + 1 : next);
    lineEndBytes_ = two ? 2 : 1;
    return LineEnd::kMark;
  }
}

// The record is what stands in buffer_.
RecordReader::LineEnd RecordReader::EndLine(std::uint32_t lineEndBytes) {
  record_ = buffer_;
  lineEndBytes_ = lineEndBytes;
  return LineEnd::kMark;
}

void RecordReader::NoteNul() {
  const std::size_t at = buffer_.size();
  const std::int64_t before = nuls_->empty() ? 0 : nuls_->back().dropped;
  if (nuls_->empty() || nuls_->back().at != at) nuls_->push_back({at, before});
  ++nuls_->back().dropped;
}

RecordReader::Unit RecordReader::ReadUnit() {
  Unit unit;
  while (unit.read < 2 && stream_.ReadByte(&unit.bytes[unit.read])) ++unit.read;
  return unit;
}

// After a CR: the unit of a LF in the file's byte order belongs to the same line end.
bool RecordReader::EndsCarriageReturn(unsigned unit) const {
  if (mark_ == ByteOrderMark::kUtf16LittleEndian) return unit == 0x000A;
  if (mark_ == ByteOrderMark::kUtf16BigEndian) return unit == 0x0A00;
  return true;
}

RecordReader::LineEnd RecordReader::ReadLine16() {
  // The text of a line ends at its first zero unit, though the line goes on.
  bool textEnded = false;
  for (;;) {
    const std::string_view block = stream_.Buffered();
    if (block.empty() || stopped()) return EndData();
    const std::size_t length = FindLineEnd16(block);
    if (buffer_.empty() && !textEnded && length + 4 <= block.size()) {
      const unsigned end = UnitAt(block, length);
      if (IsLineFeed(end) || IsCarriageReturn(end)) {
        record_ = block.substr(0, length);
        const bool two = IsCarriageReturn(end) && EndsCarriageReturn(UnitAt(block, length + 2));
        stream_.Consume(length + (two ? 4 : 2));
        lineEndBytes_ = two ? 4 : 2;
        return LineEnd::kMark;
      }
    }
    if (!textEnded) buffer_.append(block.substr(0, length));
    stream_.Consume(length);
    if (length == block.size()) continue;

    // A unit that ends something, or one that lies in two blocks.
    const Unit unit = ReadUnit();
    const unsigned value = unit.value();
    if (value == kEndUnit) {
      EndLine(static_cast<std::uint32_t>(unit.read));
      return LineEnd::kEndOfData;
    }
    if (IsLineFeed(value) || IsCarriageReturn(value)) {
      bool two = false;
      if (IsCarriageReturn(value)) {
        const Unit next = ReadUnit();
        two = EndsCarriageReturn(next.value());
        if (!two && next.read > 0) stream_.Seek(-next.read, QANT_FileStream::kFromCurrent);
      }
      return EndLine(two ? 4 : 2);
    }
    if (value == 0) textEnded = true;
    if (!textEnded) buffer_.append(reinterpret_cast<const char*>(unit.bytes), 2);
  }
}

}  // namespace textwizard
