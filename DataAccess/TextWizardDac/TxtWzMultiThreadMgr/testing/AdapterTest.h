// An adapter whose message callback keeps the messages.
#pragma once

#include <string>
#include <vector>

#include "HostFramework/DACAdapter.h"
#include "HostFramework/Messages.h"

namespace textwizard::engine_test {

// One at a time.
class TestAdapter : public DACAdapterBase {
 public:
  TestAdapter() { Messages().clear(); }
  DACTokenSource* GetTokenSource() override { return nullptr; }
  ErrorCallback GetErrorCallback() override { return &Keep; }
  void* GetAdapterContext() override { return nullptr; }
  const std::string& ConvertFilePath(std::string& result, const std::string& input, bool) override {
    return result = input;
  }
  int GetSourceParamA() override { return 0; }
  int GetSourceParamB() override { return 0; }

  struct Message {
    std::string text;
    int kind;
  };
  static std::vector<Message>& Messages() {
    static std::vector<Message> messages;
    return messages;
  }
  static std::vector<std::string> Texts(int kind) {
    std::vector<std::string> texts;
    for (const Message& message : Messages()) {
      if (message.kind == kind) texts.push_back(message.text);
    }
    return texts;
  }

 private:
  static void Keep(const char* text, int kind) { Messages().push_back({text, kind}); }
};

}  // namespace textwizard::engine_test
