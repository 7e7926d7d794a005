// A text in which the bytes of a small set are found in blocks.
#pragma once

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "reading/ByteScan.h"

namespace textwizard {

// Marks where those bytes stand, a few kilobytes at a time as the search comes to them, so that
// each stretch of the text is looked at once however many searches go through it. One thread.
class MarkedText {
 public:
  // The bytes to find. What was marked is forgotten.
  void SetBytes(const ByteSet& bytes) {
    bytes_ = bytes;
    markCount_ = 0;
  }
  // The text to search. It stays unchanged until the next call.
  void SetText(std::string_view text) {
    text_ = text;
    markCount_ = 0;
  }

  const char* begin() const { return text_.data(); }
  // Bit i tells of the text's byte 64 * word + i. The word begins in the text; bits behind the
  // text's end are 0.
  std::uint64_t MarksAt(std::size_t word) {
    if (word - firstWord_ >= markCount_) [[unlikely]]
      MarkFrom(word);
    return marks_[word - firstWord_];
  }
  // The first of the bytes at `from` or behind it and before `end`; `end` when there is none. Both
  // lie in the text or at its end.
  const char* Next(const char* from, const char* end) {
    if (from == end) return end;
    const auto at = static_cast<std::size_t>(from - begin());
    std::size_t word = at / 64;
    const std::uint64_t marks = MarksAt(word) >> (at % 64);
    if (marks != 0) {
      const char* const found = from + std::countr_zero(marks);
      return found < end ? found : end;
    }
    const auto size = static_cast<std::size_t>(end - begin());
    while (64 * ++word < size) {
      if (const std::uint64_t more = MarksAt(word); more != 0) {
        const char* const found = begin() + 64 * word + std::countr_zero(more);
        return found < end ? found : end;
      }
    }
    return end;
  }

 private:
  static constexpr std::size_t kMarkWords = 64;

  // Marks as many words as there is room for, from `word` on.
  [[gnu::noinline, gnu::cold]] void MarkFrom(std::size_t word);

  ByteSet bytes_;
  std::string_view text_;
  // The words that marks_ holds: markCount_ of them from firstWord_ on.
  std::size_t firstWord_ = 0;
  std::size_t markCount_ = 0;
  std::array<std::uint64_t, kMarkWords> marks_;
};

}  // namespace textwizard
