// Several patterns tested against a text in one walk over its bytes.
//
// The regular-expression library says what a pattern matches; an automaton, compiled from the very
// text of the pattern, gives the same answer for nearly every value at a small part of the cost,
// and says so when it cannot.
#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "detection/PatternSyntax.h"

namespace textwizard {

// Constant after construction; shared by threads.
class PatternAutomaton {
 public:
  static constexpr std::size_t kMaxPatterns = 64;

  // Bit i speaks of pattern i.
  struct Verdict {
    // The pattern matches the whole text.
    std::uint64_t matched = 0;
    // Only the library can tell.
    std::uint64_t undecided = 0;
  };
  // What each byte of a text stands for.
  using ByteClasses = std::array<std::uint8_t, 256>;

  // The automaton of `patterns` (UTF-8, at most kMaxPatterns), compiled at the first call for
  // them and kept for the life of the process. Any thread.
  static std::shared_ptr<const PatternAutomaton> Shared(const std::vector<std::string>& patterns);

  explicit PatternAutomaton(const std::vector<std::string>& patterns);

  // The classes of bytes that are first replaced by `mapping` (a lower-casing, say). `utf8`: that
  // is what the texts are.
  ByteClasses Classes(const std::array<unsigned char, 256>& mapping, bool utf8) const;

  // Whether a text that begins with a byte of this class can be anything but a mismatch.
  bool MayBegin(std::uint8_t byteClass) const {
    return byteClass < kWideClasses || uncompiled_ != 0 ||
           next_[(kStart << classBits_) + byteClass] != kDead;
  }

  Verdict Match(std::string_view text, const ByteClasses& classes) const {
    const std::uint32_t* const next = next_.data();
    std::size_t row = kStart << classBits_;
    for (std::size_t i = 0; i < text.size(); ++i) {
      const std::uint8_t byteClass = classes[static_cast<unsigned char>(text[i])];
      if (byteClass < kWideClasses) {
        return {0, GoingOn(row >> classBits_, byteClass, text.substr(i)) | uncompiled_};
      }
      row = next[row + byteClass];
      if (row == kDead) return {0, uncompiled_};
    }
    const std::size_t state = row >> classBits_;
    // The library gives up a match that takes it too much memory.
    if (text.size() > kSureLength) return {0, accepted_[state] | uncompiled_};
    return {accepted_[state], uncompiled_};
  }

  // Patterns that are always left to the library.
  std::uint64_t uncompiled() const { return uncompiled_; }

 private:
  static constexpr std::size_t kDead = 0;
  static constexpr std::size_t kStart = 1;
  // The classes of bytes that begin a character beyond ASCII: nothing is known about it; it is
  // neither a digit nor a space; the byte behind decides about that.
  enum WideClass : std::uint8_t { kUnknownWide, kOtherWide, kWideBySecond, kWideClasses };
  static constexpr std::size_t kSureLength = 1024;

  struct Construction;
  class Numbering;
  // The patterns that could go on from the state with the character that `rest` begins with.
  std::uint64_t GoingOn(std::size_t state, std::uint8_t wideClass, std::string_view rest) const;
  void SetClasses(Construction& construction);

  std::array<std::uint8_t, kAsciiCount> classOf_{};
  std::size_t classCount_ = kWideClasses;
  // A state's classes take a power of two, so that no multiplication stands between two steps.
  unsigned classBits_ = 0;
  // state x class -> where the row of the next state begins
  std::vector<std::uint32_t> next_;
  // Per state: patterns that match here, those that could go on with a character beyond ASCII, and
  // those of them for which it need be neither a digit nor a space.
  std::vector<std::uint64_t> accepted_;
  std::vector<std::uint64_t> wide_;
  std::vector<std::uint64_t> wideOther_;
  std::uint64_t uncompiled_ = 0;
};

}  // namespace textwizard
