// The warnings of bytes that are no character, as far as a person is told them.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace library {

// A wrong encoding makes a warning of nearly every case, and both passes over a file, the one that
// finds types and the one that reads, meet the same bytes. Lets the first warnings of a command
// pass and counts the others. Takes no more memory for many than for few. One thread at a time.
class UndecodableWarnings {
 public:
  // True for the text of such a warning (host text).
  static bool IsOne(std::string_view text);

  // Forgets the command before.
  void BeginCommand() { *this = {}; }
  // From now on the same bytes may be met again.
  void BeginNextPass();
  // Takes the text of a warning. True when it is to be told.
  bool Take(std::string_view text);
  // What is to be told at the end of the command: "and N more, the last in case K". Empty when
  // everything was told.
  std::string Rest() const;

  static constexpr std::size_t kMostTold = 20;

 private:
  struct Untold {
    long long count = 0;
    std::string last;
  };

  std::vector<std::string> told_;
  // Of told_, those of earlier passes: where the next one is expected, as passes go the same way.
  std::size_t repeatable_ = 0;
  std::size_t nextRepeated_ = 0;
  Untold now_;        // in this pass
  Untold mostSoFar_;  // in the pass before that had most
};

}  // namespace library
