// Block scans over bytes: where a line may end, where marked bytes are, which text is ASCII or
// valid UTF-8. The best instructions are picked at run time. Any thread; nothing is allocated,
// nothing outside the given bytes is read.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

namespace textwizard {

// A small set of byte values.
struct ByteSet {
  static constexpr std::size_t kMax = 12;
  std::array<std::uint8_t, kMax> bytes{};
  std::size_t count = 0;
};

// Index of the first LF, CR or NUL; the text's size when there is none.
std::size_t FindLineEnd8(std::string_view text);

// The same over 16-bit units that begin at the text's start: byte index of the first unit that is
// an LF or a CR in either byte order, 0x0000 or 0xFFFF; the size rounded down to even when there is
// none.
std::size_t FindLineEnd16(std::string_view text);

// A stretch of lines.
struct LineRun {
  std::size_t length = 0;
  // Its lines that are not empty, or all of them.
  std::uint32_t records = 0;
};

// The longest run of whole lines at the text's start that ends behind a line that is not empty,
// holds at most `most` of those and no NUL. A line ends with LF, CR or CR LF; one that a CR at the
// text's very end ends is not whole: an LF may follow. Its cost does not depend on the line ends.
LineRun FindLineRun(std::string_view text, std::uint32_t most);

// The same where empty lines count, too: the longest run of whole lines at the text's start, at
// most `most` and without a NUL.
LineRun FindRunOfAllLines(std::string_view text, std::uint32_t most);

// Sets bit i % 64 of words[i / 64] when byte i is in the set, for every byte of the text; the
// remaining bits of the last word are 0. `words` has room for (size + 63) / 64 words.
void MarkBytes(std::string_view text, const ByteSet& set, std::uint64_t* words);

// Bit i tells whether an odd number of the bits 0 to i are set.
constexpr std::uint64_t PrefixXor(std::uint64_t bits) {
  for (unsigned shift = 1; shift < 64; shift *= 2) bits ^= bits << shift;
  return bits;
}

// Every byte is 1 to 127.
bool IsAscii(std::string_view text);

// Valid UTF-8 (no overlong form, no surrogate, nothing above U+10FFFF) without NUL.
bool IsUtf8(std::string_view text);

// For tests: the sets of instructions that the scans can use on this machine, best first, as
// Highway numbers them, and one of them for the scans that follow (0: the best). No scan runs at
// the same time.
std::vector<std::int64_t> ScanTargets();
void UseScanTarget(std::int64_t target);

}  // namespace textwizard
