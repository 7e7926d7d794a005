// The records of a file as the import wizard gets them, from the component's request handler.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "HostFramework/FileMessages.h"
#include "HostFramework/embedded/packages/PackageRegistry.h"

namespace library {

struct WizardRecord {
  std::string text;  // host text
  bool isCut = false;
};

// One file that the wizard has open. One thread.
class WizardRecords {
 public:
  // Opens `path` (host text) in an encoding of the wizard's names. Null when it cannot: then *error
  // is the wizard's answer, or has the number 0 where there was none.
  static std::unique_ptr<WizardRecords> Open(const std::string& path, const std::string& encoding,
                                             DACErrorResponse* error);
  // Closes the file.
  ~WizardRecords();
  WizardRecords(const WizardRecords&) = delete;
  WizardRecords& operator=(const WizardRecords&) = delete;

  // The next record, the first one first. False where there is none.
  bool Next(WizardRecord* record);

 private:
  WizardRecords(std::unique_ptr<embedded::PackageConnection> wizard, FileOpenRequest file)
      : wizard_(std::move(wizard)), file_(std::move(file)) {}

  const std::unique_ptr<embedded::PackageConnection> wizard_;
  const FileOpenRequest file_;
};

}  // namespace library
