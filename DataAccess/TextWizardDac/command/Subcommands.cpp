// The subcommands of a command: how one is cut out of the text, and what each sets.
#include <algorithm>
#include <limits>

#include "HostFramework/Text.h"
#include "command/TxtWzParser.h"

namespace textwizard {
namespace {

// A subcommand is looked at as far as this many bytes; its rest is taken for further text, which
// has no slash before it. FILE, DELIMITERS and QUALIFIER values are read from the text itself.
constexpr std::size_t kMaxSubcommandBytes = 1022;
// Of a word that is kept for a message.
constexpr std::size_t kMaxScratchBytes = 1023;

template <std::size_t N>
bool IsOneOf(const std::string& word, const char* const (&keywords)[N]) {
  for (const char* keyword : keywords) {
    if (IsKeyword(word, keyword)) return true;
  }
  return false;
}

bool Holds(const std::string& text, const char* word) {
  return text.find(word) != std::string::npos;
}

// A count that the command gives, as far as a value can hold it; nothing for one below 1.
std::optional<std::uint32_t> Count(std::int64_t value) {
  if (value < 1) return std::nullopt;
  constexpr std::int64_t kLargest = std::numeric_limits<std::uint32_t>::max();
  return static_cast<std::uint32_t>(value < kLargest ? value : kLargest);
}

}  // namespace

SubcommandResult TxtWzParser::FailSubcommand(MessageId id, const char* token) {
  PostErrorMsg(id, token, false);
  return kSubcommandError;
}

SubcommandResult TxtWzParser::ParseSubCommand(Subcommand& subcommand) {
  scanner_.SkipWhiteSpace();
  if (scanner_.AtEnd()) return kSubcommandsEnd;
  if (*scanner_.cursor() != '/') return FailSubcommand(kUnexpectedText, "/");
  scanner_.MoveTo(scanner_.cursor() + 1);
  scanner_.SkipWhiteSpace();

  const char* start = scanner_.cursor();
  const std::string text(
      WholeCharacters(start, std::min(SpanUpTo(start, "/"), kMaxSubcommandBytes)));
  if (text.empty()) return FailSubcommand(kEmptySubcommand, "/");
  const char* end = start + text.size();
  const std::size_t equals = text.find('=');
  subcommand.name = text.substr(0, equals);
  SyntaxScanner::StripSpaces(subcommand.name);

  if (IsKeyword(subcommand.name, "VARIABLES")) {
    const char* place = equals == std::string::npos ? end : start + equals;
    scanner_.MoveTo(*place == '\0' ? place : place + 1);
    values_.variables = true;
    return kSubcommandsEnd;
  }
  if (equals == std::string::npos) {
    if (!IsKeyword(subcommand.name, "MAP")) return FailWithoutEquals(subcommand, text);
    scanner_.MoveTo(start + subcommand.name.size());
    return kSubcommand;
  }
  if (IsOneOf(subcommand.name, {"FILE", "DELIMITERS", "QUALIFIER"})) {
    subcommand.number = 0;
    if (GetFilePath(subcommand)) return kSubcommand;
    return FailSubcommand(kBadSubcommand, subcommand.name.c_str());
  }
  if (IsKeyword(subcommand.name, "LEADINGSPACES") && !Holds(text, "IGNORE")) {
    return FailSubcommand(kLeadingSpacesNoIgnore, nullptr);
  }
  if (IsKeyword(subcommand.name, "MULTIPLESPACES") && !Holds(text, "IGNORE")) {
    return FailSubcommand(kMultipleSpacesNoIgnore, nullptr);
  }
  if (IsKeyword(subcommand.name, "DATATYPEMIN") && !Holds(text, "PERCENTAGE")) {
    return FailSubcommand(kDataTypeMinNoPercentage, nullptr);
  }
  const char* p = text.c_str() + equals + 1;
  subcommand.value = SyntaxScanner::GetNextWord(p);
  GetNextInt(p, subcommand.number);
  scanner_.MoveTo(end);
  return kSubcommand;
}

// A subcommand other than MAP that has no "=".
SubcommandResult TxtWzParser::FailWithoutEquals(const Subcommand& subcommand,
                                                const std::string& text) {
  if (IsKeyword(subcommand.name, "LEADINGSPACES")) {
    return Holds(text, "IGNORE") ? FailSubcommand(kLeadingSpacesNoEquals, text.c_str())
                                 : FailSubcommand(kLeadingSpacesNoIgnore, nullptr);
  }
  if (IsKeyword(subcommand.name, "MULTIPLESPACES")) {
    return Holds(text, "IGNORE") ? FailSubcommand(kMultipleSpacesNoEquals, text.c_str())
                                 : FailSubcommand(kMultipleSpacesNoIgnore, nullptr);
  }
  if (IsKeyword(subcommand.name, "DATATYPEMIN")) {
    return Holds(text, "PERCENTAGE") ? FailSubcommand(kDataTypeMinNoEquals, text.c_str())
                                     : FailSubcommand(kDataTypeMinNoPercentage, nullptr);
  }
  return FailSubcommand(kUnexpectedText, "=");
}

bool TxtWzParser::GetFilePath(Subcommand& subcommand) {
  const char* p = scanner_.cursor();
  p += SpanUpTo(p, "=");
  if (*p != '\0') ++p;
  SyntaxScanner::SkipWhiteSpace(p);
  const bool unquoted = *p != '\'' && *p != '"';
  if (unquoted) {
    subcommand.value = SyntaxScanner::GetNextWord(p);
  } else {
    const char quote[] = {*p, '\0'};
    ++p;
    const char* start = p;
    p += SpanUpTo(p, quote);
    if (quote[0] == '"' && p[0] == '"' && p[1] == '"') {
      // A run of double quotes stands for itself, less the one that closes the value.
      start = p;
      while (p[1] == '"') ++p;
    }
    subcommand.value.assign(start, p);
    if (*p != '\0') ++p;
  }
  if (adapter_ && IsKeyword(subcommand.name, "FILE")) {
    std::string converted;
    subcommand.value = adapter_->ConvertFilePath(converted, subcommand.value, unquoted);
  }
  SyntaxScanner::SkipWhiteSpace(p);
  scanner_.MoveTo(p);
  return *p == '/';
}

void TxtWzParser::GetNextInt(const char* p, std::int64_t& n) {
  SyntaxScanner::SkipWhiteSpace(p);
  const char* start = p;
  const std::string_view word = SyntaxScanner::GetNextWord(p);
  n = LeadingInteger(word);
  scratch_ = WholeCharacters(start, std::min(word.size(), kMaxScratchBytes));
}

void TxtWzParser::ConvertSlashTab(std::string& value) {
  std::size_t next = 0;
  if (value.size() > 1 && value[0] == '\\' && (value[1] == 't' || value[1] == 'T')) {
    value.replace(0, 2, "\t");
    next = 1;
  }
  if (value.compare(next, 2, "\\\\") == 0) value.erase(next, 1);
}

struct TxtWzParser::Setter {
  const char* name;
  bool (TxtWzParser::*set)(const Subcommand&);
};

bool TxtWzParser::SetSyntaxParam(const Subcommand& subcommand) {
  static constexpr Setter kSetters[] = {
      {"FILE", &TxtWzParser::SetFile},
      {"ENCODING", &TxtWzParser::SetEncoding},
      {"ARRANGEMENT", &TxtWzParser::SetArrangement},
      {"FIRSTCASE", &TxtWzParser::SetFirstCase},
      {"DELCASE", &TxtWzParser::SetDelCase},
      {"FIXCASE", &TxtWzParser::SetFixCase},
      {"IMPORTCASE", &TxtWzParser::SetImportCase},
      {"DELIMITERS", &TxtWzParser::SetDelimiters},
      {"QUALIFIER", &TxtWzParser::SetQualifier},
      {"LEADINGSPACES", &TxtWzParser::SetLeadingSpaces},
      {"MULTIPLESPACES", &TxtWzParser::SetMultipleSpaces},
      {"DATATYPEMIN", &TxtWzParser::SetDataTypeMin},
      {"MAP", &TxtWzParser::SetMap},
  };
  if (subcommand.name.empty()) return Fail(kNoSubcommandName, nullptr);
  if (subcommand.value.empty() && !IsOneOf(subcommand.name, {"DELIMITERS", "QUALIFIER"})) {
    return Fail(kBadSubcommand, subcommand.name.c_str());
  }
  for (const Setter& setter : kSetters) {
    if (IsKeyword(subcommand.name, setter.name)) return (this->*setter.set)(subcommand);
  }
  return Fail(kBadSubcommand, subcommand.name.c_str());
}

bool TxtWzParser::SetFile(const Subcommand& subcommand) {
  if (values_.file) return Fail(kRepeatedSubcommand, "/FILE");
  values_.file = subcommand.value;
  return true;
}

bool TxtWzParser::SetEncoding(const Subcommand& subcommand) {
  if (IsKeyword(subcommand.value, "LOCALE")) {
    values_.encoding = kEncodingLocale;
  } else if (IsOneOf(subcommand.value, {"UTF8", "UTF-8"})) {
    values_.encoding = kEncodingUtf8;
  } else if (IsOneOf(subcommand.value, {"UTF16", "UTF-16", "UTF16LE", "UTF-16LE"})) {
    values_.encoding = kEncodingUtf16LittleEndian;
  } else if (IsOneOf(subcommand.value, {"UTF16BE", "UTF-16BE"})) {
    values_.encoding = kEncodingUtf16BigEndian;
  } else {
    return Fail(kBadEncoding, "");
  }
  return true;
}

bool TxtWzParser::SetArrangement(const Subcommand& subcommand) {
  if (values_.arrangement) return Fail(kRepeatedSubcommand, "/ARRANGEMENT");
  if (IsKeyword(subcommand.value, "DELIMITED")) {
    values_.arrangement = FieldLayout::kDelimited;
  } else if (IsKeyword(subcommand.value, "FIXED")) {
    values_.arrangement = FieldLayout::kFixed;
  } else {
    return Fail(kBadArrangement, subcommand.value.c_str());
  }
  return true;
}

bool TxtWzParser::SetFirstCase(const Subcommand& subcommand) {
  if (values_.firstCase) return Fail(kRepeatedSubcommand, "/FIRSTCASE");
  values_.firstCase = Count(LeadingInteger(subcommand.value));
  return values_.firstCase || Fail(kBadFirstCase, subcommand.value.c_str());
}

bool TxtWzParser::SetDelCase(const Subcommand& subcommand) {
  if (values_.delCase) return Fail(kRepeatedSubcommand, "/DELCASE");
  if (IsKeyword(subcommand.value, "LINE")) {
    values_.delCase = DelCase();
    return true;
  }
  if (!IsKeyword(subcommand.value, "VARIABLES")) return Fail(kBadDelCase, subcommand.value.c_str());
  const std::optional<std::uint32_t> variables = Count(subcommand.number);
  if (!variables) return Fail(kBadDelCase, scratch_.c_str());
  values_.delCase = DelCase{CaseEnd::kVariables, *variables};
  return true;
}

bool TxtWzParser::SetFixCase(const Subcommand& subcommand) {
  if (values_.fixCase) return Fail(kRepeatedSubcommand, "/FIXCASE");
  values_.fixCase = Count(LeadingInteger(subcommand.value));
  return values_.fixCase || Fail(kBadFixCase, subcommand.value.c_str());
}

bool TxtWzParser::SetImportCase(const Subcommand& subcommand) {
  constexpr std::uint32_t kWhole = 100;
  if (values_.importCase) return Fail(kRepeatedSubcommand, "/IMPORTCASE");
  if (IsKeyword(subcommand.value, "ALL")) {
    values_.importCase = ImportCase();
    return true;
  }
  const bool first = IsKeyword(subcommand.value, "FIRST");
  if (!first && !IsKeyword(subcommand.value, "PERCENT")) {
    return Fail(kBadImportCase, subcommand.value.c_str());
  }
  const std::optional<std::uint32_t> number = Count(subcommand.number);
  if (!number || (!first && *number > kWhole)) return Fail(kBadImportCase, scratch_.c_str());
  values_.importCase = ImportCase{first ? kImportFirst : kImportPercent, *number};
  return true;
}

bool TxtWzParser::SetDelimiters(const Subcommand& subcommand) {
  if (values_.delimiters) return Fail(kRepeatedSubcommand, "/DELIMITERS");
  values_.delimiters = subcommand.value;
  ConvertSlashTab(*values_.delimiters);
  return true;
}

bool TxtWzParser::SetQualifier(const Subcommand& subcommand) {
  if (values_.qualifier) return Fail(kRepeatedSubcommand, "/QUALIFIER");
  if (subcommand.value.empty()) return true;
  const auto length = static_cast<std::size_t>(QANTMBmbclen_A(subcommand.value.c_str()));
  if (subcommand.value.size() > length) PostErrorMsg(kQualifierCut, "", true);
  values_.qualifier = subcommand.value.substr(0, length);
  return true;
}

bool TxtWzParser::SetIgnore(const Subcommand& subcommand, const char* slashName, MessageId bad,
                            std::optional<bool>& ignore) {
  if (ignore) return Fail(kRepeatedSubcommand, slashName);
  // Only an arrangement that stands before is known here; one that follows is not held against it.
  if (values_.IsFixed()) return Fail(kNotWithFixed, slashName);
  const bool yes = IsKeyword(subcommand.value, "YES");
  if (!yes && !IsKeyword(subcommand.value, "NO")) return Fail(bad, subcommand.value.c_str());
  ignore = yes;
  return true;
}

bool TxtWzParser::SetLeadingSpaces(const Subcommand& subcommand) {
  return SetIgnore(subcommand, "/LEADINGSPACES", kBadLeadingSpaces, values_.leadingSpacesIgnore);
}

bool TxtWzParser::SetMultipleSpaces(const Subcommand& subcommand) {
  return SetIgnore(subcommand, "/MULTIPLESPACES", kBadMultipleSpaces, values_.multipleSpacesIgnore);
}

bool TxtWzParser::SetDataTypeMin(const Subcommand& subcommand) {
  // Below or at half of the values, two types could both have their share.
  constexpr double kHalf = 50.0;
  constexpr double kAll = 100.0;
  if (values_.dataTypeMin) return Fail(kRepeatedSubcommand, "/DATATYPEMIN");
  bool numeric = false;
  const double percent = LeadingNumber(subcommand.value, &numeric);
  if (!numeric || percent <= kHalf || percent > kAll) {
    return Fail(kBadDataTypeMin, subcommand.value.c_str());
  }
  values_.dataTypeMin = percent;
  return true;
}

bool TxtWzParser::SetMap(const Subcommand&) {
  if (values_.map) return Fail(kRepeatedSubcommand, "/MAP");
  if (values_.IsFixed()) return Fail(kNotWithFixed, "/MAP");
  values_.map = true;
  return true;
}

}  // namespace textwizard
