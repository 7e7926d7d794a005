#include "library/columns/ArrowExport.h"

#include <array>
#include <cstdint>
#include <memory>

namespace library {
namespace {

void AppendLength(std::string& out, std::size_t length) {
  const auto value = static_cast<std::int32_t>(length);
  out.append(reinterpret_cast<const char*>(&value), sizeof value);
}

// Pairs as the interface wants them: their number, then length and bytes of each key and value.
std::string EncodeMetadata(const ArrowMetadata& metadata) {
  std::string out;
  if (metadata.empty()) return out;
  AppendLength(out, metadata.size());
  for (const auto& [key, value] : metadata) {
    AppendLength(out, key.size());
    out += key;
    AppendLength(out, value.size());
    out += value;
  }
  return out;
}

template <class Part>
void ReleaseParts(std::vector<Part>& parts) {
  for (Part& part : parts) {
    if (part.release != nullptr) part.release(&part);
  }
}

// What an exported schema refers to.
struct SchemaContents {
  std::string name;
  std::string metadata;
  std::vector<ArrowSchema> children;
  std::vector<ArrowSchema*> childPointers;
  SchemaContents() = default;
  SchemaContents(const SchemaContents&) = delete;
  SchemaContents& operator=(const SchemaContents&) = delete;
  ~SchemaContents() { ReleaseParts(children); }
};

void ReleaseSchema(ArrowSchema* schema) {
  if (schema->release == nullptr) return;
  delete static_cast<SchemaContents*>(schema->private_data);
  schema->release = nullptr;
}

void FillSchema(const char* format, std::unique_ptr<SchemaContents> contents, ArrowSchema* out) {
  for (ArrowSchema& child : contents->children) contents->childPointers.push_back(&child);
  *out = {.format = format,
          .name = contents->name.c_str(),
          .metadata = contents->metadata.empty() ? nullptr : contents->metadata.data(),
          .flags = ARROW_FLAG_NULLABLE,
          .n_children = static_cast<std::int64_t>(contents->children.size()),
          .children = contents->childPointers.empty() ? nullptr : contents->childPointers.data(),
          .dictionary = nullptr,
          .release = ReleaseSchema,
          .private_data = contents.get()};
  contents.release();
}

// What an exported array refers to. The columns live as long as any of them is held.
struct ArrayContents {
  std::shared_ptr<const ColumnBatch> batch;
  std::array<const void*, 3> buffers{};
  std::vector<ArrowArray> children;
  std::vector<ArrowArray*> childPointers;
  ArrayContents() = default;
  ArrayContents(const ArrayContents&) = delete;
  ArrayContents& operator=(const ArrayContents&) = delete;
  ~ArrayContents() { ReleaseParts(children); }
};

void ReleaseArray(ArrowArray* array) {
  if (array->release == nullptr) return;
  delete static_cast<ArrayContents*>(array->private_data);
  array->release = nullptr;
}

// `buffers`: how many of the contents' buffers the array has.
void FillArray(std::int64_t missing, std::int64_t buffers, std::unique_ptr<ArrayContents> contents,
               ArrowArray* out) {
  for (ArrowArray& child : contents->children) contents->childPointers.push_back(&child);
  *out = {.length = static_cast<std::int64_t>(contents->batch->cases),
          .null_count = missing,
          .offset = 0,
          .n_buffers = buffers,
          .n_children = static_cast<std::int64_t>(contents->children.size()),
          .buffers = contents->buffers.data(),
          .children = contents->childPointers.empty() ? nullptr : contents->childPointers.data(),
          .dictionary = nullptr,
          .release = ReleaseArray,
          .private_data = contents.get()};
  contents.release();
}

// A place for buffers of no bytes, which must not be null, and for the offsets of no texts.
alignas(Buffer::kAlignment) constexpr std::int64_t kNothing[8] = {};

const void* DataOf(const Buffer& buffer) {
  return buffer.empty() ? static_cast<const void*>(kNothing) : buffer.data();
}

}  // namespace

const char* ArrowFormat(ColumnType type) {
  switch (type) {
    case ColumnType::kFloat64:
      return "g";
    case ColumnType::kInt64:
      return "l";
    case ColumnType::kInt8:
      return "c";
    case ColumnType::kDate32:
      return "tdD";
    case ColumnType::kTimestampMicros:
      return "tsu:";
    case ColumnType::kDurationMicros:
      return "tDu";
    case ColumnType::kUtf8:
      return "u";
    case ColumnType::kLargeUtf8:
      break;
  }
  return "U";
}

ArrowMetadata MetadataOf(const ColumnField& field) {
  ArrowMetadata metadata{{"variable", field.variable}};
  if (!field.label.empty()) metadata.emplace_back("label", field.label);
  metadata.emplace_back("format", field.format);
  metadata.emplace_back("width", std::to_string(field.width));
  return metadata;
}

void ExportSchema(const std::vector<ColumnField>& fields, const ArrowMetadata& metadata,
                  ArrowSchema* out) {
  out->release = nullptr;
  auto table = std::make_unique<SchemaContents>();
  table->metadata = EncodeMetadata(metadata);
  table->children.resize(fields.size());
  table->childPointers.reserve(fields.size());
  for (std::size_t i = 0; i < fields.size(); ++i) {
    auto column = std::make_unique<SchemaContents>();
    column->name = fields[i].name;
    column->metadata = EncodeMetadata(MetadataOf(fields[i]));
    FillSchema(ArrowFormat(fields[i].type), std::move(column), &table->children[i]);
  }
  FillSchema("+s", std::move(table), out);
}

void ExportBatch(const std::vector<ColumnField>& fields, ColumnBatch batch, ArrowArray* out) {
  out->release = nullptr;
  auto table = std::make_unique<ArrayContents>();
  // A batch of no cases may have no columns yet.
  batch.columns.resize(fields.size());
  table->batch = std::make_shared<const ColumnBatch>(std::move(batch));
  table->children.resize(fields.size());
  table->childPointers.reserve(fields.size());
  for (std::size_t i = 0; i < fields.size(); ++i) {
    const Column& column = table->batch->columns[i];
    auto contents = std::make_unique<ArrayContents>();
    contents->batch = table->batch;
    contents->buffers[0] = column.validity.empty() ? nullptr : column.validity.data();
    contents->buffers[1] = DataOf(column.values);
    const bool text = IsText(fields[i].type);
    if (text) contents->buffers[2] = DataOf(column.text);
    FillArray(column.missing, text ? 3 : 2, std::move(contents), &table->children[i]);
  }
  FillArray(0, 1, std::move(table), out);
}

}  // namespace library
