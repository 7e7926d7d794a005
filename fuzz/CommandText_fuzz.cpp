// Command text: whatever a command file holds, it is cut into commands, each of which parses to a
// plan or to exactly one error, and to the same when it is parsed again. Tokens and plans that are
// written back as commands give themselves.

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <memory>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include "HostFramework/embedded/command/Adapter.h"
#include "HostFramework/embedded/command/CommandLanguage.h"
#include "HostFramework/embedded/text/HostText.h"
#include "command/TxtWzParser.h"
#include "entry/CommandEntry.h"
#include "fuzz/FuzzTarget.h"
#include "model/FormatTable.h"
#include "plan/TxtWzExecFile.h"

namespace {

using textwizard::ImportSettings;
using textwizard::TxtWzExecFile;
using textwizard::TxtWzVar;

std::string Described(const TxtWzExecFile& plan) {
  const ImportSettings& s = plan.settings;
  std::ostringstream out;
  out << plan.fileName() << '|' << s.firstCase << '|' << s.arrangement << '|' << s.importMode << '|'
      << s.caseLimit << '|' << s.sampleFraction << '|' << s.delimiters << '|' << s.recordsPerCase
      << '|' << s.qualifierSet << '|' << s.qualifier << '|' << s.leadingSpaces << '|'
      << s.multipleSpaces << '|' << s.encoding << '|' << std::hexfloat << s.dataTypeMinPercentage
      << '|' << s.mapRequested;
  for (const TxtWzVar* variable : plan.slots()) {
    out << '\n'
        << variable->name << '|' << variable->upperName << '|' << variable->formatType << '|'
        << variable->width << '|' << variable->decimals << '|' << variable->maxStringLength << '|'
        << variable->recordNumber << '|' << variable->startColumn;
  }
  return out.str();
}

// A value with both kinds of quotes can only have stood in the command as it is.
std::string Quoted(const std::string& text) {
  if (text.find('"') == std::string::npos) return '"' + text + '"';
  if (text.find('\'') == std::string::npos) return '\'' + text + '\'';
  return text;
}

// The text of DELIMITERS, in which a tab or a backslash at the start is written with a backslash.
std::string Delimiters(const std::string& delimiters) {
  const bool tab = !delimiters.empty() && delimiters[0] == '\t';
  const std::string rest = delimiters.substr(tab ? 1 : 0);
  return std::string(tab ? "\\t" : "") + (!rest.empty() && rest[0] == '\\' ? "\\" : "") + rest;
}

std::string FormatWord(const TxtWzVar& variable) {
  const textwizard::FormatRow* row = textwizard::FindFormat(variable.formatType);
  fuzz::Require(row != nullptr, "a format without a name");
  const auto decimals = static_cast<std::uint32_t>(variable.decimals);
  // A field of fixed columns may be narrower than its format can be.
  const std::uint32_t width = std::max(variable.width, row->MinWidth(decimals));
  return std::string(row->name) + std::to_string(width) +
         (decimals == 0 ? "" : "." + std::to_string(decimals));
}

std::string Percentage(double value) {
  char text[64];
  std::snprintf(text, sizeof text, "%.17f", value);
  return text;
}

// A command text for the plan.
std::string Rewritten(const TxtWzExecFile& plan) {
  const ImportSettings& s = plan.settings;
  const bool fixed = s.arrangement == textwizard::kFixedColumns;
  std::string text = "GET DATA /TYPE = TXT  /FILE=" + Quoted(plan.fileName());
  // Fixed columns refuse a MAP that stands behind them.
  if (s.mapRequested) text += " /MAP";
  constexpr const char* kEncodings[] = {"LOCALE", "UTF8", "UTF16BE", "UTF16LE"};
  if (s.encoding >= 0) text += std::string(" /ENCODING=") + kEncodings[s.encoding];
  text += " /FIRSTCASE=" + std::to_string(s.firstCase);
  if (s.importMode == textwizard::kImportFirst) {
    text += " /IMPORTCASE=FIRST " + std::to_string(s.caseLimit);
  } else if (s.importMode == textwizard::kImportPercent) {
    text += " /IMPORTCASE=PERCENT " + std::to_string(std::lround(s.sampleFraction * 100));
  }
  text += " /DATATYPEMIN PERCENTAGE=" + Percentage(s.dataTypeMinPercentage);
  if (s.qualifierSet) text += " /QUALIFIER=" + Quoted(s.qualifier);
  if (fixed) {
    text += " /ARRANGEMENT=FIXED /FIXCASE=" + std::to_string(s.recordsPerCase);
  } else {
    text += " /DELIMITERS=" + Quoted(Delimiters(s.delimiters));
    text += std::string(" /LEADINGSPACES IGNORE=") + (s.leadingSpaces ? "YES" : "NO");
    text += std::string(" /MULTIPLESPACES IGNORE=") + (s.multipleSpaces ? "YES" : "NO");
    text += s.arrangement == textwizard::kDelimitedLines
                ? " /DELCASE=LINE"
                : " /DELCASE=VARIABLES " + std::to_string(plan.slots().size());
  }
  text += " /VARIABLES=";
  for (const TxtWzVar* variable : plan.slots()) {
    if (fixed) text += " /" + std::to_string(variable->recordNumber);
    text += " " + variable->name;
    if (fixed) {
      const std::uint64_t last = std::uint64_t{variable->startColumn} + variable->width - 1;
      text += " " + std::to_string(variable->startColumn) + "-" + std::to_string(last);
    }
    text += " " + FormatWord(*variable);
  }
  return text + "\n.";
}

// The error of the command text, or the whole plan.
std::string Outcome(const std::string& text) {
  textwizard::TxtWzParser parser(text.c_str(), nullptr);
  const std::unique_ptr<TxtWzExecFile> plan = parser.ParseToExecutor();
  fuzz::Require((plan != nullptr) == (parser.GetErrorMesToken() == nullptr),
                "a plan and an error, or neither");
  return plan ? Described(*plan) : parser.GetErrorMesToken();
}

void Compare(const std::string& text) {
  const std::string outcome = Outcome(text);
  fuzz::Require(outcome == Outcome(text), "another outcome");
  textwizard::TxtWzParser parser(text.c_str(), nullptr);
  const std::unique_ptr<TxtWzExecFile> plan = parser.ParseToExecutor();
  if (!plan) return;
  const std::string again = Rewritten(*plan);
  textwizard::TxtWzParser second(again.c_str(), nullptr);
  const std::unique_ptr<TxtWzExecFile> same = second.ParseToExecutor();
  fuzz::Require(same != nullptr && second.warnings().empty() && Described(*same) == outcome,
                "a plan written back gives another one: " + again + "\n" +
                    (same ? Described(*same) : second.GetErrorMesToken()) + "\nnot " + outcome);
}

// The command of these tokens, all of them on one line so that no full stop ends it early.
std::string Rewritten(const std::vector<embedded::CommandToken>& tokens) {
  std::string text = "GET DATA /TYPE=TXT /";
  std::size_t lines = 0;
  for (const embedded::CommandToken& token : tokens) {
    text += ' ';
    if (token.kind != embedded::kTokenLiteral) {
      text += token.text;
      continue;
    }
    const char quote = lines++ % 2 == 0 ? '"' : '\'';
    text += quote;
    for (const char c : token.text) text.append(c == quote ? 2 : 1, c);
    text += quote;
  }
  return text + " .";
}

void Compare(const std::vector<embedded::CommandToken>& tokens) {
  const std::string text = Rewritten(tokens);
  embedded::CommandReader reader(text);
  embedded::ParsedCommand command;
  bool same = reader.Next(command) && command.ok && command.tokens.size() == tokens.size();
  for (std::size_t i = 0; same && i < tokens.size(); ++i) {
    same = command.tokens[i].kind == tokens[i].kind && command.tokens[i].text == tokens[i].text;
  }
  fuzz::Require(same && !reader.Next(command), "tokens written back give others: " + text);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  embedded::SetCodePage(nullptr);
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  embedded::CommandReader reader(text);
  embedded::ParsedCommand command;
  while (reader.Next(command)) {
    fuzz::Require(command.ok == command.error.empty(), "an error without a text");
    if (!command.ok) continue;
    Compare(command.tokens);
    embedded::Adapter adapter(command.tokens, nullptr, nullptr, 2, 0);
    Compare(textwizard::BuildCommandText(*adapter.GetTokenSource()));
  }
  // The text as the parser may meet it from any host.
  Compare(std::string(text));
  return 0;
}
