#include "detection/PatternMatcher.h"

#include <cstddef>
#include <map>
#include <new>
#include <string_view>
#include <utility>

#include "HostFramework/Threads.h"
#include "detection/UnicodeText.h"

namespace textwizard {
namespace {

// More than the compilation of any pattern of the table takes.
constexpr std::size_t kCompilerRoom = std::size_t{1} << 20;

// Compiled patterns are constant and shared by all matchers of the process: every worker has its
// own matchers.
std::shared_ptr<const icu::RegexPattern> SharedPattern(const std::string& regex) {
  struct Known {
    sfMutex mutex;
    std::map<std::string, std::shared_ptr<const icu::RegexPattern>> patterns SF_GUARDED_BY(mutex);
  };
  static Known known;
  std::string utf8;
  const std::string key(ToUtf8(regex, utf8));
  const sfGuard guard(known.mutex);
  const auto place = known.patterns.find(key);
  if (place != known.patterns.end()) return place->second;
  UErrorCode status = U_ZERO_ERROR;
  UParseError where;
  const icu::UnicodeString text = icu::UnicodeString::fromUTF8(key);
  if (text.isBogus()) CheckMemory(U_MEMORY_ALLOCATION_ERROR);
  // ICU's compiler does not survive it when memory runs out halfway.
  ::operator delete(::operator new(kCompilerRoom));
  std::shared_ptr<const icu::RegexPattern> pattern(
      icu::RegexPattern::compile(text, 0, where, status));
  CheckMemory(status);
  if (U_FAILURE(status)) pattern.reset();
  known.patterns.emplace(key, pattern);
  return pattern;
}

}  // namespace

struct PatternMatcher::State {
  std::string regex;
  bool compiled = false;
  // The matcher uses the pattern as long as it lives.
  std::shared_ptr<const icu::RegexPattern> pattern;
  std::unique_ptr<icu::RegexMatcher> matcher;
};

PatternMatcher::PatternMatcher(std::string regex) : state_(std::make_shared<State>()) {
  state_->regex = std::move(regex);
}

icu::RegexMatcher* PatternMatcher::get() const {
  if (!state_) return nullptr;
  State& state = *state_;
  if (state.compiled) return state.matcher.get();
  state.pattern = SharedPattern(state.regex);
  if (state.pattern) {
    UErrorCode status = U_ZERO_ERROR;
    state.matcher.reset(state.pattern->matcher(status));
    CheckMemory(status);
    if (U_FAILURE(status)) state.matcher.reset();
  }
  state.compiled = true;
  return state.matcher.get();
}

bool PatternMatcher::compiled() const { return !state_ || state_->compiled; }

}  // namespace textwizard
