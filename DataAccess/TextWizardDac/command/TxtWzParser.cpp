#include "command/TxtWzParser.h"

#include "HostFramework/Text.h"

namespace textwizard {

TxtWzParser::TxtWzParser() = default;

TxtWzParser::TxtWzParser(const char* syntax, DACAdapterBase* adapter)
    : scanner_(syntax), adapter_(adapter) {}

bool TxtWzParser::PostErrorMsg(std::uint32_t id, const char* token, bool warning) {
  std::string text = MessageText(id, token);
  if (warning) {
    warnings_.push_back({std::move(text), kMessageWarning, 0});
  } else {
    errorMessage_ = std::move(text);
    errorId_ = id;
  }
  return true;
}

bool TxtWzParser::Fail(MessageId id, const char* token) {
  PostErrorMsg(id, token, false);
  return false;
}

std::unique_ptr<TxtWzExecFile> TxtWzParser::ParseToExecutor() {
  if (!GetSyntax() || !VerifySyntax()) return nullptr;
  std::unique_ptr<TxtWzExecFile> plan = SetExecFile();
  VariableResult result = kVariableAdded;
  for (variableCounter_ = 0; result == kVariableAdded; ++variableCounter_) {
    result = ParseVariable(plan.get());
  }
  if (result == kVariableError) return nullptr;
  // The call that met the end of the list added nothing.
  const std::uint64_t count = variableCounter_ - 1;
  if (delCase_ == kCaseVariables && count != delCaseCount_) {
    Fail(kVariableCountDiffers, "");
    return nullptr;
  }
  plan->SetVarCount(count);
  // The variable list may have ended with /MAP.
  plan->settings.mapRequested = mapOn_;
  return plan;
}

bool TxtWzParser::GetSyntax() {
  std::string word(scanner_.ParseWord());
  if (!IsKeyword(word, "GET")) return Fail(kNotGetData, nullptr);
  word = scanner_.ParseWord();
  if (!IsKeyword(word, "DATA")) return Fail(kNotGetData, nullptr);

  Subcommand subcommand;
  SubcommandResult result = ParseSubCommand(subcommand);
  if (result == kSubcommandError) return false;
  if (result != kSubcommand || !IsKeyword(subcommand.name, "TYPE") ||
      !IsKeyword(subcommand.value, "TXT")) {
    return Fail(kNotTypeText, nullptr);
  }
  while ((result = ParseSubCommand(subcommand)) == kSubcommand) {
    if (!SetSyntaxParam(subcommand)) return false;
  }
  return result == kSubcommandsEnd;
}

bool TxtWzParser::VerifySyntax() {
  if (arrangement_ == kLayoutUnset) arrangement_ = kLayoutDelimited;
  if (firstCase_ == 0) firstCase_ = 1;
  if (importCase_ == kImportUnset) importCase_ = kImportAllCases;

  if (!variablesSeen_) return Fail(kMissingSubcommand, "/VARIABLES");
  if (!file_) return Fail(kMissingSubcommand, "/FILE");
  if (file_->empty()) return Fail(kBadSubcommand, "/FILE");

  switch (arrangement_) {
    case kLayoutDelimited:
      if (delCase_ == kCaseUnset) delCase_ = kCaseLine;
      if (fixCase_ != 0) return Fail(kFixCaseWithDelimited, "/FIXCASE");
      if (!delimiters_) return Fail(kMissingSubcommand, "/DELIMITERS");
      if (QualifierIsDelimiter()) return Fail(kQualifierIsDelimiter, "");
      return true;
    case kLayoutFixed:
      if (fixCase_ == 0) fixCase_ = 1;
      if (delCase_ != kCaseUnset) return Fail(kDelimitedWithFixed, "/DELCASE");
      if (delimiters_) return Fail(kDelimitedWithFixed, "/DELIMITERS");
      return true;
    default:
      return Fail(kNoArrangement, nullptr);
  }
}

bool TxtWzParser::QualifierIsDelimiter() const {
  if (!qualifierSet_) return false;
  std::uint32_t qualifier = 0;
  const int size = static_cast<int>(qualifier_.size());
  if (QANTMBU32Get_A(&qualifier, qualifier_.c_str(), 0, size) <= 0) return false;
  const char* p = delimiters_->c_str();
  const char* end = p + delimiters_->size();
  while (p < end) {
    std::uint32_t delimiter = 0;
    const int length = QANTMBmbclen_A(p);
    if (QANTMBU32Get_A(&delimiter, p, 0, length) > 0 && delimiter == qualifier) return true;
    p += length;
  }
  return false;
}

std::unique_ptr<TxtWzExecFile> TxtWzParser::SetExecFile() const {
  std::unique_ptr<TxtWzExecFile> plan;
  if (arrangement_ == kLayoutFixed) {
    plan = std::make_unique<TxtWzFixedLines>();
    plan->settings.recordsPerCase = fixCase_;
  } else {
    std::unique_ptr<TxtWzDelimiters> delimited;
    if (delCase_ == kCaseVariables) {
      delimited = std::make_unique<TxtWzDlmCount>();
    } else {
      delimited = std::make_unique<TxtWzDlmLines>();
    }
    delimited->SetDelimiters(delimiters_->c_str());
    delimited->settings.leadingSpaces = leadingSpacesIgnore_;
    delimited->settings.multipleSpaces = multipleSpacesIgnore_;
    plan = std::move(delimited);
  }
  ImportSettings& settings = plan->settings;
  settings.firstCase = firstCase_;
  plan->SetFileName(file_->c_str());
  settings.encoding = encoding_;
  settings.dataTypeMinPercentage = dataTypeMinPercent_;
  settings.mapRequested = mapOn_;
  if (adapter_) {
    plan->errorMonitorHandle = adapter_->GetErrorCallback();
    plan->errorContext = adapter_->GetAdapterContext();
  }
  switch (importCase_) {
    case kImportFirstCases:
      settings.importMode = kImportFirst;
      settings.caseLimit = importCaseValue_;
      break;
    case kImportSample:
      settings.importMode = kImportPercent;
      settings.sampleFraction = importCaseValue_ / 100.0;
      break;
    default:
      settings.importMode = kImportAll;
      break;
  }
  settings.qualifierSet = qualifierSet_;
  settings.qualifier = qualifier_;
  return plan;
}

}  // namespace textwizard
