#include "tests/differential/NaiveRecords.h"

namespace naive {

RecordCutter::RecordCutter(const std::string& bytes, const HostText& host)
    : bytes_(bytes), host_(host) {
  if (bytes_.starts_with("\xEF\xBB\xBF")) {
    at_ = 3;
  } else if (bytes_.starts_with("\xFE\xFF")) {
    at_ = 2;
    bigEndian_ = true;
  } else if (bytes_.starts_with("\xFF\xFE")) {
    at_ = 2;
    littleEndian_ = true;
  }
  mark_ = position();
}

bool RecordCutter::Next(bool keepEmpty, Record& record) {
  while (true) {
    record = Record();
    record.line = linesEnded_ + 1;
    record.begin = position();
    const bool atEnd = bigEndian_ || littleEndian_ ? ReadUnits(record) : ReadBytes(record);
    record.end = position();
    if (!atEnd) ++linesEnded_;
    if (!record.text.empty() || (keepEmpty && !atEnd)) return true;
    if (atEnd) return false;
  }
}

void RecordCutter::AppendPiece(const Piece& piece, std::int64_t end, Record& record) const {
  const std::int64_t begin = record.ends.empty() ? record.begin : record.ends.back();
  for (std::size_t i = 0; i < piece.text.size(); ++i) {
    record.text += piece.text[i];
    record.ends.push_back(i + 1 == piece.text.size() ? end : begin);
    record.substitutes.push_back(i == 0 && piece.substitute);
  }
}

bool RecordCutter::ReadBytes(Record& record) {
  std::string raw;
  std::vector<std::int64_t> ends;
  bool atEnd = false;
  while (true) {
    if (at_ == bytes_.size()) {
      atEnd = true;
      break;
    }
    const char c = bytes_[at_++];
    if (c == '\n') {
      record.lineEndBytes = 1;
      break;
    }
    if (c == '\r') {
      record.lineEndBytes = 1;
      if (at_ < bytes_.size() && bytes_[at_] == '\n') {
        ++at_;
        record.lineEndBytes = 2;
      }
      break;
    }
    if (c == '\0') {
      ++record.droppedBytes;
    } else {
      raw += c;
      ends.push_back(position());
    }
  }
  if (raw.empty()) return atEnd;
  std::size_t taken = 0;
  for (const Piece& piece : host_.Pieces(raw)) {
    taken += piece.bytes;
    AppendPiece(piece, ends[taken - 1], record);
  }
  return atEnd;
}

// Two bytes as first + 256 * second, each 255 where the file has ended.
RecordCutter::Unit RecordCutter::ReadUnit() {
  Unit unit;
  const auto next = [&]() -> unsigned {
    if (at_ == bytes_.size()) return 0xFF;
    ++unit.read;
    return static_cast<unsigned char>(bytes_[at_++]);
  };
  const unsigned first = next();
  unit.value = first + 256 * next();
  return unit;
}

bool RecordCutter::ReadUnits(Record& record) {
  std::vector<Unit> units;
  bool atEnd = false;
  while (true) {
    const Unit unit = ReadUnit();
    if (unit.value == 0xFFFF) {
      // Looks like the end, and ends the line where the file holds it.
      record.lineEndBytes = static_cast<std::int64_t>(unit.read);
      atEnd = true;
      break;
    }
    if (unit.value == 0x000D || unit.value == 0x0D00) {
      const Unit follower = ReadUnit();
      const bool two = follower.value == (littleEndian_ ? 0x000AU : 0x0A00U);
      if (!two) at_ -= follower.read;
      record.lineEndBytes = two ? 4 : 2;
      break;
    }
    if (unit.value == 0x000A || unit.value == 0x0A00) {
      record.lineEndBytes = 2;
      break;
    }
    units.push_back(unit);
  }
  std::int64_t end = record.begin;
  bool dropped = false;
  for (std::size_t i = 0; i < units.size(); ++i) {
    const auto value = [&](std::size_t k) -> char32_t {
      const unsigned u = units[k].value;
      return littleEndian_ ? u : (u & 0xFFU) << 8 | u >> 8;
    };
    char32_t c = value(i);
    dropped = dropped || c == 0;
    if (dropped) {
      record.droppedBytes += static_cast<std::int64_t>(units[i].read);
      continue;
    }
    Piece piece;
    piece.bytes = units[i].read;
    if (c >= 0xD800 && c <= 0xDBFF && i + 1 < units.size() && value(i + 1) >= 0xDC00 &&
        value(i + 1) <= 0xDFFF) {
      c = 0x10000 + ((c - 0xD800) << 10) + (value(i + 1) - 0xDC00);
      piece.bytes += units[++i].read;
    } else if (c >= 0xD800 && c <= 0xDFFF) {
      c = HostText::kInvalid;
    }
    // One byte is no unit, though the text takes a character for it.
    const bool half = units[i].read < 2;
    piece.substitute = !host_.Append(piece.text, c) || half;
    end += static_cast<std::int64_t>(piece.bytes);
    AppendPiece(piece, end, record);
  }
  return atEnd;
}

}  // namespace naive
