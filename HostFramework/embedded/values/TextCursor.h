// A walk over the text of one value, character by character of the host's text encoding.
#pragma once

#include <cstdint>
#include <limits>
#include <string_view>

namespace embedded {

// Digits read one after the other. Each member fills a register: a run is made and handed on for
// nearly every part of a value.
struct DigitRun {
  // Stands for a value that times the seconds of a day might not fit 64 bits.
  static constexpr std::uint64_t kTooLarge = std::numeric_limits<std::uint64_t>::max();

  std::uint64_t value = 0;      // or kTooLarge
  std::int64_t count = 0;       // number of digits
  const char* begin = nullptr;  // their text
  const char* end = nullptr;

  bool IsExact() const { return value != kTooLarge; }
  void Append(int digit) {
    constexpr std::uint64_t kExactLimit = 10'000'000'000'000;
    value = value < kExactLimit / 10 ? value * 10 + static_cast<unsigned>(digit) : kTooLarge;
    ++count;
  }
};

// Borrows the text. Digits are decimal digits and blanks are white space, in the meaning of
// Unicode: those are what the layouts of dates and times are recognised with. ASCII is decided from
// the byte; only other bytes are decoded.
class TextCursor {
 public:
  TextCursor() = default;
  explicit TextCursor(std::string_view text) : at_(text.data()), end_(text.data() + text.size()) {}
  explicit TextCursor(const DigitRun& run) : at_(run.begin), end_(run.end) {}

  bool AtEnd() const { return at_ == end_; }

  // The byte here, 0 at the end.
  char Byte() const { return at_ == end_ ? '\0' : *at_; }

  // What is not consumed yet.
  std::string_view Rest() const { return {at_, static_cast<std::size_t>(end_ - at_)}; }
  void Skip(std::size_t bytes) { at_ += bytes; }

  // Each of these consumes what it names and returns true, or does nothing and returns false.
  bool Accept(char ascii) {
    if (at_ == end_ || *at_ != ascii) return false;
    ++at_;
    return true;
  }
  bool AcceptLetter(char lower) {
    if (at_ == end_ || (*at_ | 0x20) != lower) return false;
    ++at_;
    return true;
  }
  template <char... kSet>
  bool AcceptOneOf() {
    if (at_ == end_ || !((*at_ == kSet) || ...)) return false;
    ++at_;
    return true;
  }
  bool Blank() {
    if (at_ == end_) return false;
    const auto byte = static_cast<unsigned char>(*at_);
    if (byte >= 0x80) return WideBlank();
    if (byte != ' ' && (byte < '\t' || byte > '\r')) return false;
    ++at_;
    return true;
  }
  // One blank or more.
  bool Blanks() {
    if (!Blank()) return false;
    while (Blank()) {
    }
    return true;
  }

  // The value of the digit here, which it consumes, or -1.
  int Digit() {
    if (at_ == end_) return -1;
    const auto byte = static_cast<unsigned char>(*at_);
    if (byte >= 0x80) return WideDigit();
    if (byte < '0' || byte > '9') return -1;
    ++at_;
    return byte - '0';
  }
  // All the digits here, but no more than `most`.
  DigitRun Digits(std::int64_t most = std::numeric_limits<std::int64_t>::max());

  // True when all that is left is blanks, or nothing.
  bool OnlyBlanks() {
    while (Blank()) {
    }
    return AtEnd();
  }

  // Consumes the character here and returns it, letter case removed; 0 for bytes that are not a
  // character and at the end.
  char32_t FoldedCharacter() {
    if (at_ == end_) return 0;
    const auto byte = static_cast<unsigned char>(*at_);
    if (byte >= 0x80) return WideCharacter();
    ++at_;
    return byte >= 'A' && byte <= 'Z' ? byte | 0x20u : byte;
  }

 private:
  char32_t Decode(int* length) const;
  bool WideBlank();
  int WideDigit();
  char32_t WideCharacter();

  const char* at_ = nullptr;
  const char* end_ = nullptr;
};

// The character with its letter case removed. The four letters i of Turkish are one, so that its
// names are found however they were capitalised.
char32_t FoldCase(char32_t character);

inline DigitRun TextCursor::Digits(std::int64_t most) {
  DigitRun run;
  run.begin = at_;
  while (run.count < most) {
    const char* at = at_;
    while (at != end_ && run.count < most && static_cast<unsigned char>(*at - '0') < 10) {
      run.Append(*at++ - '0');
    }
    at_ = at;
    if (at == end_ || static_cast<unsigned char>(*at) < 0x80 || run.count == most) break;
    const int digit = WideDigit();
    if (digit < 0) break;
    run.Append(digit);
  }
  run.end = at_;
  return run;
}

}  // namespace embedded
