#include "library/columns/ColumnField.h"

#include <limits>

#include "HostFramework/Formats.h"

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
    case kFormatDate:
    case kFormatADate:
    case kFormatEDate:
    case kFormatSDate:
    case kFormatJDate:
    case kFormatMoyr:
    case kFormatQyr:
    case kFormatWkyr:
      return ColumnType::kDate32;
    case kFormatDateTime:
    case kFormatYmdhms:
      return ColumnType::kTimestampMicros;
    case kFormatTime:
    case kFormatDTime:
    case kFormatMTime:
      return ColumnType::kDurationMicros;
    case kFormatWkday:
    case kFormatMonth:
      return ColumnType::kInt8;
    default:
      return ColumnType::kFloat64;
  }
}

}  // namespace library
