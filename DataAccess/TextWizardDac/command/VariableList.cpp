// The variable list of a command: names, record marks, column ranges and formats.
#include <algorithm>
#include <limits>

#include "HostFramework/Names.h"
#include "HostFramework/Text.h"
#include "command/TxtWzParser.h"
#include "model/FormatTable.h"

namespace textwizard {
namespace {

constexpr std::uint32_t kLargest = std::numeric_limits<std::uint32_t>::max();
// What the host's check of a name answers for a reserved word.
constexpr int kReservedWord = 5;

bool IsDigit(char c) { return c >= '0' && c <= '9'; }

bool IsNumber(std::string_view text) {
  return !text.empty() && text.find_first_not_of("0123456789") == std::string_view::npos;
}

// A width or a number of decimals; what cannot be one becomes too large for any format.
std::uint32_t FormatNumber(std::string_view text) {
  const std::int64_t value = LeadingInteger(text);
  return value < 0 || value > kLargest ? kLargest : static_cast<std::uint32_t>(value);
}

std::unique_ptr<TxtWzVar> NewVariable(const std::string& name, std::uint32_t code,
                                      std::uint32_t width, std::uint32_t decimals) {
  auto variable = std::make_unique<TxtWzVar>();
  variable->formatType = code;
  variable->width = variable->maxStringLength = width;
  variable->decimals = static_cast<std::int32_t>(decimals);
  variable->SetVarName(name.c_str());
  return variable;
}

}  // namespace

VariableResult TxtWzParser::ParseVariable(TxtWzExecFile* plan) {
  scanner_.SkipWhiteSpace();
  if (scanner_.AtEnd()) return kVariablesEnd;
  return values_.IsFixed() ? ParseFixedVariable(plan) : ParseDelimitedVariable(plan);
}

VariableResult TxtWzParser::ParseDelimitedVariable(TxtWzExecFile* plan) {
  std::string name;
  GetVarName(name);
  if (IsKeyword(name, "/MAP")) {
    mapBehindVariables_ = true;
    return kVariablesEndAtMap;
  }
  if (!NameIsFree(name, *plan)) return kVariableError;
  std::uint32_t code = 0;
  std::uint32_t width = 0;
  std::uint32_t decimals = 0;
  if (!GetFormat(0, code, width, decimals)) {
    Fail(kBadVariable, nullptr);
    return kVariableError;
  }
  AdjustFormat(code, width, name.c_str());
  plan->AddVariable(NewVariable(name, code, width, decimals));
  return kVariableAdded;
}

VariableResult TxtWzParser::ParseFixedVariable(TxtWzExecFile* plan) {
  std::uint32_t record = 0;
  if (!GetLineNumber(record)) {
    Fail(kBadVariable, nullptr);
    return kVariableError;
  }
  std::string name;
  GetVarName(name);
  if (!NameIsFree(name, *plan)) return kVariableError;
  std::uint32_t start = 0;
  std::uint32_t columns = 0;
  std::uint32_t code = 0;
  std::uint32_t width = 0;
  std::uint32_t decimals = 0;
  if (!GetPositions(start, columns) || !GetFormat(columns, code, width, decimals)) {
    Fail(kBadVariable, nullptr);
    return kVariableError;
  }
  // The field is as wide as its columns; the format's own width only limits it.
  if (columns > width) {
    columns = width;
    PostErrorMsg(kColumnsCut, name.c_str(), true);
  }
  AdjustFormat(code, columns, name.c_str());
  std::unique_ptr<TxtWzVar> variable = NewVariable(name, code, columns, decimals);
  variable->recordNumber = record;
  variable->startColumn = start;
  plan->AddVariable(std::move(variable));
  return kVariableAdded;
}

bool TxtWzParser::NameIsFree(const std::string& name, const TxtWzExecFile& plan) {
  std::string upper = name;
  QANTMBstrupr_A(upper.data());
  if (plan.SearchUpperVarName(upper.c_str()) != TxtWzExecFile::kNoVariable) {
    return Fail(kNameUsed, name.c_str());
  }
  const int fault = ValidateQANTName(name.c_str());
  if (fault == 0) return true;
  return Fail(fault == kReservedWord ? kNameReserved : kNameInvalid, name.c_str());
}

void TxtWzParser::GetVarName(std::string& name) {
  name = scanner_.ParseWord();
  // Characters, not bytes: the name is stepped through only as far as it may go.
  const char* p = name.c_str();
  for (std::uint32_t i = 0; i < kMaxNameCharacters && *p != '\0'; ++i) p += QANTMBmbclen_A(p);
  if (*p == '\0') return;
  PostErrorMsg(kNameCut, name.c_str(), true);
  name.resize(static_cast<std::size_t>(p - name.c_str()));
}

bool TxtWzParser::GetLineNumber(std::uint32_t& record) {
  scanner_.SkipWhiteSpace();
  const char* p = scanner_.cursor();
  const bool marked = *p == '/';
  const bool numbered = marked && (IsDigit(p[1]) || p[1] == '-' || p[1] == '+');
  if (numbered) {
    const std::int64_t number = LeadingInteger(scanner_.ParseWord().substr(1));
    if (number < currentRecord_) return false;
    currentRecord_ = number;
  }
  if (currentRecord_ > kLargest) return false;
  record = static_cast<std::uint32_t>(currentRecord_);
  if (marked && !numbered) {
    // A slash alone moves the record on for the variable after this one. The name may stand right
    // behind the slash: the command's text has no blank after one.
    scanner_.MoveTo(p + 1);
    ++currentRecord_;
  }
  return true;
}

bool TxtWzParser::GetPositions(std::uint32_t& start, std::uint32_t& width) {
  const std::string_view range = scanner_.ParseWord();
  const std::size_t dash = range.find('-');
  if (dash == std::string_view::npos) return false;
  const std::string_view first = range.substr(0, dash);
  const std::string_view last = range.substr(dash + 1);
  if (!IsNumber(first) || !IsNumber(last)) return false;
  const std::int64_t from = LeadingInteger(first);
  const std::int64_t to = LeadingInteger(last);
  if (to < from || to >= kLargest) return false;
  start = static_cast<std::uint32_t>(from);
  width = static_cast<std::uint32_t>(to - from + 1);
  return true;
}

bool TxtWzParser::GetFormat(std::uint32_t length, std::uint32_t& code, std::uint32_t& width,
                            std::uint32_t& decimals) {
  std::string word(scanner_.ParseWord());
  if (!word.empty() && IsDigit(word.front()) && IsDigit(word.back())) {
    if (scanner_.ParseWord() != "X") return false;
    word += 'X';
  }
  ParseFormat(word, width, decimals);
  QANTMBstrupr_A(word.data());
  const FormatRow* row = FindFormat(word);
  if (!row) return false;
  code = row->code;
  if (width == 0 && decimals == 0) ApplyFormatDefaults(length, code, width, decimals);
  return width >= row->MinWidth(decimals) && width <= row->MaxWidth() && width > 0 &&
         decimals <= kMaxDecimals;
}

void TxtWzParser::ParseFormat(std::string& word, std::uint32_t& width, std::uint32_t& decimals) {
  width = decimals = 0;
  const std::size_t nameEnd = word.find_first_of("0123456789.");
  if (nameEnd == 0) {
    // Digits lead, as in 5X: the rest is the name.
    width = FormatNumber(word);
    word.erase(0, word.find_first_not_of("0123456789"));
    return;
  }
  if (nameEnd == std::string::npos || word[nameEnd] == '.') {
    // Without a width, decimals do not count.
    word.resize(std::min(nameEnd, word.size()));
    return;
  }
  const std::string_view numbers = std::string_view(word).substr(nameEnd);
  const std::size_t point = numbers.find('.');
  width = FormatNumber(numbers.substr(0, point));
  if (point != std::string_view::npos) decimals = FormatNumber(numbers.substr(point + 1));
  word.resize(nameEnd);
}

void TxtWzParser::ApplyFormatDefaults(std::uint32_t length, std::uint32_t code,
                                      std::uint32_t& width, std::uint32_t& decimals) {
  constexpr std::uint32_t kFractionDecimals = 2;
  const FormatRow* row = FindFormat(code);
  if (!row) return;
  if (length == 0) {
    width = row->defaultWidth;
    decimals = row->defaultDecimals;
  } else {
    width = length;
    const bool fraction = row->columnsForFraction > 0 && length >= row->columnsForFraction;
    decimals = fraction ? kFractionDecimals : 0;
  }
}

void TxtWzParser::AdjustFormat(std::uint32_t code, std::uint32_t& width, const char* name) {
  if (code == kFormatA && width > kMaxStringWidth) {
    width = kMaxStringWidth;
    PostErrorMsg(kStringWidthCut, name, true);
  }
  if (code == kFormatF && width > kMaxNumberWidth) {
    width = kMaxNumberWidth;
    PostErrorMsg(kNumberWidthCut, name, true);
  }
}

}  // namespace textwizard
