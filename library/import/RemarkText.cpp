#include "library/import/RemarkText.h"

#include <fmt/format.h>

#include "library/command/CommandText.h"

namespace library {
namespace {

using textwizard::kFormatADate;
using textwizard::kFormatEDate;

// "3 values".
std::string Values(const Witness& values) {
  return fmt::format("{} value{}", values.count, values.count == 1 ? "" : "s");
}

std::string Wish(const BareColumn& column, const ChosenFormat& format) {
  return fmt::format("--types {}={}", column.name, FormatText(format));
}

class RemarkWriter {
 public:
  using PlaceOf = std::function<std::string(std::int64_t)>;
  explicit RemarkWriter(const PlaceOf& placeOf) : placeOf_(placeOf) {}

  std::string TextOf(const BareColumn& column, const ColumnRemark& remark) const;
  std::string Order(const BareColumn& column, const ColumnEvidence& evidence) const;

 private:
  std::string First(const Witness& values) const {
    return fmt::format("{} in {}", values.text, placeOf_(values.line));
  }

  const PlaceOf& placeOf_;
};

std::string RemarkWriter::TextOf(const BareColumn& column, const ColumnRemark& remark) const {
  const std::string wish = remark.other ? Wish(column, *remark.other) : "";
  switch (remark.kind) {
    case ColumnRemark::kUnreadable:
      return fmt::format("{} that {} cannot read, first {}; missing", Values(remark.values),
                         FormatText(column.type.format), First(remark.values));
    case ColumnRemark::kMixed:
      return fmt::format("a text, because of {}; {} makes {} missing", First(remark.values), wish,
                         Values(remark.values));
    case ColumnRemark::kLeadingZeros:
      return fmt::format("a text that keeps leading zeros, first {}; {} for a number",
                         First(remark.values), wish);
    case ColumnRemark::kLostDigits:
      return fmt::format("a text that keeps all digits, first {}; {} for a number",
                         First(remark.values), wish);
    case ColumnRemark::kDayOrMonth:
      return fmt::format("ambiguous, read {} first: {}; {} for the other",
                         column.type.format.code == kFormatADate ? "month" : "day",
                         First(remark.values), wish);
    case ColumnRemark::kDecimalOrGroup:
      return fmt::format(
          "ambiguous, {} may have a decimal or a grouping character; {} for the other",
          First(remark.values), remark.other ? wish : "--decimal");
    case ColumnRemark::kTimeZone:
      return fmt::format(
          "a text, because no format reads time zones, first {}; without them it would be a "
          "date-time",
          First(remark.values));
    case ColumnRemark::kTooLong:
      return fmt::format("a text of {} bytes in {}, longer than a string can be; cut",
                         remark.values.count, placeOf_(remark.values.line));
  }
  return {};
}

// Why days or months come first, where values say it.
std::string RemarkWriter::Order(const BareColumn& column, const ColumnEvidence& evidence) const {
  const bool dayFirst = column.type.format.code == kFormatEDate;
  if ((!dayFirst && column.type.format.code != kFormatADate) || column.typeGiven) return {};
  const Witness seen = dayFirst ? evidence.Only(Reading::kDayMonthYear, Reading::kMonthDayYear)
                                : evidence.Only(Reading::kMonthDayYear, Reading::kDayMonthYear);
  if (seen.line == 0) return {};
  return fmt::format("{} first: {}", dayFirst ? "day" : "month", First(seen));
}

}  // namespace

std::vector<std::string> RemarksOf(const std::vector<BareColumn>& columns,
                                   const std::vector<ColumnEvidence>& evidence,
                                   const std::function<std::string(std::int64_t)>& placeOf) {
  const RemarkWriter writer(placeOf);
  std::vector<std::string> remarks;
  for (std::size_t index = 0; index < columns.size(); ++index) {
    const BareColumn& column = columns[index];
    const auto add = [&](const std::string& text) {
      if (!text.empty()) remarks.push_back(column.name + ": " + text);
    };
    add(writer.Order(column, evidence[index]));
    for (const ColumnRemark& remark : column.type.remarks) add(writer.TextOf(column, remark));
  }
  return remarks;
}

std::vector<std::string> RemarksOf(const BareImport& import) {
  std::vector<std::string> remarks =
      RemarksOf(import.columns, import.summary.columns,
                [](std::int64_t line) { return fmt::format("line {}", line); });
  if (import.countsBytes) {
    remarks.emplace_back(
        "the columns count bytes, and some characters have several: texts may be cut within a "
        "character, and what follows them is in the wrong column; put delimiters between the "
        "columns");
  }
  if (!import.paddedAt.empty()) {
    remarks.emplace_back(
        "columns count characters: they are read in a copy of the file that has them padded");
  }
  return remarks;
}

}  // namespace library
