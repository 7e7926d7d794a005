// The warnings for bytes that are no character.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "HostFramework/Messages.h"

namespace textwizard {

// A wrong encoding makes one of nearly every byte, so a warning costs little more than the call
// that takes it: the catalogue's text is looked up once, and only its numbers change. One thread at
// a time.
class UndecodableWarnings {
 public:
  // Reports `count` warnings: for the byte at `position` (from 0) of case `caseNumber` (from 1),
  // and for each that follows.
  void Report(ErrorMonitor& monitor, std::int64_t caseNumber, std::size_t position,
              std::size_t count);

 private:
  void LoadText();
  void SetCase(std::int64_t caseNumber);
  void SetPosition(int position);
  bool CountUp();

  bool loaded_ = false;
  // The text's numbers can be put in here, between its parts; else printf does it.
  bool simple_ = false;
  std::string head_, middle_, tail_;

  ErrorText message_;
  // The case and position that message_ is of, -1 for none, and where the position stands.
  std::int64_t caseNumber_ = -1;
  int position_ = -1;
  std::size_t place_ = 0;
  std::size_t digits_ = 0;
};

}  // namespace textwizard
