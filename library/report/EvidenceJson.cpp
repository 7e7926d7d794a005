#include "library/report/EvidenceJson.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <numeric>
#include <utility>

#include <fmt/format.h>

#include "library/report/ReportText.h"
#include "model/FormatCode.h"

namespace library {
namespace {

using Json = nlohmann::ordered_json;
using Class = ImportValueClass;

// Characters of a value in a line for a person.
constexpr std::size_t kShownCharacters = 40;

struct ClassName {
  std::string_view name;
  std::string_view key;  // of its count
  std::string_view one;  // for a person
  std::string_view many;
};

constexpr std::array<ClassName, kImportValueClasses> kClassNames = {
    {{"string", "strings", "string", "strings"},
     {"number", "numbers", "number", "numbers"},
     {"date", "dates", "date or time", "dates or times"},
     {"dollar", "dollar", "dollar amount", "dollar amounts"},
     {"percent", "percent", "percentage", "percentages"},
     {"comma", "comma", "amount with commas", "amounts with commas"},
     {"dot", "dot", "amount with dots", "amounts with dots"}}};

const ImportWitness& OfClass(const ImportEvidence& evidence, Class valueClass) {
  return evidence.classes[static_cast<std::size_t>(valueClass)];
}

Class ClassOf(int formatType) {
  switch (static_cast<textwizard::FormatCode>(formatType)) {
    case textwizard::kFormatA:
    case textwizard::kFormatAHex:
      return Class::kString;
    case textwizard::kFormatF:
    case textwizard::kFormatE:
    case textwizard::kFormatN:
      return Class::kNumber;
    case textwizard::kFormatDollar:
      return Class::kDollar;
    case textwizard::kFormatPct:
      return Class::kPercent;
    case textwizard::kFormatComma:
      return Class::kComma;
    case textwizard::kFormatDot:
      return Class::kDot;
    default:
      return Class::kDate;
  }
}

std::string_view NameOf(OrderVerdict verdict) {
  switch (verdict) {
    case OrderVerdict::kDecided:
      return "decided";
    case OrderVerdict::kAmbiguous:
      return "ambiguous";
    case OrderVerdict::kMixed:
      return "mixed";
    case OrderVerdict::kNone:
      break;
  }
  return "none";
}

// The words of a question of two ways.
struct TwoWays {
  std::string_view question;  // key: what the first way is called when it is decided
  std::string_view one;
  std::string_view other;
};

constexpr TwoWays kDayMonth = {"order", "day_first", "month_first"};
constexpr TwoWays kComma = {"comma", "decimal", "grouping"};

Json OrderJson(const ImportWitness& one, const ImportWitness& other, const ImportWitness& either,
               const TwoWays& ways, ReportText& text) {
  const OrderEvidence order = OrderOf(one, other, either);
  if (order.verdict == OrderVerdict::kNone) return nullptr;
  Json json{{"verdict", NameOf(order.verdict)},
            {"by_line", order.by->line},
            {"by_value", text.Escaped(order.by->text)}};
  if (order.verdict == OrderVerdict::kDecided) {
    json[std::string(ways.question)] = order.firstWay ? ways.one : ways.other;
  }
  json[std::string(ways.one)] = one.count;
  json[std::string(ways.other)] = other.count;
  json["either"] = either.count;
  return json;
}

// "1 value", "2 values".
std::string Count(std::int64_t number, std::string_view noun) {
  return fmt::format("{} {}{}", number, noun, number == 1 ? "" : "s");
}

// The line of a question of two ways; empty when there is nothing to say.
std::string OrderLine(const ImportWitness& one, const ImportWitness& other,
                      const ImportWitness& either, std::string_view question,
                      std::string_view oneWay, std::string_view otherWay, ReportText& text) {
  const OrderEvidence order = OrderOf(one, other, either);
  const auto at = [&](const ImportWitness& witness) {
    return fmt::format("\"{}\" in line {}", text.Escaped(witness.text, kShownCharacters),
                       witness.line);
  };
  switch (order.verdict) {
    case OrderVerdict::kNone:
      break;
    case OrderVerdict::kDecided:
      return fmt::format("  {}: {}, decided by {}{}\n", question,
                         order.firstWay ? oneWay : otherWay, at(*order.by),
                         either.count == 0
                             ? std::string()
                             : fmt::format("; {} could be either", Count(either.count, "value")));
    case OrderVerdict::kAmbiguous:
      return fmt::format("  {}: ambiguous, {} could be either, the first {}\n", question,
                         Count(either.count, "value"), at(either));
    case OrderVerdict::kMixed:
      return fmt::format("  {}: mixed, {} {} (the first {}) and {} {} (the first {})\n", question,
                         one.count, oneWay, at(one), other.count, otherWay, at(other));
  }
  return {};
}

}  // namespace

OrderEvidence OrderOf(const ImportWitness& one, const ImportWitness& other,
                      const ImportWitness& either) {
  if (one.count > 0 && other.count > 0) {
    // The first value that contradicts those before it.
    return {OrderVerdict::kMixed, one.line <= other.line, one.line > other.line ? &one : &other};
  }
  if (one.count > 0) return {OrderVerdict::kDecided, true, &one};
  if (other.count > 0) return {OrderVerdict::kDecided, false, &other};
  if (either.count > 0) return {OrderVerdict::kAmbiguous, false, &either};
  return {};
}

ClassShares SharesOf(const ImportEvidence& evidence, int formatType) {
  ClassShares shares;
  shares.winner = ClassOf(formatType);
  shares.values =
      std::accumulate(evidence.classes.begin(), evidence.classes.end(), std::int64_t{0},
                      [](std::int64_t sum, const ImportWitness& seen) { return sum + seen.count; });
  const auto winning = static_cast<double>(OfClass(evidence, shares.winner).count);
  if (shares.values > 0) shares.share = winning / static_cast<double>(shares.values);
  shares.rival = shares.winner == Class::kString ? Class::kNumber : Class::kString;
  for (std::size_t index = 0; index < kImportValueClasses; ++index) {
    const auto candidate = static_cast<Class>(index);
    if (candidate == shares.winner) continue;
    if (evidence.classes[index].count > OfClass(evidence, shares.rival).count) {
      shares.rival = candidate;
    }
  }
  return shares;
}

std::string_view NameOf(ImportValueClass valueClass) {
  return kClassNames[static_cast<std::size_t>(valueClass)].name;
}

Json EvidenceJson(const ImportEvidence& evidence, const ReportVariable& variable) {
  ReportText text;
  const ClassShares shares = SharesOf(evidence, variable.formatType);
  Json json{{"values", shares.values}};
  for (std::size_t index = 0; index < kImportValueClasses; ++index) {
    json[std::string(kClassNames[index].key)] = evidence.classes[index].count;
  }
  json["blanks"] = evidence.blanks;
  json["empties"] = evidence.empties;
  json["winner"] = NameOf(shares.winner);
  json["share"] = shares.share;
  json["rival"] = nullptr;
  if (const ImportWitness& rival = OfClass(evidence, shares.rival); rival.count > 0) {
    json["rival"] = {{"class", NameOf(shares.rival)},
                     {"count", rival.count},
                     {"first_value", text.Escaped(rival.text)},
                     {"first_line", rival.line}};
  }
  Json layouts = Json::array();
  for (const ImportDateLayout& layout : evidence.layouts) {
    layouts.push_back({{"layout", layout.pattern},
                       {"format", layout.format},
                       {"count", layout.seen.count},
                       {"first_line", layout.seen.line},
                       {"first_value", text.Escaped(layout.seen.text)}});
  }
  json["date_layouts"] = std::move(layouts);
  json["day_month"] =
      OrderJson(evidence.dayFirst, evidence.monthFirst, evidence.eitherOrder, kDayMonth, text);
  json["decimal"] =
      OrderJson(evidence.decimalComma, evidence.groupingComma, evidence.eitherComma, kComma, text);
  json["leading_zeros"] = {{"count", evidence.leadingZeros.count}};
  if (evidence.leadingZeros.count > 0) {
    json["leading_zeros"]["first_value"] = text.Escaped(evidence.leadingZeros.text);
    json["leading_zeros"]["first_line"] = evidence.leadingZeros.line;
  }
  json["longest"] = nullptr;
  if (evidence.longest.line > 0) {
    json["longest"] = {{"bytes", evidence.longest.count},
                       {"line", evidence.longest.line},
                       {"value", text.Escaped(evidence.longest.text)}};
  }
  return json;
}

std::string EvidenceText(const ImportEvidence& evidence, const ReportVariable& variable) {
  ReportText text;
  const ClassShares shares = SharesOf(evidence, variable.formatType);
  const auto name = [](std::int64_t count, Class valueClass) {
    const ClassName& names = kClassNames[static_cast<std::size_t>(valueClass)];
    return count == 1 ? names.one : names.many;
  };
  std::string lines = fmt::format("{}: {}, ", variable.name, variable.format);
  if (shares.values == 0) {
    lines += "no value in the file";
  } else {
    lines += fmt::format("{:.4g} % {} of {}", 100 * shares.share, name(2, shares.winner),
                         Count(shares.values, "value"));
  }
  if (const ImportWitness& rival = OfClass(evidence, shares.rival); rival.count > 0) {
    lines += fmt::format("; {} {}, the first \"{}\" in line {}", rival.count,
                         name(rival.count, shares.rival),
                         text.Escaped(rival.text, kShownCharacters), rival.line);
  }
  lines += '\n';
  std::string others;
  for (std::size_t index = 0; index < kImportValueClasses; ++index) {
    const auto other = static_cast<Class>(index);
    if (other == shares.winner || other == shares.rival || evidence.classes[index].count == 0) {
      continue;
    }
    others += fmt::format("{}{} {}", others.empty() ? "" : ", ", evidence.classes[index].count,
                          name(evidence.classes[index].count, other));
  }
  for (const auto& [count, what] :
       {std::pair{evidence.blanks, "blank"}, std::pair{evidence.empties, "empty"}}) {
    if (count > 0) others += fmt::format("{}{} {}", others.empty() ? "" : ", ", count, what);
  }
  if (!others.empty()) lines += fmt::format("  also {}\n", others);
  for (const ImportDateLayout& layout : evidence.layouts) {
    lines += fmt::format("  layout {} ({}): {}, the first \"{}\" in line {}\n", layout.pattern,
                         layout.format, Count(layout.seen.count, "value"),
                         text.Escaped(layout.seen.text, kShownCharacters), layout.seen.line);
  }
  lines += OrderLine(evidence.dayFirst, evidence.monthFirst, evidence.eitherOrder, "day and month",
                     "day first", "month first", text);
  lines += OrderLine(evidence.decimalComma, evidence.groupingComma, evidence.eitherComma, "comma",
                     "decimal", "grouping", text);
  if (evidence.leadingZeros.count > 0) {
    lines += fmt::format("  leading zeros: {}, the first \"{}\" in line {}\n",
                         Count(evidence.leadingZeros.count, "value"),
                         text.Escaped(evidence.leadingZeros.text, kShownCharacters),
                         evidence.leadingZeros.line);
  }
  if (evidence.longest.line > 0) {
    lines +=
        fmt::format("  longest: {} in line {}, \"{}\"\n", Count(evidence.longest.count, "byte"),
                    evidence.longest.line, text.Escaped(evidence.longest.text, kShownCharacters));
  }
  return lines;
}

}  // namespace library
