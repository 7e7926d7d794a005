#include "library/columns/ColumnBatch.h"

#include <algorithm>
#include <bit>
#include <cstring>

namespace library {
namespace {

std::size_t BitBytes(std::size_t bits) { return (bits + 7) / 8; }

// Up to 64 bits from bit `at` on; those behind the end of the buffer are 0.
std::uint64_t BitsFrom(const Buffer& bits, std::size_t at) {
  const std::size_t byte = at / 8;
  std::uint64_t words[2] = {0, 0};
  std::memcpy(words, bits.data() + byte, std::min(bits.size() - byte, sizeof words));
  const std::size_t shift = at % 8;
  return shift == 0 ? words[0] : (words[0] >> shift) | (words[1] << (64 - shift));
}

// Sets `count` bits (at most 64) of a buffer whose bits from `at` on are 0.
void PutBits(Buffer& bits, std::size_t at, std::size_t count, std::uint64_t value) {
  if (count < 64) value &= (std::uint64_t{1} << count) - 1;
  const std::size_t byte = at / 8;
  const std::size_t shift = at % 8;
  std::uint64_t words[2] = {0, 0};
  const std::size_t bytes = std::min(bits.size() - byte, sizeof words);
  std::memcpy(words, bits.data() + byte, bytes);
  words[0] |= value << shift;
  if (shift != 0) words[1] |= value >> (64 - shift);
  std::memcpy(bits.data() + byte, words, bytes);
}

void LengthenBits(Buffer& bits, std::size_t bytes) {
  const std::size_t more = bytes - bits.size();
  if (more != 0) std::memset(bits.Extend(more), 0, more);
}

// The offsets of `count` texts that stand behind `before` bytes of others.
template <class Offset>
void AppendOffsetsOf(const Offset* offsets, std::size_t count, std::size_t before, Buffer& into) {
  if (into.empty()) *reinterpret_cast<Offset*>(into.Extend(sizeof(Offset))) = 0;
  const Offset shift = static_cast<Offset>(before) - offsets[0];
  auto* const out = reinterpret_cast<Offset*>(into.Extend(count * sizeof(Offset)));
  for (std::size_t i = 0; i < count; ++i) out[i] = offsets[i + 1] + shift;
}

template <class Offset>
void AppendText(const Column& from, std::size_t begin, std::size_t count, Column& into) {
  const Offset* const offsets = from.values.As<Offset>() + begin;
  AppendOffsetsOf(offsets, count, into.text.size(), into.values);
  into.text.Append(from.text.data() + offsets[0],
                   static_cast<std::size_t>(offsets[count] - offsets[0]));
}

}  // namespace

std::string_view ColumnBatch::TextAt(std::size_t column, ColumnType type, std::size_t row) const {
  const Column& texts = columns[column];
  const auto* const bytes = texts.text.As<char>();
  if (type == ColumnType::kLargeUtf8) {
    const auto* const offsets = texts.values.As<std::int64_t>() + row;
    return {bytes + offsets[0], static_cast<std::size_t>(offsets[1] - offsets[0])};
  }
  const auto* const offsets = texts.values.As<std::int32_t>() + row;
  return {bytes + offsets[0], static_cast<std::size_t>(offsets[1] - offsets[0])};
}

void AppendValidity(const Column& from, std::size_t begin, std::size_t count, Column& into,
                    std::size_t had) {
  if (from.validity.empty() && into.validity.empty()) return;
  if (into.validity.empty()) {
    LengthenBits(into.validity, BitBytes(had));
    for (std::size_t at = 0; at < had; at += 64) {
      PutBits(into.validity, at, std::min<std::size_t>(64, had - at), ~std::uint64_t{0});
    }
  }
  LengthenBits(into.validity, BitBytes(had + count));
  for (std::size_t done = 0; done < count; done += 64) {
    const std::size_t bits = std::min<std::size_t>(64, count - done);
    std::uint64_t value =
        from.validity.empty() ? ~std::uint64_t{0} : BitsFrom(from.validity, begin + done);
    if (bits < 64) value &= (std::uint64_t{1} << bits) - 1;
    PutBits(into.validity, had + done, bits, value);
    into.missing += static_cast<std::int64_t>(bits) - std::popcount(value);
  }
}

void AppendOffsets(const Column& from, ColumnType type, std::size_t begin, std::size_t count,
                   std::size_t before, Buffer& into) {
  if (type == ColumnType::kLargeUtf8) {
    AppendOffsetsOf(from.values.As<std::int64_t>() + begin, count, before, into);
  } else {
    AppendOffsetsOf(from.values.As<std::int32_t>() + begin, count, before, into);
  }
}

void AppendCases(const std::vector<ColumnField>& fields, const ColumnBatch& from, std::size_t begin,
                 std::size_t end, ColumnBatch& into) {
  if (into.columns.empty()) into.columns.resize(fields.size());
  if (begin == end) return;
  const std::size_t count = end - begin;
  for (std::size_t i = 0; i < fields.size(); ++i) {
    const Column& source = from.columns[i];
    Column& target = into.columns[i];
    AppendValidity(source, begin, count, target, into.cases);
    if (fields[i].type == ColumnType::kUtf8) {
      AppendText<std::int32_t>(source, begin, count, target);
    } else if (fields[i].type == ColumnType::kLargeUtf8) {
      AppendText<std::int64_t>(source, begin, count, target);
    } else {
      const std::size_t bytes = ValueBytes(fields[i].type);
      target.values.Append(source.values.data() + begin * bytes, count * bytes);
    }
  }
  into.cases += count;
}

void AppendBatch(const std::vector<ColumnField>& fields, const ColumnBatch& from,
                 ColumnBatch& into) {
  AppendCases(fields, from, 0, from.cases, into);
}

}  // namespace library
