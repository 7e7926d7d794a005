#include "library/report/ProblemDetail.h"

#include <algorithm>
#include <functional>
#include <iterator>

#include <fmt/format.h>

#include "model/FormatCode.h"
#include "reading/ValueConverter.h"

namespace library {
namespace {

struct Candidate {
  std::uint32_t code;
  std::string_view name;
};

// In the order in which a person would try them.
constexpr Candidate kCandidates[] = {{textwizard::kFormatF, "F"},
                                     {textwizard::kFormatComma, "COMMA"},
                                     {textwizard::kFormatDot, "DOT"},
                                     {textwizard::kFormatDollar, "DOLLAR"},
                                     {textwizard::kFormatPct, "PCT"},
                                     {textwizard::kFormatSDate, "SDATE10"},
                                     {textwizard::kFormatEDate, "EDATE10"},
                                     {textwizard::kFormatADate, "ADATE10"},
                                     {textwizard::kFormatDate, "DATE11"},
                                     {textwizard::kFormatYmdhms, "YMDHMS19"},
                                     {textwizard::kFormatDateTime, "DATETIME20"},
                                     {textwizard::kFormatTime, "TIME8"},
                                     {textwizard::kFormatDTime, "DTIME12"},
                                     {textwizard::kFormatMTime, "MTIME5"},
                                     {textwizard::kFormatQyr, "QYR8"},
                                     {textwizard::kFormatMoyr, "MOYR8"},
                                     {textwizard::kFormatWkyr, "WKYR10"},
                                     {textwizard::kFormatJDate, "JDATE7"},
                                     {textwizard::kFormatWkday, "WKDAY9"},
                                     {textwizard::kFormatMonth, "MONTH9"}};

// A text in a hint is quoted whole, or not at all.
constexpr std::size_t kLongestQuoted = 20;

// Texts that are kept with what would help them: how many, and how long in bytes.
constexpr std::size_t kMetTexts = 4096;
constexpr std::size_t kLongestMet = 64;

// What can stand in a command line between apostrophes, and in a list between commas.
bool IsWordCharacter(char character) {
  return character >= ' ' && character <= '~' && character != '\'' && character != ',' &&
         character != '"' && character != '\\';
}

bool HasDigit(std::string_view text) {
  return text.find_first_of("0123456789") != std::string_view::npos;
}

std::string_view WordOfNumber(std::int64_t count, std::string_view one, std::string_view many) {
  return count == 1 ? one : many;
}

}  // namespace

std::vector<std::string_view> FormatsThatRead(std::string_view text, std::size_t most) {
  std::vector<std::string_view> names;
  // Only names of days and months are values without a digit; fewer letters are no name that a
  // person would write.
  constexpr std::size_t kShortestName = 3;
  const bool digits = HasDigit(text);
  const bool named = text.size() >= kShortestName;
  for (const Candidate& candidate : kCandidates) {
    if (names.size() == most) break;
    const bool isName =
        candidate.code == textwizard::kFormatWkday || candidate.code == textwizard::kFormatMonth;
    double value = 0;
    if ((isName ? named : digits) && textwizard::ConvertNumber(text, candidate.code, &value)) {
      names.push_back(candidate.name);
    }
  }
  return names;
}

std::string_view DecimalThatReads(std::string_view text) {
  const bool commaReads = iocvgetdecchar_() == '.';
  const char mine = commaReads ? '.' : ',';
  const char other = commaReads ? ',' : '.';
  const std::size_t at = text.find(other);
  if (at == std::string_view::npos || text.find(other, at + 1) != std::string_view::npos ||
      text.find(mine) != std::string_view::npos) {
    return {};
  }
  std::string swapped(text);
  swapped[at] = mine;
  double value = 0;
  if (!textwizard::ConvertNumber(swapped, textwizard::kFormatF, &value)) return {};
  return commaReads ? "--decimal comma" : "--decimal point";
}

std::string_view ProblemDetail::Of(const ImportProblem& problem) {
  sentence_.clear();
  if (const ReportVariable* variable = VariableAt(variables_, problem.variable)) {
    OfValue(problem, *variable);
  }
  if (sentence_.empty()) OfRecord(problem);
  return sentence_;
}

// What happened to the value of a variable.
void ProblemDetail::OfValue(const ImportProblem& problem, const ReportVariable& variable) {
  switch (problem.kind) {
    case ImportProblemKind::kUnreadable:
      Unreadable(problem, variable);
      return;
    case ImportProblemKind::kRounded:
      fmt::format_to(std::back_inserter(sentence_),
                     "the number has more digits than a double keeps, so the value is the nearest "
                     "double; read as a string (A{}) it keeps every digit",
                     std::max<std::size_t>(problem.text.size(), 1));
      return;
    case ImportProblemKind::kCut:
      fmt::format_to(
          std::back_inserter(sentence_),
          "the text is longer than the {} {} of {}, and what did not fit was cut off; "
          "A{} or wider keeps it",
          variable.bytes, WordOfNumber(variable.bytes, "byte", "bytes"), variable.format,
          std::max<std::int64_t>(problem.amount, static_cast<std::int64_t>(problem.text.size())));
      return;
    case ImportProblemKind::kShortRecord:
      fmt::format_to(
          std::back_inserter(sentence_),
          "the record ends before this column begins, so the value is {}; check that the "
          "columns and the lines per case fit the file",
          variable.bytes > 0 ? "blank" : "missing");
      return;
    default:
      return;
  }
}

void ProblemDetail::Unreadable(const ImportProblem& problem, const ReportVariable& variable) {
  sentence_ += variable.format;
  sentence_ += " cannot read this text, so the value is missing; ";
  if (problem.text.size() > kLongestMet) return AppendWayOut(problem.text);
  if (met_.empty()) met_.resize(kMetTexts);
  Met& met = met_[std::hash<std::string_view>()(problem.text) % kMetTexts];
  if (met.text != problem.text || met.wayOut.empty()) {
    const std::size_t begin = sentence_.size();
    AppendWayOut(problem.text);
    met.text = problem.text;
    met.wayOut.assign(sentence_, begin);
    return;
  }
  sentence_ += met.wayOut;
}

void ProblemDetail::AppendWayOut(std::string_view text) {
  auto out = std::back_inserter(sentence_);
  const std::vector<std::string_view> formats = FormatsThatRead(text, 2);
  if (const std::string_view option = DecimalThatReads(text); !option.empty()) {
    fmt::format_to(out, "{} would read it, if the {} is its decimal character", option,
                   option.substr(option.find(' ') + 1));
  } else if (!formats.empty()) {
    fmt::format_to(out, "{}{}{} would read it", formats.front(), formats.size() > 1 ? " or " : "",
                   formats.size() > 1 ? formats.back() : "");
  } else if (text.size() <= kLongestQuoted &&
             std::all_of(text.begin(), text.end(), IsWordCharacter)) {
    fmt::format_to(out,
                   "no other format reads it: mend it, give --null '{}' if it means missing, or "
                   "read the variable as a string",
                   text);
  } else {
    fmt::format_to(out, "no other format reads it: mend it, or read the variable as a string");
  }
}

void ProblemDetail::OfRecord(const ImportProblem& problem) {
  auto out = std::back_inserter(sentence_);
  const std::int64_t amount = problem.amount;
  switch (problem.kind) {
    case ImportProblemKind::kUndecodable:
      fmt::format_to(out,
                     "{} {} no character of the file's encoding; name the encoding that the file "
                     "is in with ENCODING, or with --locale-code-page and ENCODING='LOCALE'",
                     amount, WordOfNumber(amount, "byte is", "bytes are"));
      return;
    case ImportProblemKind::kFewFields:
      fmt::format_to(out,
                     "the record ends before the last variable: {} {} missing and without a value; "
                     "look for a delimiter that is missing or a line that was broken in two",
                     amount, WordOfNumber(amount, "field is", "fields are"));
      return;
    case ImportProblemKind::kSurplus:
      fmt::format_to(out,
                     "the record has more fields than there are variables, and the rest was left "
                     "out; a text that holds a delimiter needs qualifiers around it");
      return;
    case ImportProblemKind::kOpenQuote:
      fmt::format_to(out,
                     "the record ends inside qualifiers, so what follows them was taken into the "
                     "value; where a line break belongs to the text, --join-quoted-lines keeps it");
      return;
    case ImportProblemKind::kStrayQuote:
      fmt::format_to(out,
                     "a qualifier stands inside an unqualified field, or text behind the closing "
                     "one, and was not taken as text; --keep-stray-qualifiers keeps it");
      return;
    case ImportProblemKind::kIncompleteCase:
      fmt::format_to(out, "the file ends inside a case{}; the last lines are missing or too many",
                     problem.caseNumber > 0 ? ", so its other values are missing"
                                            : ", and no case came of its records");
      return;
    case ImportProblemKind::kNul:
      fmt::format_to(out,
                     "{} NUL {} dropped; a file full of them is most often UTF-16 without a "
                     "byte-order mark",
                     amount, WordOfNumber(amount, "byte was", "bytes were"));
      return;
    default:
      // Problems of values that name no variable: none of the engines has them.
      fmt::format_to(out, "the value was changed or lost");
      return;
  }
}

}  // namespace library
