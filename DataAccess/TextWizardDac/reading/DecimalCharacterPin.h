// The process's decimal character, held at a source's while an iterator lives.
#pragma once

#include "HostFramework/ValueInput.h"

namespace textwizard {

// Sets the host's decimal character ('.', or the comma for anything else) and puts back what it
// found. The character is one for the process: of several pins alive, the latest wins.
class DecimalCharacterPin {
 public:
  explicit DecimalCharacterPin(int character) : found_(iocvgetdecchar_()) { Set(character); }
  ~DecimalCharacterPin() { Set(found_); }
  DecimalCharacterPin(const DecimalCharacterPin&) = delete;
  DecimalCharacterPin& operator=(const DecimalCharacterPin&) = delete;

  // The character in force before.
  int found() const { return found_; }

 private:
  static void Set(int character) {
    if (character == '.') {
      iocvsetdecchardot_();
    } else {
      iocvsetdeccharcomma_();
    }
  }

  const int found_;
};

}  // namespace textwizard
