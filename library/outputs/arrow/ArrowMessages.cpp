#include "library/outputs/arrow/ArrowMessages.h"

#include <array>
#include <cstring>
#include <new>

#include <lz4frame.h>

namespace library {
namespace {

namespace ipc = arrowipc;
using flatbuffers::FlatBufferBuilder;
using flatbuffers::Offset;

// What stands in front of a message's description: a mark, then its length.
constexpr std::uint32_t kContinuation = 0xFFFFFFFF;

std::size_t Padded(std::size_t bytes) {
  return (bytes + kArrowAlignment - 1) / kArrowAlignment * kArrowAlignment;
}

// The message of a finished builder with what stands in front of it.
std::string Framed(const FlatBufferBuilder& builder) {
  constexpr std::size_t kFront = 8;
  const std::size_t size = Padded(kFront + builder.GetSize()) - kFront;
  std::string out(kFront + size, '\0');
  const auto length = static_cast<std::int32_t>(size);
  std::memcpy(out.data(), &kContinuation, sizeof kContinuation);
  std::memcpy(out.data() + sizeof kContinuation, &length, sizeof length);
  std::memcpy(out.data() + kFront, builder.GetBufferPointer(), builder.GetSize());
  return out;
}

std::vector<Offset<ipc::KeyValue>> BuildMetadata(FlatBufferBuilder& builder,
                                                 const ArrowMetadata& metadata) {
  std::vector<Offset<ipc::KeyValue>> pairs;
  for (const auto& [key, value] : metadata) {
    const auto name = builder.CreateString(key);
    const auto text = builder.CreateString(value);
    pairs.push_back(ipc::CreateKeyValue(builder, name, text));
  }
  return pairs;
}

struct TypeOffset {
  ipc::Type kind;
  Offset<void> table;
};

TypeOffset BuildType(FlatBufferBuilder& builder, ColumnType type) {
  switch (type) {
    case ColumnType::kFloat64:
      return {ipc::Type_FloatingPoint,
              ipc::CreateFloatingPoint(builder, ipc::Precision_DOUBLE).Union()};
    case ColumnType::kInt64:
      return {ipc::Type_Int, ipc::CreateInt(builder, 64, true).Union()};
    case ColumnType::kInt8:
      return {ipc::Type_Int, ipc::CreateInt(builder, 8, true).Union()};
    case ColumnType::kDate32:
      return {ipc::Type_Date, ipc::CreateDate(builder, ipc::DateUnit_DAY).Union()};
    case ColumnType::kTimestampMicros:
      return {ipc::Type_Timestamp,
              ipc::CreateTimestamp(builder, ipc::TimeUnit_MICROSECOND).Union()};
    case ColumnType::kDurationMicros:
      return {ipc::Type_Duration, ipc::CreateDuration(builder, ipc::TimeUnit_MICROSECOND).Union()};
    case ColumnType::kUtf8:
      return {ipc::Type_Utf8, ipc::CreateUtf8(builder).Union()};
    case ColumnType::kLargeUtf8:
      break;
  }
  return {ipc::Type_LargeUtf8, ipc::CreateLargeUtf8(builder).Union()};
}

Offset<ipc::Field> BuildField(FlatBufferBuilder& builder, const ColumnField& field) {
  const auto name = builder.CreateString(field.name);
  const TypeOffset type = BuildType(builder, field.type);
  const auto metadata = builder.CreateVector(BuildMetadata(builder, MetadataOf(field)));
  // Readers expect the list of children even of a column that has none.
  const auto children = builder.CreateVector(std::vector<Offset<ipc::Field>>());
  ipc::FieldBuilder fieldBuilder(builder);
  fieldBuilder.add_name(name);
  fieldBuilder.add_nullable(true);
  fieldBuilder.add_type_type(type.kind);
  fieldBuilder.add_type(type.table);
  fieldBuilder.add_children(children);
  fieldBuilder.add_custom_metadata(metadata);
  return fieldBuilder.Finish();
}

// The body of a batch and where its buffers lie in it.
class BatchBody {
 public:
  BatchBody(ArrowCompression compression, ArrowMessage& message)
      : compression_(compression), message_(message) {}

  // A buffer of the pieces that were given since the one before.
  void EndBuffer() {
    const std::int64_t begin = message_.bodyBytes;
    if (compression_ == ArrowCompression::kLz4 && buffer_.size() > 0) {
      const std::string_view compressed = Compressed(Joined());
      buffer_.assign(1, compressed);
    }
    for (const std::string_view piece : buffer_) AddPiece(piece);
    buffer_.clear();
    const std::int64_t bytes = message_.bodyBytes - begin;
    places_.emplace_back(begin, bytes);
    static constexpr std::array<char, kArrowAlignment> kPadding{};
    const auto size = static_cast<std::size_t>(bytes);
    AddPiece({kPadding.data(), Padded(size) - size});
  }
  void Give(std::string_view piece) {
    if (!piece.empty()) buffer_.push_back(piece);
  }
  void Give(const Buffer& piece) {
    if (!piece.empty()) Give(std::string_view(piece.As<char>(), piece.size()));
  }
  // A buffer that was made of the pieces' own.
  void Add(Buffer joined) {
    Give(message_.joined.emplace_back(std::move(joined)));
    EndBuffer();
  }

  const std::vector<ipc::BufferPlace>& places() const { return places_; }

 private:
  void AddPiece(std::string_view piece) {
    if (piece.empty()) return;
    message_.body.push_back(piece);
    message_.bodyBytes += static_cast<std::int64_t>(piece.size());
  }
  // The pieces of a buffer side by side; good until the next call.
  std::string_view Joined() {
    if (buffer_.size() == 1) return buffer_.front();
    side_.clear();
    for (const std::string_view piece : buffer_) side_.Append(piece.data(), piece.size());
    return {side_.As<char>(), side_.size()};
  }
  // The length that it has uncompressed, -1 where it stands as it is, in front.
  std::string_view Compressed(std::string_view buffer) {
    const std::size_t room = LZ4F_compressFrameBound(buffer.size(), nullptr);
    auto length = static_cast<std::int64_t>(buffer.size());
    std::string& out = message_.compressed.emplace_back(sizeof length + room, '\0');
    const std::size_t used =
        LZ4F_compressFrame(out.data() + sizeof length, room, buffer.data(), buffer.size(), nullptr);
    if (LZ4F_isError(used) != 0) throw std::bad_alloc();
    if (used >= buffer.size()) {
      length = -1;
      std::memcpy(out.data() + sizeof length, buffer.data(), buffer.size());
      out.resize(sizeof length + buffer.size());
    } else {
      out.resize(sizeof length + used);
    }
    std::memcpy(out.data(), &length, sizeof length);
    return out;
  }

  const ArrowCompression compression_;
  ArrowMessage& message_;
  std::vector<std::string_view> buffer_;
  Buffer side_;
  std::vector<ipc::BufferPlace> places_;
};

}  // namespace

Offset<ipc::Schema> BuildArrowSchema(FlatBufferBuilder& builder,
                                     const std::vector<ColumnField>& fields,
                                     const ArrowMetadata& metadata) {
  std::vector<Offset<ipc::Field>> columns;
  columns.reserve(fields.size());
  for (const ColumnField& field : fields) columns.push_back(BuildField(builder, field));
  const auto children = builder.CreateVector(columns);
  const auto pairs = builder.CreateVector(BuildMetadata(builder, metadata));
  return ipc::CreateSchema(builder, ipc::Endianness_Little, children, pairs);
}

std::string ArrowSchemaMessage(const std::vector<ColumnField>& fields,
                               const ArrowMetadata& metadata) {
  FlatBufferBuilder builder;
  const auto schema = BuildArrowSchema(builder, fields, metadata);
  builder.Finish(ipc::CreateMessage(builder, ipc::MetadataVersion_V5, ipc::MessageHeader_Schema,
                                    schema.Union()));
  return Framed(builder);
}

ArrowMessage ArrowBatchMessage(const std::vector<ColumnField>& fields, const ColumnPieces& batch,
                               ArrowCompression compression) {
  const auto cases = static_cast<std::int64_t>(batch.cases());
  ArrowMessage message;
  BatchBody body(compression, message);
  std::vector<ipc::FieldNode> nodes;
  for (std::size_t i = 0; i < fields.size(); ++i) {
    const std::int64_t missing = batch.MissingIn(i);
    nodes.emplace_back(cases, missing);
    // Where nothing is missing the bits may be left out.
    body.Add(missing == 0 ? Buffer() : batch.JoinValidity(i));
    if (IsText(fields[i].type)) {
      body.Add(batch.JoinOffsets(i, fields[i].type));
      for (const ColumnBatch& piece : batch) body.Give(piece.columns[i].text);
    } else {
      for (const ColumnBatch& piece : batch) body.Give(piece.columns[i].values);
    }
    body.EndBuffer();
  }

  FlatBufferBuilder builder;
  const auto nodeList = builder.CreateVectorOfStructs(nodes);
  const auto places = builder.CreateVectorOfStructs(body.places());
  Offset<ipc::BodyCompression> codec;
  if (compression == ArrowCompression::kLz4) codec = ipc::CreateBodyCompression(builder);
  const auto record = ipc::CreateRecordBatch(builder, cases, nodeList, places, codec);
  builder.Finish(ipc::CreateMessage(builder, ipc::MetadataVersion_V5,
                                    ipc::MessageHeader_RecordBatch, record.Union(),
                                    message.bodyBytes));
  message.description = Framed(builder);
  return message;
}

}  // namespace library
