// Exported columns as another library sees them: formats, buffers, metadata, and who holds what for
// how long.
#include "library/columns/ArrowExport.h"

#include <bit>
#include <cstring>

#include <gtest/gtest.h>

#include "library/columns/ColumnBuilder.h"

namespace library {
namespace {

ColumnField Field(const std::string& name, ColumnType type) {
  ColumnField field;
  field.name = name;
  field.variable = "var_" + name;
  field.format = "F8.2";
  field.width = 8;
  field.type = type;
  return field;
}

// Reads the pairs back.
ArrowMetadata Decode(const char* metadata) {
  ArrowMetadata pairs;
  if (metadata == nullptr) return pairs;
  const auto number = [&metadata] {
    std::int32_t value = 0;
    std::memcpy(&value, metadata, sizeof value);
    metadata += sizeof value;
    return value;
  };
  const auto text = [&] {
    const std::int32_t length = number();
    const std::string found(metadata, static_cast<std::size_t>(length));
    metadata += length;
    return found;
  };
  const std::int32_t count = number();
  for (std::int32_t i = 0; i < count; ++i) {
    const std::string key = text();
    pairs.emplace_back(key, text());
  }
  return pairs;
}

TEST(ArrowExport, TheSchemaNamesTypesAndCarriesWhatIsKnownOfTheVariable) {
  std::vector<ColumnField> fields{Field("a", ColumnType::kFloat64), Field("b", ColumnType::kUtf8)};
  fields[1].label = "Größe";
  ArrowSchema schema;
  ExportSchema(fields, {{"command", "GET DATA"}}, &schema);
  EXPECT_STREQ(schema.format, "+s");
  ASSERT_EQ(schema.n_children, 2);
  EXPECT_EQ(Decode(schema.metadata), (ArrowMetadata{{"command", "GET DATA"}}));
  EXPECT_STREQ(schema.children[0]->name, "a");
  EXPECT_STREQ(schema.children[0]->format, "g");
  EXPECT_EQ(schema.children[0]->flags, ARROW_FLAG_NULLABLE);
  EXPECT_EQ(Decode(schema.children[1]->metadata),
            (ArrowMetadata{
                {"variable", "var_b"}, {"label", "Größe"}, {"format", "F8.2"}, {"width", "8"}}));
  schema.release(&schema);
  EXPECT_EQ(schema.release, nullptr);
}

TEST(ArrowExport, EveryTypeHasItsFormat) {
  EXPECT_STREQ(ArrowFormat(ColumnType::kInt64), "l");
  EXPECT_STREQ(ArrowFormat(ColumnType::kInt8), "c");
  EXPECT_STREQ(ArrowFormat(ColumnType::kDate32), "tdD");
  EXPECT_STREQ(ArrowFormat(ColumnType::kTimestampMicros), "tsu:");
  EXPECT_STREQ(ArrowFormat(ColumnType::kDurationMicros), "tDu");
  EXPECT_STREQ(ArrowFormat(ColumnType::kLargeUtf8), "U");
}

ColumnBatch TwoCases(const std::vector<ColumnField>& fields) {
  OBS cases[4];
  cases[0] = std::bit_cast<OBS>(1.5);
  std::memcpy(cases[1].bytes, "abc     ", 8);
  cases[2] = std::bit_cast<OBS>(kSystemMissing);
  std::memcpy(cases[3].bytes, "        ", 8);
  ColumnMisfits misfits;
  return BuildColumns(fields, cases, 2, 2, 0, &misfits);
}

std::vector<ColumnField> NumberAndText() {
  std::vector<ColumnField> fields{Field("a", ColumnType::kFloat64), Field("b", ColumnType::kUtf8)};
  fields[1].cell = 1;
  fields[1].bytes = 8;
  return fields;
}

TEST(ArrowExport, AnArrayHasTheBuffersOfItsType) {
  ArrowArray array;
  ExportBatch(NumberAndText(), TwoCases(NumberAndText()), &array);
  EXPECT_EQ(array.length, 2);
  EXPECT_EQ(array.n_buffers, 1);
  EXPECT_EQ(array.buffers[0], nullptr);
  ASSERT_EQ(array.n_children, 2);
  const ArrowArray& numbers = *array.children[0];
  EXPECT_EQ(numbers.null_count, 1);
  EXPECT_EQ(numbers.n_buffers, 2);
  EXPECT_EQ(static_cast<const std::uint8_t*>(numbers.buffers[0])[0], 1);
  EXPECT_EQ(static_cast<const double*>(numbers.buffers[1])[0], 1.5);
  const ArrowArray& texts = *array.children[1];
  EXPECT_EQ(texts.n_buffers, 3);
  EXPECT_EQ(texts.buffers[0], nullptr);
  const auto* const offsets = static_cast<const std::int32_t*>(texts.buffers[1]);
  EXPECT_EQ(offsets[0], 0);
  EXPECT_EQ(offsets[1], 3);
  EXPECT_EQ(offsets[2], 3);
  EXPECT_EQ(std::memcmp(texts.buffers[2], "abc", 3), 0);
  array.release(&array);
  EXPECT_EQ(array.release, nullptr);
}

TEST(ArrowExport, AColumnThatIsMovedOutOutlivesItsTable) {
  ArrowArray array;
  ExportBatch(NumberAndText(), TwoCases(NumberAndText()), &array);
  ArrowArray column = *array.children[1];
  array.children[1]->release = nullptr;
  array.release(&array);
  EXPECT_EQ(std::memcmp(column.buffers[2], "abc", 3), 0);
  column.release(&column);
}

TEST(ArrowExport, NoCasesHaveBuffersToo) {
  ArrowArray array;
  ExportBatch(NumberAndText(), {}, &array);
  EXPECT_EQ(array.length, 0);
  ASSERT_EQ(array.n_children, 2);
  EXPECT_NE(array.children[0]->buffers[1], nullptr);
  EXPECT_EQ(static_cast<const std::int32_t*>(array.children[1]->buffers[1])[0], 0);
  array.release(&array);
}

}  // namespace
}  // namespace library
