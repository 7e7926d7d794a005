#include "library/import/WizardRecords.h"

#include <cstddef>
#include <utility>

namespace library {
namespace {

// Where the first line of a file is longer than the wizard reads of one, records are cut to what
// its buffer of 2,000,000 bytes holds: at least so many bytes of text.
constexpr std::size_t kCutRecord = 999999;

}  // namespace

std::unique_ptr<WizardRecords> WizardRecords::Open(const std::string& path,
                                                   const std::string& encoding,
                                                   DACErrorResponse* error) {
  *error = {};
  auto wizard = embedded::PackageConnection::Open(kWizardPackage);
  if (wizard == nullptr) return nullptr;
  FileOpenRequest file(path, encoding, false);
  FileOpenResponse response;
  if (wizard->Call(kWizardOpen, file, response) != 0) return nullptr;
  if (response.HasError()) {
    *error = response.GetError();
    return nullptr;
  }
  return std::unique_ptr<WizardRecords>(new WizardRecords(std::move(wizard), std::move(file)));
}

WizardRecords::~WizardRecords() {
  FileOpenResponse response;
  wizard_->Call(kWizardClose, file_, response);
}

bool WizardRecords::Next(WizardRecord* record) {
  TextWizardDacStringResponse response;
  if (wizard_->Call(kWizardRecord, file_, response) != 0 ||
      response.GetError().GetCode() == kWizardNoRecord) {
    return false;
  }
  record->isCut = response.GetNumber() != 0 && response.GetText().size() >= kCutRecord;
  record->text = response.GetText();
  return true;
}

}  // namespace library
