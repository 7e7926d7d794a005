#include "command/TxtWzParser.h"

#include "plan/TxtWzDlmCount.h"
#include "plan/TxtWzDlmLines.h"
#include "plan/TxtWzFixedLines.h"
#include "reading/FieldRules.h"

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
  const std::optional<DelCase>& delCase = values_.delCase;
  if (delCase && delCase->end == CaseEnd::kVariables && count != delCase->variables) {
    Fail(kVariableCountDiffers, "");
    return nullptr;
  }
  plan->SetVarCount(count);
  plan->settings.mapRequested = values_.map || mapBehindVariables_;
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
  if (!values_.variables) return Fail(kMissingSubcommand, "/VARIABLES");
  if (!values_.file) return Fail(kMissingSubcommand, "/FILE");
  if (values_.file->empty()) return Fail(kBadSubcommand, "/FILE");
  if (values_.IsFixed()) {
    if (values_.delCase) return Fail(kDelimitedWithFixed, "/DELCASE");
    if (values_.delimiters) return Fail(kDelimitedWithFixed, "/DELIMITERS");
    return true;
  }
  if (values_.fixCase) return Fail(kFixCaseWithDelimited, "/FIXCASE");
  if (!values_.delimiters) return Fail(kMissingSubcommand, "/DELIMITERS");
  if (values_.qualifier && HoldsCharacter(*values_.delimiters, *values_.qualifier)) {
    return Fail(kQualifierIsDelimiter, "");
  }
  return true;
}

std::unique_ptr<TxtWzExecFile> TxtWzParser::SetExecFile() const {
  std::unique_ptr<TxtWzExecFile> plan;
  if (values_.IsFixed()) {
    plan = std::make_unique<TxtWzFixedLines>();
    plan->settings.recordsPerCase = values_.fixCase.value_or(1);
  } else {
    std::unique_ptr<TxtWzDelimiters> delimited;
    if (values_.delCase && values_.delCase->end == CaseEnd::kVariables) {
      delimited = std::make_unique<TxtWzDlmCount>();
    } else {
      delimited = std::make_unique<TxtWzDlmLines>();
    }
    delimited->SetDelimiters(values_.delimiters->c_str());
    delimited->settings.leadingSpaces = values_.leadingSpacesIgnore.value_or(false);
    delimited->settings.multipleSpaces = values_.multipleSpacesIgnore.value_or(false);
    plan = std::move(delimited);
  }
  ImportSettings& settings = plan->settings;
  settings.firstCase = values_.firstCase.value_or(1);
  plan->SetFileName(values_.file->c_str());
  settings.encoding = values_.encoding.value_or(kEncodingNone);
  if (values_.dataTypeMin) settings.dataTypeMinPercentage = *values_.dataTypeMin;
  settings.mapRequested = values_.map;
  if (adapter_) {
    plan->errorMonitorHandle = adapter_->GetErrorCallback();
    plan->errorContext = adapter_->GetAdapterContext();
  }
  const ImportCase cases = values_.importCase.value_or(ImportCase());
  settings.importMode = cases.mode;
  if (cases.mode == kImportFirst) settings.caseLimit = cases.number;
  if (cases.mode == kImportPercent) settings.sampleFraction = cases.number / 100.0;
  settings.qualifierSet = values_.qualifier.has_value();
  settings.qualifier = values_.qualifier.value_or("");
  return plan;
}

}  // namespace textwizard
