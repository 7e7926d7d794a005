#include "cli/wizard/worker/ColumnReport.h"

#include <optional>

#include "library/import/CommandText.h"
#include "library/import/GivenFormat.h"

namespace cli {
namespace {

using library::BareColumn;
using library::BareImport;
using library::ColumnEvidence;
using library::ColumnRemark;
using library::Reading;
using library::Witness;
using nlohmann::json;

json WitnessJson(const Witness& witness) {
  return {{"count", witness.count}, {"line", witness.line}, {"text", witness.text}};
}

void CountValues(const BareColumn& column, const ColumnEvidence& evidence,
                 library::DecimalCharacter decimal, json* report) {
  json& told = *report;
  told["empty"] = evidence.empties();
  const library::ChosenFormat& format = column.type.format;
  if (format.code == textwizard::kFormatA) {
    // Null texts are texts like others.
    told["read"] = evidence.values() + evidence.nulls().count;
    told["null"] = 0;
    told["unreadable"] = 0;
    if (evidence.longest().count > format.width) told["longest"] = WitnessJson(evidence.longest());
    return;
  }
  told["null"] = evidence.nulls().count;
  const std::optional<Reading> reading = library::ReadingOf(format.code, decimal);
  if (!reading) return;
  const Witness unread = evidence.Unread(*reading);
  told["read"] = evidence.values() - unread.count;
  told["unreadable"] = unread.count;
}

// Whether the day or the month comes first, where both formats are thinkable.
void TellDayMonth(const BareColumn& column, const ColumnEvidence& evidence, Reading reading,
                  json* report) {
  const bool dayFirst = reading == Reading::kDayMonthYear;
  if (!dayFirst && reading != Reading::kMonthDayYear) return;
  const Reading other = dayFirst ? Reading::kMonthDayYear : Reading::kDayMonthYear;
  const Witness decides = evidence.Only(reading, other);
  const Witness against = evidence.Only(other, reading);
  const Witness& shown = against.count > 0 ? against : decides;
  json told = {{"first", dayFirst ? "day" : "month"}};
  told["verdict"] = decides.count == 0 ? "ambiguous" : (against.count > 0 ? "mixed" : "decided");
  if (shown.count > 0) {
    told["line"] = shown.line;
    told["text"] = shown.text;
  }
  for (const ColumnRemark& remark : column.type.remarks) {
    if (remark.kind == ColumnRemark::kDayOrMonth && remark.other) {
      told["other"] = library::FormatText(*remark.other);
    }
  }
  if (!told.contains("other")) told["other"] = dayFirst ? "ADATE10" : "EDATE10";
  (*report)["day_month"] = told;
}

void TellDecimal(const BareImport& import, std::size_t index, json* report) {
  const bool comma = import.types.decimal == library::DecimalCharacter::kComma;
  const char* const other = comma ? "point" : "comma";
  const Witness& witness = import.types.decimalWitness;
  if (witness.line > 0 && import.types.decimalColumn == index) {
    (*report)["decimal"] = {{"verdict", import.types.decimalAgainst > 0 ? "mixed" : "decided"},
                            {"line", witness.line},
                            {"text", witness.text},
                            {"other", other}};
  }
  for (const ColumnRemark& remark : import.columns[index].type.remarks) {
    if (remark.kind != ColumnRemark::kDecimalOrGroup) continue;
    (*report)["decimal"] = {{"verdict", "ambiguous"},
                            {"line", remark.values.line},
                            {"text", remark.values.text},
                            {"other", other}};
  }
}

const char* NameOf(ColumnRemark::Kind kind) {
  switch (kind) {
    case ColumnRemark::kUnreadable:
      return "unreadable";
    case ColumnRemark::kMixed:
      return "mixed";
    case ColumnRemark::kLeadingZeros:
      return "leading zeros";
    case ColumnRemark::kLostDigits:
      return "lost digits";
    case ColumnRemark::kTooLong:
      return "too long";
    case ColumnRemark::kDayOrMonth:
    case ColumnRemark::kDecimalOrGroup:
      break;
  }
  return nullptr;  // told by a member of its own
}

}  // namespace

json ColumnReport(const BareImport& import, bool final) {
  json columns = json::array();
  for (std::size_t i = 0; i < import.columns.size(); ++i) {
    const BareColumn& column = import.columns[i];
    json report = {{"name", column.name},
                   {"label", column.label},
                   {"final", final},
                   {"given", column.typeGiven || column.skipped},
                   {"format", column.skipped ? "X" : library::FormatText(column.type.format)}};
    if (i < import.sniff.columns.size() && import.sniff.columns[i].range.to != 0) {
      report["from"] = import.sniff.columns[i].range.from;
      report["to"] = import.sniff.columns[i].range.to;
    }
    const ColumnEvidence& evidence = import.summary.columns[i];
    CountValues(column, evidence, import.types.decimal, &report);
    if (const auto reading = library::ReadingOf(column.type.format.code, import.types.decimal)) {
      TellDayMonth(column, evidence, *reading, &report);
    }
    TellDecimal(import, i, &report);
    json remarks = json::array();
    for (const ColumnRemark& remark : column.type.remarks) {
      const char* const kind = NameOf(remark.kind);
      if (kind == nullptr) continue;
      json one = WitnessJson(remark.values);
      one["kind"] = kind;
      if (remark.other) one["other"] = library::FormatText(*remark.other);
      if (remark.kind == ColumnRemark::kUnreadable)
        report["offending"] = WitnessJson(remark.values);
      remarks.push_back(one);
    }
    report["remarks"] = remarks;
    columns.push_back(report);
  }
  return columns;
}

}  // namespace cli
