#include "library/outputs/parquet/ParquetWriter.h"

#include <exception>
#include <string_view>

#include <thrift/protocol/TCompactProtocol.h>
#include <thrift/transport/TBufferTransports.h>
#include <boost/archive/iterators/base64_from_binary.hpp>
#include <boost/archive/iterators/transform_width.hpp>

#include "library/outputs/arrow/ArrowMessages.h"

namespace library {
namespace {

namespace format = parquetformat;

constexpr std::string_view kMagic = "PAR1";
// A row group ends when it has so many batches, or its columns take so many bytes: so much of a
// file is in memory, and a reader has at once.
constexpr std::size_t kGroupBatches = 4;
constexpr std::size_t kGroupBytes = std::size_t{128} << 20;
// Where readers that know Arrow look for types that Parquet lacks.
constexpr char kArrowSchemaKey[] = "ARROW:schema";

std::string Base64(const std::string& bytes) {
  using namespace boost::archive::iterators;
  using Digits = base64_from_binary<transform_width<std::string::const_iterator, 6, 8>>;
  std::string out(Digits(bytes.begin()), Digits(bytes.end()));
  out.append((3 - bytes.size() % 3) % 3, '=');
  return out;
}

format::SchemaElement Element(const ColumnField& field) {
  format::SchemaElement element;
  element.name = field.name;
  element.__set_type(ParquetType(field.type));
  element.__set_repetition_type(format::FieldRepetitionType::OPTIONAL);
  format::LogicalType logical;
  switch (field.type) {
    case ColumnType::kDate32:
      element.__set_converted_type(format::ConvertedType::DATE);
      logical.__set_DATE({});
      break;
    case ColumnType::kTimestampMicros: {
      format::TimestampType timestamp;
      timestamp.isAdjustedToUTC = false;
      timestamp.unit.__set_MICROS({});
      logical.__set_TIMESTAMP(timestamp);
      break;
    }
    case ColumnType::kInt8:
    case ColumnType::kInt64: {
      const bool small = field.type == ColumnType::kInt8;
      format::IntType integer;
      integer.bitWidth = small ? 8 : 64;
      integer.isSigned = true;
      element.__set_converted_type(small ? format::ConvertedType::INT_8
                                         : format::ConvertedType::INT_64);
      logical.__set_INTEGER(integer);
      break;
    }
    case ColumnType::kUtf8:
    case ColumnType::kLargeUtf8:
      element.__set_converted_type(format::ConvertedType::UTF8);
      logical.__set_STRING({});
      break;
    case ColumnType::kFloat64:
    case ColumnType::kDurationMicros:
      return element;
  }
  element.__set_logicalType(logical);
  return element;
}

format::KeyValue Pair(std::string key, const std::string& value) {
  format::KeyValue pair;
  pair.key = std::move(key);
  pair.__set_value(value);
  return pair;
}

}  // namespace

ParquetWriter::ParquetWriter(std::vector<ColumnField> fields, std::string creator,
                             std::size_t threads, ByteSink& sink)
    : fields_(std::move(fields)), creator_(std::move(creator)), sink_(sink), tasks_(threads) {
  for (const ColumnField& field : fields_) {
    encoders_.push_back(MakeChunkEncoder(field, encoders_.size()));
  }
  Append(kMagic);
}

void ParquetWriter::Append(std::string_view bytes) {
  sink_.Append(bytes);
  position_ += static_cast<std::int64_t>(bytes.size());
}

void ParquetWriter::Write(ColumnPieces batch) {
  if (batch.cases() == 0) return;
  ++batches_;
  cases_ += batch.cases();
  EncodeColumns(batch);
  std::size_t bytes = 0;
  for (const auto& encoder : encoders_) bytes += encoder->bytes();
  if (batches_ == kGroupBatches || bytes >= kGroupBytes) EndGroup();
}

void ParquetWriter::EncodeColumns(const ColumnPieces& batch) {
  // Whatever fails, the threads are waited for: they use the batch.
  std::exception_ptr failure;
  try {
    for (const auto& encoder : encoders_) {
      tasks_.Add([&encoder, &batch] { encoder->Add(batch); });
    }
  } catch (...) {
    failure = std::current_exception();
  }
  while (tasks_.pending() > 0) {
    try {
      tasks_.Take();
    } catch (...) {
      failure = std::current_exception();
    }
  }
  if (failure) std::rethrow_exception(failure);
}

void ParquetWriter::EndGroup() {
  std::vector<std::string_view> pieces;
  format::RowGroup group;
  group.num_rows = static_cast<std::int64_t>(cases_);
  group.total_byte_size = 0;
  group.__set_file_offset(position_);
  const std::int64_t begin = position_;
  for (const auto& encoder : encoders_) {
    ParquetChunk chunk = encoder->Finish();
    pieces.insert(pieces.end(), chunk.bytes.begin(), chunk.bytes.end());
    format::ColumnMetaData& description = chunk.description;
    description.data_page_offset += position_;
    if (description.__isset.dictionary_page_offset) description.dictionary_page_offset += position_;
    format::ColumnChunk column;
    column.file_offset = position_;
    group.total_byte_size += description.total_uncompressed_size;
    position_ += description.total_compressed_size;
    column.__set_meta_data(description);
    group.columns.push_back(std::move(column));
  }
  sink_.AppendPieces(pieces);
  group.__set_total_compressed_size(position_ - begin);
  if (groups_.size() <= 32767) group.__set_ordinal(static_cast<std::int16_t>(groups_.size()));
  groups_.push_back(std::move(group));
  batches_ = 0;
  cases_ = 0;
}

void ParquetWriter::Finish(const std::vector<std::pair<std::string, std::string>>& metadata) {
  if (batches_ > 0) EndGroup();
  format::FileMetaData file;
  file.version = 2;
  format::SchemaElement root;
  root.name = "schema";
  root.__set_num_children(static_cast<std::int32_t>(fields_.size()));
  file.schema.push_back(root);
  std::vector<format::ColumnOrder> orders(fields_.size());
  for (std::size_t i = 0; i < fields_.size(); ++i) {
    file.schema.push_back(Element(fields_[i]));
    orders[i].__set_TYPE_ORDER({});
  }
  file.num_rows = 0;
  for (const format::RowGroup& group : groups_) file.num_rows += group.num_rows;
  file.row_groups = std::move(groups_);
  std::vector<format::KeyValue> pairs{
      Pair(kArrowSchemaKey, Base64(ArrowSchemaMessage(fields_, metadata)))};
  for (const auto& [key, value] : metadata) pairs.push_back(Pair(key, value));
  file.__set_key_value_metadata(pairs);
  file.__set_created_by(creator_);
  file.__set_column_orders(orders);

  const auto memory = std::make_shared<apache::thrift::transport::TMemoryBuffer>();
  apache::thrift::protocol::TCompactProtocolT<apache::thrift::transport::TMemoryBuffer> protocol(
      memory);
  file.write(&protocol);
  std::uint8_t* bytes = nullptr;
  std::uint32_t size = 0;
  memory->getBuffer(&bytes, &size);
  Append({reinterpret_cast<const char*>(bytes), size});
  Append({reinterpret_cast<const char*>(&size), sizeof size});
  Append(kMagic);
}

}  // namespace library
