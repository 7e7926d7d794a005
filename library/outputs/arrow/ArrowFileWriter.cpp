#include "library/outputs/arrow/ArrowFileWriter.h"

#include <string_view>

namespace library {
namespace {

constexpr std::string_view kMagic = "ARROW1";
// What stands behind the last message.
constexpr std::string_view kEndOfMessages("\xFF\xFF\xFF\xFF\0\0\0\0", 8);

}  // namespace

ArrowFileWriter::ArrowFileWriter(std::vector<ColumnField> fields, ArrowCompression compression,
                                 std::size_t threads, ByteSink& sink)
    : fields_(std::move(fields)),
      compression_(compression),
      mostPending_(threads + 1),
      sink_(sink),
      tasks_(compression == ArrowCompression::kNone ? 0 : threads) {
  Append(kMagic);
  Append(std::string_view("\0\0", 2));
  Append(ArrowSchemaMessage(fields_, {}));
}

void ArrowFileWriter::Append(std::string_view bytes) {
  sink_.Append(bytes);
  position_ += static_cast<std::int64_t>(bytes.size());
}

void ArrowFileWriter::Append(const ArrowMessage& message) {
  blocks_.emplace_back(position_, static_cast<std::int32_t>(message.description.size()),
                       message.bodyBytes);
  Append(message.description);
  sink_.AppendPieces(message.body);
  position_ += message.bodyBytes;
}

void ArrowFileWriter::AppendOldest() {
  Append(tasks_.Take());
  batches_.pop_front();
}

void ArrowFileWriter::Write(ColumnPieces batch) {
  if (batch.cases() == 0) return;
  if (compression_ == ArrowCompression::kNone) {
    Append(ArrowBatchMessage(fields_, batch, compression_));
    return;
  }
  const ColumnPieces& kept = batches_.emplace_back(std::move(batch));
  tasks_.Add([this, &kept] { return ArrowBatchMessage(fields_, kept, compression_); });
  while (tasks_.pending() > mostPending_) AppendOldest();
}

void ArrowFileWriter::Finish(const std::vector<std::pair<std::string, std::string>>& metadata) {
  while (tasks_.pending() > 0) AppendOldest();
  Append(kEndOfMessages);
  flatbuffers::FlatBufferBuilder builder;
  const auto schema = BuildArrowSchema(builder, fields_, metadata);
  const auto blocks = builder.CreateVectorOfStructs(blocks_);
  const auto dictionaries = builder.CreateVectorOfStructs(std::vector<arrowipc::Block>());
  builder.Finish(
      arrowipc::CreateFooter(builder, arrowipc::MetadataVersion_V5, schema, dictionaries, blocks));
  const auto length = static_cast<std::int32_t>(builder.GetSize());
  Append({reinterpret_cast<const char*>(builder.GetBufferPointer()), builder.GetSize()});
  Append({reinterpret_cast<const char*>(&length), sizeof length});
  Append(kMagic);
}

}  // namespace library
