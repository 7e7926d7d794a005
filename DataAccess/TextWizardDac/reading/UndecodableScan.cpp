#include "reading/UndecodableScan.h"

#include <cstdint>
#include <cstring>

namespace textwizard {
namespace {

// Length of the character of more than one byte at `at`; 0 when there is none.
std::size_t LongCharacter(const unsigned char* at, std::size_t left) {
  const unsigned lead = at[0];
  const auto continues = [at](std::size_t i) { return (at[i] & 0xC0U) == 0x80U; };
  if (lead < 0xC2 || lead > 0xF4 || left < 2 || !continues(1)) return 0;
  if (lead < 0xE0) return 2;
  if (left < 3 || !continues(2)) return 0;
  const unsigned second = at[1];
  if (lead < 0xF0) {
    const bool overlong = lead == 0xE0 && second < 0xA0;
    const bool surrogate = lead == 0xED && second > 0x9F;
    return overlong || surrogate ? 0 : 3;
  }
  if (left < 4 || !continues(3)) return 0;
  const bool overlong = lead == 0xF0 && second < 0x90;
  const bool above = lead == 0xF4 && second > 0x8F;
  return overlong || above ? 0 : 4;
}

bool EightAreAscii(const unsigned char* at) {
  constexpr std::uint64_t kTops = 0x8080808080808080;
  std::uint64_t word;
  std::memcpy(&word, at, sizeof word);
  return (word & kTops) == 0;
}

}  // namespace

UndecodableRun FindUndecodable(std::string_view text, std::size_t from) {
  const auto* const bytes = reinterpret_cast<const unsigned char*>(text.data());
  const std::size_t size = text.size();
  std::size_t at = from;
  for (std::size_t length = 1; length != 0;) {
    while (at + 8 <= size && EightAreAscii(bytes + at)) at += 8;
    if (at == size) return {};
    length = bytes[at] < 0x80 ? 1 : LongCharacter(bytes + at, size - at);
    at += length;
  }
  std::size_t end = at + 1;
  while (end != size && bytes[end] >= 0x80 && LongCharacter(bytes + end, size - end) == 0) ++end;
  return {at, end - at};
}

}  // namespace textwizard
