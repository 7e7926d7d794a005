#include "reading/ByteScan.h"

#include <algorithm>
#include <atomic>
#include <bit>
#include <cstring>
#include <iterator>

static_assert(std::endian::native == std::endian::little, "a word's bits are stored by bytes");

// Of the library's headers alone: its shared library measures the processor's clock when it is
// loaded, which would take longer than a small import. Vectors are 32 bytes at most, so nothing is
// gained from the sets beyond (docs/decisions.md).
#define HWY_DISABLED_TARGETS (HWY_AVX3 | HWY_AVX3_DL)
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "reading/ByteScan.cpp"
#include "hwy/foreach_target.h"
#include "hwy/highway.h"

// What follows is compiled once for every instruction set, but for this.
#ifndef TEXTWIZARD_BYTE_SCANS
#define TEXTWIZARD_BYTE_SCANS
namespace textwizard {
namespace {

// The scans of one instruction set.
struct Scans {
  std::size_t (*findLineEnd8)(const char* text, std::size_t size);
  std::size_t (*findLineEnd16)(const char* text, std::size_t size);
  LineRun (*findLineRun)(const char* text, std::size_t size, std::uint32_t most);
  LineRun (*findRunOfAllLines)(const char* text, std::size_t size, std::uint32_t most);
  void (*markBytes)(const char* text, std::size_t size, const ByteSet& set, std::uint64_t* words);
  bool (*isAscii)(const char* text, std::size_t size);
  bool (*isUtf8)(const char* text, std::size_t size);
};

}  // namespace
}  // namespace textwizard
#endif

HWY_BEFORE_NAMESPACE();
namespace textwizard::HWY_NAMESPACE {
namespace hn = hwy::HWY_NAMESPACE;

// Lines and records are short: wider vectors would only lengthen their ends.
using Bytes = hn::CappedTag<std::uint8_t, 32>;
using Vector = hn::Vec<Bytes>;
constexpr Bytes kBytes;
constexpr std::size_t kLanes = hn::MaxLanes(kBytes);

const std::uint8_t* AsBytes(const char* text) {
  return reinterpret_cast<const std::uint8_t*>(text);
}

std::size_t FindLineEnd8(const char* text, std::size_t size) {
  const Vector lf = hn::Set(kBytes, '\n');
  const Vector cr = hn::Set(kBytes, '\r');
  const Vector nul = hn::Zero(kBytes);
  std::size_t i = 0;
  for (; i + kLanes <= size; i += kLanes) {
    const Vector v = hn::LoadU(kBytes, AsBytes(text) + i);
    const auto hit = hn::Or(hn::Eq(v, nul), hn::Or(hn::Eq(v, lf), hn::Eq(v, cr)));
    const auto first = hn::FindFirstTrue(kBytes, hit);
    if (first >= 0) return i + static_cast<std::size_t>(first);
  }
  while (i < size && text[i] != '\n' && text[i] != '\r' && text[i] != '\0') ++i;
  return i;
}

std::size_t FindLineEnd16(const char* text, std::size_t size) {
  std::size_t i = 0;
#if HWY_TARGET != HWY_SCALAR  // whose vector is one byte
  constexpr hn::Repartition<std::uint16_t, Bytes> units;
  constexpr std::size_t kUnits = hn::MaxLanes(units);
  const auto lf = hn::Set(units, std::uint16_t{0x000A});
  const auto lfSwapped = hn::Set(units, std::uint16_t{0x0A00});
  const auto cr = hn::Set(units, std::uint16_t{0x000D});
  const auto crSwapped = hn::Set(units, std::uint16_t{0x0D00});
  const auto none = hn::Zero(units);
  const auto end = hn::Set(units, std::uint16_t{0xFFFF});
  for (; i + 2 * kUnits <= size; i += 2 * kUnits) {
    const auto v = hn::BitCast(units, hn::LoadU(kBytes, AsBytes(text) + i));
    const auto hit = hn::Or(hn::Or(hn::Or(hn::Eq(v, lf), hn::Eq(v, lfSwapped)),
                                   hn::Or(hn::Eq(v, cr), hn::Eq(v, crSwapped))),
                            hn::Or(hn::Eq(v, none), hn::Eq(v, end)));
    const auto first = hn::FindFirstTrue(units, hit);
    if (first >= 0) return i + 2 * static_cast<std::size_t>(first);
  }
#endif
  for (; i + 2 <= size; i += 2) {
    const unsigned a = AsBytes(text)[i];
    const unsigned b = AsBytes(text)[i + 1];
    const unsigned either = a | b;
    if ((a & b) == 0xFF) break;
    if ((a == 0 || b == 0) && (either == 0 || either == '\n' || either == '\r')) break;
  }
  return i;
}

// Nearly every set is one of three bytes or fewer; these stay in registers.
class FewBytes {
 public:
  static constexpr std::size_t kMost = 3;
  explicit FewBytes(const ByteSet& set)
      : first_(hn::Set(kBytes, set.bytes[0])),
        second_(hn::Set(kBytes, set.bytes[set.count > 1 ? 1 : 0])),
        third_(hn::Set(kBytes, set.bytes[set.count > 2 ? 2 : 0])) {}
  auto In(Vector v) const {
    return hn::Or(hn::Eq(v, first_), hn::Or(hn::Eq(v, second_), hn::Eq(v, third_)));
  }

 private:
  Vector first_, second_, third_;
};

class ManyBytes {
 public:
  explicit ManyBytes(const ByteSet& set) : set_(set) {}
  auto In(Vector v) const {
    auto hit = hn::Eq(v, hn::Set(kBytes, set_.bytes[0]));
    for (std::size_t k = 1; k < set_.count; ++k) {
      hit = hn::Or(hit, hn::Eq(v, hn::Set(kBytes, set_.bytes[k])));
    }
    return hit;
  }

 private:
  const ByteSet& set_;
};

// One bit per lane: is the byte in the set?
template <typename Set>
std::uint64_t MarkVector(const std::uint8_t* text, const Set& set) {
  std::uint8_t bits[8] = {};
  hn::StoreMaskBits(kBytes, set.In(hn::LoadU(kBytes, text)), bits);
  std::uint64_t word;
  std::memcpy(&word, bits, sizeof word);
  return word;
}

template <typename Set>
void MarkAll(const char* text, std::size_t size, const Set& set, std::uint64_t* words) {
  std::size_t i = 0;
  std::uint64_t word = 0;
  if constexpr (kLanes >= 8) {
    // The bits of whole words go where they belong, a vector's at a time.
    auto* const bytes = reinterpret_cast<std::uint8_t*>(words);
    for (; i + 64 <= size; i += 64) {
      for (std::size_t k = i; k < i + 64; k += kLanes) {
        hn::StoreMaskBits(kBytes, set.In(hn::LoadU(kBytes, AsBytes(text) + k)), bytes + k / 8);
      }
    }
  }
  for (; i + kLanes <= size; i += kLanes) {
    word |= MarkVector(AsBytes(text) + i, set) << (i % 64);
    if ((i + kLanes) % 64 == 0) {
      words[i / 64] = word;
      word = 0;
    }
  }
  if (const std::size_t left = size - i; left != 0) {
    std::uint64_t last;
    if (size >= kLanes) {
      // The text's last whole vector overlaps what is marked already.
      last = MarkVector(AsBytes(text) + size - kLanes, set) >> (kLanes - left);
    } else {
      std::uint8_t copy[kLanes] = {};
      std::memcpy(copy, text, left);
      last = MarkVector(copy, set) & ((std::uint64_t{1} << left) - 1);
    }
    word |= last << (i % 64);
  }
  if (size % 64 != 0) words[size / 64] = word;
}

void MarkBytes(const char* text, std::size_t size, const ByteSet& set, std::uint64_t* words) {
  if (set.count <= FewBytes::kMost) {
    MarkAll(text, size, FewBytes(set), words);
  } else {
    MarkAll(text, size, ManyBytes(set), words);
  }
}

// Bits of 64 bytes.
struct LineBits {
  std::uint64_t ends = 0;  // LF or CR
  std::uint64_t feeds = 0;
  std::uint64_t nuls = 0;
};

// `kFeeds`: the LF of their own are wanted, too.
template <bool kFeeds>
LineBits LineBitsOf(const std::uint8_t* text) {
  static_assert(64 % kLanes == 0);
  const Vector lf = hn::Set(kBytes, '\n');
  const Vector cr = hn::Set(kBytes, '\r');
  const auto bits = [](auto mask) {
    std::uint8_t stored[8] = {};
    hn::StoreMaskBits(kBytes, mask, stored);
    std::uint64_t word;
    std::memcpy(&word, stored, sizeof word);
    return word;
  };
  LineBits found;
  for (std::size_t k = 0; k < 64; k += kLanes) {
    const Vector v = hn::LoadU(kBytes, text + k);
    found.ends |= bits(hn::Or(hn::Eq(v, lf), hn::Eq(v, cr))) << k;
    if (kFeeds) found.feeds |= bits(hn::Eq(v, lf)) << k;
    found.nuls |= bits(hn::Eq(v, hn::Zero(kBytes))) << k;
  }
  return found;
}

constexpr bool IsLineEnd(char byte) { return byte == '\n' || byte == '\r'; }

// The first byte of the line end before the one at `last`.
std::size_t LineEndBefore(const char* text, std::size_t last) {
  while (!IsLineEnd(text[last - 1])) --last;
  --last;
  return last > 0 && text[last] == '\n' && text[last - 1] == '\r' ? last - 1 : last;
}

// A record ends at a byte that ends lines behind one that does not, whichever the line ends are;
// where empty lines are records, at the first byte of every line end.
template <bool kAllLines>
LineRun FindRun(const char* text, std::size_t size, std::uint32_t most) {
  std::uint32_t records = 0;
  // The byte behind the last record.
  std::size_t last = 0;
  // The byte before the word ends lines, or is the CR that a LF may belong to.
  std::uint64_t before = kAllLines ? 0 : 1;
  for (std::size_t i = 0; i < size; i += 64) {
    LineBits bits;
    if (i + 64 <= size) {
      bits = LineBitsOf<kAllLines>(AsBytes(text) + i);
    } else {
      std::uint8_t rest[64];
      std::memset(rest, ' ', sizeof rest);
      std::memcpy(rest, text + i, size - i);
      bits = LineBitsOf<kAllLines>(rest);
    }
    const std::uint64_t returns = bits.ends & ~bits.feeds;
    std::uint64_t ends = kAllLines ? returns | (bits.feeds & ~(returns << 1 | before))
                                   : bits.ends & ~(bits.ends << 1 | before);
    before = (kAllLines ? returns : bits.ends) >> 63;
    auto found = static_cast<std::uint32_t>(std::popcount(ends));
    const bool stops = bits.nuls != 0 || found > most - records;
    if (stops) {
      // All below the first NUL.
      if (bits.nuls != 0) ends &= (bits.nuls & ~(bits.nuls - 1)) - 1;
      for (found = static_cast<std::uint32_t>(std::popcount(ends)); found > most - records;
           --found) {
        ends &= ~(std::uint64_t{1} << (63 - std::countl_zero(ends)));
      }
    }
    records += found;
    if (ends != 0) last = i + 63 - static_cast<std::size_t>(std::countl_zero(ends));
    if (stops) break;
  }
  if (records > 0 && last + 1 == size && text[last] == '\r') {
    // Its line is left out: back to the end of the record before.
    if (--records > 0) {
      last = LineEndBefore(text, last);
      while (!kAllLines && IsLineEnd(text[last - 1])) --last;
    }
  }
  if (records == 0) return {};
  return {last + (text[last] == '\r' && text[last + 1] == '\n' ? 2 : 1), records};
}

LineRun FindLineRun(const char* text, std::size_t size, std::uint32_t most) {
  return FindRun<false>(text, size, most);
}

LineRun FindRunOfAllLines(const char* text, std::size_t size, std::uint32_t most) {
  return FindRun<true>(text, size, most);
}

bool IsAsciiVector(const std::uint8_t* text) {
  const hn::RebindToSigned<Bytes> d;
  const auto v = hn::BitCast(d, hn::LoadU(kBytes, text));
  return hn::AllTrue(d, hn::Gt(v, hn::Zero(d)));
}

bool IsAsciiWord(const char* text) {
  constexpr std::uint64_t kOnes = 0x0101010101010101;
  std::uint64_t word;
  std::memcpy(&word, text, sizeof word);
  return (((word - kOnes) | word) & (kOnes << 7)) == 0;
}

bool IsAscii(const char* text, std::size_t size) {
  if (size >= kLanes) {
    for (std::size_t i = 0; i + kLanes <= size; i += kLanes) {
      if (!IsAsciiVector(AsBytes(text) + i)) return false;
    }
    return IsAsciiVector(AsBytes(text) + size - kLanes);
  }
  if (size >= 8) {
    for (std::size_t i = 0; i + 8 <= size; i += 8) {
      if (!IsAsciiWord(text + i)) return false;
    }
    return IsAsciiWord(text + size - 8);
  }
  for (std::size_t i = 0; i < size; ++i) {
    if (static_cast<signed char>(text[i]) <= 0) return false;
  }
  return true;
}

// What can be wrong with two neighbouring bytes, as bits of three tables: by the high half of the
// first byte, by its low half, and by the high half of the second. A bit that all three have is an
// error (two continuations in a row may be right: the bytes before them decide).
namespace utf8 {
constexpr std::uint8_t kTooShort = 1 << 0;          // lead byte, then no continuation
constexpr std::uint8_t kTooLong = 1 << 1;           // ASCII, then a continuation
constexpr std::uint8_t kOverlong3 = 1 << 2;         // E0 80..9F
constexpr std::uint8_t kTooLarge = 1 << 3;          // F4 90..BF, F5..FF 90..BF
constexpr std::uint8_t kSurrogate = 1 << 4;         // ED A0..BF
constexpr std::uint8_t kOverlong2 = 1 << 5;         // C0..C1
constexpr std::uint8_t kOverlong4OrAbove = 1 << 6;  // F0 80..8F, F5..FF 80..8F
constexpr std::uint8_t kTwoContinuations = 1 << 7;
constexpr std::uint8_t kAnyLow = kTooShort | kTooLong | kTwoContinuations;
constexpr std::uint8_t kAbove = kAnyLow | kTooLarge | kOverlong4OrAbove;
constexpr std::uint8_t kContinuation = kTooLong | kOverlong2 | kTwoContinuations;

alignas(16) constexpr std::uint8_t kFirstHigh[16] = {kTooLong,
                                                     kTooLong,
                                                     kTooLong,
                                                     kTooLong,
                                                     kTooLong,
                                                     kTooLong,
                                                     kTooLong,
                                                     kTooLong,
                                                     kTwoContinuations,
                                                     kTwoContinuations,
                                                     kTwoContinuations,
                                                     kTwoContinuations,
                                                     kTooShort | kOverlong2,
                                                     kTooShort,
                                                     kTooShort | kOverlong3 | kSurrogate,
                                                     kTooShort | kTooLarge | kOverlong4OrAbove};
alignas(16) constexpr std::uint8_t kFirstLow[16] = {
    kAnyLow | kOverlong2 | kOverlong3 | kOverlong4OrAbove,
    kAnyLow | kOverlong2,
    kAnyLow,
    kAnyLow,
    kAnyLow | kTooLarge,
    kAbove,
    kAbove,
    kAbove,
    kAbove,
    kAbove,
    kAbove,
    kAbove,
    kAbove,
    kAbove | kSurrogate,
    kAbove,
    kAbove};
alignas(16) constexpr std::uint8_t kSecondHigh[16] = {
    kTooShort,
    kTooShort,
    kTooShort,
    kTooShort,
    kTooShort,
    kTooShort,
    kTooShort,
    kTooShort,
    kContinuation | kOverlong3 | kOverlong4OrAbove,
    kContinuation | kOverlong3 | kTooLarge,
    kContinuation | kSurrogate | kTooLarge,
    kContinuation | kSurrogate | kTooLarge,
    kTooShort,
    kTooShort,
    kTooShort,
    kTooShort};
}  // namespace utf8

Vector Look(const std::uint8_t* table, Vector index) {
#if HWY_TARGET == HWY_SCALAR
  return hn::Set(kBytes, table[hn::GetLane(index)]);
#else
  return hn::TableLookupBytes(hn::LoadDup128(kBytes, table), index);
#endif
}

// Checks the vector at `text`, whose three bytes before it can be read too: false when a byte of it
// cannot follow those before it.
bool IsUtf8Vector(const std::uint8_t* text) {
  const Vector now = hn::LoadU(kBytes, text);
  const Vector before3 = hn::LoadU(kBytes, text - 3);
  const Vector top = hn::Set(kBytes, std::uint8_t{0x80});
  // Together the two are every byte from three before on, unless a vector is a single byte.
  if (kLanes >= 3 && hn::AllTrue(kBytes, hn::Lt(hn::Or(now, before3), top))) return true;
  const Vector before1 = hn::LoadU(kBytes, text - 1);
  const Vector before2 = hn::LoadU(kBytes, text - 2);
  const Vector low = hn::Set(kBytes, std::uint8_t{0x0F});
  const Vector pair = hn::And(Look(utf8::kFirstHigh, hn::ShiftRight<4>(before1)),
                              hn::And(Look(utf8::kFirstLow, hn::And(before1, low)),
                                      Look(utf8::kSecondHigh, hn::ShiftRight<4>(now))));
  // The third byte after E0.. and the third and fourth after F0.. follow a continuation.
  const Vector third = hn::SaturatedSub(before2, hn::Set(kBytes, std::uint8_t{0xE0 - 0x80}));
  const Vector fourth = hn::SaturatedSub(before3, hn::Set(kBytes, std::uint8_t{0xF0 - 0x80}));
  const Vector wanted = hn::And(hn::Or(third, fourth), top);
  return hn::AllTrue(kBytes, hn::Eq(pair, wanted));
}

bool IsUtf8(const char* text, std::size_t size) {
  // The first bytes have none before them, the last ones zeros behind: a character that is cut
  // short then meets a byte that cannot follow it.
  constexpr std::size_t kHead = std::max<std::size_t>(kLanes, 4);
  std::uint8_t edge[3 + kHead] = {};
  std::size_t i = std::min(size, kHead);
  std::memcpy(edge + 3, text, i);
  for (std::size_t k = 0; k < kHead; k += kLanes) {
    if (!IsUtf8Vector(edge + 3 + k)) return false;
  }
  for (; i + kLanes <= size; i += kLanes) {
    if (!IsUtf8Vector(AsBytes(text) + i)) return false;
  }
  std::memset(edge, 0, sizeof edge);
  const std::size_t before = std::min<std::size_t>(i, 3);
  std::memcpy(edge + 3 - before, text + i - before, before + size - i);
  return IsUtf8Vector(edge + 3) && std::memchr(text, 0, size) == nullptr;
}

const Scans* TheScans() {
  static constexpr Scans kScans = {&FindLineEnd8, &FindLineEnd16, &FindLineRun, &FindRunOfAllLines,
                                   &MarkBytes,    &IsAscii,       &IsUtf8};
  return &kScans;
}

}  // namespace textwizard::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace textwizard {

namespace {

// Whether this processor has the instructions of a set that is compiled beside the baseline.
bool HasInstructions([[maybe_unused]] std::int64_t target) {
#if HWY_ARCH_X86
  __builtin_cpu_init();
  const bool ssse3 = __builtin_cpu_supports("ssse3");
  if (target == HWY_SSSE3) return ssse3;
  const bool sse4 = ssse3 && __builtin_cpu_supports("sse4.2") && __builtin_cpu_supports("popcnt") &&
                    __builtin_cpu_supports("pclmul") && __builtin_cpu_supports("aes");
  if (target == HWY_SSE4) return sse4;
  // Whatever has these has the conversions of half-precision numbers, which are not asked for here.
  return target == HWY_AVX2 && sse4 && __builtin_cpu_supports("avx2") &&
         __builtin_cpu_supports("bmi") && __builtin_cpu_supports("bmi2") &&
         __builtin_cpu_supports("fma");
#else
  return false;
#endif
}

struct Target {
  std::int64_t target;
  const Scans* (*scans)();
};

// Best first. Every other architecture has its baseline alone.
constexpr Target kTargets[] = {
#if HWY_ARCH_X86
    {HWY_AVX2, HWY_CHOOSE_AVX2(TheScans)},
    {HWY_SSE4, HWY_CHOOSE_SSE4(TheScans)},
    {HWY_SSSE3, HWY_CHOOSE_SSSE3(TheScans)},
#endif
    {HWY_STATIC_TARGET, &HWY_STATIC_DISPATCH(TheScans)},
};

bool CanUse(const Target& target) {
  // One that is not compiled, or is the baseline itself and stands at the end.
  if (target.scans == nullptr) return false;
  return target.target == HWY_STATIC_TARGET || HasInstructions(target.target);
}

// Null until the first scan, or the first after UseScanTarget(0).
std::atomic<const Scans*> chosen{nullptr};

[[gnu::noinline]] const Scans& Choose() {
  const auto* const best = std::find_if(std::begin(kTargets), std::end(kTargets), CanUse);
  const Scans* const scans = best->scans();
  chosen.store(scans, std::memory_order_relaxed);
  return *scans;
}

// The tables are constant, so nothing is to be ordered.
const Scans& Chosen() {
  const Scans* const scans = chosen.load(std::memory_order_relaxed);
  return scans != nullptr ? *scans : Choose();
}

}  // namespace

std::vector<std::int64_t> ScanTargets() {
  std::vector<std::int64_t> targets;
  for (const Target& target : kTargets) {
    if (CanUse(target)) targets.push_back(target.target);
    if (target.target == HWY_STATIC_TARGET) break;
  }
  return targets;
}

void UseScanTarget(std::int64_t wanted) {
  chosen.store(nullptr, std::memory_order_relaxed);
  for (const Target& target : kTargets) {
    if (target.target == wanted && CanUse(target)) chosen.store(target.scans());
  }
}

std::size_t FindLineEnd8(std::string_view text) {
  return Chosen().findLineEnd8(text.data(), text.size());
}

std::size_t FindLineEnd16(std::string_view text) {
  return Chosen().findLineEnd16(text.data(), text.size());
}

LineRun FindLineRun(std::string_view text, std::uint32_t most) {
  return Chosen().findLineRun(text.data(), text.size(), most);
}

LineRun FindRunOfAllLines(std::string_view text, std::uint32_t most) {
  return Chosen().findRunOfAllLines(text.data(), text.size(), most);
}

void MarkBytes(std::string_view text, const ByteSet& set, std::uint64_t* words) {
  if (set.count == 0) {
    std::fill_n(words, (text.size() + 63) / 64, 0);
    return;
  }
  Chosen().markBytes(text.data(), text.size(), set, words);
}

bool IsAscii(std::string_view text) { return Chosen().isAscii(text.data(), text.size()); }

bool IsUtf8(std::string_view text) {
  return text.empty() || Chosen().isUtf8(text.data(), text.size());
}

}  // namespace textwizard
#endif  // HWY_ONCE
