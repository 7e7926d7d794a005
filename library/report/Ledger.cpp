#include "library/report/Ledger.h"

#include <array>
#include <initializer_list>
#include <string_view>

#include <fmt/format.h>

namespace library {
namespace {

struct Entry {
  std::int64_t amount;
  std::string_view name;
};

// "217 records + 5 line ends": the entries that are not zero, or all of them.
std::string Sum(std::initializer_list<Entry> entries, bool all) {
  std::string text;
  for (const Entry& entry : entries) {
    if (entry.amount == 0 && !all) continue;
    text += fmt::format("{}{} {}", text.empty() ? "" : " + ", entry.amount, entry.name);
  }
  return text.empty() ? "0" : text;
}

std::string_view Plural(std::int64_t count) { return count == 1 ? "" : "s"; }

}  // namespace

void Ledger::AddSpan(const ImportSpan& span) {
  if (nextOffset_ >= 0 && span.offset != nextOffset_) ++gaps_;
  nextOffset_ = span.offset + span.bytes;
  switch (span.kind) {
    case ImportSpan::kMark:
      bytes_.mark += span.bytes;
      break;
    case ImportSpan::kPreamble:
    case ImportSpan::kSkipped:
      bytes_.skipped += span.bytes;
      break;
    case ImportSpan::kRecords:
      bytes_.records += span.bytes - span.lineEndBytes - span.droppedBytes;
      bytes_.lineEnds += span.lineEndBytes;
      bytes_.dropped += span.droppedBytes;
      recordsRead_ += span.records;
      break;
    case ImportSpan::kUnread:
      bytes_.unread += span.bytes;
      break;
  }
}

void Ledger::AddCells(const ImportCellCounts& cells) {
  cells_.read += cells.read;
  cells_.empty += cells.empty;
  cells_.null += cells.null;
  cells_.unreadable += cells.unreadable;
  cells_.absent += cells.absent;
}

void Ledger::AddVariables(std::int64_t absent, std::int64_t read) {
  counts_.variables += absent + read;
  cells_.absent += absent * counts_.cases;
  cells_.read += read * counts_.cases;
}

Ledger& Ledger::operator+=(const Ledger& part) {
  counts_.bytes += part.counts_.bytes;
  counts_.cases += part.counts_.cases;
  counts_.recordsInCases += part.counts_.recordsInCases;
  counts_.recordsWithoutCase += part.counts_.recordsWithoutCase;
  bytes_.mark += part.bytes_.mark;
  bytes_.skipped += part.bytes_.skipped;
  bytes_.records += part.bytes_.records;
  bytes_.lineEnds += part.bytes_.lineEnds;
  bytes_.dropped += part.bytes_.dropped;
  bytes_.unread += part.bytes_.unread;
  recordsRead_ += part.recordsRead_;
  AddCells(part.cells_);
  gaps_ += part.gaps_;
  return *this;
}

std::int64_t Ledger::BytesAccounted() const {
  return bytes_.mark + bytes_.skipped + bytes_.records + bytes_.lineEnds + bytes_.dropped +
         bytes_.unread;
}

std::int64_t Ledger::CellsAccounted() const {
  return cells_.read + cells_.empty + cells_.null + cells_.unreadable + cells_.absent;
}

std::string Ledger::Imbalance() const {
  std::string what;
  const auto add = [&what](const std::string& text) { what += (what.empty() ? "" : "; ") + text; };
  if (BytesAccounted() != counts_.bytes) {
    add(fmt::format("{} bytes in the file, but {} = {}", counts_.bytes,
                    Sum({{bytes_.mark, "mark"},
                         {bytes_.skipped, "skipped"},
                         {bytes_.records, "records"},
                         {bytes_.lineEnds, "line ends"},
                         {bytes_.dropped, "dropped"},
                         {bytes_.unread, "unread"}},
                        true),
                    BytesAccounted()));
  }
  if (gaps_ != 0) {
    add(fmt::format("{} stretch{} of the file that {} not join the one before", gaps_,
                    gaps_ == 1 ? "" : "es", gaps_ == 1 ? "does" : "do"));
  }
  const std::int64_t records = counts_.recordsInCases + counts_.recordsWithoutCase;
  if (records != recordsRead_) {
    add(fmt::format(
        "{} record{} read, but {} = {}", recordsRead_, Plural(recordsRead_),
        Sum({{counts_.recordsInCases, "in cases"}, {counts_.recordsWithoutCase, "without a case"}},
            true),
        records));
  }
  if (const std::int64_t cells = counts_.cases * counts_.variables; CellsAccounted() != cells) {
    add(fmt::format("{} case{} of {} variable{} have {} cells, but {} = {}", counts_.cases,
                    Plural(counts_.cases), counts_.variables, Plural(counts_.variables), cells,
                    Sum({{cells_.read, "read"},
                         {cells_.empty, "empty"},
                         {cells_.null, "null"},
                         {cells_.unreadable, "unreadable"},
                         {cells_.absent, "absent"}},
                        true),
                    CellsAccounted()));
  }
  return what.empty() ? what : "ledger does not balance: " + what;
}

std::string Ledger::Line() const {
  std::string text = fmt::format("ledger: {} byte{} = {}", counts_.bytes, Plural(counts_.bytes),
                                 Sum({{bytes_.mark, "mark"},
                                      {bytes_.skipped, "skipped"},
                                      {bytes_.records, "records"},
                                      {bytes_.lineEnds, "line ends"},
                                      {bytes_.dropped, "dropped"},
                                      {bytes_.unread, "unread"}},
                                     false));
  if (counts_.recordsWithoutCase != 0) {
    text += fmt::format(
        "; {} record{} = {}", recordsRead_, Plural(recordsRead_),
        Sum({{counts_.recordsInCases, "in cases"}, {counts_.recordsWithoutCase, "without a case"}},
            false));
  } else {
    text += fmt::format("; {} record{}", recordsRead_, Plural(recordsRead_));
  }
  const std::int64_t cells = counts_.cases * counts_.variables;
  return text + fmt::format("; {} cell{} = {}", cells, Plural(cells),
                            Sum({{cells_.read, "read"},
                                 {cells_.empty, "empty"},
                                 {cells_.null, "null"},
                                 {cells_.unreadable, "unreadable"},
                                 {cells_.absent, "absent"}},
                                false));
}

nlohmann::ordered_json Ledger::Json() const {
  return {{"bytes", counts_.bytes},
          {"mark", bytes_.mark},
          {"skipped", bytes_.skipped},
          {"records", bytes_.records},
          {"line_ends", bytes_.lineEnds},
          {"dropped", bytes_.dropped},
          {"unread", bytes_.unread},
          {"records_read", recordsRead_},
          {"records_in_cases", counts_.recordsInCases},
          {"records_without_case", counts_.recordsWithoutCase},
          {"cases", counts_.cases},
          {"variables", counts_.variables},
          {"cells", counts_.cases * counts_.variables},
          {"read", cells_.read},
          {"empty", cells_.empty},
          {"null", cells_.null},
          {"unreadable", cells_.unreadable},
          {"absent", cells_.absent}};
}

}  // namespace library
