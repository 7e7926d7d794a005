// An adapter whose message callback keeps the messages.
#pragma once

#include <string>
#include <vector>

#include "HostFramework/Messages.h"
#include "model/testing/TestAdapter.h"

namespace textwizard::engine_test {

// One at a time.
class KeepingAdapter : public TestAdapter {
 public:
  KeepingAdapter() { Messages().clear(); }
  ErrorCallback GetErrorCallback() override { return &Keep; }

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
