#include "entry/CommandEntry.h"

#include <algorithm>
#include <cstdio>
#include <memory>

#include "HostFramework/DataSource.h"
#include "HostFramework/Messages.h"
#include "HostFramework/Names.h"
#include "command/SyntaxScanner.h"
#include "command/TxtWzParser.h"
#include "model/MessageText.h"
#include "plan/TxtWzExecFile.h"
#include "source/QANT_TextWizardSrc.h"
#include "wizard/TextWizardDACHandler.h"

namespace textwizard {
namespace {

constexpr const char* kCommandStart = "GET DATA /TYPE = TXT  /";
constexpr const char* kCommandEnd = "\n.";

std::string CurrentToken(const DACTokenSource& tokens) {
  const char* text = nullptr;
  int length = 0;
  tokens.TokenText(&text, &length);
  std::string token = text && length > 0 ? std::string(text, static_cast<std::size_t>(length)) : "";
  // The command is a terminated text: a NUL would hide the rest of it. A control character in its
  // place is refused wherever it matters.
  constexpr char kSubstitute = '\x1a';
  std::replace(token.begin(), token.end(), '\0', kSubstitute);
  return token;
}

std::string Quoted(const std::string& token) {
  const char quote = token.find('"') == std::string::npos ? '"' : '\'';
  return quote + token + quote;
}

// Warns when the file has a byte-order mark that ENCODING=LOCALE contradicts. A file that cannot be
// opened is reported later, by what reads it.
void CheckByteOrderMark(TxtWzParser& parser) {
  ExtNameStr name;
  name.SetGeneric(parser.GetFile());
  const FileHandle file(name.fopen("r"));
  if (!file || std::fseek(file.get(), 0, SEEK_SET) != 0) return;
  unsigned char mark[3];
  const std::size_t bytes = std::fread(mark, 1, sizeof mark, file.get());
  if (bytes == 3 && mark[0] == 0xEF && mark[1] == 0xBB && mark[2] == 0xBF) {
    parser.PostErrorMsg(kUtf8MarkWithLocale, nullptr, true);
  } else if (bytes >= 2 &&
             ((mark[0] == 0xFF && mark[1] == 0xFE) || (mark[0] == 0xFE && mark[1] == 0xFF))) {
    parser.PostErrorMsg(kUtf16MarkWithLocale, nullptr, true);
  }
}

// The data source of the plan; null when the file could not be read.
std::unique_ptr<QANT_TextWizardSrc> BuildSource(DACAdapterBase& adapter, const char* fileName,
                                                TxtWzExecFile& plan) {
  try {
    const int workers = adapter.GetSourceParamA();
    const int hostParameter = adapter.GetSourceParamB();
    auto source = std::make_unique<QANT_TextWizardSrc>(fileName, workers, hostParameter, &adapter);
    TextWizardDACHandler input(nullptr);
    if (plan.Execute(source.get(), &input)) return source;
  } catch (...) {
    // The file could not be opened or read (thrown as a number), or memory ran out.
  }
  return nullptr;
}

// What the host throws at a warning does not undo the import that it is about.
void ReportWarnings(const ErrorTextList& warnings, ErrorMonitor& monitor) {
  try {
    for (const ErrorText& warning : warnings) monitor.Report(warning);
  } catch (...) {
    // The warnings that are left are lost.
  }
}

bool RunCommand(DACAdapterBase& adapter, ErrorMonitor& monitor) {
  const std::string command = BuildCommandText(*adapter.GetTokenSource());
  TxtWzParser parser(command.c_str(), &adapter);
  if (const std::unique_ptr<TxtWzExecFile> plan = parser.ParseToExecutor()) {
    if (plan->settings.encoding == kEncodingLocale) CheckByteOrderMark(parser);
    if (auto source = BuildSource(adapter, parser.GetFile(), *plan)) {
      ServerDataManager::GetInstance()->Add(source.release(), "", false);
      ReportWarnings(parser.warnings(), monitor);
      return true;
    }
    parser.PostErrorMsg(kReadFailed, parser.GetFile(), false);
  }
  if (parser.GetErrorMesToken()) {
    monitor.Report({parser.GetErrorMesToken(), kMessageError, 0});
  }
  return false;
}

}  // namespace

std::string BuildCommandText(DACTokenSource& tokens, std::vector<std::size_t>* starts) {
  // FILE, DELIMITERS or QUALIFIER has been met, then its "=", then its value.
  enum Pending { kNothing, kKeyword, kEquals, kValue };
  int pending = kNothing;
  bool beforeVariables = true;
  bool prevNotSlash = false;
  std::string command = kCommandStart;
  if (starts) starts->clear();
  do {
    const std::string token = CurrentToken(tokens);
    if (prevNotSlash && pending == kNothing && !token.empty() && token[0] != '-') command += ' ';
    if (starts) starts->push_back(command.size());
    if (IsKeyword(token, "VARIABLES")) beforeVariables = false;
    if (pending == kNothing) {
      // A variable may be named FILE.
      if ((beforeVariables && IsKeyword(token, "FILE")) || IsKeyword(token, "DELIMITERS") ||
          IsKeyword(token, "QUALIFIER")) {
        pending = kKeyword;
      }
      command += token;
    } else if (++pending == kValue) {
      command += tokens.TokenKind() == kDACTokenLiteral ? Quoted(token) : token;
      pending = kNothing;
    } else {
      command += token;
    }
    prevNotSlash = token.empty() || token[0] != '/';
  } while (tokens.NextToken());
  return command += kCommandEnd;
}

}  // namespace textwizard

bool ProcessDACSyntax(DACAdapterBase* adapter) {
  using namespace textwizard;
  try {
    QantErrorMonitor monitor(adapter->GetErrorCallback());
    try {
      return RunCommand(*adapter, monitor);
    } catch (...) {
      // Memory ran out, or the host threw, outside the building of the source.
      monitor.Report({MessageText(kReadFailed, nullptr), kMessageError, 0});
    }
  } catch (...) {
    // Not even the report could be made: the result is all that is left to tell.
    return false;
  }
  return false;
}
