#include "library/types/TypeChoice.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <string>
#include <string_view>

#include "library/types/ValueReader.h"

namespace library {
namespace {

using namespace textwizard;

// A text is said to be of mixed values when so many in a hundred have one type.
constexpr double kMixedShare = 50.0;
// Whole numbers of so many characters are exact as doubles.
constexpr int kExactDigits = 15;

Reading PlainOf(DecimalCharacter decimal) {
  return decimal == DecimalCharacter::kComma ? Reading::kComma : Reading::kPoint;
}
Reading PercentOf(DecimalCharacter decimal) {
  return decimal == DecimalCharacter::kComma ? Reading::kCommaPercent : Reading::kPointPercent;
}

// The text without a time zone at its end, such as "Z", "+01" or "-05:30"; all of it where there is
// none.
std::string_view WithoutZone(std::string_view text) {
  if (text.ends_with('Z') || text.ends_with('z')) return text.substr(0, text.size() - 1);
  const std::size_t sign = text.find_last_of("+-");
  if (sign == std::string_view::npos) return text;
  std::string zone(text.substr(sign + 1));
  if (zone.size() == 5 && zone[2] == ':') zone.erase(2, 1);
  const bool digits = zone.find_first_not_of("0123456789") == std::string::npos;
  return digits && (zone.size() == 2 || zone.size() == 4) ? text.substr(0, sign) : text;
}

// The first value that is no date-time is one but for its time zone.
bool HaveZones(const ColumnEvidence& column) {
  const std::string first = column.Unread(Reading::kYearMonthDayTime).text;
  const std::string_view rest = WithoutZone(first);
  return rest.size() < first.size() && ReadValue(rest).set.Has(Reading::kYearMonthDayTime);
}

// What one column says about the order of days and months, and what it would take for the dates
// that can be read either way.
enum class DayOrder { kNone, kDayFirst, kMonthFirst, kEither };

class Chooser {
 public:
  Chooser(const std::vector<ColumnEvidence>& columns, const TypeSettings& settings)
      : columns_(columns), settings_(settings) {}

  TypeChoice Choose() {
    ChooseDecimal();
    ChooseOrder();
    for (std::size_t index = 0; index < columns_.size(); ++index) {
      choice_.columns.push_back(TypeOf(index));
    }
    return std::move(choice_);
  }

 private:
  bool Enough(std::int64_t count, std::int64_t values) const {
    return count > 0 &&
           static_cast<double>(count) * 100.0 >= settings_.leastShare * static_cast<double>(values);
  }
  // Numbers under one decimal character or the other, percentages included.
  bool IsNumeric(const ColumnEvidence& column) const {
    return Enough(
        std::max(column.Read(Reading::kPointPercent), column.Read(Reading::kCommaPercent)),
        column.values());
  }

  void ChooseDecimal();
  void ChooseOrder();
  DayOrder OrderOf(const ColumnEvidence& column) const;
  std::vector<Reading> Candidates(const ColumnEvidence& column) const;
  bool MonthFirst(const ColumnEvidence& column) const;
  ChosenType TypeOf(std::size_t index) const;
  ChosenFormat FormatFor(Reading reading, const ColumnEvidence& column) const;
  void RemarkText(const ColumnEvidence& column, Reading best, ChosenType* type) const;
  void RemarkValues(const ColumnEvidence& column, Reading reading, ChosenType* type) const;
  void RemarkSeparators(const ColumnEvidence& column, Reading reading, ChosenType* type) const;
  void Widen(std::size_t index, ChosenType* type) const;

  const std::vector<ColumnEvidence>& columns_;
  const TypeSettings& settings_;
  TypeChoice choice_;
  // Of dates that can be read either way; kEither: nothing in the data says it.
  DayOrder order_ = DayOrder::kEither;
  // Dates with slashes, and those with points, are among what says it.
  bool orderHasSlashes_ = false;
  bool orderHasPoints_ = false;
};

// The decimal character that most columns are for, each by the values that only one of them reads;
// among as many columns, most values.
void Chooser::ChooseDecimal() {
  choice_.decimal = settings_.decimal;
  std::int64_t columnsFor[2] = {};
  std::int64_t valuesFor[2] = {};
  for (const ColumnEvidence& column : columns_) {
    if (!IsNumeric(column)) continue;
    const std::int64_t point = column.Only(Reading::kPointPercent, Reading::kCommaPercent).count;
    const std::int64_t comma = column.Only(Reading::kCommaPercent, Reading::kPointPercent).count;
    valuesFor[0] += point;
    valuesFor[1] += comma;
    columnsFor[0] += point > comma ? 1 : 0;
    columnsFor[1] += comma > point ? 1 : 0;
  }
  if (!settings_.decimalGiven && valuesFor[0] + valuesFor[1] > 0) {
    const bool comma = columnsFor[0] != columnsFor[1] ? columnsFor[1] > columnsFor[0]
                                                      : valuesFor[1] > valuesFor[0];
    choice_.decimal = comma ? DecimalCharacter::kComma : DecimalCharacter::kPoint;
  }
  const bool comma = choice_.decimal == DecimalCharacter::kComma;
  choice_.decimalAgainst = valuesFor[comma ? 0 : 1];
  const Reading chosen = PercentOf(choice_.decimal);
  const Reading other = PercentOf(comma ? DecimalCharacter::kPoint : DecimalCharacter::kComma);
  for (std::size_t index = 0; index < columns_.size(); ++index) {
    if (!IsNumeric(columns_[index])) continue;
    const Witness seen = columns_[index].Only(chosen, other);
    if (seen.line == 0) continue;
    if (choice_.decimalWitness.line != 0 && choice_.decimalWitness.line <= seen.line) continue;
    choice_.decimalWitness = seen;
    choice_.decimalColumn = index;
  }
}

DayOrder Chooser::OrderOf(const ColumnEvidence& column) const {
  const std::int64_t day = column.Read(Reading::kDayMonthYear);
  const std::int64_t month = column.Read(Reading::kMonthDayYear);
  if (Enough(std::max(day, month), column.values())) {
    return day > month   ? DayOrder::kDayFirst
           : month > day ? DayOrder::kMonthFirst
                         : DayOrder::kEither;
  }
  const std::int64_t times = column.Read(Reading::kDayMonthYearTime);
  if (!Enough(times, column.values())) return DayOrder::kNone;
  return column.eitherOrder().count < times ? DayOrder::kDayFirst : DayOrder::kEither;
}

// What the columns say that can say it, where they agree.
void Chooser::ChooseOrder() {
  bool dayFirst = false;
  bool monthFirst = false;
  for (const ColumnEvidence& column : columns_) {
    const DayOrder order = OrderOf(column);
    const bool says = order == DayOrder::kDayFirst || order == DayOrder::kMonthFirst;
    orderHasSlashes_ = orderHasSlashes_ || (says && column.slashed() > 0);
    orderHasPoints_ = orderHasPoints_ || (says && column.dotted() > 0);
    dayFirst = dayFirst || order == DayOrder::kDayFirst;
    monthFirst = monthFirst || order == DayOrder::kMonthFirst;
  }
  if (dayFirst != monthFirst) order_ = dayFirst ? DayOrder::kDayFirst : DayOrder::kMonthFirst;
}

// Of dates of a column that says nothing itself. Points between the parts are written where the day
// comes first.
bool Chooser::MonthFirst(const ColumnEvidence& column) const {
  const bool dotted = column.dotted() > column.slashed() + column.dashed();
  const bool decided = order_ != DayOrder::kEither && (!dotted || orderHasPoints_);
  return decided ? order_ == DayOrder::kMonthFirst : !dotted;
}

// The readings, those first that are meant where others read as many values.
std::vector<Reading> Chooser::Candidates(const ColumnEvidence& column) const {
  const bool comma = choice_.decimal == DecimalCharacter::kComma;
  std::vector<Reading> readings = {
      PlainOf(choice_.decimal),
      PlainOf(comma ? DecimalCharacter::kPoint : DecimalCharacter::kComma),
      PercentOf(choice_.decimal), Reading::kDollar};
  // Years of two digits in front are the least likely reading.
  const bool yearFirst = column.shortYears() == 0;
  if (yearFirst) readings.push_back(Reading::kYearMonthDay);
  readings.push_back(Reading::kYearMonthDayTime);
  const bool monthFirst = MonthFirst(column);
  readings.push_back(monthFirst ? Reading::kMonthDayYear : Reading::kDayMonthYear);
  readings.push_back(monthFirst ? Reading::kDayMonthYear : Reading::kMonthDayYear);
  if (!yearFirst) readings.push_back(Reading::kYearMonthDay);
  const bool ambiguousTimes = column.namedMonths() == 0 && column.dotted() == 0 &&
                              order_ != DayOrder::kDayFirst &&
                              column.eitherOrder().count >= column.Read(Reading::kDayMonthYearTime);
  // No format reads the month first there, so that nothing but a text is sure to be right.
  if (!ambiguousTimes) readings.push_back(Reading::kDayMonthYearTime);
  for (const Reading reading :
       {Reading::kTime, Reading::kDaysTime, Reading::kMinutesSeconds, Reading::kQuarter,
        Reading::kMonthYear, Reading::kWeek, Reading::kDayName, Reading::kMonthName}) {
    readings.push_back(reading);
  }
  return readings;
}

ChosenFormat Chooser::FormatFor(Reading reading, const ColumnEvidence& column) const {
  std::uint32_t code = FormatOf(reading);
  if (reading == PlainOf(choice_.decimal)) {
    const NumberEvidence& numbers =
        choice_.decimal == DecimalCharacter::kComma ? column.comma() : column.point();
    if (numbers.grouped.count == 0) code = numbers.exponents > 0 ? kFormatE : kFormatF;
  } else if (reading == Reading::kDayMonthYear && column.namedMonths() == 0) {
    code = kFormatEDate;
  }
  return FitFormat(code, column, choice_.decimal);
}

ChosenType Chooser::TypeOf(std::size_t index) const {
  const ColumnEvidence& column = columns_[index];
  ChosenType type;
  std::optional<Reading> best;
  std::int64_t most = 0;
  for (const Reading reading : Candidates(column)) {
    const std::int64_t count = column.Read(reading);
    if (count <= most) continue;
    most = count;
    best = reading;
  }
  const bool isText = !best || !Enough(most, column.values());
  const bool loses = !isText && IsNumber(*best) &&
                     (column.leadingZeros().count > 0 || column.lostDigits().count > 0);
  if (isText || loses) {
    type.format = FitFormat(kFormatA, column, choice_.decimal);
    if (isText && HaveZones(column)) {
      type.remarks.push_back(
          {ColumnRemark::kTimeZone, column.Unread(Reading::kYearMonthDayTime), std::nullopt});
    } else if (best) {
      RemarkText(column, *best, &type);
    }
  } else {
    type.format = FormatFor(*best, column);
    const NumberEvidence& numbers = *best == Reading::kComma ? column.comma() : column.point();
    type.wholeNumbers = (*best == Reading::kPoint || *best == Reading::kComma) &&
                        numbers.fractions == 0 && numbers.exponents == 0 &&
                        numbers.whole <= kExactDigits;
    RemarkValues(column, *best, &type);
  }
  if (column.longest().count > static_cast<std::int64_t>(kMaxStringWidth) &&
      type.format.code == kFormatA) {
    type.remarks.push_back({ColumnRemark::kTooLong, column.longest(), std::nullopt});
  }
  Widen(index, &type);
  return type;
}

// Why a column is a text although most of its values are something else.
void Chooser::RemarkText(const ColumnEvidence& column, Reading best, ChosenType* type) const {
  const std::int64_t read = column.Read(best);
  const ChosenFormat other = FormatFor(best, column);
  if (!Enough(read, column.values())) {
    if (static_cast<double>(read) * 100.0 >= kMixedShare * static_cast<double>(column.values())) {
      type->remarks.push_back({ColumnRemark::kMixed, column.Unread(best), other});
    }
  } else if (column.leadingZeros().count > 0) {
    type->remarks.push_back({ColumnRemark::kLeadingZeros, column.leadingZeros(), other});
  } else {
    type->remarks.push_back({ColumnRemark::kLostDigits, column.lostDigits(), other});
  }
}

void Chooser::RemarkValues(const ColumnEvidence& column, Reading reading, ChosenType* type) const {
  if (const Witness unread = column.Unread(reading); unread.count > 0) {
    type->remarks.push_back({ColumnRemark::kUnreadable, unread, std::nullopt});
  }
  if (reading == Reading::kMonthDayYear || reading == Reading::kDayMonthYear) {
    const Reading other =
        reading == Reading::kMonthDayYear ? Reading::kDayMonthYear : Reading::kMonthDayYear;
    // Dates with points say little about the order of those with slashes.
    const bool alike =
        (column.slashed() == 0 || orderHasSlashes_) && (column.dotted() == 0 || orderHasPoints_);
    const bool decided =
        column.Read(reading) != column.Read(other) || (order_ != DayOrder::kEither && alike);
    if (!decided && column.namedMonths() == 0) {
      type->remarks.push_back(
          {ColumnRemark::kDayOrMonth, column.Both(reading, other), FormatFor(other, column)});
    }
  }
  RemarkSeparators(column, reading, type);
}

// A point or comma that may be the decimal character or the other one.
void Chooser::RemarkSeparators(const ColumnEvidence& column, Reading reading,
                               ChosenType* type) const {
  const bool percent = reading == Reading::kPointPercent || reading == Reading::kCommaPercent;
  if (!percent && reading != Reading::kPoint && reading != Reading::kComma) return;
  const bool point = reading == Reading::kPoint || reading == Reading::kPointPercent;
  const Reading other = percent ? (point ? Reading::kCommaPercent : Reading::kPointPercent)
                                : (point ? Reading::kComma : Reading::kPoint);
  const NumberEvidence& numbers = point ? column.point() : column.comma();
  const NumberEvidence& others = point ? column.comma() : column.point();
  // Every separator of the column can be either; the rest of the data does not say which.
  const bool open = column.Only(reading, other).count == 0 &&
                    (numbers.grouped.count > 0 || others.grouped.count > 0);
  if (!open || choice_.decimalWitness.line != 0 || settings_.decimalGiven) return;
  const Witness& seen = numbers.grouped.count > 0 ? numbers.grouped : others.grouped;
  ColumnRemark remark{ColumnRemark::kDecimalOrGroup, seen, std::nullopt};
  // Percentages are read by the decimal character of all numbers.
  if (!percent) remark.other = FitFormat(FormatOf(other), column, choice_.decimal);
  type->remarks.push_back(std::move(remark));
}

// A format that is narrower than its fixed column would cut it.
void Chooser::Widen(std::size_t index, ChosenType* type) const {
  if (index >= settings_.columnWidths.size()) return;
  const std::uint32_t width = settings_.columnWidths[index];
  if (type->format.code != kFormatA && width > kMaxNumberWidth) type->format = {kFormatA, 1, 0};
  type->format.width = std::clamp(width, type->format.width, kMaxStringWidth);
}

}  // namespace

TypeChoice ChooseTypes(const std::vector<ColumnEvidence>& columns, const TypeSettings& settings) {
  return Chooser(columns, settings).Choose();
}

}  // namespace library
