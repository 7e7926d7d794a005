// The display formats that the host's variables carry: their codes, names and smallest widths.
#pragma once

#include <cstdint>
#include <string_view>

// As variables carry them and callers hand them in, as plain integers.
enum FormatCode {
  kFormatA = 1,
  kFormatAHex = 2,
  kFormatComma = 3,
  kFormatDollar = 4,
  kFormatF = 5,
  kFormatIb = 6,
  kFormatPibHex = 7,
  kFormatP = 8,
  kFormatPib = 9,
  kFormatPk = 10,
  kFormatRb = 11,
  kFormatRbHex = 12,
  kFormatZ = 15,
  kFormatN = 16,
  kFormatE = 17,
  kFormatDate = 20,
  kFormatTime = 21,
  kFormatDateTime = 22,
  kFormatADate = 23,
  kFormatJDate = 24,
  kFormatDTime = 25,
  kFormatWkday = 26,
  kFormatMonth = 27,
  kFormatMoyr = 28,
  kFormatQyr = 29,
  kFormatWkyr = 30,
  kFormatPct = 31,
  kFormatDot = 32,
  kFormatCca = 33,
  kFormatCcb = 34,
  kFormatCcc = 35,
  kFormatCcd = 36,
  kFormatCce = 37,
  kFormatEDate = 38,
  kFormatSDate = 39,
  kFormatG = 40,
  kFormatMTime = 85,
  kFormatYmdhms = 86,
};

// What the values of a format are.
enum class ValueKind {
  kString,
  kNumber,    // the number itself; also of a day of the week and a month
  kDate,      // seconds since 1582-10-14 at midnight
  kDateTime,  // the same with a time of day
  kTime,      // seconds
};

struct DisplayFormat {
  FormatCode code;
  std::string_view name;  // as a command writes it
  ValueKind kind;
  // The smallest width at which a value can be shown without decimals.
  int minWidth;
  // The smallest width with decimals is their number and this; 0 where decimals take no room.
  int minWidthBesideDecimals;

  constexpr std::int64_t MinWidth(std::int64_t decimals) const {
    return decimals <= 0 || minWidthBesideDecimals == 0 ? minWidth
                                                        : decimals + minWidthBesideDecimals;
  }
};

inline constexpr DisplayFormat kDisplayFormats[] = {
    {kFormatA, "A", ValueKind::kString, 1, 0},
    {kFormatAHex, "AHEX", ValueKind::kString, 1, 0},
    {kFormatComma, "COMMA", ValueKind::kNumber, 1, 1},
    {kFormatDollar, "DOLLAR", ValueKind::kNumber, 2, 2},
    {kFormatF, "F", ValueKind::kNumber, 1, 1},
    {kFormatIb, "IB", ValueKind::kNumber, 1, 0},
    {kFormatPibHex, "PIBHEX", ValueKind::kNumber, 1, 0},
    {kFormatP, "P", ValueKind::kNumber, 1, 0},
    {kFormatPib, "PIB", ValueKind::kNumber, 1, 0},
    {kFormatPk, "PK", ValueKind::kNumber, 1, 0},
    {kFormatRb, "RB", ValueKind::kNumber, 1, 0},
    {kFormatRbHex, "RBHEX", ValueKind::kNumber, 1, 0},
    {kFormatZ, "Z", ValueKind::kNumber, 1, 0},
    {kFormatN, "N", ValueKind::kNumber, 1, 0},
    {kFormatE, "E", ValueKind::kNumber, 8, 7},
    {kFormatDate, "DATE", ValueKind::kDate, 9, 0},
    {kFormatTime, "TIME", ValueKind::kTime, 5, 9},
    {kFormatDateTime, "DATETIME", ValueKind::kDateTime, 17, 21},
    {kFormatADate, "ADATE", ValueKind::kDate, 8, 0},
    {kFormatJDate, "JDATE", ValueKind::kDate, 5, 0},
    {kFormatDTime, "DTIME", ValueKind::kTime, 9, 13},
    {kFormatWkday, "WKDAY", ValueKind::kNumber, 2, 0},
    {kFormatMonth, "MONTH", ValueKind::kNumber, 3, 0},
    {kFormatMoyr, "MOYR", ValueKind::kDate, 6, 0},
    {kFormatQyr, "QYR", ValueKind::kDate, 6, 0},
    {kFormatWkyr, "WKYR", ValueKind::kDate, 8, 0},
    {kFormatPct, "PCT", ValueKind::kNumber, 2, 2},
    {kFormatDot, "DOT", ValueKind::kNumber, 1, 1},
    {kFormatCca, "CCA", ValueKind::kNumber, 1, 0},
    {kFormatCcb, "CCB", ValueKind::kNumber, 1, 0},
    {kFormatCcc, "CCC", ValueKind::kNumber, 1, 0},
    {kFormatCcd, "CCD", ValueKind::kNumber, 1, 0},
    {kFormatCce, "CCE", ValueKind::kNumber, 1, 0},
    {kFormatEDate, "EDATE", ValueKind::kDate, 8, 0},
    {kFormatSDate, "SDATE", ValueKind::kDate, 8, 0},
    {kFormatG, "G", ValueKind::kNumber, 1, 0},
    {kFormatMTime, "MTIME", ValueKind::kTime, 3, 4},
    {kFormatYmdhms, "YMDHMS", ValueKind::kDateTime, 12, 15},
};

// The format of that code; null when the code is none.
constexpr const DisplayFormat* DisplayFormatOf(std::int64_t code) {
  for (const DisplayFormat& format : kDisplayFormats) {
    if (format.code == code) return &format;
  }
  return nullptr;
}

// Formats whose values, where they were found in data, need more width than a command may give
// them. They are found by layouts that write minutes with their seconds and dates with a year of
// four digits; a command may ask for m:s and for yymmddhhmm.
struct FoundWidth {
  FormatCode code;
  int minWidth;
};
inline constexpr FoundWidth kFoundWidths[] = {{kFormatMTime, 5}, {kFormatYmdhms, 16}};

// The smallest width of a format that was found in data.
constexpr int MinWidthFound(const DisplayFormat& format) {
  for (const FoundWidth& found : kFoundWidths) {
    if (found.code == format.code) return found.minWidth;
  }
  return format.minWidth;
}
