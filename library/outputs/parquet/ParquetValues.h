// How the values of a column's type are looked at, told apart and written in a Parquet file.
#pragma once

#include <algorithm>
#include <array>
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

// The bits of whole numbers as doubles are all at the top: they are brought down first, and what is
// mixed best is at the top again.
constexpr std::uint32_t Mixed(std::uint64_t bits) {
  bits ^= bits >> 32;
  bits *= 0x9E3779B97F4A7C15U;
  return static_cast<std::uint32_t>(bits >> 32);
}

template <class Number>
void AppendNumber(Buffer& out, Number value) {
  out.Append(&value, sizeof value);
}

// Calls take(row) for every case of a piece that has a value, until it returns false; false then.
template <class Take>
bool WhilePresent(const Column& column, std::size_t cases, const Take& take) {
  const auto* const bits = column.missing == 0 ? nullptr : column.validity.As<std::uint8_t>();
  if (bits == nullptr) {
    for (std::size_t row = 0; row < cases; ++row) {
      if (!take(row)) return false;
    }
    return true;
  }
  for (std::size_t row = 0; row < cases; ++row) {
    if (((bits[row / 8] >> (row % 8)) & 1U) != 0 && !take(row)) return false;
  }
  return true;
}
// Calls take(row) for all of them.
template <class Take>
void ForEachPresent(const Column& column, std::size_t cases, const Take& take) {
  WhilePresent(column, cases, [&take](std::size_t row) {
    take(row);
    return true;
  });
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

// What is asked of the values of a type (see ValueDictionary): Key is a value that is looked up,
// Entry what a known one is compared by, Reader gives those of a piece.

template <class Stored, class Written>
struct Numbers {
  using Value = Stored;
  using Key = std::uint64_t;
  using Entry = std::uint64_t;

  class Reader {
   public:
    explicit Reader(const Column& column) : values_(column.values.template As<Stored>()) {}
    Stored At(std::size_t row) const { return values_[row]; }
    Key KeyAt(std::size_t row) const {
      if constexpr (std::is_same_v<Stored, double>) {
        return std::bit_cast<std::uint64_t>(values_[row]);
      } else {
        return static_cast<std::uint64_t>(static_cast<std::int64_t>(values_[row]));
      }
    }

   private:
    const Stored* values_;
  };

  static std::uint32_t Hash(Key key) { return Mixed(key); }
  static bool Same(Entry entry, Key key, const Buffer&) { return entry == key; }
  static Entry Keep(Key key, Buffer& page) {
    AppendNumber(page, static_cast<Written>(ValueOf(key, page)));
    return key;
  }
  static Stored ValueOf(Entry entry, const Buffer&) {
    if constexpr (std::is_same_v<Stored, double>) {
      return std::bit_cast<double>(entry);
    } else {
      return static_cast<Stored>(static_cast<std::int64_t>(entry));
    }
  }

  static constexpr parquetformat::Encoding::type kEncoding =
      std::is_same_v<Stored, double> ? parquetformat::Encoding::BYTE_STREAM_SPLIT
                                     : parquetformat::Encoding::DELTA_BINARY_PACKED;
  // `present`: how many values the batch has in the column.
  static void AppendPresent(Buffer& page, const ColumnPieces& batch, std::size_t number,
                            std::size_t present) {
    if constexpr (std::is_same_v<Stored, double>) {
      ByteStreams streams(page, present);
      ForEachRun(batch, number, [&](std::span<const double> values) { streams.Add(values); });
    } else {
      SideBySide<Written> values(present);
      ForEachRun(batch, number,
                 [&](std::span<const Written> run) { values.Add(run.data(), run.size()); });
      AppendDifferences(page, values.values());
    }
  }

 private:
  // Calls take(values) for all values in their order, many at a time.
  template <class Take>
  static void ForEachRun(const ColumnPieces& batch, std::size_t number, const Take& take) {
    std::array<Written, 512> some;
    for (const ColumnBatch& piece : batch) {
      const Column& column = piece.columns[number];
      const Stored* const values = column.values.template As<Stored>();
      if constexpr (std::is_same_v<Stored, Written>) {
        if (column.missing == 0) {
          take(std::span<const Written>(values, piece.cases));
          continue;
        }
      }
      std::size_t count = 0;
      ForEachPresent(column, piece.cases, [&](std::size_t row) {
        some[count++] = static_cast<Written>(values[row]);
        if (count < some.size()) return;
        take(std::span<const Written>(some));
        count = 0;
      });
      take(std::span<const Written>(some.data(), count));
    }
  }
};

template <class Offset>
struct Texts {
  using Value = std::string_view;

  // The first sixteen bytes in two words, zeros behind a shorter text; told apart by these and the
  // size, and longer texts by the rest.
  static constexpr std::size_t kWord = sizeof(std::uint64_t);
  static constexpr std::size_t kInWords = 2 * kWord;
  struct Key {
    const char* text;
    std::size_t size;
    std::uint64_t first;
    std::uint64_t second;
    std::string_view view() const { return {text, size}; }
  };
  struct Entry {
    std::uint64_t first;
    std::uint64_t second;
    std::size_t size;
    std::size_t offset;  // in the page
  };

  class Reader {
   public:
    explicit Reader(const Column& column)
        : offsets_(column.values.template As<Offset>()),
          text_(column.text.capacity() == 0 ? kNoText : column.text.template As<char>()) {}
    std::string_view At(std::size_t row) const {
      return {text_ + offsets_[row], static_cast<std::size_t>(offsets_[row + 1] - offsets_[row])};
    }
    Key KeyAt(std::size_t row) const {
      const std::string_view text = At(row);
      return {text.data(), text.size(), Word(text.data()) & FirstBytes(text.size()),
              Word(text.data() + kWord) & FirstBytes(std::max(text.size(), kWord) - kWord)};
    }
    // A number that is less where the text is; where two are the same, one text may be the other
    // with more behind it.
    std::uint64_t StartAt(std::size_t row) const {
      const std::string_view text = At(row);
      return __builtin_bswap64(Word(text.data()) & FirstBytes(text.size()));
    }

   private:
    static_assert(Buffer::kReadable >= kInWords);
    static constexpr char kNoText[kInWords] = {};
    static std::uint64_t Word(const char* text) {
      std::uint64_t word = 0;
      std::memcpy(&word, text, kWord);
      return word;
    }
    // The bits of as many bytes of a word, of all where there are more.
    static std::uint64_t FirstBytes(std::size_t bytes) { return kFirst[std::min(bytes, kWord)]; }
    static constexpr std::array<std::uint64_t, kWord + 1> kFirst = [] {
      std::array<std::uint64_t, kWord + 1> bits{};
      for (std::size_t i = 1; i <= kWord; ++i) bits[i] = (bits[i - 1] << 8) | 0xFF;
      return bits;
    }();

    const Offset* offsets_;
    const char* text_;
  };

  static std::uint32_t Hash(const Key& key) {
    if (key.size > kInWords) {
      return static_cast<std::uint32_t>(XXH3_64bits(key.text, key.size));
    }
    return Mixed(key.first * 0xC2B2AE3D27D4EB4FU + key.second + key.size);
  }
  static bool Same(const Entry& entry, const Key& key, const Buffer& page) {
    return entry.first == key.first && entry.second == key.second && entry.size == key.size &&
           (key.size <= kInWords || ValueOf(entry, page) == key.view());
  }
  static Entry Keep(const Key& key, Buffer& page) {
    AppendNumber(page, static_cast<std::uint32_t>(key.size));
    const std::size_t offset = page.size();
    page.Append(key.text, key.size);
    return {key.first, key.second, key.size, offset};
  }
  static std::string_view ValueOf(const Entry& entry, const Buffer& page) {
    return {page.As<char>() + entry.offset, entry.size};
  }

  // All lengths, then all texts.
  static constexpr parquetformat::Encoding::type kEncoding =
      parquetformat::Encoding::DELTA_LENGTH_BYTE_ARRAY;
  static void AppendPresent(Buffer& page, const ColumnPieces& batch, std::size_t number,
                            std::size_t present) {
    SideBySide<std::int32_t> lengths(present);
    for (const ColumnBatch& piece : batch) {
      const Column& column = piece.columns[number];
      const Offset* const offsets = column.values.template As<Offset>();
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
