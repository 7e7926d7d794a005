// The compact header: an import told by a type word, a few numbers, the delimiters and the file,
// and variables told by a name, a type word and a length, one piece after another.
#include "command/TxtWzParser.h"
#include "model/FormatTable.h"
#include "plan/TxtWzDlmCount.h"
#include "plan/TxtWzDlmLines.h"
#include "plan/TxtWzFixedLines.h"

namespace textwizard {
namespace {

constexpr std::size_t kMaxLineBytes = 1023;

}  // namespace

std::unique_ptr<TxtWzExecFile> TxtWzParser::ParseFileType() {
  const std::string type(scanner_.ParseWord());
  std::unique_ptr<TxtWzExecFile> plan;
  TxtWzDelimiters* delimited = nullptr;
  if (IsKeyword(type, "DL")) {
    auto lines = std::make_unique<TxtWzDlmLines>();
    delimited = lines.get();
    plan = std::move(lines);
  } else if (IsKeyword(type, "DC")) {
    auto count = std::make_unique<TxtWzDlmCount>();
    delimited = count.get();
    plan = std::move(count);
  } else if (IsKeyword(type, "FL")) {
    plan = std::make_unique<TxtWzFixedLines>();
  } else {
    return nullptr;
  }
  plan->settings.firstCase = scanner_.ParseInt();
  variableCounter_ = static_cast<std::uint64_t>(scanner_.ParseInt());
  ParseSampling(plan.get());
  if (delimited) {
    delimited->SetDelimiters(std::string(scanner_.ParseDelims()).c_str());
  } else {
    plan->settings.recordsPerCase = static_cast<std::uint32_t>(scanner_.ParseInt());
  }
  ParseFileName(plan.get());
  return plan;
}

void TxtWzParser::ParseSampling(TxtWzExecFile* plan) {
  ImportSettings& settings = plan->settings;
  switch (scanner_.ParseInt()) {
    case kImportFirst:
      settings.importMode = kImportFirst;
      settings.caseLimit = scanner_.ParseInt();
      break;
    case kImportPercent:
      settings.importMode = kImportPercent;
      settings.sampleFraction = scanner_.ParseNumber();
      break;
    default:
      settings.importMode = kImportAll;
      break;
  }
}

void TxtWzParser::ParseFileName(TxtWzExecFile* plan) {
  constexpr std::string_view kPrefix = "file=";
  scanner_.SkipWhiteSpace();
  std::string name(scanner_.ParseDelims());
  std::string prefix = name.substr(0, kPrefix.size());
  if (IsKeyword(prefix, kPrefix.data())) name.erase(0, kPrefix.size());
  const bool unquoted = name.empty() || name[0] != '\'';
  if (!unquoted) SyntaxScanner::StripQuotes(name);
  if (adapter_) {
    std::string converted;
    name = adapter_->ConvertFilePath(converted, name, unquoted);
  }
  values_.file = name;
  plan->SetFileName(name.c_str());
}

void TxtWzParser::ParseVarName(TxtWzVar* variable) {
  variable->SetVarName(std::string(scanner_.ParseDelims(kMaxLineBytes)).c_str());
}

void TxtWzParser::ParseDataType(TxtWzVar* variable) {
  const std::string word(scanner_.ParseWord());
  if (const FormatRow* row = FindTypeWord(word.c_str())) variable->formatType = row->code;
}

void TxtWzParser::ParseVarLength(TxtWzVar* variable) {
  variable->width = variable->maxStringLength = static_cast<std::uint32_t>(scanner_.ParseInt());
}

}  // namespace textwizard
