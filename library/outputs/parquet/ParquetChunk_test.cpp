// Chunks read back by a reader that follows the format's own words: values, where they are missing,
// and what the footer says of them.
#include "library/outputs/parquet/ParquetChunk.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstring>
#include <memory>
#include <optional>
#include <random>
#include <set>
#include <string>

#include <gtest/gtest.h>
#include <thrift/protocol/TCompactProtocol.h>
#include <thrift/transport/TBufferTransports.h>
#include <zstd.h>

#include "library/columns/ColumnBuilder.h"
#include "library/outputs/parquet/testing/PageReader.h"

namespace library {
namespace {

namespace format = parquetformat;

std::string Whole(const ParquetChunk& chunk) {
  std::string bytes;
  for (const std::string_view piece : chunk.bytes) bytes += piece;
  return bytes;
}

// Takes the front of a page and its bytes, as they were before compression.
std::string TakePage(std::string_view& chunk, format::CompressionCodec::type codec,
                     format::PageHeader& front) {
  const auto memory = std::make_shared<apache::thrift::transport::TMemoryBuffer>(
      reinterpret_cast<std::uint8_t*>(const_cast<char*>(chunk.data())),
      static_cast<std::uint32_t>(chunk.size()));
  apache::thrift::protocol::TCompactProtocolT<apache::thrift::transport::TMemoryBuffer> protocol(
      memory);
  front = {};
  chunk.remove_prefix(front.read(&protocol));
  const std::string_view bytes =
      chunk.substr(0, static_cast<std::size_t>(front.compressed_page_size));
  chunk.remove_prefix(bytes.size());
  if (codec == format::CompressionCodec::UNCOMPRESSED) return std::string(bytes);
  std::string page(static_cast<std::size_t>(front.uncompressed_page_size), '\0');
  EXPECT_EQ(ZSTD_decompress(page.data(), page.size(), bytes.data(), bytes.size()), page.size());
  return page;
}

template <class Value>
class ChunkReader {
 public:
  explicit ChunkReader(const ParquetChunk& chunk) : bytes_(Whole(chunk)) {
    const format::ColumnMetaData& described = chunk.description;
    EXPECT_EQ(described.total_compressed_size, static_cast<std::int64_t>(bytes_.size()));
    std::string_view rest = bytes_;
    format::PageHeader front;
    if (described.__isset.dictionary_page_offset) {
      EXPECT_EQ(described.dictionary_page_offset, 0);
      const std::string page = TakePage(rest, described.codec, front);
      EXPECT_EQ(front.type, format::PageType::DICTIONARY_PAGE);
      PageReader reader(page);
      for (int i = 0; i < front.dictionary_page_header.num_values; ++i) {
        dictionary_.push_back(PlainValue(reader));
      }
      EXPECT_TRUE(reader.atEnd());
    }
    EXPECT_EQ(described.data_page_offset, static_cast<std::int64_t>(bytes_.size() - rest.size()));
    while (!rest.empty()) {
      const std::string page = TakePage(rest, described.codec, front);
      EXPECT_EQ(front.type, format::PageType::DATA_PAGE);
      AddPage(page, front.data_page_header);
    }
    EXPECT_EQ(described.num_values, static_cast<std::int64_t>(values.size()));
    for (const format::Encoding::type encoding : used) {
      EXPECT_NE(std::find(described.encodings.begin(), described.encodings.end(), encoding),
                described.encodings.end())
          << encoding;
    }
  }

  std::vector<std::optional<Value>> values;
  std::set<format::Encoding::type> used;

 private:
  static Value PlainValue(PageReader& reader) {
    if constexpr (std::is_same_v<Value, std::string>) {
      return std::string(reader.Take(reader.Plain<std::uint32_t>()));
    } else {
      return reader.Plain<Value>();
    }
  }
  void AddPage(std::string_view page, const format::DataPageHeader& header) {
    PageReader reader(page);
    const auto cases = static_cast<std::size_t>(header.num_values);
    PageReader levels(reader.Take(reader.Plain<std::uint32_t>()));
    const std::vector<std::uint64_t> present = levels.Runs(cases, 1);
    EXPECT_TRUE(levels.atEnd());
    const auto count = static_cast<std::size_t>(std::count(present.begin(), present.end(), 1U));
    const std::vector<Value> read = ValuesOf(reader, header.encoding, count);
    ASSERT_EQ(read.size(), count);
    auto next = read.begin();
    for (const std::uint64_t is : present) {
      if (is == 1) {
        values.emplace_back(*next++);
      } else {
        values.emplace_back();
      }
    }
    used.insert(header.encoding);
  }
  std::vector<Value> ValuesOf(PageReader& reader, format::Encoding::type encoding,
                              std::size_t count) {
    if (encoding == format::Encoding::RLE_DICTIONARY) {
      std::vector<Value> found;
      for (const std::uint64_t place : reader.Runs(count, reader.Byte())) {
        found.push_back(dictionary_.at(place));
      }
      return found;
    }
    if (encoding == format::Encoding::PLAIN) {
      std::vector<Value> found;
      for (std::size_t i = 0; i < count; ++i) found.push_back(PlainValue(reader));
      return found;
    }
    if constexpr (std::is_same_v<Value, std::string>) {
      EXPECT_EQ(encoding, format::Encoding::DELTA_LENGTH_BYTE_ARRAY);
      return reader.LengthsAndTexts();
    } else if constexpr (std::is_same_v<Value, double>) {
      EXPECT_EQ(encoding, format::Encoding::BYTE_STREAM_SPLIT);
      return reader.Streams(count);
    } else {
      EXPECT_EQ(encoding, format::Encoding::DELTA_BINARY_PACKED);
      return reader.Differences<Value>();
    }
  }

  const std::string bytes_;
  std::vector<Value> dictionary_;
};

constexpr double kMissing = -1.7976931348623157e308;

// One column, fed with batches of pieces.
class Column1 {
 public:
  Column1(ColumnType type, std::size_t bytes) {
    field_.name = "v";
    field_.type = type;
    field_.bytes = bytes;
    encoder_ = MakeChunkEncoder(field_, 0);
  }
  void Add(const std::vector<double>& numbers, std::size_t piece) {
    std::vector<OBS> cells;
    for (const double number : numbers) cells.push_back(std::bit_cast<OBS>(number));
    AddCells(cells, 1, numbers.size(), piece);
  }
  void Add(const std::vector<std::string>& texts, std::size_t piece) {
    const std::size_t cells = (field_.bytes + sizeof(OBS) - 1) / sizeof(OBS);
    std::string padded;
    for (const std::string& text : texts) {
      padded += text + std::string(cells * sizeof(OBS) - text.size(), ' ');
    }
    std::vector<OBS> all(texts.size() * cells);
    std::memcpy(all.data(), padded.data(), padded.size());
    AddCells(all, cells, texts.size(), piece);
  }
  ParquetChunk Finish() { return encoder_->Finish(); }

 private:
  void AddCells(const std::vector<OBS>& cells, std::size_t width, std::size_t cases,
                std::size_t piece) {
    ColumnMisfits misfits;
    ColumnPieces batch;
    for (std::size_t at = 0; at < cases; at += piece) {
      batch.Add(BuildColumns({field_}, cells.data() + at * width, std::min(piece, cases - at),
                             width, static_cast<std::int64_t>(at), &misfits));
    }
    EXPECT_TRUE(misfits.counts.empty());
    encoder_->Add(batch);
  }

  ColumnField field_;
  std::unique_ptr<ChunkEncoder> encoder_;
};

std::vector<std::optional<double>> Expected(const std::vector<double>& numbers) {
  std::vector<std::optional<double>> expected;
  for (const double number : numbers) {
    expected.push_back(number == kMissing ? std::nullopt : std::optional(number));
  }
  return expected;
}

std::vector<std::optional<std::string>> Expected(const std::vector<std::string>& texts) {
  return {texts.begin(), texts.end()};
}

TEST(ParquetChunk, NumbersReadBackRepeatingOrNotMissingOrNot) {
  std::mt19937_64 random(11);
  for (const bool repeating : {true, false}) {
    for (const unsigned missingOf : {0U, 3U, 100U}) {
      Column1 column(ColumnType::kFloat64, 0);
      // An encoder makes one chunk after another.
      for (int chunk = 0; chunk < 3; ++chunk) {
        std::vector<double> all;
        double least = 1e300;
        double largest = -1e300;
        std::int64_t missing = 0;
        for (int batch = 0; batch < 3; ++batch) {
          std::vector<double> numbers;
          for (int i = 0; i < 5000; ++i) {
            const double value = repeating ? std::floor(static_cast<double>(random() % 90)) - 40
                                           : std::ldexp(static_cast<double>(random()), -40) - 1e6;
            const bool isMissing = missingOf != 0 && random() % 100 < missingOf;
            numbers.push_back(isMissing ? kMissing : value);
            missing += isMissing ? 1 : 0;
            if (isMissing) continue;
            least = std::min(least, value);
            largest = std::max(largest, value);
          }
          column.Add(numbers, 1 + random() % 3000);
          all.insert(all.end(), numbers.begin(), numbers.end());
        }
        const ParquetChunk made = column.Finish();
        const ChunkReader<double> read(made);
        ASSERT_EQ(read.values, Expected(all));
        const format::Statistics& told = made.description.statistics;
        EXPECT_EQ(told.null_count, missing);
        ASSERT_EQ(told.__isset.min_value, missingOf != 100);
        if (missingOf == 100) continue;
        EXPECT_EQ(PageReader(told.min_value).Plain<double>(), least);
        EXPECT_EQ(PageReader(told.max_value).Plain<double>(), largest);
        EXPECT_EQ(*read.used.begin(), repeating ? format::Encoding::RLE_DICTIONARY
                                                : format::Encoding::BYTE_STREAM_SPLIT);
        EXPECT_EQ(read.used.size(), 1U);
      }
    }
  }
}

TEST(ParquetChunk, TextsThatAreAlikeAtTheBeginningAreToldApart) {
  std::mt19937_64 random(12);
  std::vector<std::string> kinds{"", "a", "aa"};
  for (const std::size_t size : {7U, 8U, 9U, 15U, 16U, 17U, 24U, 40U}) {
    kinds.push_back(std::string(size, 'a'));
    kinds.push_back(std::string(size - 1, 'a') + "b");
    kinds.push_back(std::string(size - 1, 'a') + std::string(1, '\0') + "c");
    kinds.push_back("b" + std::string(size - 1, 'a'));
  }
  Column1 column(ColumnType::kUtf8, 48);
  std::vector<std::string> all;
  for (int batch = 0; batch < 2; ++batch) {
    std::vector<std::string> texts;
    for (int i = 0; i < 4000; ++i) texts.push_back(kinds[random() % kinds.size()]);
    column.Add(texts, 1 + random() % 900);
    all.insert(all.end(), texts.begin(), texts.end());
  }
  const ParquetChunk chunk = column.Finish();
  const ChunkReader<std::string> read(chunk);
  ASSERT_EQ(read.values, Expected(all));
  EXPECT_EQ(read.used, std::set{format::Encoding::RLE_DICTIONARY});
  EXPECT_EQ(chunk.description.statistics.min_value, "");
  EXPECT_EQ(chunk.description.statistics.max_value, *std::max_element(kinds.begin(), kinds.end()));
}

TEST(ParquetChunk, ADictionaryThatIsGivenUpStaysWithThePagesThatUseIt) {
  std::mt19937_64 random(13);
  Column1 column(ColumnType::kUtf8, 24);
  std::vector<std::string> repeating;
  std::vector<std::string> different;
  for (int i = 0; i < 3000; ++i) {
    repeating.push_back("group " + std::to_string(random() % 20));
    different.push_back(std::to_string(random()));
  }
  std::vector<std::string> all;
  for (const auto& texts : {repeating, different, repeating}) {
    column.Add(texts, 700);
    all.insert(all.end(), texts.begin(), texts.end());
  }
  const ParquetChunk chunk = column.Finish();
  const ChunkReader<std::string> read(chunk);
  ASSERT_EQ(read.values, Expected(all));
  EXPECT_EQ(read.used, (std::set{format::Encoding::DELTA_LENGTH_BYTE_ARRAY,
                                 format::Encoding::RLE_DICTIONARY}));
  EXPECT_EQ(chunk.description.statistics.min_value, *std::min_element(all.begin(), all.end()));
  EXPECT_EQ(chunk.description.statistics.max_value, *std::max_element(all.begin(), all.end()));
  // Places in so small a dictionary are hardly compressed, texts of digits are.
  EXPECT_EQ(chunk.description.codec, format::CompressionCodec::ZSTD);
  EXPECT_LT(chunk.description.total_compressed_size * 8,
            chunk.description.total_uncompressed_size * 7);
  // The next chunk begins anew.
  column.Add(repeating, 3000);
  const ParquetChunk next = column.Finish();
  const ChunkReader<std::string> nextRead(next);
  ASSERT_EQ(nextRead.values, Expected(repeating));
  EXPECT_EQ(nextRead.used, std::set{format::Encoding::RLE_DICTIONARY});
}

TEST(ParquetChunk, WhatCompressionDoesNotMakeSmallerIsLeftAsItIs) {
  std::mt19937_64 random(14);
  std::vector<double> noise;
  std::vector<double> steps;
  for (int i = 0; i < 4000; ++i) {
    noise.push_back(static_cast<double>(static_cast<std::int64_t>(random() >> 12)));
    steps.push_back(i);
  }
  Column1 whole(ColumnType::kInt64, 0);
  Column1 column(ColumnType::kFloat64, 0);
  whole.Add(noise, 500);
  const ParquetChunk left = whole.Finish();
  EXPECT_EQ(left.description.codec, format::CompressionCodec::UNCOMPRESSED);
  EXPECT_EQ(left.description.total_compressed_size, left.description.total_uncompressed_size);
  const ChunkReader<std::int64_t> read(left);
  for (std::size_t i = 0; i < noise.size(); ++i) {
    ASSERT_EQ(read.values.at(i), static_cast<std::int64_t>(noise[i]));
  }
  column.Add(steps, 500);
  const ParquetChunk compressed = column.Finish();
  EXPECT_EQ(compressed.description.codec, format::CompressionCodec::ZSTD);
  EXPECT_LT(compressed.description.total_compressed_size * 8,
            compressed.description.total_uncompressed_size * 7);
  ASSERT_EQ(ChunkReader<double>(compressed).values, Expected(steps));
}

}  // namespace
}  // namespace library
