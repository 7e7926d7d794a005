#include "library/command/WayOut.h"

#include <algorithm>
#include <optional>
#include <vector>

#include <fmt/format.h>
#include <fmt/ranges.h>

#include "HostFramework/Names.h"
#include "HostFramework/Text.h"
#include "HostFramework/embedded/text/EditDistance.h"
#include "command/SyntaxScanner.h"
#include "command/TxtWzParser.h"
#include "model/FormatTable.h"
#include "model/MessageText.h"

namespace library {
namespace {

const std::vector<std::string> kSubcommands = {
    "FILE",           "ENCODING",    "ARRANGEMENT", "FIRSTCASE", "DELCASE",
    "FIXCASE",        "IMPORTCASE",  "DELIMITERS",  "QUALIFIER", "LEADINGSPACES",
    "MULTIPLESPACES", "DATATYPEMIN", "MAP",         "VARIABLES"};

std::string UpperCase(std::string text) {
  QANTMBstrupr_A(text.data());
  return text;
}

// The one of `names` (in capitals) that `word` may be a slip for; nothing when none is near.
std::optional<std::string> Meant(const std::string& word, const std::vector<std::string>& names) {
  constexpr std::size_t kLongestWord = 64;
  constexpr std::size_t kMostSlips = 2;
  if (word.empty() || word.size() > kLongestWord) return std::nullopt;
  const std::string upper = UpperCase(word);
  std::optional<std::string> nearest;
  // Not in more than a third of the letters, and one is always allowed.
  std::size_t most = std::clamp<std::size_t>(word.size() / 3, 1, kMostSlips);
  for (const std::string& name : names) {
    const std::size_t distance = embedded::EditDistance(upper, name);
    if (distance > most || (nearest && distance == most)) continue;
    nearest = name;
    most = distance;
  }
  return nearest;
}

std::string DidYouMean(const std::string& word, const std::vector<std::string>& names) {
  const std::optional<std::string> meant = Meant(word, names);
  return meant && *meant != UpperCase(word) ? fmt::format("; did you mean {}?", *meant)
                                            : std::string();
}

bool IsOneOf(const std::string& word, const std::vector<std::string>& names) {
  return std::find(names.begin(), names.end(), UpperCase(word)) != names.end();
}

std::string MissingWayOut(const std::string& name) {
  if (name == "VARIABLES") {
    return "end the command with /VARIABLES= and a name and a format for every field, such as "
           "id F8.0 town A20 income AUTO";
  }
  if (name == "DELIMITERS") {
    return "write /DELIMITERS=\",\" before /VARIABLES, or /ARRANGEMENT=FIXED for fixed columns";
  }
  return "write /FILE='name' before /VARIABLES";
}

std::string BadSubcommandWayOut(const std::string& name, const std::string& value) {
  if (!IsOneOf(name, kSubcommands)) {
    return fmt::format("the subcommands are {}{}", fmt::join(kSubcommands, ", "),
                       DidYouMean(name, kSubcommands));
  }
  if (value.empty()) return fmt::format("write a value behind {}=", UpperCase(name));
  return fmt::format("write another subcommand behind {}, such as /VARIABLES=", UpperCase(name));
}

std::string EncodingWayOut(const std::string& value) {
  return fmt::format(
      "for a file in another code page write ENCODING='LOCALE' and say the page with "
      "--locale-code-page {}",
      value);
}

// The names of the formats that a command can have.
std::vector<std::string> FormatNames() {
  constexpr std::uint32_t kCodes = 100;
  std::vector<std::string> names;
  for (std::uint32_t code = 0; code < kCodes; ++code) {
    if (const textwizard::FormatRow* row = textwizard::FindFormat(code))
      names.emplace_back(row->name);
  }
  names.emplace_back(textwizard::FindFormat(textwizard::kFormatAuto)->name);
  return names;
}

// What is wrong with a format. `written` is the word as it stands.
std::string FormatWayOut(const std::string& written) {
  std::uint32_t width = 0;
  std::uint32_t decimals = 0;
  std::string name = written;
  textwizard::TxtWzParser::ParseFormat(name, width, decimals);
  name = UpperCase(name);
  const textwizard::FormatRow* row = textwizard::FindFormat(name);
  if (row == nullptr) {
    const std::vector<std::string> names = FormatNames();
    return fmt::format("there is no format {}; the formats are {}{}", written,
                       fmt::join(names, ", "), DidYouMean(name, names));
  }
  if (width == 0 && decimals == 0) {
    return fmt::format("{} needs a width, such as {}{}", row->name, row->name,
                       row->MinWidth(0) + 4);
  }
  if (decimals > textwizard::kMaxDecimals) {
    return fmt::format("a format has at most {} decimals", textwizard::kMaxDecimals);
  }
  const std::string with = decimals > 0 ? fmt::format(" with {} decimals", decimals) : "";
  return fmt::format("the width of {}{} is {} to {}", row->name, with, row->MinWidth(decimals),
                     row->MaxWidth());
}

std::vector<std::string> WordsOf(std::string_view text) {
  std::vector<std::string> words;
  const std::string copy(text);
  for (const char* at = copy.c_str(); *at != '\0';) {
    const std::string_view word = textwizard::SyntaxScanner::GetNextWord(at);
    if (!word.empty()) words.emplace_back(word);
  }
  return words;
}

// A variable's words as the parser takes them.
struct VariableWords {
  bool numberedRecord = false;  // a record mark with a number stands in front
  std::string name;
  std::vector<std::string> behind;  // column range and format
};

VariableWords Cut(std::string_view text, bool fixedColumns) {
  VariableWords variable;
  std::vector<std::string> words = WordsOf(text);
  std::size_t at = 0;
  if (fixedColumns && at < words.size() && words[at].front() == '/') {
    const char second = words[at].size() > 1 ? words[at][1] : '\0';
    variable.numberedRecord = (second >= '0' && second <= '9') || second == '-' || second == '+';
    // A slash alone, too, may stand right before the name.
    if (variable.numberedRecord || second == '\0') {
      ++at;
    } else {
      words[at].erase(0, 1);
    }
  }
  if (at < words.size()) variable.name = words[at++];
  variable.behind.assign(words.begin() + static_cast<std::ptrdiff_t>(at), words.end());
  return variable;
}

bool IsRange(const std::string& word) {
  const std::size_t dash = word.find('-');
  return dash != std::string::npos && dash > 0 && dash + 1 < word.size() &&
         word.find_first_not_of("0123456789-") == std::string::npos;
}

std::string DefinitionWayOut(const VariableWords& variable, bool fixedColumns) {
  if (variable.name.empty()) {
    return variable.numberedRecord ? "the number of the record is lower than that of one before it"
                                   : "write a name and a format";
  }
  std::size_t format = 0;
  if (fixedColumns) {
    if (variable.behind.empty() || !IsRange(variable.behind[0])) {
      return fmt::format(
          "write the columns of {} behind it as from-to, counted from 0: 0-7 are the "
          "first eight",
          variable.name);
    }
    if (variable.behind.size() == 1) {
      const std::string& range = variable.behind[0];
      const std::size_t dash = range.find('-');
      if (textwizard::LeadingInteger(range.substr(dash + 1)) <
          textwizard::LeadingInteger(range.substr(0, dash))) {
        return fmt::format("the columns {} end before they begin", range);
      }
    }
    format = 1;
  }
  if (variable.behind.size() <= format) {
    return fmt::format("write a format behind {}, such as F8.2, A20, ADATE10 or AUTO",
                       variable.behind.empty() ? variable.name : variable.behind.back());
  }
  return FormatWayOut(variable.behind[format]);
}

// Why the host refuses a name.
std::string NameWayOut(const std::string& name) {
  constexpr int kTooLong = 2;
  constexpr int kBadStart = 3;
  switch (ValidateQANTName(name.c_str())) {
    case kTooLong:
      return "the name has more than 64 bytes";
    case kBadStart:
      return fmt::format("the name begins with no letter; write for example v_{}", name);
    default:
      return name.ends_with('.') ? "the name ends with a point" : "the name holds another sign";
  }
}

}  // namespace

std::string SubcommandWayOut(std::uint32_t message, const std::string& name,
                             const std::string& value) {
  const std::string upper = UpperCase(name);
  switch (message) {
    case textwizard::kMissingSubcommand:
      return MissingWayOut(upper);
    case textwizard::kBadSubcommand:
      return BadSubcommandWayOut(name, value);
    case textwizard::kRepeatedSubcommand:
      return fmt::format("take this {} or the one before it out", upper);
    case textwizard::kFixCaseWithDelimited:
      return "take FIXCASE out, or write /ARRANGEMENT=FIXED";
    case textwizard::kDelimitedWithFixed:
    case textwizard::kNotWithFixed:
      return fmt::format("take {} out, or write /ARRANGEMENT=DELIMITED", upper);
    case textwizard::kEmptySubcommand:
      return "take the slash out";
    case textwizard::kNoSubcommandName:
      return fmt::format("the subcommands are {}", fmt::join(kSubcommands, ", "));
    case textwizard::kBadArrangement:
      return "write DELIMITED or FIXED" + DidYouMean(value, {"DELIMITED", "FIXED"});
    case textwizard::kBadFirstCase:
      return "write the number of the line where the data begins, such as FIRSTCASE=2";
    case textwizard::kBadDelCase:
      return "write DELCASE=LINE, or DELCASE=VARIABLES and the number of variables" +
             DidYouMean(value, {"LINE", "VARIABLES"});
    case textwizard::kBadFixCase:
      return "write the number of lines of a case, such as FIXCASE=1";
    case textwizard::kBadImportCase:
      return "write ALL, FIRST 100 or PERCENT 10" + DidYouMean(value, {"ALL", "FIRST", "PERCENT"});
    case textwizard::kUnexpectedText:
      return "every subcommand is a slash, a name, an equals sign and a value, such as "
             "/FIRSTCASE=2";
    case textwizard::kQualifierIsDelimiter:
      return "a qualifier is mostly \"\"\" (a double quote)";
    case textwizard::kBadEncoding:
      return EncodingWayOut(value);
    case textwizard::kBadLeadingSpaces:
    case textwizard::kLeadingSpacesNoEquals:
    case textwizard::kLeadingSpacesNoIgnore:
      return "write /LEADINGSPACES IGNORE=YES";
    case textwizard::kBadMultipleSpaces:
    case textwizard::kMultipleSpacesNoEquals:
    case textwizard::kMultipleSpacesNoIgnore:
      return "write /MULTIPLESPACES IGNORE=YES";
    case textwizard::kBadDataTypeMin:
    case textwizard::kDataTypeMinNoEquals:
    case textwizard::kDataTypeMinNoPercentage:
      return "write /DATATYPEMIN PERCENTAGE=95";
    default:
      return {};
  }
}

std::string VariableWayOut(std::uint32_t message, std::string_view words, bool fixedColumns) {
  const VariableWords variable = Cut(words, fixedColumns);
  switch (message) {
    case textwizard::kBadVariable:
      return DefinitionWayOut(variable, fixedColumns);
    case textwizard::kNameUsed:
      return fmt::format("another variable before it has this name; write for example {}_2",
                         variable.name);
    case textwizard::kNameReserved:
      return fmt::format("write for example {}_", variable.name);
    case textwizard::kNameInvalid:
      return NameWayOut(variable.name);
    default:
      return {};
  }
}

std::string VariableName(std::string_view words, bool fixedColumns) {
  return Cut(words, fixedColumns).name;
}

}  // namespace library
