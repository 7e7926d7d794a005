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
using parquet::Numbers;
using parquet::Texts;
using parquet::WhilePresent;

namespace format = parquetformat;

constexpr int kCompressionLevel = 1;
// Compression that saves less than every so manieth byte of a page is not worth its time, nor a
// reader's.
constexpr std::size_t kWorthSaving = 8;
// A dictionary is given up when it has more values, more bytes, or more values than every so
// manieth value of those seen is new.
constexpr std::size_t kLargestDictionary = 65536;
constexpr std::size_t kLargestDictionaryBytes = std::size_t{1} << 20;
constexpr std::size_t kSampledValues = 2048;
constexpr std::size_t kRepeats = 2;

struct FreeContext {
  void operator()(ZSTD_CCtx* context) const { ZSTD_freeCCtx(context); }
};

std::string_view BytesOf(const Buffer& buffer) { return {buffer.As<char>(), buffer.size()}; }

// Appends what a page comes to when it is compressed.
void AppendCompressed(std::string_view bytes, Buffer& out) {
  thread_local const std::unique_ptr<ZSTD_CCtx, FreeContext> context(ZSTD_createCCtx());
  if (!context) throw std::bad_alloc();
  const std::size_t room = ZSTD_compressBound(bytes.size());
  const std::size_t size = ZSTD_compressCCtx(context.get(), out.Room(room), room, bytes.data(),
                                             bytes.size(), kCompressionLevel);
  if (ZSTD_isError(size) != 0) throw std::bad_alloc();
  out.Lengthen(size);
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
void AppendPlaces(Buffer& page, std::span<const std::uint32_t> places, std::size_t different) {
  const unsigned bits = std::max(1U, static_cast<unsigned>(std::bit_width(different - 1)));
  AppendNumber(page, static_cast<std::uint8_t>(bits));
  const std::size_t groups = (places.size() + 7) / 8;
  AppendVarint(page, (groups << 1) | 1);
  AppendBits(page, places, bits);
  const std::size_t padding = groups * bits - (places.size() * bits + 7) / 8;
  if (padding != 0) std::memset(page.Extend(padding), 0, padding);
}

template <class Values>
class ValueEncoder : public ChunkEncoder {
 public:
  ValueEncoder(const ColumnField& field, std::size_t number) : number_(number) {
    description_.type = ParquetType(field.type);
    description_.path_in_schema = {field.name};
  }

  void Add(const ColumnPieces& batch) override {
    if (used_ == 0) Begin();
    const std::size_t cases = batch.cases();
    const auto missing = static_cast<std::size_t>(batch.MissingIn(number_));
    cases_ += cases;
    bounds_.AddMissing(batch.MissingIn(number_));
    thread_local Buffer page;
    page.clear();
    AppendLevels(page, batch, number_);
    format::DataPageHeader header;
    header.num_values = static_cast<std::int32_t>(cases);
    const bool encodedBefore = encoded_;
    header.encoding = AppendValues(page, batch, cases - missing);
    header.definition_level_encoding = format::Encoding::RLE;
    header.repetition_level_encoding = format::Encoding::RLE;
    format::PageHeader front;
    front.type = format::PageType::DATA_PAGE;
    front.__set_data_page_header(header);
    AddPage(front, page, used_ == 0 || encoded_ != encodedBefore);
  }

  std::size_t bytes() const override {
    std::size_t bytes = 0;
    for (std::size_t i = 0; i < used_; ++i) bytes += pages_[i].bytes.size();
    return bytes;
  }

  ParquetChunk Finish() override {
    // It is known last and stands first.
    const std::size_t dataPages = used_;
    if (!dictionary_.entries().empty()) AddDictionary();
    ParquetChunk chunk{.bytes = {}, .description = description_};
    format::ColumnMetaData& description = chunk.description;
    description.encodings = {format::Encoding::RLE, format::Encoding::PLAIN};
    if (encoded_) description.encodings.push_back(Values::kEncoding);
    if (dataPages < used_) {
      description.encodings.push_back(format::Encoding::RLE_DICTIONARY);
      description.__set_dictionary_page_offset(0);
      Append(pages_[dataPages], chunk);
    }
    description.data_page_offset = description.total_compressed_size;
    for (std::size_t i = 0; i < dataPages; ++i) Append(pages_[i], chunk);
    for (const auto& entry : dictionary_.entries()) {
      bounds_.Add(Values::ValueOf(entry, dictionary_.page()));
    }
    description.__set_statistics(bounds_.Describe());
    description.num_values = static_cast<std::int64_t>(cases_);
    description.codec = codec_;
    used_ = 0;
    return chunk;
  }

 private:
  struct Page {
    format::PageHeader header;
    Buffer bytes;
    std::string front;  // the header, as it stands before the bytes
  };

  void Begin() {
    codec_ = format::CompressionCodec::UNCOMPRESSED;
    dictionary_.Clear();
    numbered_ = 0;
    repeats_ = true;
    encoded_ = false;
    bounds_ = {};
    cases_ = 0;
  }

  format::Encoding::type AppendValues(Buffer& page, const ColumnPieces& batch,
                                      std::size_t present) {
    // No values are the same in every encoding.
    if (present == 0) return format::Encoding::PLAIN;
    thread_local Buffer places;
    if (repeats_ && NumberValues(batch, present, places)) {
      AppendPlaces(page, {places.As<std::uint32_t>(), present}, dictionary_.entries().size());
      return format::Encoding::RLE_DICTIONARY;
    }
    for (const ColumnBatch& piece : batch) bounds_.Add(piece.columns[number_], piece.cases);
    Values::AppendPresent(page, batch, number_, present);
    encoded_ = true;
    return Values::kEncoding;
  }

  // The numbers that all values of a batch have in the dictionary; false, and the dictionary is
  // given up, when too many are different.
  bool NumberValues(const ColumnPieces& batch, std::size_t present, Buffer& places) {
    const std::size_t entries = dictionary_.entries().size();
    const std::size_t bytes = dictionary_.page().size();
    places.clear();
    auto* const numbers =
        reinterpret_cast<std::uint32_t*>(places.Extend(present * sizeof(std::uint32_t)));
    std::size_t count = 0;
    std::size_t different = entries;
    for (const ColumnBatch& piece : batch) {
      const Column& column = piece.columns[number_];
      const typename Values::Reader reader(column);
      const auto take = [&](std::size_t row) __attribute__((always_inline)) {
        const std::uint32_t number = dictionary_.NumberOf(reader.KeyAt(row));
        numbers[count++] = number;
        if (number < different) return true;
        return IsWorthwhile(++different, numbered_ + count);
      };
      repeats_ = WhilePresent(column, piece.cases, take);
      if (!repeats_) {
        dictionary_.Shorten(entries, bytes);
        return false;
      }
    }
    numbered_ += present;
    return true;
  }

  // A dictionary of so many values, as the first `seen` have them.
  bool IsWorthwhile(std::size_t different, std::size_t seen) const {
    return different <= kLargestDictionary &&
           dictionary_.page().size() <= kLargestDictionaryBytes &&
           (seen < kSampledValues || different * kRepeats <= seen);
  }

  void AddDictionary() {
    format::DictionaryPageHeader header;
    header.num_values = static_cast<std::int32_t>(dictionary_.entries().size());
    header.encoding = format::Encoding::PLAIN;
    format::PageHeader front;
    front.type = format::PageType::DICTIONARY_PAGE;
    front.__set_dictionary_page_header(header);
    AddPage(front, dictionary_.page(), true);
  }

  // The first page of each kind tells whether the chunk is compressed.
  void AddPage(const format::PageHeader& header, const Buffer& page, bool first) {
    const std::string_view plain = BytesOf(page);
    if (used_ == pages_.size()) pages_.emplace_back();
    Page& added = pages_[used_++];
    added.header = header;
    added.header.uncompressed_page_size = static_cast<std::int32_t>(plain.size());
    added.bytes.clear();
    const bool compressed = codec_ == format::CompressionCodec::ZSTD;
    if (compressed || first) AppendCompressed(plain, added.bytes);
    if (compressed) return;
    if (first && added.bytes.size() + plain.size() / kWorthSaving <= plain.size()) {
      CompressAllBut(added);
    } else {
      added.bytes.clear();
      added.bytes.Append(plain.data(), plain.size());
    }
  }
  void CompressAllBut(const Page& compressed) {
    codec_ = format::CompressionCodec::ZSTD;
    for (std::size_t i = 0; i < used_; ++i) {
      if (&pages_[i] == &compressed) continue;
      Buffer bytes;
      AppendCompressed(BytesOf(pages_[i].bytes), bytes);
      pages_[i].bytes = std::move(bytes);
    }
  }

  // Puts the page behind the others of a chunk.
  static void Append(Page& page, ParquetChunk& chunk) {
    page.header.compressed_page_size = static_cast<std::int32_t>(page.bytes.size());
    const auto memory = std::make_shared<apache::thrift::transport::TMemoryBuffer>();
    apache::thrift::protocol::TCompactProtocolT<apache::thrift::transport::TMemoryBuffer> protocol(
        memory);
    page.header.write(&protocol);
    page.front = memory->getBufferAsString();
    chunk.bytes.emplace_back(page.front);
    chunk.bytes.push_back(BytesOf(page.bytes));
    format::ColumnMetaData& description = chunk.description;
    const auto front = static_cast<std::int64_t>(page.front.size());
    description.total_compressed_size += front + page.header.compressed_page_size;
    description.total_uncompressed_size += front + page.header.uncompressed_page_size;
  }

  const std::size_t number_;
  format::ColumnMetaData description_;  // what is the same of every chunk

  // Of the chunk.
  format::CompressionCodec::type codec_ = format::CompressionCodec::UNCOMPRESSED;
  std::vector<Page> pages_;  // and those of another one, for their memory
  std::size_t used_ = 0;     // of pages_
  ValueDictionary<Values> dictionary_;
  std::size_t numbered_ = 0;  // values by the dictionary
  bool repeats_ = true;       // the dictionary has not been given up
  bool encoded_ = false;      // pages have values in Values::kEncoding
  Bounds<Values> bounds_;     // but for what the dictionary has
  std::size_t cases_ = 0;
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

std::unique_ptr<ChunkEncoder> MakeChunkEncoder(const ColumnField& field, std::size_t number) {
  const auto of = [&]<class Values>() -> std::unique_ptr<ChunkEncoder> {
    return std::make_unique<ValueEncoder<Values>>(field, number);
  };
  switch (field.type) {
    case ColumnType::kFloat64:
      return of.template operator()<Numbers<double, double>>();
    case ColumnType::kInt8:
      return of.template operator()<Numbers<std::int8_t, std::int32_t>>();
    case ColumnType::kDate32:
      return of.template operator()<Numbers<std::int32_t, std::int32_t>>();
    case ColumnType::kInt64:
    case ColumnType::kTimestampMicros:
    case ColumnType::kDurationMicros:
      return of.template operator()<Numbers<std::int64_t, std::int64_t>>();
    case ColumnType::kLargeUtf8:
      return of.template operator()<Texts<std::int64_t>>();
    case ColumnType::kUtf8:
      break;
  }
  return of.template operator()<Texts<std::int32_t>>();
}

}  // namespace library
