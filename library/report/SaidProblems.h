// What a row says of a problem of a value besides its place, as it was written once: the same texts
// often come again.
#pragma once

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>
#include <vector>

#include "HostFramework/ImportObserver.h"

namespace library {

// Keeps so much of what is met that its memory is bounded. What is looked at for a problem lies in
// a few lines of the caches, which can be brought nearer before their turn comes. One thread.
class SaidProblems {
 private:
  // All of a text of at most 16 bytes but for its size.
  struct Ends {
    std::uint64_t first = 0;
    std::uint64_t last = 0;
  };

 public:
  // What a problem is looked up by. Good while its text is.
  class Key {
   public:
    Key() = default;
    // Of a problem that can be kept.
    explicit Key(const ImportProblem& problem)
        : text_(problem.text),
          ends_(EndsOf(problem.text)),
          variable_(static_cast<std::uint64_t>(problem.variable) << 32 |
                    static_cast<std::uint64_t>(problem.amount)),
          kind_(static_cast<std::uint64_t>(problem.kind) << 8 | problem.text.size()),
          hash_(Hash()) {}

   private:
    friend class SaidProblems;
    std::uint64_t Hash() const {
      std::uint64_t hash = ends_.first * 0x9E3779B97F4A7C15 + ends_.last * 0xC2B2AE3D27D4EB4F +
                           (variable_ >> 32 ^ kind_ << 32) * 0xD6E8FEB86659FD93;
      if (text_.size() > sizeof(Ends)) {
        hash = (hash ^ hash >> 32) * 0xD6E8FEB86659FD93 +
               WordAt<std::uint64_t>(text_.data() + text_.size() / 2 - 4);
      }
      // Every bit has a say in the lower ones and in the upper ones.
      hash = (hash ^ hash >> 32) * 0x9E3779B97F4A7C15;
      return hash ^ hash >> 32;
    }

    std::string_view text_;
    Ends ends_;
    // With the amount.
    std::uint64_t variable_ = 0;
    // With the text's size.
    std::uint64_t kind_ = 0;
    std::uint64_t hash_ = 0;
  };

  // Problems of a variable with a text of at most so many bytes can be kept: what is said of a
  // record depends on more than its text.
  static bool CanKeep(const ImportProblem& problem) {
    return problem.variable >= 0 && problem.text.size() <= kLongestText && problem.amount >= 0 &&
           problem.amount <= UINT32_MAX;
  }

  // Has what Find looks at first brought nearer.
  void Prefetch(const Key& key) const {
    if (known_.empty()) return;
    const Known* const row = &known_[kWays * RowOf(key.hash_)];
    __builtin_prefetch(row);
    __builtin_prefetch(row + kWays / 2);
  }
  // What was said of such a problem of the same kind, variable, amount and text; empty when it is
  // not known. Good until the next call of Keep. Has it brought nearer.
  std::string_view Find(const Key& key) const {
    if (known_.empty()) return {};
    // No decision before there is but one place to look at: which of them it is nobody foresees.
    const std::uint64_t tags = tags_[RowOf(key.hash_)] ^ TagOf(key.hash_) * kEachTag;
    const std::uint64_t same = (tags - kEachTag) & ~tags & kEachTag << 15;
    if (same == 0) return {};
    const std::size_t place =
        kWays * RowOf(key.hash_) + static_cast<std::size_t>(std::countr_zero(same)) / kTagBits;
    const Known& known = known_[place];
    if (!known.IsOf(key)) return {};
    if (key.text_.size() > sizeof(Ends) && longTexts_[place] != key.text_) return {};
    const Line* const line = &lines_[known.line];
    for (std::size_t ahead = 0; ahead < known.bytes; ahead += sizeof(Line)) {
      __builtin_prefetch(line->bytes + ahead);
    }
    return {line->bytes, known.bytes};
  }
  // Keeps what was said, which is not empty, of a problem that was not found. What was kept long
  // ago makes way. Throws std::bad_alloc; then nothing new is known.
  void Keep(const Key& key, std::string_view written);

 private:
  // A text is kept in any place of its row.
  static constexpr std::size_t kRows = 2048;
  static constexpr std::size_t kWays = 4;
  static constexpr unsigned kTagBits = 16;
  static constexpr std::uint64_t kTag = 0xFFFF;
  static constexpr std::uint64_t kEachTag = 0x0001000100010001;
  static constexpr std::size_t kLongestText = 64;
  static constexpr std::size_t kMostLines = 65536;

  struct alignas(64) Line {
    char bytes[64];
  };
  struct Known {
    Ends ends;
    std::uint64_t variable = 0;
    std::uint16_t kind = 0;
    // What was written: so many bytes from that line on.
    std::uint16_t bytes = 0;
    std::uint32_t line = 0;
    bool IsOf(const Key& key) const {
      return ((ends.first ^ key.ends_.first) | (ends.last ^ key.ends_.last) |
              (variable ^ key.variable_) | (kind ^ key.kind_)) == 0;
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
  static std::size_t RowOf(std::uint64_t hash) { return static_cast<std::size_t>(hash % kRows); }
  // Never 0.
  static std::uint64_t TagOf(std::uint64_t hash) { return hash >> 48 | 1; }
  static std::size_t LinesOf(std::size_t bytes) {
    return (bytes + sizeof(Line) - 1) / sizeof(Line);
  }

  // Made with the first. By row: bits of the hash of what is known, for each place; 0 for none. By
  // place: what is known of what, and the text where its ends are not all of it.
  std::vector<std::uint64_t> tags_;
  std::vector<Known> known_;
  std::vector<std::string> longTexts_;
  std::vector<Line> lines_;
  // Which place of a full row makes way.
  std::size_t nextWay_ = 0;
};

}  // namespace library
