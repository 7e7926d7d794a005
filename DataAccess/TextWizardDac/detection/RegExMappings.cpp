#include "detection/RegExMappings.h"

#include <array>
#include <cstddef>
#include <iterator>
#include <utility>

#include <langinfo.h>

#include "HostFramework/Text.h"
#include "model/FormatCode.h"

namespace textwizard {

namespace {

// The names that stand for "%s" in a row's pattern.
enum class NameList { kNone, kShortDays, kDays, kShortMonths, kMonths };

struct RowText {
  std::int32_t key;
  std::int16_t width;
  std::int16_t decimals;
  FormatCode formatType;
  NameList names;
  const char* formatName;
  const char* icuPattern;
  const char* regex;
};

// Values are lower-cased before they are matched.
constexpr RowText kRows[] = {
    // clang-format off
    {1000, 11, 0, kFormatDate, NameList::kNone, "DATE11", "dd-MMM-yyyy",
     R"(^([0]?[1-9]|[1|2][0-9]|[3][0|1])(\-|\.|\,|\/|\s)?[a-zA-Z]{3}(\-|\.|\,|\/|\s)?\d{4}$)"},
    {1001, 9, 0, kFormatDate, NameList::kNone, "DATE9", "dd-MMM-yy",
     R"(^([0]?[1-9]|[1|2][0-9]|[3][0|1])(\-|\.|\,|\/|\s)?[a-zA-Z]{3}(\-|\.|\,|\/|\s)?\d{2}$)"},
    {1002, 10, 0, kFormatADate, NameList::kNone, "ADATE10", "MM/dd/yyyy",
     R"(^([0]?[1-9]|[1][0-2])/([0]?[1-9]|[1|2][0-9]|[3][0|1])/\d{4}$)"},
    {1003, 8, 0, kFormatADate, NameList::kNone, "ADATE8", "MM/dd/yy",
     R"(^([0]?[1-9]|[1][0-2])/([0]?[1-9]|[1|2][0-9]|[3][0|1])/\d{2}$)"},
    {1004, 10, 0, kFormatEDate, NameList::kNone, "EDATE10", "dd.MM.yyyy",
     R"(^([0]?[1-9]|[1|2][0-9]|[3][0|1])\.([0]?[1-9]|[1][0-2])\.\d{4}$)"},
    {1005, 8, 0, kFormatEDate, NameList::kNone, "EDATE8", "dd.MM.yy",
     R"(^([0]?[1-9]|[1|2][0-9]|[3][0|1])\.([0]?[1-9]|[1][0-2])\.\d{2}$)"},
    {1008, 8, 0, kFormatSDate, NameList::kNone, "SDATE8", "yy/MM/dd",
     R"(^\d{2}/([0]?[1-9]|[1][0-2])/([0]?[1-9]|[1|2][0-9]|[3][0|1])$)"},
    {1009, 10, 0, kFormatSDate, NameList::kNone, "SDATE10", "yyyy/MM/dd",
     R"(^\d{4}/([0]?[1-9]|[1][0-2])/([0]?[1-9]|[1|2][0-9]|[3][0|1])$)"},
    {1010, 6, 0, kFormatQyr, NameList::kNone, "QYR6", "q Q yy",
     R"(^[1234](\s?)[Qq](\s?)\d{2}$)"},
    {1011, 8, 0, kFormatQyr, NameList::kNone, "QYR8", "q Q yyyy",
     R"(^[1234](\s?)[Qq](\s?)\d{4}$)"},
    {1012, 6, 0, kFormatMoyr, NameList::kShortMonths, "MOYR6", "MMM yy",
     R"(^(%s)\s\d{2}$)"},
    {1013, 8, 0, kFormatMoyr, NameList::kShortMonths, "MOYR8", "MMM yyyy",
     R"(^(%s)\s\d{4}$)"},
    {1014, 8, 0, kFormatWkyr, NameList::kNone, "WKYR8", "ww WK yy",
     R"(^([0]?[1-9]|[1|2|3|4][0-9]|[5][0-3])(\s?)[wW][kK](\s?)\d{2}$)"},
    {1015, 10, 0, kFormatWkyr, NameList::kNone, "WKYR10", "ww WK yyyy",
     R"(^([0]?[1-9]|[1|2|3|4][0-9]|[5][0-3])(\s?)[wW][kK](\s?)\d{4}$)"},
    {1016, 9, 0, kFormatWkday, NameList::kDays, "WKDAY9", "EEEE",
     R"(^(%s)$)"},
    {1017, 9, 0, kFormatMonth, NameList::kMonths, "MONTH9", "MMMM",
     R"(^(%s)$)"},
    {1018, 5, 0, kFormatTime, NameList::kNone, "TIME5", "hh:mm",
     R"(^(\-|\+?)(\d{1,}):([0-5]?[0-9])$)"},
    {1019, 8, 0, kFormatTime, NameList::kNone, "TIME8", "hh:mm:ss",
     R"(^(\-|\+?)(\d{1,}):([0-5]?[0-9]):([0-5]?[0-9])$)"},
    {1020, 11, 2, kFormatTime, NameList::kNone, "TIME11.2", "hh:mm:ss.ss",
     R"(^(\-|\+?)(\d{1,}):([0-5]?[0-9]):([0-5]?[0-9])(\-|\.|\,|\/|\s)\d{1,}$)"},
    {1021, 9, 0, kFormatDTime, NameList::kNone, "DTIME9", "ddd hh:mm",
     R"(^(\-|\+?)([0-9]{1,3})\s([0-1]?[0-9]|[2][0-3]):([0-5][0-9])$)"},
    {1022, 15, 2, kFormatDTime, NameList::kNone, "DTIME15.2", "ddd hh:mm:ss.ss",
     R"(^(\-|\+?)([0-9]{1,3})\s([0-1]?[0-9]|[2][0-3]):([0-5][0-9]):([0-5][0-9])\.\d{1,}$)"},
    {1023, 17, 0, kFormatDateTime, NameList::kNone, "DATETIME17", "dd-MMM-yyyy HH:mm",
     R"(^([0]?[1-9]|[1|2][0-9]|[3][0|1])-[a-zA-Z]{3}-\d{4}\s([0-1]?[0-9]|[2][0-3]):)"
     R"(([0-5][0-9])$)"},
    {1024, 23, 2, kFormatDateTime, NameList::kNone, "DATETIME23.2", "dd-MMM-yyyy HH:mm:ss.ss",
     R"(^([0]?[1-9]|[1|2][0-9]|[3][0|1])-[a-zA-Z]{3}-\d{4}\s([0-1]?[0-9]|[2][0-3]):)"
     R"(([0-5][0-9]):([0-5][0-9])(\.|\s)\d{1,}$)"},
    {1100, 20, 0, kFormatDateTime, NameList::kNone, "DATETIME20", "dd-MMM-yyyy HH:mm:ss",
     R"(^([0]?[1-9]|[1|2][0-9]|[3][0|1])-[a-zA-Z]{3}-\d{4}\s([0-1]?[0-9]|[2][0-3]):)"
     R"(([0-5][0-9]):([0-5][0-9])$)"},
    {1101, 12, 0, kFormatDTime, NameList::kNone, "DTIME12", "ddd hh:mm:ss",
     R"(^(\-|\+?)([0-9]{1,3})\s([0-1]?[0-9]|[2][0-3]):([0-5][0-9]):([0-5][0-9])$)"},
    {1102, 3, 0, kFormatWkday, NameList::kShortDays, "WKDAY3", "EEE",
     R"(^(%s)$)"},
    {1103, 3, 0, kFormatMonth, NameList::kShortMonths, "MONTH3", "MMM",
     R"(^(%s)$)"},
    {1113, 16, 0, kFormatYmdhms, NameList::kNone, "YMDHMS16", "yyyy-MM-dd HH:mm",
     R"(^(\d{2}|\d{4})(?:\-|\/|\.|\,|\s)?([0]{1}\d{1}|[1]{1}[0-2]{1})(?:\-|\/|\.|\,|\s)?)"
     R"(([0-2]{1}\d{1}|[3]{1}[0-1]{1})(?:T|\s)?([0-1]{1}\d{1}|[2]{1}[0-3]{1})(?::|\.|\,|\s))"
     R"(([0-5]{1}\d{1})$)"},
    {1114, 19, 0, kFormatYmdhms, NameList::kNone, "YMDHMS19", "yyyy-MM-dd HH:mm:ss",
     R"(^(\d{2}|\d{4})(?:\-|\/|\.|\,|\s)?([0]{1}\d{1}|[1]{1}[0-2]{1})(?:\-|\/|\.|\,|\s)?)"
     R"(([0-2]{1}\d{1}|[3]{1}[0-1]{1})(?:T|\s)?([0-1]{1}\d{1}|[2]{1}[0-3]{1})(?::|\.|\,|\s))"
     R"(([0-5]{1}\d{1})(?::|\.|\,|\s)([0-5]{1}\d{1})$)"},
    {1115, 22, 2, kFormatYmdhms, NameList::kNone, "YMDHMS22.2", "yyyy-MM-dd HH:mm:ss.ss",
     R"(^(\d{2}|\d{4})(?:\-|\/|\.|\,|\s)?([0]{1}\d{1}|[1]{1}[0-2]{1})(?:\-|\/|\.|\,|\s)?)"
     R"(([0-2]{1}\d{1}|[3]{1}[0-1]{1})(?:T|\s)?([0-1]{1}\d{1}|[2]{1}[0-3]{1})(?::|\.|\,|\s))"
     R"(([0-5]{1}\d{1})(?::|\.|\,|\s)([0-5]{1}\d{1})((:|\.|\,)\d{1,})$)"},
    {1116, 5, 0, kFormatMTime, NameList::kNone, "MTIME5", "mm:ss",
     R"(^(\-|\+?)(\d{1,})((:|\.|\,|\s)?)(([0-5]{1}\d{1})|(\d{1}))$)"},
    {1117, 7, 1, kFormatMTime, NameList::kNone, "MTIME7", "mm:ss.s",
     R"(^(\-|\+?)(\d{1,})((:|\.|\,|\s)?)(([0-5]{1}\d{1})|(\d{1}))(:|\.|\,)\d{1,}$)"},
    // clang-format on
};

static_assert(std::size(kRows) <= kMostDateRows);

constexpr std::array<nl_item, 7> kShortDayItems = {ABDAY_1, ABDAY_2, ABDAY_3, ABDAY_4,
                                                   ABDAY_5, ABDAY_6, ABDAY_7};
constexpr std::array<nl_item, 7> kDayItems = {DAY_1, DAY_2, DAY_3, DAY_4, DAY_5, DAY_6, DAY_7};
constexpr std::array<nl_item, 12> kShortMonthItems = {ABMON_1, ABMON_2,  ABMON_3,  ABMON_4,
                                                      ABMON_5, ABMON_6,  ABMON_7,  ABMON_8,
                                                      ABMON_9, ABMON_10, ABMON_11, ABMON_12};
constexpr std::array<nl_item, 12> kMonthItems = {MON_1, MON_2, MON_3, MON_4,  MON_5,  MON_6,
                                                 MON_7, MON_8, MON_9, MON_10, MON_11, MON_12};

// A longer name is cut here, at a whole character: a part of one would match nothing.
constexpr std::size_t kMaxNameBytes = 15;

template <std::size_t N>
std::string JoinNames(const std::array<nl_item, N>& items) {
  std::string joined;
  for (const nl_item item : items) {
    char name[kMaxNameBytes + 1];
    QANTMBstrncpy_A(name, nl_langinfo(item), kMaxNameBytes);
    QANTMBstrlwr_A(name);
    joined.append(item == items.front() ? "" : "|").append(name);
  }
  return joined;
}

std::string WithNames(const RowText& row) {
  std::string names;
  switch (row.names) {
    case NameList::kNone:
      return row.regex;
    case NameList::kShortDays:
      names = JoinNames(kShortDayItems);
      break;
    case NameList::kDays:
      names = JoinNames(kDayItems);
      break;
    case NameList::kShortMonths:
      names = JoinNames(kShortMonthItems);
      break;
    case NameList::kMonths:
      names = JoinNames(kMonthItems);
      break;
  }
  std::string regex = row.regex;
  return regex.replace(regex.find("%s"), 2, names);
}

}  // namespace

RegExMappings::RegExMappings()
    : percentRegex(R"(^-?\d*(\.\d+)? *%?$)"),
      dollarRegex(R"(^\$(\-?)(\d{1,3}(\,\d{3})*|(\d+))(\.\d{1,})?\s*$)"),
      commaRegex(R"(^(\-?)(\d{1,3}(\,\d{3})*|(\d+))(\.\d{1,})?\s*$)"),
      dotRegex(R"(^(\-?)(\d{1,3}(\.\d{3})*|(\d+))(\,\d{1,})?\s*$)") {
  InitRegExMappings();
}

RegExMappings::~RegExMappings() = default;

void RegExMappings::InitRegExMappings() {
  percentMatcher = PatternMatcher(percentRegex);
  dollarMatcher = PatternMatcher(dollarRegex);
  commaMatcher = PatternMatcher(commaRegex);
  dotMatcher = PatternMatcher(dotRegex);
  for (const RowText& text : kRows) {
    RegExToFormatMapping row;
    row.key = text.key;
    row.width = text.width;
    row.decimals = text.decimals;
    row.formatType = static_cast<std::int32_t>(text.formatType);
    row.formatName = text.formatName;
    row.icuPattern = text.icuPattern;
    row.regex = WithNames(text);
    row.matcher = PatternMatcher(row.regex);
    rows_.emplace(row.key, std::move(row));
  }
}

}  // namespace textwizard
