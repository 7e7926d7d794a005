// Reads a page of a Parquet file by the format's own words, value by value and bit by bit.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace library {

// Throws std::runtime_error where the page is not what it should be.
class PageReader {
 public:
  // The bytes outlive the reader.
  explicit PageReader(std::string_view page) : rest_(page) {}

  bool atEnd() const { return rest_.empty(); }
  std::string_view Take(std::size_t bytes) {
    Require(bytes <= rest_.size(), "the page ends too soon");
    const std::string_view taken = rest_.substr(0, bytes);
    rest_.remove_prefix(bytes);
    return taken;
  }
  unsigned char Byte() { return static_cast<unsigned char>(Take(1)[0]); }
  template <class Number>
  Number Plain() {
    Number number;
    std::memcpy(&number, Take(sizeof number).data(), sizeof number);
    return number;
  }
  std::uint64_t Varint() {
    std::uint64_t value = 0;
    for (unsigned shift = 0;; shift += 7) {
      const unsigned char byte = Byte();
      value |= std::uint64_t{byte & 0x7FU} << shift;
      if (byte < 0x80) return value;
    }
  }
  std::int64_t Zigzag() {
    const std::uint64_t value = Varint();
    return static_cast<std::int64_t>(value >> 1) ^ -static_cast<std::int64_t>(value & 1);
  }
  // Values of `bits` bits each from the lowest bit of the first byte on.
  std::vector<std::uint64_t> Bits(std::size_t count, unsigned bits) {
    std::vector<std::uint64_t> values(count);
    std::size_t bit = 0;
    unsigned char byte = 0;
    for (std::uint64_t& value : values) {
      for (unsigned i = 0; i < bits; ++i, ++bit) {
        if (bit % 8 == 0) byte = Byte();
        value |= std::uint64_t{(byte >> (bit % 8)) & 1U} << i;
      }
    }
    return values;
  }
  // DELTA_BINARY_PACKED.
  template <class Number>
  std::vector<Number> Differences() {
    const std::uint64_t block = Varint();
    const std::uint64_t miniblocks = Varint();
    const std::uint64_t count = Varint();
    Require(block % 128 == 0 && block / miniblocks % 32 == 0, "a block of a size that none has");
    const auto first = static_cast<Number>(Zigzag());
    std::vector<Number> values;
    if (count > 0) values.push_back(first);
    while (values.size() < count) {
      const std::int64_t least = Zigzag();
      std::vector<unsigned> widths;
      for (std::uint64_t i = 0; i < miniblocks; ++i) widths.push_back(Byte());
      for (const unsigned width : widths) {
        if (values.size() == count) break;
        Require(width <= sizeof(Number) * 8, "more bits than a number has");
        for (const std::uint64_t bits : Bits(block / miniblocks, width)) {
          if (values.size() == count) break;
          values.push_back(static_cast<Number>(static_cast<std::uint64_t>(values.back()) +
                                               static_cast<std::uint64_t>(least) + bits));
        }
      }
    }
    return values;
  }
  // DELTA_LENGTH_BYTE_ARRAY.
  std::vector<std::string> LengthsAndTexts() {
    std::vector<std::string> texts;
    for (const std::int32_t length : Differences<std::int32_t>()) {
      Require(length >= 0, "a text of negative length");
      texts.emplace_back(static_cast<std::size_t>(length), '\0');
    }
    for (std::string& text : texts) text = Take(text.size());
    return texts;
  }
  // BYTE_STREAM_SPLIT of `count` doubles.
  std::vector<double> Streams(std::size_t count) {
    const std::string_view streams = Take(count * sizeof(double));
    std::vector<double> values(count);
    for (std::size_t i = 0; i < count; ++i) {
      char bytes[sizeof(double)];
      for (std::size_t place = 0; place < sizeof bytes; ++place) {
        bytes[place] = streams[place * count + i];
      }
      std::memcpy(&values[i], bytes, sizeof bytes);
    }
    return values;
  }
  // `count` values of `bits` bits in runs of one value and runs of packed ones (RLE).
  std::vector<std::uint64_t> Runs(std::size_t count, unsigned bits) {
    std::vector<std::uint64_t> values;
    while (values.size() < count) {
      const std::uint64_t head = Varint();
      if ((head & 1) != 0) {
        for (const std::uint64_t value : Bits((head >> 1) * 8, bits)) {
          if (values.size() < count) values.push_back(value);
        }
      } else {
        std::uint64_t value = 0;
        for (unsigned at = 0; at < bits; at += 8) value |= std::uint64_t{Byte()} << at;
        Require(head >> 1 <= count - values.size(), "a run beyond the last value");
        values.insert(values.end(), head >> 1, value);
      }
    }
    return values;
  }

 private:
  static void Require(bool is, const char* otherwise) {
    if (!is) throw std::runtime_error(otherwise);
  }

  std::string_view rest_;
};

}  // namespace library
