#include "library/report/Warnings.h"

#include <algorithm>
#include <string_view>

#include <fmt/format.h>

#include "HostFramework/ValueInput.h"
#include "library/report/EvidenceJson.h"
#include "library/report/ProblemDetail.h"
#include "library/report/ReportText.h"
#include "model/FormatCode.h"

namespace library {
namespace {

using Kind = ImportProblemKind;
using Class = ImportValueClass;

// A larger share of an AUTO variable's cases without their value is told.
constexpr double kToldShare = 0.01;
// Characters of a value in a sentence.
constexpr std::size_t kShownCharacters = 40;
// 8-bit text with more NUL bytes than this share of it is none.
constexpr double kWideShare = 0.25;

// The string format that keeps texts of so many bytes.
std::string StringFor(std::int64_t bytes) {
  constexpr std::int64_t kWidest = textwizard::kMaxStringWidth;
  return fmt::format("A{}", std::clamp<std::int64_t>(bytes, 1, kWidest));
}

std::string Percent(double share) {
  const double percent = 100 * share;
  return percent < 10 ? fmt::format("{:.1f} %", percent) : fmt::format("{:.0f} %", percent);
}

class Writer {
 public:
  Writer(const PassAccount& account, const ReportVariables& variables)
      : account_(account), variables_(variables) {}

  void OfVariable(std::int32_t index, const ImportEvidence* evidence) {
    index_ = index;
    if (evidence != nullptr) {
      Unread(*evidence);
      DayAndMonth(*evidence);
      DecimalComma(*evidence);
      LeadingZeros(*evidence);
    }
    Rounded(evidence);
    ColumnEdge();
  }

  void OfFile() {
    OpenQuotes();
    Nuls();
  }

  std::vector<std::string> Take() { return std::move(warnings_); }

 private:
  const ReportVariable& variable() const { return variables_[static_cast<std::size_t>(index_)]; }
  template <typename... Values>
  void Say(fmt::format_string<Values...> format, Values&&... values) {
    warnings_.push_back(variable().name + ": " +
                        fmt::format(format, std::forward<Values>(values)...));
  }
  std::string Quoted(std::string_view hostText) {
    return fmt::format("\"{}\"", text_.Escaped(hostText, kShownCharacters));
  }
  // "the first "31/12/2019" in line 48".
  std::string First(const ImportWitness& seen) {
    return fmt::format("the first {} in line {}", Quoted(seen.text), seen.line);
  }

  void Unread(const ImportEvidence& evidence);
  std::string WayOutFor(std::string_view text, const ImportEvidence& evidence) const;
  void DayAndMonth(const ImportEvidence& evidence);
  void DecimalComma(const ImportEvidence& evidence);
  void LeadingZeros(const ImportEvidence& evidence);
  void Rounded(const ImportEvidence* evidence);
  void ColumnEdge();
  void OpenQuotes();
  void Nuls();

  const PassAccount& account_;
  const ReportVariables& variables_;
  std::int32_t index_ = 0;
  ReportText text_;
  std::vector<std::string> warnings_;
};

void Writer::Unread(const ImportEvidence& evidence) {
  const ProblemLog::Entry* entry = account_.problems.Find(Kind::kUnreadable, index_);
  if (entry == nullptr || account_.cases == 0) return;
  const double share = static_cast<double>(entry->count) / static_cast<double>(account_.cases);
  if (share <= kToldShare) return;
  Say("{} of its values ({} of {}) are missing: AUTO chose {}, which cannot read them, the first "
      "\"{}\" in line {}; {}",
      Percent(share), entry->count, account_.cases, variable().format,
      text_.Escaped(entry->firstText, kShownCharacters), entry->firstLine,
      WayOutFor(entry->firstText, evidence));
}

// What would read `text`, or keep it.
std::string Writer::WayOutFor(std::string_view text, const ImportEvidence& evidence) const {
  if (const std::string_view option = DecimalThatReads(text); !option.empty()) {
    return fmt::format("{} reads that one", option);
  }
  std::string formats;
  for (const std::string_view name : FormatsThatRead(text, 2)) {
    formats += fmt::format("{}{}", formats.empty() ? "" : " or ", name);
  }
  return formats.empty()
             ? fmt::format("no format reads that one: declare the variable as {} to keep it",
                           StringFor(evidence.longest.count))
             : fmt::format("{} reads that one: declare it in place of AUTO", formats);
}

void Writer::DayAndMonth(const ImportEvidence& evidence) {
  const OrderEvidence order = OrderOf(evidence.dayFirst, evidence.monthFirst, evidence.eitherOrder);
  const bool american = variable().formatType == textwizard::kFormatADate;
  const bool mixed = order.verdict == OrderVerdict::kMixed;
  if (variable().bytes > 0 && mixed && !evidence.layouts.empty()) {
    Say("some of its dates are day first ({}), others month first ({}); it stays text ({})",
        First(evidence.dayFirst), First(evidence.monthFirst), variable().format);
    return;
  }
  // Years first are written by nobody with the day behind them.
  if (!american && variable().formatType != textwizard::kFormatEDate) return;
  const char* read = american ? "month first" : "day first";
  if (order.verdict == OrderVerdict::kAmbiguous) {
    Say("all of its dates can be day first or month first, {}; they were read {} ({}): declare {} "
        "if they are the other",
        First(evidence.eitherOrder), read, variable().format, american ? "EDATE10" : "ADATE10");
  } else if (mixed) {
    Say("some of its dates are day first ({}), others month first ({}); all were read {} ({})",
        First(evidence.dayFirst), First(evidence.monthFirst), read, variable().format);
  }
}

void Writer::DecimalComma(const ImportEvidence& evidence) {
  const Class winner = SharesOf(evidence, variable().formatType).winner;
  if (winner == Class::kString || winner == Class::kDate) return;
  const OrderEvidence order =
      OrderOf(evidence.decimalComma, evidence.groupingComma, evidence.eitherComma);
  // Amounts have their own use of the comma, whatever the decimal character.
  const bool isNumber = winner == Class::kNumber;
  const bool isDecimal = isNumber ? iocvgetdecchar_() == ',' : winner == Class::kDot;
  if (isNumber && order.verdict == OrderVerdict::kAmbiguous) {
    Say("its commas can be decimal characters or group digits, {}; they were read as {}: "
        "--decimal {} reads them as the other",
        First(evidence.eitherComma), isDecimal ? "decimal characters" : "grouping",
        isDecimal ? "point" : "comma");
  } else if (order.verdict == OrderVerdict::kMixed) {
    Say("some of its commas are decimal characters ({}), others group digits ({}); all were read "
        "as {}",
        First(evidence.decimalComma), First(evidence.groupingComma),
        isDecimal ? "decimal characters" : "grouping");
  }
}

void Writer::LeadingZeros(const ImportEvidence& evidence) {
  const std::int64_t count = evidence.leadingZeros.count;
  if (count == 0) return;
  if (SharesOf(evidence, variable().formatType).winner != Class::kNumber) return;
  Say("{} value{} with a zero that the number does not keep, {}: declare the variable as {} to "
      "keep "
      "{}",
      count, count == 1 ? " begins" : "s begin", First(evidence.leadingZeros),
      StringFor(evidence.longest.count), count == 1 ? "it" : "them");
}

void Writer::Rounded(const ImportEvidence* evidence) {
  const ProblemLog::Entry* entry = account_.problems.Find(Kind::kRounded, index_);
  if (entry == nullptr) return;
  const auto first = static_cast<std::int64_t>(entry->firstText.size());
  Say("{} number{} more digits than a double keeps, the first \"{}\" in line {}: declare the "
      "variable as {} to keep every digit",
      entry->count, entry->count == 1 ? " has" : "s have",
      text_.Escaped(entry->firstText, kShownCharacters), entry->firstLine,
      StringFor(evidence == nullptr ? first : std::max(first, evidence->longest.count)));
}

void Writer::ColumnEdge() {
  const auto index = static_cast<std::size_t>(index_);
  if (index >= account_.textsBeyondColumn.size() || account_.cases == 0) return;
  if (account_.textsBeyondColumn[index] < account_.cases) return;
  Say("in every case the text goes on behind the end of its column, which may be too narrow: "
      "compare the columns of the command with the file");
}

void Writer::OpenQuotes() {
  const std::int64_t count = account_.problems.CountOf(Kind::kOpenQuote);
  if (count == 0) return;
  std::int64_t first = 0;
  for (const ProblemLog::Entry& entry : account_.problems.Entries()) {
    if (entry.kind != Kind::kOpenQuote || entry.firstLine == 0) continue;
    first = first == 0 ? entry.firstLine : std::min(first, entry.firstLine);
  }
  warnings_.push_back(fmt::format(
      "{} inside quotes, the first in line {}: this file has line breaks within quotes, which end "
      "the record; --join-quoted-lines keeps them in the value",
      count == 1 ? std::string("1 record ends") : fmt::format("{} records end", count), first));
}

void Writer::Nuls() {
  const std::int64_t dropped = account_.ledger.dropped();
  if (dropped == 0) return;
  const ProblemLog::Entry* entry = account_.problems.Find(Kind::kNul, -1);
  std::string warning =
      fmt::format("{} NUL byte{} dropped", dropped, dropped == 1 ? " was" : "s were");
  if (entry != nullptr) warning += fmt::format(", the first in line {}", entry->firstLine);
  const auto share = static_cast<double>(dropped) /
                     static_cast<double>(std::max<std::int64_t>(account_.ledger.bytes(), 1));
  if (share > kWideShare) {
    warning +=
        "; the file looks like UTF-16 without a byte-order mark and was read as 8-bit text: save "
        "it "
        "with a mark, or as UTF-8";
  }
  warnings_.push_back(std::move(warning));
}

}  // namespace

std::vector<std::string> WarningsOf(
    const PassAccount& account, const ReportVariables& variables,
    const std::function<const ImportEvidence*(std::size_t)>& evidenceOf) {
  Writer writer(account, variables);
  for (std::size_t index = 0; index < variables.size(); ++index) {
    writer.OfVariable(static_cast<std::int32_t>(index), evidenceOf(index));
  }
  writer.OfFile();
  return writer.Take();
}

}  // namespace library
