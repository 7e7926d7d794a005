#include "wizard/ReadLine16.h"

#include <cstring>

namespace textwizard {
namespace {

constexpr std::uint16_t kReturn = 0x000D;
constexpr std::uint16_t kFeed = 0x000A;
constexpr std::uint16_t kSwappedReturn = 0x0D00;
constexpr std::uint16_t kSwappedFeed = 0x0A00;

// Steps over the next unit when it is `expected`.
void SkipUnit(int mode, FILE* stream, std::uint16_t expected) {
  const off_t before = ftello(stream);
  std::uint16_t unit = 0;
  if (before >= 0 && ReadUnit(mode, stream, &unit) && unit != expected) {
    fseeko(stream, before, SEEK_SET);
  }
}

}  // namespace

bool ReadUnit(int mode, FILE* stream, std::uint16_t* unit) {
  const int first = std::fgetc(stream);
  if (first == EOF) return false;
  const int read = std::fgetc(stream);
  const int second = read == EOF ? 0xFF : read;
  *unit = static_cast<std::uint16_t>(mode == kWizardUtf16BigEndian ? first << 8 | second
                                                                   : second << 8 | first);
  return true;
}

char* ReadLine16(int mode, char* buffer, int size, FILE* stream) {
  const bool utf16 = mode == kWizardUtf16BigEndian || mode == kWizardUtf16LittleEndian;
  constexpr int kUnit = 2;
  int length = 0;
  std::uint16_t unit = 0;
  if (length + 2 * kUnit > size) {
    // No room for a unit: the line goes on, unless there is none.
    const int next = std::fgetc(stream);
    std::ungetc(next, stream);
    if (size >= kUnit) std::memset(buffer, 0, kUnit);
    return next == EOF ? nullptr : buffer;
  }
  bool any = false;
  while (length + 2 * kUnit <= size && ReadUnit(mode, stream, &unit)) {
    any = true;
    if (utf16 && unit == kFeed) break;
    if (utf16 && unit == kReturn) {
      SkipUnit(mode, stream, kFeed);
      break;
    }
    if (!utf16 && unit == kSwappedReturn) {
      SkipUnit(mode, stream, kSwappedFeed);
      unit = kSwappedFeed;
    }
    std::memcpy(buffer + length, &unit, kUnit);
    length += kUnit;
  }
  std::memset(buffer + length, 0, kUnit);
  return any ? buffer : nullptr;
}

}  // namespace textwizard
