#include "library/files/TypeDrift.h"

#include <map>
#include <optional>
#include <utility>

#include <fmt/format.h>

#include "model/FormatTable.h"

namespace library {
namespace {

// The reading that most files are for; nothing where most hold texts.
std::optional<Reading> MostHave(const std::map<std::optional<Reading>, std::int64_t>& files) {
  std::optional<Reading> reading;
  std::int64_t most = 0;
  for (const auto& [of, count] : files) {
    if (count <= most) continue;
    most = count;
    reading = of;
  }
  return reading;
}

// What a command calls values that have the reading.
std::string KindOf(Reading reading) {
  if (reading == Reading::kPoint || reading == Reading::kComma) return "numbers";
  return std::string(textwizard::FormatNameOf(FormatOf(reading)));
}

}  // namespace

void TypeDrift::Add(std::size_t file, std::size_t column, const ColumnEvidence& evidence,
                    const ChosenFormat& format) {
  if (evidence.values() == 0) return;
  if (seen_.size() <= column) seen_.resize(column + 1);
  seen_[column].push_back({file, format, evidence.groups()});
}

void TypeDrift::Reorder(const std::vector<std::size_t>& order) {
  std::vector<std::vector<Seen>> seen;
  seen.reserve(order.size());
  for (const std::size_t column : order) {
    seen.push_back(column < seen_.size() ? std::move(seen_[column]) : std::vector<Seen>());
  }
  seen_ = std::move(seen);
}

void TypeDrift::SwapDecimals(std::size_t file) {
  for (std::vector<Seen>& column : seen_) {
    for (Seen& seen : column) {
      if (seen.file != file) continue;
      if (seen.format.code == textwizard::kFormatComma) {
        seen.format.code = textwizard::kFormatDot;
      } else if (seen.format.code == textwizard::kFormatDot) {
        seen.format.code = textwizard::kFormatComma;
      }
      for (ColumnEvidence::Group& group : seen.groups) {
        group.readings = WithSwappedDecimals(group.readings);
      }
    }
  }
}

void TypeDrift::TellColumn(const BareColumn& column, const std::vector<Seen>& seen,
                           DecimalCharacter decimal, const Restore& restore,
                           std::vector<Drift>* drift) const {
  std::optional<Reading> wanted = ReadingOf(column.type.format.code, decimal);
  if (!wanted) {
    // A text: because of which files?
    std::map<std::optional<Reading>, std::int64_t> files;
    for (const Seen& one : seen) ++files[ReadingOf(one.format.code, decimal)];
    wanted = MostHave(files);
    if (!wanted) return;
  }
  for (const Seen& one : seen) {
    Witness first;
    for (const ColumnEvidence::Group& group : one.groups) {
      if (group.readings.Has(*wanted)) continue;
      const std::int64_t count = first.count + group.values.count;
      if (first.line == 0 || group.values.line < first.line) first = group.values;
      first.count = count;
    }
    if (first.count == 0) continue;
    const std::string text = restore(one.file, first.text);
    drift->push_back(
        {DriftKind::kType, one.file, column.name,
         fmt::format("in most files {} is of {}; here {} value{} {} not, the first "
                     "\"{}\" in line {}",
                     column.name, KindOf(*wanted), first.count, first.count == 1 ? "" : "s",
                     first.count == 1 ? "is" : "are", text, first.line),
         text, first.line, first.count});
  }
}

void TypeDrift::Tell(const std::vector<BareColumn>& columns, DecimalCharacter decimal,
                     const Restore& restore, std::vector<Drift>* drift) const {
  for (std::size_t i = 0; i < columns.size() && i < seen_.size(); ++i) {
    if (columns[i].skipped || columns[i].typeGiven) continue;
    TellColumn(columns[i], seen_[i], decimal, restore, drift);
  }
}

}  // namespace library
