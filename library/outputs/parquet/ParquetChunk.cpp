#include "library/outputs/parquet/ParquetChunk.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <memory>
#include <new>
#include <span>
#include <string_view>

#include <thrift/protocol/TCompactProtocol.h>
#include <thrift/transport/TBufferTransports.h>
#include <zstd.h>

#include "library/outputs/parquet/ParquetBounds.h"
#include "library/outputs/parquet/ParquetPages.h"
#include "library/outputs/parquet/ParquetValues.h"
#include "library/outputs/parquet/ValueDictionary.h"

namespace library {
namespace {

using parquet::AppendNumber;
using parquet::Bounds;
using parquet::ForEachPresent;
using parquet::Numbers;
using parquet::Texts;

namespace format = parquetformat;

constexpr int kCompressionLevel = 1;
// A dictionary is given up when it has more values, more bytes, or more values than every so
// manieth value of those seen is new.
constexpr std::size_t kLargestDictionary = 65536;
constexpr std::size_t kLargestDictionaryBytes = std::size_t{1} << 20;
constexpr std::size_t kSampledValues = 2048;
constexpr std::size_t kRepeats = 2;

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

// Whether each case of a page has a value: a run of ones, or the bits as they are.
void AppendLevels(Buffer& page, const ColumnPieces& batch, std::size_t number) {
  const std::size_t cases = batch.cases();
  Buffer levels;
  if (batch.MissingIn(number) == 0) {
    AppendVarint(levels, cases << 1);
    AppendNumber(levels, std::uint8_t{1});
  } else {
    AppendVarint(levels, (((cases + 7) / 8) << 1) | 1);
    const Buffer bits = batch.JoinValidity(number);
    levels.Append(bits.data(), bits.size());
  }
  AppendNumber(page, static_cast<std::uint32_t>(levels.size()));
  page.Append(levels.data(), levels.size());
}

// Places in a dictionary, all with the same number of bits, eight at a time.
void AppendPlaces(Buffer& page, std::span<const std::uint32_t> places, unsigned bits) {
  AppendNumber(page, static_cast<std::uint8_t>(bits));
  const std::size_t groups = (places.size() + 7) / 8;
  AppendVarint(page, (groups << 1) | 1);
  AppendBits(page, places, bits);
  const std::size_t padding = groups * bits - (places.size() * bits + 7) / 8;
  if (padding != 0) std::memset(page.Extend(padding), 0, padding);
}

template <class Values>
class ChunkEncoder {
 public:
  ChunkEncoder(std::size_t number, const std::vector<ColumnPieces>& batches)
      : number_(number), batches_(batches) {}

  void Encode(ParquetChunk& chunk) {
    Bounds<Values> bounds;
    std::int64_t cases = 0;
    const bool repeats = FillDictionary();
    for (const ColumnPieces& batch : batches_) {
      bounds.AddMissing(batch.MissingIn(number_));
      cases += static_cast<std::int64_t>(batch.cases());
      if (repeats) continue;
      for (const ColumnBatch& piece : batch) bounds.Add(piece.columns[number_], piece.cases);
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
    } else {
      description.encodings.push_back(Values::kEncoding);
    }
    description.data_page_offset = static_cast<std::int64_t>(chunk.bytes.size());
    const std::size_t different = dictionary_.values().size();
    const auto bits = std::max(
        1U, static_cast<unsigned>(std::bit_width(different < 2 ? std::size_t{1} : different - 1)));
    const std::uint32_t* places = places_.data();
    for (const ColumnPieces& batch : batches_) {
      const std::size_t rows = batch.cases();
      const std::size_t present = rows - static_cast<std::size_t>(batch.MissingIn(number_));
      Buffer& page = EmptyPage();
      AppendLevels(page, batch, number_);
      // No values are the same in every encoding.
      auto encoding = format::Encoding::PLAIN;
      if (repeats) {
        encoding = format::Encoding::RLE_DICTIONARY;
        AppendPlaces(page, {places, present}, bits);
        places += present;
      } else if (present != 0) {
        encoding = Values::kEncoding;
        Values::AppendPresent(page, batch, number_);
      }
      AppendData(page, rows, encoding, chunk);
    }
    description.total_compressed_size = static_cast<std::int64_t>(chunk.bytes.size());
    description.total_uncompressed_size = uncompressed_;
  }

 private:
  // One that the thread uses again and again.
  static Buffer& EmptyPage() {
    thread_local Buffer page;
    page.clear();
    return page;
  }

  // Numbers all values; false when too many are different.
  bool FillDictionary() {
    std::size_t bytes = 0;
    bool worthIt = true;
    for (const ColumnPieces& batch : batches_) {
      for (const ColumnBatch& piece : batch) {
        const Column& column = piece.columns[number_];
        ForEachPresent(column, piece.cases, [&](std::size_t row) {
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
    }
    return !places_.empty();
  }

  void AppendDictionary(ParquetChunk& chunk) {
    Buffer& page = EmptyPage();
    for (const auto& value : dictionary_.values()) Values::AppendKey(page, value);
    format::DictionaryPageHeader header;
    header.num_values = static_cast<std::int32_t>(dictionary_.values().size());
    header.encoding = format::Encoding::PLAIN;
    format::PageHeader front;
    front.type = format::PageType::DICTIONARY_PAGE;
    front.__set_dictionary_page_header(header);
    AppendPage(std::move(front), page, chunk);
  }

  void AppendData(const Buffer& page, std::size_t cases, format::Encoding::type encoding,
                  ParquetChunk& chunk) {
    format::DataPageHeader header;
    header.num_values = static_cast<std::int32_t>(cases);
    header.encoding = encoding;
    header.definition_level_encoding = format::Encoding::RLE;
    header.repetition_level_encoding = format::Encoding::RLE;
    format::PageHeader front;
    front.type = format::PageType::DATA_PAGE;
    front.__set_data_page_header(header);
    AppendPage(std::move(front), page, chunk);
  }

  void AppendPage(format::PageHeader front, const Buffer& page, ParquetChunk& chunk) {
    const std::string_view compressed = Compress({page.As<char>(), page.size()});
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
  const std::vector<ColumnPieces>& batches_;
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
                         const std::vector<ColumnPieces>& batches) {
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
