// Where the messages of a pass go in tests of all folders.
#pragma once

#include <string>
#include <vector>

#include "HostFramework/Messages.h"

namespace textwizard {

// Keeps every message. One thread.
class MessageKeeper : public ErrorMonitor {
 public:
  void Report(const ErrorText& message) override { messages.push_back(message); }
  void AttentionCheck(bool* attention) override { *attention = false; }
  // The texts of one kind, in the order in which they came.
  std::vector<std::string> Texts(int kind) const {
    std::vector<std::string> texts;
    for (const ErrorText& message : messages) {
      if (message.kind == kind) texts.push_back(message.text);
    }
    return texts;
  }

  std::vector<ErrorText> messages;
};

}  // namespace textwizard
