#include "library/columns/ColumnField.h"

#include <limits>

#include "HostFramework/embedded/values/FormatCodes.h"

namespace library {
namespace {

// UTF-8 takes at most so many bytes for one of host text: a byte that is no character becomes
// U+FFFD.
constexpr std::size_t kUtf8Growth = 3;

}  // namespace

std::size_t ValueBytes(ColumnType type) {
  switch (type) {
    case ColumnType::kInt8:
      return 1;
    case ColumnType::kDate32:
    case ColumnType::kUtf8:
      return 4;
    case ColumnType::kFloat64:
    case ColumnType::kInt64:
    case ColumnType::kTimestampMicros:
    case ColumnType::kDurationMicros:
    case ColumnType::kLargeUtf8:
      break;
  }
  return 8;
}

ColumnType TypeOf(int formatCode, std::size_t stringBytes) {
  if (stringBytes != 0) {
    constexpr auto kMost = static_cast<std::size_t>(std::numeric_limits<std::int32_t>::max());
    return stringBytes > kMost / kUtf8Growth / kBatchCases ? ColumnType::kLargeUtf8
                                                           : ColumnType::kUtf8;
  }
  switch (formatCode) {
    case embedded::kDate:
    case embedded::kADate:
    case embedded::kEDate:
    case embedded::kSDate:
    case embedded::kJDate:
    case embedded::kMoyr:
    case embedded::kQyr:
    case embedded::kWkyr:
      return ColumnType::kDate32;
    case embedded::kDateTime:
    case embedded::kYmdhms:
      return ColumnType::kTimestampMicros;
    case embedded::kTime:
    case embedded::kDTime:
    case embedded::kMTime:
      return ColumnType::kDurationMicros;
    case embedded::kWkday:
    case embedded::kMonth:
      return ColumnType::kInt8;
    default:
      return ColumnType::kFloat64;
  }
}

}  // namespace library
