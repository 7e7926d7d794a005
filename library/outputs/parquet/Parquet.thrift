// The headers and the footer of Parquet files, as far as flat tables need them. Field numbers are the
// format's.
namespace cpp parquetformat

enum Type {
  BOOLEAN = 0,
  INT32 = 1,
  INT64 = 2,
  INT96 = 3,
  FLOAT = 4,
  DOUBLE = 5,
  BYTE_ARRAY = 6,
  FIXED_LEN_BYTE_ARRAY = 7
}

enum ConvertedType {
  UTF8 = 0,
  DATE = 6,
  TIMESTAMP_MICROS = 10,
  INT_8 = 15,
  INT_64 = 18
}

enum FieldRepetitionType {
  REQUIRED = 0,
  OPTIONAL = 1,
  REPEATED = 2
}

enum Encoding {
  PLAIN = 0,
  RLE = 3,
  DELTA_BINARY_PACKED = 5,
  DELTA_LENGTH_BYTE_ARRAY = 6,
  RLE_DICTIONARY = 8,
  BYTE_STREAM_SPLIT = 9
}

enum CompressionCodec {
  UNCOMPRESSED = 0,
  ZSTD = 6
}

enum PageType {
  DATA_PAGE = 0,
  DICTIONARY_PAGE = 2
}

struct Statistics {
  3: optional i64 null_count
  5: optional binary max_value
  6: optional binary min_value
}

struct StringType {}
struct DateType {}
struct MicroSeconds {}

union TimeUnit {
  2: MicroSeconds MICROS
}

struct TimestampType {
  1: required bool isAdjustedToUTC
  2: required TimeUnit unit
}

struct IntType {
  1: required i8 bitWidth
  2: required bool isSigned
}

union LogicalType {
  1: StringType STRING
  6: DateType DATE
  8: TimestampType TIMESTAMP
  10: IntType INTEGER
}

struct SchemaElement {
  1: optional Type type
  3: optional FieldRepetitionType repetition_type
  4: required string name
  5: optional i32 num_children
  6: optional ConvertedType converted_type
  10: optional LogicalType logicalType
}

struct DataPageHeader {
  1: required i32 num_values
  2: required Encoding encoding
  3: required Encoding definition_level_encoding
  4: required Encoding repetition_level_encoding
}

struct DictionaryPageHeader {
  1: required i32 num_values
  2: required Encoding encoding
}

struct PageHeader {
  1: required PageType type
  2: required i32 uncompressed_page_size
  3: required i32 compressed_page_size
  5: optional DataPageHeader data_page_header
  7: optional DictionaryPageHeader dictionary_page_header
}

struct KeyValue {
  1: required string key
  2: optional string value
}

struct ColumnMetaData {
  1: required Type type
  2: required list<Encoding> encodings
  3: required list<string> path_in_schema
  4: required CompressionCodec codec
  5: required i64 num_values
  6: required i64 total_uncompressed_size
  7: required i64 total_compressed_size
  9: required i64 data_page_offset
  11: optional i64 dictionary_page_offset
  12: optional Statistics statistics
}

struct ColumnChunk {
  2: required i64 file_offset
  3: optional ColumnMetaData meta_data
}

struct RowGroup {
  1: required list<ColumnChunk> columns
  2: required i64 total_byte_size
  3: required i64 num_rows
  5: optional i64 file_offset
  6: optional i64 total_compressed_size
  7: optional i16 ordinal
}

struct TypeDefinedOrder {}

union ColumnOrder {
  1: TypeDefinedOrder TYPE_ORDER
}

struct FileMetaData {
  1: required i32 version
  2: required list<SchemaElement> schema
  3: required i64 num_rows
  4: required list<RowGroup> row_groups
  5: optional list<KeyValue> key_value_metadata
  6: optional string created_by
  7: optional list<ColumnOrder> column_orders
}
