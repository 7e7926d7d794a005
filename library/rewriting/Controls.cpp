#include "library/rewriting/Controls.h"

#include <algorithm>
#include <memory>

namespace library {
namespace {

constexpr std::size_t kBlock = std::size_t{1} << 16;
// Units that are looked at together.
constexpr std::size_t kStep = 64;

template <typename Unit>
bool HoldsControl(const Unit* units, std::size_t count) {
  unsigned held = 0;
  for (std::size_t i = 0; i < count; ++i) {
    const Unit unit = units[i];
    held |= static_cast<unsigned>((unit < 0x20) & (unit != '\t') & (unit != '\n') & (unit != '\r'));
  }
  return held != 0;
}

template <typename Unit, typename Note>
void ForEachControl(const Unit* units, std::size_t count, const Note& note) {
  for (std::size_t at = 0; at < count; at += kStep) {
    const std::size_t size = std::min(kStep, count - at);
    if (!HoldsControl(units + at, size)) continue;
    for (std::size_t i = at; i < at + size; ++i) {
      if (units[i] < 0x20) note(units[i]);
    }
  }
}

const unsigned char* Bytes(std::string_view text) {
  return reinterpret_cast<const unsigned char*>(text.data());
}

}  // namespace

bool HoldsControl(std::string_view text) { return HoldsControl(Bytes(text), text.size()); }

void CountControls(std::string_view text, std::array<std::int64_t, 32>* counts) {
  ForEachControl(Bytes(text), text.size(), [counts](unsigned unit) { ++(*counts)[unit]; });
}

bool FindControls(embedded::StreamDevice& file, FileUnits units, ControlSet* held) {
  const std::unique_ptr<std::uint16_t[]> block(new std::uint16_t[kBlock / 2]);
  char* const bytes = reinterpret_cast<char*>(block.get());
  const auto note = [held](unsigned unit) { held->set(unit); };
  std::size_t kept = 0;
  for (std::int64_t offset = 0;;) {
    const std::ptrdiff_t got = file.ReadAt(offset, bytes + kept, kBlock - kept);
    if (got < 0) return false;
    if (got == 0) return true;
    offset += got;
    const std::size_t filled = kept + static_cast<std::size_t>(got);
    if (!IsUtf16(units)) {
      ForEachControl(Bytes({bytes, filled}), filled, note);
      continue;
    }
    if (units == FileUnits::kUtf16BigEndian) {
      for (std::size_t i = 0; i < filled / 2; ++i) block[i] = __builtin_bswap16(block[i]);
    }
    ForEachControl(block.get(), filled / 2, note);
    kept = filled % 2;
    if (kept != 0) bytes[0] = bytes[filled - 1];
  }
}

}  // namespace library
