// What a row says of a problem of a value besides its place, as it was written once: the same texts
// often come again.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>
#include <vector>

#include "HostFramework/ImportObserver.h"

namespace library {

// Keeps so much of what is met that its memory is bounded. One thread. Throws std::bad_alloc; then
// what it knew is known still.
class SaidProblems {
 public:
  // Problems of a variable with a text of at most so many bytes can be kept: what is said of a
  // record depends on more than its text.
  static bool CanKeep(const ImportProblem& problem) {
    return problem.variable >= 0 && problem.text.size() <= kLongestText;
  }

  // What was said of such a problem of the same kind, variable, amount and text; null when it is
  // not known. Good until the next call of Keep.
  const std::string* Find(const ImportProblem& problem) const {
    if (said_.empty()) return nullptr;
    const Ends ends = EndsOf(problem.text);
    const Said* const first = &said_[kWays * RowOf(problem, ends)];
    for (const Said* said = first; said != first + kWays; ++said) {
      if (said->IsOf(problem, ends)) return &said->written;
    }
    return nullptr;
  }
  // Keeps what was said of a problem that was not found. What was kept long ago makes way.
  void Keep(const ImportProblem& problem, std::string_view written);

 private:
  // A text is kept in any place of its row.
  static constexpr std::size_t kRows = 2048;
  static constexpr std::size_t kWays = 4;
  static constexpr std::size_t kLongestText = 64;

  // A text of at most 16 bytes is known by these and its size.
  struct Ends {
    std::uint64_t first;
    std::uint64_t last;
    bool operator==(const Ends&) const = default;
  };
  struct Said {
    Ends ends;
    std::int64_t amount = 0;
    std::int32_t variable = -1;  // none is kept here
    ImportProblemKind kind = {};
    std::string text;
    std::string written;
    bool IsOf(const ImportProblem& problem, const Ends& its) const {
      return ends == its && variable == problem.variable && kind == problem.kind &&
             amount == problem.amount && text.size() == problem.text.size() &&
             (text.size() <= sizeof(Ends) || text == problem.text);
    }
  };

  template <typename Word>
  static Word WordAt(const char* at) {
    Word word;
    std::memcpy(&word, at, sizeof word);
    return word;
  }
  static Ends EndsOf(std::string_view text) {
    const char* const begin = text.data();
    const char* const end = begin + text.size();
    if (text.size() >= 8) return {WordAt<std::uint64_t>(begin), WordAt<std::uint64_t>(end - 8)};
    if (text.size() >= 4) return {WordAt<std::uint32_t>(begin), WordAt<std::uint32_t>(end - 4)};
    if (text.empty()) return {0, 0};
    return {WordAt<std::uint8_t>(begin),
            WordAt<std::uint8_t>(begin + text.size() / 2) * std::uint64_t{256} +
                WordAt<std::uint8_t>(end - 1)};
  }
  static std::size_t RowOf(const ImportProblem& problem, const Ends& ends) {
    const std::string_view text = problem.text;
    std::uint64_t hash = Mixed(ends.first) ^ (ends.last + text.size());
    if (text.size() > sizeof(Ends)) {
      hash = Mixed(hash) ^ WordAt<std::uint64_t>(text.data() + text.size() / 2 - 4);
    }
    hash = Mixed(hash) ^ static_cast<std::uint64_t>(problem.variable);
    return static_cast<std::size_t>(Mixed(hash)) % kRows;
  }
  // Every bit has a say in the lower ones.
  static std::uint64_t Mixed(std::uint64_t bits) {
    bits *= 0x9E3779B97F4A7C15;
    return bits ^ bits >> 32;
  }

  // Made with the first.
  std::vector<Said> said_;
  // Which place of a full row makes way.
  std::size_t nextWay_ = 0;
};

}  // namespace library
