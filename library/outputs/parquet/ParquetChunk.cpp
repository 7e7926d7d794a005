#include "library/outputs/parquet/ParquetChunk.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <limits>
#include <memory>
#include <new>
#include <optional>
#include <string_view>

#include <thrift/protocol/TCompactProtocol.h>
#include <thrift/transport/TBufferTransports.h>
#include <xxhash.h>
#include <zstd.h>

#include "library/outputs/parquet/ValueDictionary.h"

namespace library {
namespace {

namespace format = parquetformat;

constexpr int kCompressionLevel = 1;
// A dictionary is given up when it has more values, more bytes, or more values than every so
// manieth value of those seen is new.
constexpr std::size_t kLargestDictionary = 65536;
constexpr std::size_t kLargestDictionaryBytes = std::size_t{1} << 20;
constexpr std::size_t kSampledValues = 2048;
constexpr std::size_t kRepeats = 2;
// Longer texts are no use as the least and the largest.
constexpr std::size_t kLongestBound = 64;

struct HashBits {
  std::size_t operator()(std::uint64_t bits) const {
    bits *= 0x9E3779B97F4A7C15U;
    return bits ^ (bits >> 32);
  }
};
struct HashText {
  std::size_t operator()(std::string_view text) const {
    return XXH3_64bits(text.data(), text.size());
  }
};

struct FreeContext {
  void operator()(ZSTD_CCtx* context) const { ZSTD_freeCCtx(context); }
};

// A page or a dictionary, compressed; good until the thread's next call.
std::string_view Compress(std::string_view bytes) {
  thread_local const std::unique_ptr<ZSTD_CCtx, FreeContext> context(ZSTD_createCCtx());
  if (!context) throw std::bad_alloc();
  thread_local Buffer out;
  const std::size_t room = ZSTD_compressBound(bytes.size());
  out.clear();
  out.Reserve(room);
  const std::size_t size = ZSTD_compressCCtx(context.get(), out.data(), room, bytes.data(),
                                             bytes.size(), kCompressionLevel);
  if (ZSTD_isError(size) != 0) throw std::bad_alloc();
  return {out.As<char>(), size};
}

void AppendVarint(std::string& out, std::uint64_t value) {
  for (; value >= 0x80; value >>= 7) out.push_back(static_cast<char>(value | 0x80));
  out.push_back(static_cast<char>(value));
}

template <class Number>
void AppendNumber(std::string& out, Number value) {
  out.append(reinterpret_cast<const char*>(&value), sizeof value);
}

// Whether each case of a page has a value: a run of ones, or the bits as they are.
void AppendLevels(std::string& out, const Column& column, std::size_t cases) {
  std::string levels;
  if (column.missing == 0) {
    AppendVarint(levels, cases << 1);
    levels.push_back(1);
  } else {
    AppendVarint(levels, (((cases + 7) / 8) << 1) | 1);
    levels.append(column.validity.As<char>(), column.validity.size());
  }
  AppendNumber(out, static_cast<std::uint32_t>(levels.size()));
  out += levels;
}

// Calls take(row) for every case that has a value.
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

// Places in a dictionary, all with the same number of bits, eight at a time.
void AppendPlaces(std::string& out, const std::uint32_t* places, std::size_t count, unsigned bits) {
  out.push_back(static_cast<char>(bits));
  const std::size_t groups = (count + 7) / 8;
  AppendVarint(out, (groups << 1) | 1);
  std::uint64_t held = 0;
  unsigned heldBits = 0;
  const std::size_t end = out.size() + groups * bits;
  for (std::size_t i = 0; i < count; ++i) {
    held |= std::uint64_t{places[i]} << heldBits;
    for (heldBits += bits; heldBits >= 8; heldBits -= 8, held >>= 8) {
      out.push_back(static_cast<char>(held));
    }
  }
  if (heldBits != 0) out.push_back(static_cast<char>(held));
  out.resize(end, '\0');
}

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
  static void AppendKey(std::string& out, Key key) {
    if constexpr (std::is_same_v<Stored, double>) {
      AppendNumber(out, std::bit_cast<double>(key));
    } else {
      AppendNumber(out, static_cast<Written>(static_cast<std::int64_t>(key)));
    }
  }
  static void AppendPresent(std::string& out, const Column& column, std::size_t cases) {
    out.reserve(out.size() + cases * sizeof(Written));
    if constexpr (std::is_same_v<Stored, Written>) {
      if (column.missing == 0) {
        out.append(column.values.As<char>(), cases * sizeof(Stored));
        return;
      }
    }
    ForEachPresent(column, cases, [&](std::size_t row) {
      AppendNumber(out, static_cast<Written>(At(column, row)));
    });
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
  static void AppendKey(std::string& out, Key key) {
    AppendNumber(out, static_cast<std::uint32_t>(key.size()));
    out += key;
  }
  static void AppendPresent(std::string& out, const Column& column, std::size_t cases) {
    out.reserve(out.size() + column.text.size() + cases * sizeof(std::uint32_t));
    ForEachPresent(column, cases, [&](std::size_t row) { AppendKey(out, KeyOf(column, row)); });
  }
};

// The least and the largest value, and how many are missing.
template <class Values>
class Bounds {
 public:
  void AddMissing(std::int64_t missing) { missing_ += missing; }
  void Add(const Column& column, std::size_t cases) {
    if (static_cast<std::size_t>(column.missing) == cases) return;
    if (column.missing != 0) {
      ForEachPresent(column, cases, [&](std::size_t row) { Add(Values::At(column, row)); });
      return;
    }
    Add(Values::At(column, 0));
    Value least = *least_;
    Value largest = *largest_;
    for (std::size_t row = 0; row < cases; ++row) {
      const Value value = Values::At(column, row);
      least = value < least ? value : least;
      largest = largest < value ? value : largest;
    }
    least_ = least;
    largest_ = largest;
  }
  void Add(typename Values::Value value) {
    if (!least_) {
      least_ = largest_ = value;
    } else if (value < *least_) {
      least_ = value;
    } else if (*largest_ < value) {
      largest_ = value;
    }
  }
  format::Statistics Describe() const {
    format::Statistics statistics;
    statistics.__set_null_count(missing_);
    if (!least_) return statistics;
    if constexpr (std::is_same_v<typename Values::Key, std::string_view>) {
      if (least_->size() > kLongestBound || largest_->size() > kLongestBound) return statistics;
      statistics.__set_min_value(std::string(*least_));
      statistics.__set_max_value(std::string(*largest_));
    } else {
      auto least = *least_;
      auto largest = *largest_;
      if constexpr (std::is_same_v<decltype(least), double>) {
        // The two zeros are one value, and either may stand for it.
        if (least == 0) least = -0.0;
        if (largest == 0) largest = 0.0;
      }
      statistics.__set_min_value(Bytes(least));
      statistics.__set_max_value(Bytes(largest));
    }
    return statistics;
  }

 private:
  using Value = typename Values::Value;

  template <class Number>
  static std::string Bytes(Number value) {
    std::string out;
    std::string key;
    if constexpr (std::is_same_v<Number, double>) {
      Values::AppendKey(out, std::bit_cast<std::uint64_t>(value));
    } else {
      Values::AppendKey(out, static_cast<std::uint64_t>(static_cast<std::int64_t>(value)));
    }
    return out;
  }

  std::optional<Value> least_;
  std::optional<Value> largest_;
  std::int64_t missing_ = 0;
};

template <class Values>
class ChunkEncoder {
 public:
  ChunkEncoder(std::size_t number, const std::vector<ColumnBatch>& batches)
      : number_(number), batches_(batches) {}

  void Encode(ParquetChunk& chunk) {
    Bounds<Values> bounds;
    std::int64_t cases = 0;
    const bool repeats = FillDictionary();
    for (const ColumnBatch& batch : batches_) {
      const Column& column = batch.columns[number_];
      bounds.AddMissing(column.missing);
      if (!repeats) bounds.Add(column, batch.cases);
      cases += static_cast<std::int64_t>(batch.cases);
    }
    if (repeats) {
      // They are all values.
      for (const auto& key : dictionary_.values()) bounds.Add(Values::ValueOf(key));
    }
    format::ColumnMetaData& description = chunk.description;
    description.__set_statistics(bounds.Describe());
    description.num_values = cases;
    description.codec = format::CompressionCodec::ZSTD;
    description.encodings = {format::Encoding::RLE, format::Encoding::PLAIN};
    if (repeats) {
      description.encodings.push_back(format::Encoding::RLE_DICTIONARY);
      description.__set_dictionary_page_offset(0);
      AppendDictionary(chunk);
    }
    description.data_page_offset = static_cast<std::int64_t>(chunk.bytes.size());
    const std::size_t different = dictionary_.values().size();
    const auto bits = std::max(
        1U, static_cast<unsigned>(std::bit_width(different < 2 ? std::size_t{1} : different - 1)));
    const std::uint32_t* places = places_.data();
    for (const ColumnBatch& batch : batches_) {
      const Column& column = batch.columns[number_];
      const std::size_t present = batch.cases - static_cast<std::size_t>(column.missing);
      std::string page;
      AppendLevels(page, column, batch.cases);
      if (repeats) {
        AppendPlaces(page, places, present, bits);
        places += present;
      } else {
        Values::AppendPresent(page, column, batch.cases);
      }
      AppendData(page, batch.cases, repeats, chunk);
    }
    description.total_compressed_size = static_cast<std::int64_t>(chunk.bytes.size());
    description.total_uncompressed_size = uncompressed_;
  }

 private:
  // Numbers all values; false when too many are different.
  bool FillDictionary() {
    std::size_t bytes = 0;
    for (const ColumnBatch& batch : batches_) {
      const Column& column = batch.columns[number_];
      places_.reserve(places_.size() + batch.cases);
      bool worthIt = true;
      ForEachPresent(column, batch.cases, [&](std::size_t row) {
        if (!worthIt) return;
        const auto key = Values::KeyOf(column, row);
        const std::size_t before = dictionary_.values().size();
        places_.push_back(dictionary_.NumberOf(key));
        const std::size_t different = dictionary_.values().size();
        if (different == before) return;
        bytes += Values::KeyBytes(key);
        worthIt = different <= kLargestDictionary && bytes <= kLargestDictionaryBytes &&
                  (places_.size() < kSampledValues || different * kRepeats <= places_.size());
      });
      if (!worthIt) return false;
    }
    return !places_.empty();
  }

  void AppendDictionary(ParquetChunk& chunk) {
    std::string page;
    for (const auto& value : dictionary_.values()) Values::AppendKey(page, value);
    format::DictionaryPageHeader header;
    header.num_values = static_cast<std::int32_t>(dictionary_.values().size());
    header.encoding = format::Encoding::PLAIN;
    format::PageHeader front;
    front.type = format::PageType::DICTIONARY_PAGE;
    front.__set_dictionary_page_header(header);
    AppendPage(std::move(front), page, chunk);
  }

  void AppendData(const std::string& page, std::size_t cases, bool repeats, ParquetChunk& chunk) {
    format::DataPageHeader header;
    header.num_values = static_cast<std::int32_t>(cases);
    header.encoding = repeats ? format::Encoding::RLE_DICTIONARY : format::Encoding::PLAIN;
    header.definition_level_encoding = format::Encoding::RLE;
    header.repetition_level_encoding = format::Encoding::RLE;
    format::PageHeader front;
    front.type = format::PageType::DATA_PAGE;
    front.__set_data_page_header(header);
    AppendPage(std::move(front), page, chunk);
  }

  void AppendPage(format::PageHeader front, const std::string& page, ParquetChunk& chunk) {
    const std::string_view compressed = Compress(page);
    front.uncompressed_page_size = static_cast<std::int32_t>(page.size());
    front.compressed_page_size = static_cast<std::int32_t>(compressed.size());
    const auto memory = std::make_shared<apache::thrift::transport::TMemoryBuffer>();
    apache::thrift::protocol::TCompactProtocolT<apache::thrift::transport::TMemoryBuffer> protocol(
        memory);
    front.write(&protocol);
    std::uint8_t* bytes = nullptr;
    std::uint32_t size = 0;
    memory->getBuffer(&bytes, &size);
    chunk.bytes.append(reinterpret_cast<const char*>(bytes), size);
    chunk.bytes += compressed;
    uncompressed_ += static_cast<std::int64_t>(size + page.size());
  }

  const std::size_t number_;
  const std::vector<ColumnBatch>& batches_;
  ValueDictionary<typename Values::Key, typename Values::Hash> dictionary_;
  std::vector<std::uint32_t> places_;
  std::int64_t uncompressed_ = 0;
};

}  // namespace

format::Type::type ParquetType(ColumnType type) {
  switch (type) {
    case ColumnType::kFloat64:
      return format::Type::DOUBLE;
    case ColumnType::kInt8:
    case ColumnType::kDate32:
      return format::Type::INT32;
    case ColumnType::kInt64:
    case ColumnType::kTimestampMicros:
    case ColumnType::kDurationMicros:
      return format::Type::INT64;
    case ColumnType::kUtf8:
    case ColumnType::kLargeUtf8:
      break;
  }
  return format::Type::BYTE_ARRAY;
}

ParquetChunk EncodeChunk(const ColumnField& field, std::size_t number,
                         const std::vector<ColumnBatch>& batches) {
  ParquetChunk chunk;
  chunk.description.type = ParquetType(field.type);
  chunk.description.path_in_schema = {field.name};
  switch (field.type) {
    case ColumnType::kFloat64:
      ChunkEncoder<Numbers<double, double>>(number, batches).Encode(chunk);
      break;
    case ColumnType::kInt8:
      ChunkEncoder<Numbers<std::int8_t, std::int32_t>>(number, batches).Encode(chunk);
      break;
    case ColumnType::kDate32:
      ChunkEncoder<Numbers<std::int32_t, std::int32_t>>(number, batches).Encode(chunk);
      break;
    case ColumnType::kInt64:
    case ColumnType::kTimestampMicros:
    case ColumnType::kDurationMicros:
      ChunkEncoder<Numbers<std::int64_t, std::int64_t>>(number, batches).Encode(chunk);
      break;
    case ColumnType::kUtf8:
      ChunkEncoder<Texts<std::int32_t>>(number, batches).Encode(chunk);
      break;
    case ColumnType::kLargeUtf8:
      ChunkEncoder<Texts<std::int64_t>>(number, batches).Encode(chunk);
      break;
  }
  return chunk;
}

}  // namespace library
