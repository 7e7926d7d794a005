// How the values of a column's type are looked at, numbered and written in a Parquet file.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <span>
#include <string_view>
#include <type_traits>

#include <xxhash.h>

#include "library/columns/ColumnPieces.h"
#include "library/outputs/parquet/ParquetPages.h"
#include "library/outputs/parquet/Parquet_types.h"

namespace library::parquet {

// The bytes of a text of at most eight as a number that is less where the text is; where two are
// the same, one text may be the other with NULs behind it.
inline std::uint64_t TextStart(const char* text, std::size_t size) {
  std::uint64_t word = 0;
  if (size == sizeof word) {
    std::memcpy(&word, text, sizeof word);
  } else if (size != 0) {
    std::memcpy(&word, text, size);
  }
  return __builtin_bswap64(word);
}

// The bits of whole numbers as doubles are all at the top: they are brought down first, and what is
// mixed best is at the top again.
constexpr std::uint64_t Mixed(std::uint64_t bits) {
  bits ^= bits >> 32;
  bits *= 0x9E3779B97F4A7C15U;
  return bits >> 32;
}

struct HashBits {
  std::size_t operator()(std::uint64_t bits) const { return Mixed(bits); }
};
// Most texts that repeat are short.
struct HashText {
  std::size_t operator()(std::string_view text) const {
    if (text.size() > 2 * sizeof(std::uint64_t)) return XXH3_64bits(text.data(), text.size());
    if (text.size() < sizeof(std::uint64_t)) return Mixed(TextStart(text.data(), text.size()));
    const char* const last = text.data() + text.size() - sizeof(std::uint64_t);
    return Mixed(TextStart(text.data(), sizeof(std::uint64_t)) * 0xC2B2AE3D27D4EB4FU +
                 TextStart(last, sizeof(std::uint64_t)));
  }
};

template <class Number>
void AppendNumber(Buffer& out, Number value) {
  out.Append(&value, sizeof value);
}

// Calls take(row) for every case of a piece that has a value.
template <class Take>
void ForEachPresent(const Column& column, std::size_t cases, const Take& take) {
  if (column.missing == 0) {
    for (std::size_t row = 0; row < cases; ++row) take(row);
    return;
  }
  const auto* const bits = column.validity.As<std::uint8_t>();
  for (std::size_t row = 0; row < cases; ++row) {
    if (((bits[row / 8] >> (row % 8)) & 1U) != 0) take(row);
  }
}

// Values side by side; good until the thread's next call.
template <class Number>
class SideBySide {
 public:
  explicit SideBySide(std::size_t most) {
    numbers().clear();
    out_ = reinterpret_cast<Number*>(numbers().Room(most * sizeof(Number)));
  }
  void Add(Number value) { out_[count_++] = value; }
  void Add(const Number* values, std::size_t count) {
    std::memcpy(out_ + count_, values, count * sizeof(Number));
    count_ += count;
  }
  std::span<const Number> values() const { return {out_, count_}; }

 private:
  static Buffer& numbers() {
    thread_local Buffer kept;
    return kept;
  }
  Number* out_;
  std::size_t count_ = 0;
};

// How the values of a type are looked at, numbered and written.

template <class Stored, class Written>
struct Numbers {
  using Value = Stored;
  using Key = std::uint64_t;
  using Hash = HashBits;
  static Stored At(const Column& column, std::size_t row) {
    return column.values.As<Stored>()[row];
  }
  static Key KeyOf(const Column& column, std::size_t row) {
    if constexpr (std::is_same_v<Stored, double>) {
      return std::bit_cast<std::uint64_t>(At(column, row));
    } else {
      return static_cast<std::uint64_t>(static_cast<std::int64_t>(At(column, row)));
    }
  }
  static Stored ValueOf(Key key) {
    if constexpr (std::is_same_v<Stored, double>) {
      return std::bit_cast<double>(key);
    } else {
      return static_cast<Stored>(static_cast<std::int64_t>(key));
    }
  }
  static std::size_t KeyBytes(Key) { return sizeof(Written); }
  static void AppendKey(Buffer& out, Key key) {
    if constexpr (std::is_same_v<Stored, double>) {
      AppendNumber(out, std::bit_cast<double>(key));
    } else {
      AppendNumber(out, static_cast<Written>(static_cast<std::int64_t>(key)));
    }
  }
  static constexpr parquetformat::Encoding::type kEncoding =
      std::is_same_v<Stored, double> ? parquetformat::Encoding::BYTE_STREAM_SPLIT
                                     : parquetformat::Encoding::DELTA_BINARY_PACKED;
  static void AppendPresent(Buffer& page, const ColumnPieces& batch, std::size_t number) {
    SideBySide<Written> present(batch.cases());
    for (const ColumnBatch& piece : batch) {
      const Column& column = piece.columns[number];
      if constexpr (std::is_same_v<Stored, Written>) {
        if (column.missing == 0) {
          present.Add(column.values.As<Stored>(), piece.cases);
          continue;
        }
      }
      ForEachPresent(column, piece.cases,
                     [&](std::size_t row) { present.Add(static_cast<Written>(At(column, row))); });
    }
    if constexpr (std::is_same_v<Stored, double>) {
      AppendByteStreams(page, present.values());
    } else {
      AppendDifferences(page, present.values());
    }
  }
};

template <class Offset>
struct Texts {
  using Value = std::string_view;
  using Key = std::string_view;
  using Hash = HashText;
  static Key KeyOf(const Column& column, std::size_t row) {
    const Offset* const offsets = column.values.As<Offset>() + row;
    return {column.text.As<char>() + offsets[0], static_cast<std::size_t>(offsets[1] - offsets[0])};
  }
  static Key At(const Column& column, std::size_t row) { return KeyOf(column, row); }
  static Key ValueOf(Key key) { return key; }
  static std::size_t KeyBytes(Key key) { return sizeof(std::uint32_t) + key.size(); }
  static void AppendKey(Buffer& out, Key key) {
    AppendNumber(out, static_cast<std::uint32_t>(key.size()));
    out.Append(key.data(), key.size());
  }
  // All lengths, then all texts.
  static constexpr parquetformat::Encoding::type kEncoding =
      parquetformat::Encoding::DELTA_LENGTH_BYTE_ARRAY;
  static void AppendPresent(Buffer& page, const ColumnPieces& batch, std::size_t number) {
    SideBySide<std::int32_t> lengths(batch.cases());
    for (const ColumnBatch& piece : batch) {
      const Column& column = piece.columns[number];
      const Offset* const offsets = column.values.As<Offset>();
      ForEachPresent(column, piece.cases, [&](std::size_t row) {
        lengths.Add(static_cast<std::int32_t>(offsets[row + 1] - offsets[row]));
      });
    }
    AppendDifferences(page, lengths.values());
    // Missing texts have no bytes.
    for (const ColumnBatch& piece : batch) {
      const Buffer& text = piece.columns[number].text;
      page.Append(text.data(), text.size());
    }
  }
};

}  // namespace library::parquet
