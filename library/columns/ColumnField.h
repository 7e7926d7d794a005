// What a column is: its name, the type of its values, and where they lie in a case.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "HostFramework/DataSource.h"

namespace library {

enum class ColumnType : std::uint8_t {
  kFloat64,
  kInt64,
  kInt8,
  kDate32,           // days since 1970-01-01
  kTimestampMicros,  // microseconds since 1970-01-01 00:00:00, of no time zone
  kDurationMicros,
  kUtf8,       // text with offsets of 32 bits
  kLargeUtf8,  // the same with offsets of 64 bits
};

// Cases of a batch, at most.
inline constexpr std::size_t kBatchCases = 65536;

struct ColumnField {
  std::string name;      // of the column (UTF-8)
  std::string variable;  // of the variable behind it (UTF-8)
  std::string label;     // UTF-8; may be empty
  std::string format;    // such as "F8.2"
  int width = 0;         // columns that a listing gives it
  ColumnType type = ColumnType::kFloat64;
  std::size_t cell = 0;   // its first cell in a case
  std::size_t bytes = 0;  // of a string; 0 for a number
};

inline bool IsText(ColumnType type) {
  return type == ColumnType::kUtf8 || type == ColumnType::kLargeUtf8;
}

// Bytes of a value; of text, of an offset.
std::size_t ValueBytes(ColumnType type);

// The type that holds the values of a variable of display format `formatCode` and of `stringBytes`
// bytes (0 for a number).
ColumnType TypeOf(int formatCode, std::size_t stringBytes);

}  // namespace library
