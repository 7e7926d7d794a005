#include "plan/TxtWzExecFile.h"

#include <algorithm>

#include "HostFramework/Sampling.h"
#include "source/QANT_TextWizardSrc.h"

namespace textwizard {

TxtWzExecFile::TxtWzExecFile() {
  // Until it is told which cases to import, a plan has none: the first ones, and none of them.
  settings.importMode = kImportFirst;
}

TxtWzExecFile::~TxtWzExecFile() = default;

int TxtWzExecFile::Execute(QANT_TextWizardSrc* source, TwExecInput*) {
  source->SetSettings(settings);
  SetDataSource(source);
  // An interrupted sampling pass leaves a source without variables of the host's; that is no error
  // of the command.
  SetDictionary(source);
  if (!slots_.empty()) GiveVariables(*source);
  return 1;
}

void TxtWzExecFile::GiveVariables(QANT_TextWizardSrc& source) const {
  std::vector<std::unique_ptr<TxtWzVar>> copies;
  copies.reserve(slots_.size());
  for (const TxtWzVar* slot : slots_) copies.push_back(std::make_unique<TxtWzVar>(*slot));
  source.SetVariables(std::move(copies));
}

int TxtWzExecFile::AddVariable(std::unique_ptr<TxtWzVar> variable) {
  upperNameIndex_.try_emplace(variable->upperName, static_cast<std::uint32_t>(definedVars_.size()));
  definedVars_.push_back(std::move(variable));
  return 1;
}

void TxtWzExecFile::SetVarCount(std::size_t n) {
  if (n == 0 || definedVars_.empty()) return;
  slots_.clear();
  for (std::size_t i = 0; i < std::min(n, definedVars_.size()); ++i) {
    slots_.push_back(definedVars_[i].get());
  }
}

void TxtWzExecFile::SetFileName(const char* name) { dataFileName_ = name; }

std::uint32_t TxtWzExecFile::SearchUpperVarName(const char* upperName) const {
  const auto found = upperNameIndex_.find(upperName);
  return found == upperNameIndex_.end() ? kNoVariable : found->second;
}

void TxtWzExecFile::StartSampling() {
  if (settings.importMode == kImportPercent) SeedSampling();
  caseCounter_ = 0;
}

bool TxtWzExecFile::MoreCases() { return settings.AllowsCaseAfter(++caseCounter_); }

bool TxtWzExecFile::SampleCase() {
  return settings.importMode != kImportPercent || SampleNextCase(settings.sampleFraction);
}

}  // namespace textwizard
