// A regular expression that is compiled when it is first needed: most imports ask for few patterns,
// or for none.
#pragma once

#include <memory>
#include <string>

#include <unicode/regex.h>

namespace textwizard {

// Copies share one matcher, which is stateful: all of them belong to one thread at a time.
class PatternMatcher {
 public:
  // Of no pattern; get is null.
  PatternMatcher() = default;
  // `regex`: host text.
  explicit PatternMatcher(std::string regex);

  // The matcher; null when the pattern does not compile. Throws std::bad_alloc when the first call
  // lacks memory, and the next one tries again.
  icu::RegexMatcher* get() const;
  icu::RegexMatcher* operator->() const { return get(); }
  explicit operator bool() const { return get() != nullptr; }
  // The matcher, or that there is none, is known.
  bool compiled() const;

  // Of copies of each other.
  friend bool operator==(const PatternMatcher&, const PatternMatcher&) = default;

 private:
  struct State;
  std::shared_ptr<State> state_;
};

}  // namespace textwizard
