// The errors of an import, kept.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "HostFramework/Messages.h"
#include "library/import/ImportMessages.h"

namespace library {

// Host texts, in the order in which they were told; warnings and remarks are dropped.
class KeptErrors : public ImportMessages {
 public:
  void Post(std::string_view hostText, int kind) override {
    if (kind == kMessageError) errors.emplace_back(hostText);
  }
  std::vector<std::string> errors;
};

}  // namespace library
