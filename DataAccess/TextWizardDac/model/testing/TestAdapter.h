// An adapter of no host, for tests of all folders.
#pragma once

#include <string>

#include "HostFramework/DACAdapter.h"

namespace textwizard {

// Has no tokens, takes paths as they are and ignores messages; tests override what they look at.
class TestAdapter : public DACAdapterBase {
 public:
  DACTokenSource* GetTokenSource() override { return nullptr; }
  ErrorCallback GetErrorCallback() override { return &Ignore; }
  void* GetAdapterContext() override { return nullptr; }
  const std::string& ConvertFilePath(std::string& result, const std::string& input,
                                     bool /*unquoted*/) override {
    return result = input;
  }
  int GetSourceParamA() override { return 0; }
  int GetSourceParamB() override { return 0; }

  static void Ignore(const char*, int) {}
};

}  // namespace textwizard
