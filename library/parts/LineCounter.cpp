#include "library/parts/LineCounter.h"

#include "library/parts/LineSeek.h"

namespace library {

using textwizard::ByteOrderMark;

std::int64_t UnitsPerCase(const textwizard::ImportSettings& settings, std::size_t values) {
  switch (settings.arrangement) {
    case textwizard::kDelimitedLines:
      return 1;
    case textwizard::kDelimitedCount:
      return static_cast<std::int64_t>(values);
    case textwizard::kFixedColumns:
      return settings.recordsPerCase;
  }
  return 0;
}

LineCounter::LineCounter(const QANT_FileStream& stream, const textwizard::ImportSettings& settings,
                         std::int64_t unitsPerCase)
    : settings_(settings),
      unitsPerCase_(unitsPerCase),
      rules_(settings),
      stream_(stream),
      reader_(stream),
      decoder_(settings.encoding),
      splitter_(rules_, textwizard::SplitUse::kReading, nullptr) {
  reader_.SeekBegin();
  reader_.HandleByteOrderMark();
  markBytes_ = reader_.position();
}

bool LineCounter::FindDataStart(DataStart* start) {
  if (!reader_.SeekTo(markBytes_) || !reader_.SkipLines(1, settings_.firstCase)) return false;
  *start = {reader_.position(), reader_.nextLine() - 1};
  return reader_.Read(true) && !reader_.failed();
}

// A mark in the midst of the file is text, but it would be none at the beginning of what is shown.
bool LineCounter::LooksMarked() const {
  const std::string_view record = reader_.record();
  return markBytes_ == 0 && (record.starts_with("\xEF\xBB\xBF") || record.starts_with("\xFE\xFF") ||
                             record.starts_with("\xFF\xFE"));
}

std::int64_t LineCounter::UnitsOfRecord() {
  const std::string_view raw = reader_.record();
  if (settings_.arrangement == textwizard::kFixedColumns) return 1;
  if (raw.empty()) return 0;
  if (settings_.arrangement == textwizard::kDelimitedLines) return 1;
  splitter_.SetRecord(decoder_.Decode(raw, reader_.mark()));
  std::int64_t values = 0;
  for (std::string_view field; splitter_.Next(field);) ++values;
  return values;
}

bool LineCounter::Count(std::int64_t from, std::int64_t to, bool atStart, PartLines* lines) {
  lines->unitsPerCase = unitsPerCase_;
  if (from >= to) return true;
  if (atStart ? !reader_.SeekTo(from) : !SeekToLine(from, to, stream_, reader_)) {
    return !stream_.ReadFailed() && !reader_.failed();
  }
  return CountLines(to, atStart, lines);
}

bool LineCounter::CountFrom(std::int64_t from, std::int64_t to, PartLines* lines) {
  lines->unitsPerCase = unitsPerCase_;
  if (from >= to) return true;
  return reader_.SeekTo(from) && CountLines(to, false, lines);
}

bool LineCounter::CountLines(std::int64_t to, bool first, PartLines* lines) {
  if (reader_.position() < to) lines->begin = reader_.position();
  while (reader_.position() < to) {
    const PartLines::Start start{lines->units, reader_.nextLine() - 1, reader_.position()};
    if (!reader_.Read(true)) {
      lines->dataEnds = true;
      break;
    }
    // What stands before the data is read with its first line.
    const bool isFirst = first && start.byte == lines->begin;
    if (isFirst || !LooksMarked()) lines->AddStart(start);
    lines->units += UnitsOfRecord();
  }
  if (lines->begin >= 0) lines->end = reader_.position();
  lines->lines = reader_.nextLine() - 1;
  return !reader_.failed();
}

std::int64_t LineCounter::FindEnd(std::int64_t from, std::int64_t to, std::int64_t units,
                                  std::int64_t* end) {
  if (!reader_.SeekTo(from)) return units;
  while (units > 0 && reader_.position() < to && reader_.Read(true)) units -= UnitsOfRecord();
  *end = reader_.position();
  return units;
}

}  // namespace library
