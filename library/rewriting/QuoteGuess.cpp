#include "library/rewriting/QuoteGuess.h"

#include <algorithm>
#include <cstddef>
#include <memory>

namespace library {
namespace {

constexpr std::size_t kBlock = std::size_t{1} << 16;
constexpr std::int64_t kMostBytes = std::int64_t{1} << 20;
// Units before the offset that are looked at for one that says nothing of quotes.
constexpr std::int64_t kLookBack = 64;
// So many more qualifiers in wrong places are no accident.
constexpr std::int64_t kEnough = 8;

std::size_t Read(embedded::StreamDevice& file, std::int64_t offset, char* buffer,
                 std::size_t bytes) {
  std::size_t got = 0;
  while (got < bytes) {
    const std::ptrdiff_t more =
        file.ReadAt(offset + static_cast<std::int64_t>(got), buffer + got, bytes - got);
    if (more <= 0) break;
    got += static_cast<std::size_t>(more);
  }
  return got;
}

// The last unit before `offset` that is neither the qualifier nor an escape, nor behind one.
std::int64_t PlainUnitBefore(const QuoteRewriter& rewriter, embedded::StreamDevice& file,
                             std::int64_t offset) {
  const auto unit = static_cast<std::int64_t>(rewriter.unitBytes());
  const std::int64_t least = std::max(rewriter.rules().markBytes, offset - kLookBack * unit);
  char bytes[2] = {};
  bool isPlain = false;
  for (std::int64_t at = offset - unit; at >= least; at -= unit) {
    if (Read(file, at, bytes, rewriter.unitBytes()) < rewriter.unitBytes()) return -1;
    const unsigned character = rewriter.UnitAt(bytes);
    const bool tells = character == static_cast<unsigned char>(rewriter.rules().qualifier) ||
                       rewriter.Escapes(bytes);
    if (isPlain && !tells) return at + unit;
    isPlain = !tells;
  }
  return -1;
}

}  // namespace

std::optional<QuoteAnchor> GuessQuotes(const QuoteRewriter& rewriter, embedded::StreamDevice& file,
                                       std::int64_t offset) {
  if (rewriter.rules().page != nullptr) return std::nullopt;
  const auto unit = static_cast<std::int64_t>(rewriter.unitBytes());
  const std::int64_t begin = PlainUnitBefore(rewriter, file, offset - offset % unit);
  if (begin < 0) return std::nullopt;
  QuotePosition start[2];
  start[0].state = QuotePosition::kPlain;
  start[1].state = QuotePosition::kQualified;
  QuotePosition outside = start[0];
  QuotePosition inside = start[1];
  const std::unique_ptr<char[]> block(new char[kBlock]);
  for (std::int64_t at = begin; at < begin + kMostBytes;) {
    const std::size_t got = Read(file, at, block.get(), kBlock);
    const std::size_t whole = got - got % rewriter.unitBytes();
    rewriter.Advance({block.get(), whole}, outside);
    rewriter.Advance({block.get(), whole}, inside);
    if (got < kBlock || std::abs(outside.strays - inside.strays) >= kEnough) break;
    at += static_cast<std::int64_t>(whole);
  }
  return QuoteAnchor{begin, start[inside.strays < outside.strays ? 1 : 0]};
}

}  // namespace library
