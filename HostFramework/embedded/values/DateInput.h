// Reading dates: DATE, ADATE, EDATE, SDATE, JDATE, QYR, MOYR, WKYR, and the parts WKDAY and MONTH.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

#include "HostFramework/embedded/values/TextCursor.h"

namespace embedded {

// The parts of dates. Each consumes what it reads; after a failure the cursor's place is undefined.
// `letters` says that the month was written as a name or a Roman numeral, so that it needs no
// separator from digits.
bool ReadDay(TextCursor& cursor, int& day);                     // 1 or 2 digits
bool ReadMonth(TextCursor& cursor, int& month, bool& letters);  // 1 to 12
bool ReadYear(TextCursor& cursor, int& year);                   // 2 or 4 digits, as four
// One of - / . , with blanks around it or not, or blanks. Nothing is an answer too: false.
bool ReadSeparator(TextCursor& cursor);

// Consumes day, month and year in this order and returns midnight of the date.
std::optional<std::int64_t> ReadDayMonthYear(TextCursor& cursor);

// Midnight of the date YYYY-MM-DD, with one of - / . , between its parts, that `text` begins with;
// 0 when it begins otherwise or there is no such date.
std::int64_t FixedYearMonthDay(std::string_view text);

// Each of these reads `text` (not empty, without blanks and tabs around it) to its end. Returns
// false and leaves *value alone when it is not a value of the format. Any thread; allocates
// nothing.
bool ReadDate(std::string_view text, double* value);  // DATE, EDATE
bool ReadADate(std::string_view text, double* value);
bool ReadSDate(std::string_view text, double* value);
bool ReadJDate(std::string_view text, double* value);
bool ReadQuarter(std::string_view text, double* value);      // QYR
bool ReadMonthOfYear(std::string_view text, double* value);  // MOYR
bool ReadWeek(std::string_view text, double* value);         // WKYR
bool ReadWeekday(std::string_view text, double* value);      // WKDAY
bool ReadMonthNumber(std::string_view text, double* value);  // MONTH

}  // namespace embedded
