#include "library/import/ColumnReport.h"

#include <algorithm>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "library/command/CommandText.h"
#include "library/outputs/Utf8Converter.h"
#include "library/types/GivenFormat.h"

namespace library {
namespace {

using nlohmann::json;

json WitnessJson(const Witness& witness) {
  return {{"count", witness.count}, {"line", witness.line}, {"text", witness.text}};
}

// Texts of the summary as the file means them, in UTF-8.
class ShownTexts {
 public:
  explicit ShownTexts(const BareImport& import) {
    if (import.standIns) restorer_.emplace(*import.standIns);
  }
  std::string Of(const Witness& witness) {
    const std::string_view text =
        restorer_ ? restorer_->Restore(witness.text, room_) : std::string_view(witness.text);
    return std::string(utf8_.ToUtf8(text));
  }

 private:
  std::optional<TextRestorer> restorer_;
  Utf8Converter utf8_;
  std::string room_;
};

// Values of one column that its format cannot read, at most, that are shown.
constexpr std::size_t kMostOffending = 3;

// What the evidence has is host text with stand-ins.
json HostWitnessJson(const Witness& witness, ShownTexts& texts) {
  return {{"count", witness.count}, {"line", witness.line}, {"text", texts.Of(witness)}};
}

// The first of each kind of values that the reading has not, in the order of their lines.
json Offending(const ColumnEvidence& evidence, Reading reading, ShownTexts& texts) {
  std::vector<const Witness*> first;
  for (const ColumnEvidence::Group& group : evidence.groups()) {
    if (!group.readings.Has(reading) && group.values.count > 0) first.push_back(&group.values);
  }
  std::sort(first.begin(), first.end(),
            [](const Witness* a, const Witness* b) { return a->line < b->line; });
  if (first.size() > kMostOffending) first.resize(kMostOffending);
  json told = json::array();
  for (const Witness* const witness : first) told.push_back(HostWitnessJson(*witness, texts));
  return told;
}

void CountValues(const BareImport& import, std::size_t index, std::int64_t cut, json* report) {
  const ColumnEvidence& evidence = import.summary.columns[index];
  ShownTexts texts(import);
  json& told = *report;
  told["empty"] = evidence.empties();
  const ChosenFormat& format = import.columns[index].type.format;
  if (format.code == textwizard::kFormatA) {
    // Null texts are texts like others.
    told["read"] = evidence.values() + evidence.nulls().count - cut;
    told["null"] = 0;
    told["unreadable"] = 0;
    if (cut > 0) told["cut"] = cut;
    if (MayBeCut(import, index)) told["longest"] = HostWitnessJson(evidence.longest(), texts);
    return;
  }
  told["null"] = evidence.nulls().count;
  const std::optional<Reading> reading = ReadingOf(format.code, import.types.decimal);
  if (!reading) return;
  const std::int64_t unread = evidence.Unread(*reading).count;
  told["read"] = evidence.values() - unread;
  told["unreadable"] = unread;
  if (unread > 0) told["offending"] = Offending(evidence, *reading, texts);
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
      told["other"] = FormatText(*remark.other);
    }
  }
  if (!told.contains("other")) told["other"] = dayFirst ? "ADATE10" : "EDATE10";
  (*report)["day_month"] = told;
}

void TellDecimal(const BareImport& import, std::size_t index, json* report) {
  const bool comma = import.types.decimal == DecimalCharacter::kComma;
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
    case ColumnRemark::kTimeZone:
      return "time zones";
    case ColumnRemark::kDayOrMonth:
    case ColumnRemark::kDecimalOrGroup:
      break;
  }
  return nullptr;  // told by a member of its own
}

// The format that would be chosen by a reading; nothing where another reading has that format.
std::optional<ChosenFormat> FormatBy(Reading reading, const BareColumn& column,
                                     const ColumnEvidence& evidence, DecimalCharacter decimal) {
  if (ReadingOf(column.type.format.code, decimal) == reading) return column.type.format;
  std::uint32_t code = FormatOf(reading);
  if (ReadingOf(textwizard::kFormatF, decimal) == reading) code = textwizard::kFormatF;
  if (reading == Reading::kDayMonthYear && evidence.namedMonths() == 0) {
    code = textwizard::kFormatEDate;
  }
  if (ReadingOf(code, decimal) != reading) return std::nullopt;
  return FitFormat(code, evidence, decimal);
}

json Candidates(const BareColumn& column, const ColumnEvidence& evidence, DecimalCharacter decimal,
                ShownTexts& texts) {
  struct Candidate {
    std::int64_t read;
    bool isChosen;
    json told;
  };
  std::vector<Candidate> found;
  for (std::size_t index = 0; index < kReadings; ++index) {
    const auto reading = static_cast<Reading>(index);
    const std::int64_t read = evidence.Read(reading);
    const auto format = FormatBy(reading, column, evidence, decimal);
    if (read == 0 || !format) continue;
    const Witness unread = evidence.Unread(reading);
    json told = {{"format", FormatText(*format)}, {"read", read}, {"unread", unread.count}};
    if (unread.count > 0) {
      told["line"] = unread.line;
      told["text"] = texts.Of(unread);
    }
    found.push_back({read, *format == column.type.format, std::move(told)});
  }
  std::stable_sort(found.begin(), found.end(), [](const Candidate& left, const Candidate& right) {
    return std::pair(left.read, left.isChosen) > std::pair(right.read, right.isChosen);
  });
  json list = json::array();
  for (Candidate& candidate : found) list.push_back(std::move(candidate.told));
  return list;
}

}  // namespace

bool MayBeCut(const BareImport& import, std::size_t column) {
  const BareColumn& one = import.columns[column];
  return !one.skipped && one.type.format.code == textwizard::kFormatA &&
         import.summary.columns[column].longest().count > one.type.format.width;
}

json ColumnReport(const BareImport& import, bool final, const std::vector<std::int64_t>& cut) {
  json columns = json::array();
  for (std::size_t i = 0; i < import.columns.size(); ++i) {
    const BareColumn& column = import.columns[i];
    json report = {{"name", column.name},
                   {"label", column.label},
                   {"final", final},
                   {"given", column.typeGiven || column.skipped},
                   {"format", column.skipped ? "X" : FormatText(column.type.format)}};
    if (i < import.sniff.columns.size() && import.sniff.columns[i].range.to != 0) {
      report["from"] = import.sniff.columns[i].range.from;
      report["to"] = import.sniff.columns[i].range.to;
    }
    const ColumnEvidence& evidence = import.summary.columns[i];
    CountValues(import, i, i < cut.size() ? cut[i] : 0, &report);
    if (const auto reading = ReadingOf(column.type.format.code, import.types.decimal)) {
      TellDayMonth(column, evidence, *reading, &report);
    }
    TellDecimal(import, i, &report);
    json remarks = json::array();
    for (const ColumnRemark& remark : column.type.remarks) {
      const char* const kind = NameOf(remark.kind);
      if (kind == nullptr) continue;
      json one = WitnessJson(remark.values);
      one["kind"] = kind;
      if (remark.other) one["other"] = FormatText(*remark.other);
      remarks.push_back(one);
    }
    report["remarks"] = remarks;
    columns.push_back(report);
  }
  return columns;
}

json FoundEvidence(const BareImport& import) {
  ShownTexts texts(import);
  json columns = ColumnReport(import, true);
  for (std::size_t i = 0; i < import.columns.size(); ++i) {
    const ColumnEvidence& evidence = import.summary.columns[i];
    json& told = columns[i];
    for (const char* known : {"name", "label", "final", "format", "offending"}) told.erase(known);
    told["values"] = evidence.values();
    told["candidates"] = Candidates(import.columns[i], evidence, import.types.decimal, texts);
    if (evidence.longest().line > 0) {
      told["longest"] = {{"bytes", evidence.longest().count},
                         {"line", evidence.longest().line},
                         {"text", texts.Of(evidence.longest())}};
    }
  }
  return columns;
}

}  // namespace library
