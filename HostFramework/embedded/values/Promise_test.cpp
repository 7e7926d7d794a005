// What is recognised as a date or time converts: every text of a layout has a value under the
// layout's format, unless its month or date does not exist or lies outside the calendar, minutes
// and seconds are not separated, or the hour is glued to a date of two-digit year with separators.
// The texts are made from the layouts' grammar, and each is
// matched against the layout's expression, so that what is tested is what is recognised.
#include <array>
#include <functional>

#include <langinfo.h>
#include <unicode/regex.h>

#include "HostFramework/Text.h"
#include "HostFramework/embedded/values/testing/LayoutText.h"
#include "HostFramework/embedded/values/testing/ValueInputTesting.h"

namespace embedded {
namespace {

// The process locale's names as they stand in the expressions: in lower case.
struct LocaleNames {
  std::vector<std::string> months, shortMonths, days, shortDays;

  static LocaleNames Current() {
    return {Read(MON_1, 12), Read(ABMON_1, 12), Read(DAY_1, 7), Read(ABDAY_1, 7)};
  }

 private:
  static std::vector<std::string> Read(nl_item first, int count) {
    std::vector<std::string> names;
    for (int i = 0; i < count; ++i) {
      std::string name = nl_langinfo(first + i);
      QANTMBstrlwr_A(name.data());
      names.push_back(name);
    }
    return names;
  }
};

std::string Joined(const std::vector<std::string>& names) {
  std::string joined;
  for (const std::string& name : names) joined += (joined.empty() ? "" : "|") + name;
  return joined;
}

struct Layout {
  int key;
  int format;
  std::string expression;
  std::function<void(LayoutText&)> make;
};

void MakeLettersDate(LayoutText& text, int yearDigits) {
  const auto day = text.Day();
  text.MaybeSeparator();
  const auto month = text.MonthLetters();
  text.MaybeSeparator();
  const int year = text.Year(yearDigits);
  text.IsDate(year, month, day);
}

void MakeMonthDayYear(LayoutText& text, int yearDigits) {
  const auto month = text.Month();
  text.Literal("/");
  const auto day = text.Day();
  text.Literal("/");
  text.IsDate(text.Year(yearDigits), month, day);
}

void MakeDayMonthYear(LayoutText& text, int yearDigits) {
  const auto day = text.Day();
  text.Literal(".");
  const auto month = text.Month();
  text.Literal(".");
  text.IsDate(text.Year(yearDigits), month, day);
}

void MakeYearMonthDay(LayoutText& text, int yearDigits) {
  const int year = text.Year(yearDigits);
  text.Literal("/");
  const auto month = text.Month();
  text.Literal("/");
  text.IsDate(year, month, text.Day());
}

void MakeQuarter(LayoutText& text, int yearDigits) {
  const int quarter = *text.DigitOf("1234");
  text.MaybeSpace();
  text.OneOf({"Q", "q"});
  text.MaybeSpace();
  text.IsDate(text.Year(yearDigits), quarter * 3 - 2, 1);
}

void MakeMonthOfYear(LayoutText& text, const LocaleNames& names, int yearDigits) {
  const int month = text.Name(names.shortMonths);
  text.Space();
  text.IsDate(text.Year(yearDigits), month, 1);
}

void MakeWeek(LayoutText& text, int yearDigits) {
  std::optional<int> week;
  switch (text.Below(3)) {
    case 0:
      text.OneOf({"", "0"});
      week = text.DigitOf("123456789");
      break;
    case 1:
      week = text.TwoOf("1|2|3|4", "0123456789");
      break;
    default:
      week = text.TwoOf("5", "0123");
  }
  text.MaybeSpace();
  text.OneOf({"w", "W"});
  text.OneOf({"k", "K"});
  text.MaybeSpace();
  const std::chrono::year_month_day newYear{std::chrono::year(text.Year(yearDigits)),
                                            std::chrono::January, std::chrono::day(1)};
  if (week) text.IsDay(std::chrono::sys_days(newYear) + std::chrono::days((*week - 1) * 7));
}

enum class Seconds { kNone, kWhole, kFraction };

void MakeTime(LayoutText& text, Seconds parts) {
  const bool negative = text.Sign();
  const std::string hours = text.AnyDigits(text.Below(10) == 0 ? 40 : 9);
  text.Literal(":");
  std::int64_t seconds = text.Sixty() * 60;
  std::string fraction;
  if (parts != Seconds::kNone) {
    text.Literal(":");
    seconds += text.Sixty();
  }
  if (parts == Seconds::kFraction) {
    if (text.OneOf({"-", ".", ",", "/", ""}) == 4) text.Space();
    fraction = text.AnyDigits(20);
  }
  const bool exact = hours.size() <= 9;
  if (exact) seconds += std::stoll(hours) * 3600;
  text.IsDuration(negative, seconds, fraction);
  if (!exact) text.IsAmbiguous();
}

// ([0-1]?[0-9]|[2][0-3]):([0-5][0-9]) and perhaps :([0-5][0-9])
std::int64_t MakeTimeOfDay(LayoutText& text, Seconds parts) {
  std::int64_t seconds = text.HourOfDay() * 3600;
  text.Literal(":");
  seconds += text.TwoDigitSixty() * 60;
  if (parts == Seconds::kNone) return seconds;
  text.Literal(":");
  return seconds + text.TwoDigitSixty();
}

void MakeDaysTime(LayoutText& text, Seconds parts) {
  const bool negative = text.Sign();
  int days = 0;
  for (int i = text.Below(3); i >= 0; --i) days = days * 10 + *text.DigitOf("0123456789");
  text.Space();
  const std::int64_t seconds = MakeTimeOfDay(text, parts);
  std::string fraction;
  if (parts == Seconds::kFraction) {
    text.Literal(".");
    fraction = text.AnyDigits(20);
  }
  text.IsDuration(negative, days * std::int64_t{86400} + seconds, fraction);
}

void MakeDateTime(LayoutText& text, Seconds parts) {
  const auto day = text.Day();
  text.Literal("-");
  const auto month = text.MonthLetters();
  text.Literal("-");
  const int year = text.Year(4);
  text.Space();
  const std::int64_t seconds = MakeTimeOfDay(text, parts);
  std::string fraction;
  if (parts == Seconds::kFraction) {
    if (text.OneOf({".", ""}) == 1) text.Space();
    fraction = text.AnyDigits(20);
  }
  text.IsDate(year, month, day, seconds, fraction);
}

// [x]{1}\d{1}
int TensAndDigit(LayoutText& text, std::string_view tens) {
  const int ten = *text.DigitOf(tens);
  return ten * 10 + text.Digit();
}

// (?::|\.|\,|\s)
void MakeTimeMark(LayoutText& text) {
  if (text.OneOf({":", ".", ",", ""}) == 3) text.Space();
}

void MakeYmdhms(LayoutText& text, Seconds parts) {
  const int yearDigits = text.Maybe() ? 2 : 4;
  const int year = text.Year(yearDigits);
  const bool beforeMonth = text.MaybeSeparator();
  const int month = text.Maybe() ? TensAndDigit(text, "0") : *text.TwoOf("1", "012");
  const bool beforeDay = text.MaybeSeparator();
  const int day = text.Maybe() ? TensAndDigit(text, "012") : *text.TwoOf("3", "01");
  const int gap = text.Below(3);
  if (gap == 0) text.Literal("T");
  if (gap == 1) text.Space();
  const bool glued = gap == 2;
  std::int64_t seconds =
      3600 * (text.Maybe() ? TensAndDigit(text, "01") : *text.TwoOf("2", "0123"));
  MakeTimeMark(text);
  seconds += 60 * TensAndDigit(text, "012345");
  if (parts != Seconds::kNone) {
    MakeTimeMark(text);
    seconds += TensAndDigit(text, "012345");
  }
  std::string fraction;
  if (parts == Seconds::kFraction) {
    text.OneOf({":", ".", ","});
    fraction = text.AnyDigits(20);
  }
  text.IsDate(year, month, day, seconds, fraction);
  const bool separated = beforeMonth && beforeDay;
  const bool refused = glued && yearDigits == 2 && (beforeMonth || beforeDay);
  if (refused) text.IsMissing();
  // Without all separators the digits can be cut in another way, and so they can be where this cut
  // gives no date.
  const bool sure = separated && (!glued || refused);
  if (!sure || (!refused && text.outcome() == LayoutText::Outcome::kMissing)) text.IsAmbiguous();
}

void MakeMinutesSeconds(LayoutText& text, bool withFraction) {
  const bool negative = text.Sign();
  const std::string minutes = text.AnyDigits(text.Below(10) == 0 ? 40 : 9);
  const int mark = text.OneOf({":", ".", ",", "", ""});
  const bool blank = mark == 3;
  if (blank) text.Space();
  std::int64_t seconds = text.Maybe() ? TensAndDigit(text, "012345") : text.Digit();
  std::string fraction;
  if (withFraction) {
    text.OneOf({":", ".", ","});
    fraction = text.AnyDigits(20);
  }
  const bool exact = minutes.size() <= 9;
  if (exact) seconds += std::stoll(minutes) * 60;
  text.IsDuration(negative, seconds, fraction);
  if (!exact) text.IsAmbiguous();
  if (mark == 4) text.IsOpen();
}

std::vector<Layout> Layouts(const LocaleNames& names) {
  const std::string day = R"(^([0]?[1-9]|[1|2][0-9]|[3][0|1]))";
  const std::string letters = R"((\-|\.|\,|\/|\s)?[a-zA-Z]{3}(\-|\.|\,|\/|\s)?)";
  const std::string month = R"(([0]?[1-9]|[1][0-2]))";
  const std::string dayInside = R"(([0]?[1-9]|[1|2][0-9]|[3][0|1]))";
  const std::string week = R"(^([0]?[1-9]|[1|2|3|4][0-9]|[5][0-3])(\s?)[wW][kK](\s?))";
  const std::string time = R"(^(\-|\+?)(\d{1,}):([0-5]?[0-9]))";
  const std::string timeOfDay = R"(([0-1]?[0-9]|[2][0-3]):([0-5][0-9]))";
  const std::string days = R"(^(\-|\+?)([0-9]{1,3})\s)" + timeOfDay;
  const std::string dateTime = day + R"(-[a-zA-Z]{3}-\d{4}\s)" + timeOfDay;
  const std::string ymdhm =
      R"(^(\d{2}|\d{4})(?:\-|\/|\.|\,|\s)?([0]{1}\d{1}|[1]{1}[0-2]{1})(?:\-|\/|\.|\,|\s)?)"
      R"(([0-2]{1}\d{1}|[3]{1}[0-1]{1})(?:T|\s)?([0-1]{1}\d{1}|[2]{1}[0-3]{1}))"
      R"((?::|\.|\,|\s)([0-5]{1}\d{1}))";
  const std::string ymdhms = ymdhm + R"((?::|\.|\,|\s)([0-5]{1}\d{1}))";
  const std::string minutes = R"(^(\-|\+?)(\d{1,})((:|\.|\,|\s)?)(([0-5]{1}\d{1})|(\d{1})))";
  const auto with = [](auto make, auto argument) {
    return [=](LayoutText& text) { make(text, argument); };
  };
  const auto name = [](const std::vector<std::string>& list) {
    return [&list](LayoutText& text) { text.Is(text.Name(list)); };
  };
  const auto monthOfYear = [&names](int digits) {
    return [&names, digits](LayoutText& text) { MakeMonthOfYear(text, names, digits); };
  };
  return {
      {1000, kFormatDate, day + letters + R"(\d{4}$)", with(MakeLettersDate, 4)},
      {1001, kFormatDate, day + letters + R"(\d{2}$)", with(MakeLettersDate, 2)},
      {1002, kFormatADate, "^" + month + "/" + dayInside + R"(/\d{4}$)", with(MakeMonthDayYear, 4)},
      {1003, kFormatADate, "^" + month + "/" + dayInside + R"(/\d{2}$)", with(MakeMonthDayYear, 2)},
      {1004, kFormatEDate, day + R"(\.)" + month + R"(\.\d{4}$)", with(MakeDayMonthYear, 4)},
      {1005, kFormatEDate, day + R"(\.)" + month + R"(\.\d{2}$)", with(MakeDayMonthYear, 2)},
      {1008, kFormatSDate, R"(^\d{2}/)" + month + "/" + dayInside + "$", with(MakeYearMonthDay, 2)},
      {1009, kFormatSDate, R"(^\d{4}/)" + month + "/" + dayInside + "$", with(MakeYearMonthDay, 4)},
      {1010, kFormatQyr, R"(^[1234](\s?)[Qq](\s?)\d{2}$)", with(MakeQuarter, 2)},
      {1011, kFormatQyr, R"(^[1234](\s?)[Qq](\s?)\d{4}$)", with(MakeQuarter, 4)},
      {1012, kFormatMoyr, "^(" + Joined(names.shortMonths) + R"()\s\d{2}$)", monthOfYear(2)},
      {1013, kFormatMoyr, "^(" + Joined(names.shortMonths) + R"()\s\d{4}$)", monthOfYear(4)},
      {1014, kFormatWkyr, week + R"(\d{2}$)", with(MakeWeek, 2)},
      {1015, kFormatWkyr, week + R"(\d{4}$)", with(MakeWeek, 4)},
      {1016, kFormatWkday, "^(" + Joined(names.days) + ")$", name(names.days)},
      {1017, kFormatMonth, "^(" + Joined(names.months) + ")$", name(names.months)},
      {1018, kFormatTime, time + "$", with(MakeTime, Seconds::kNone)},
      {1019, kFormatTime, time + ":([0-5]?[0-9])$", with(MakeTime, Seconds::kWhole)},
      {1020, kFormatTime, time + R"(:([0-5]?[0-9])(\-|\.|\,|\/|\s)\d{1,}$)",
       with(MakeTime, Seconds::kFraction)},
      {1021, kFormatDTime, days + "$", with(MakeDaysTime, Seconds::kNone)},
      {1022, kFormatDTime, days + R"(:([0-5][0-9])\.\d{1,}$)",
       with(MakeDaysTime, Seconds::kFraction)},
      {1023, kFormatDateTime, dateTime + "$", with(MakeDateTime, Seconds::kNone)},
      {1024, kFormatDateTime, dateTime + R"(:([0-5][0-9])(\.|\s)\d{1,}$)",
       with(MakeDateTime, Seconds::kFraction)},
      {1100, kFormatDateTime, dateTime + ":([0-5][0-9])$", with(MakeDateTime, Seconds::kWhole)},
      {1101, kFormatDTime, days + ":([0-5][0-9])$", with(MakeDaysTime, Seconds::kWhole)},
      {1102, kFormatWkday, "^(" + Joined(names.shortDays) + ")$", name(names.shortDays)},
      {1103, kFormatMonth, "^(" + Joined(names.shortMonths) + ")$", name(names.shortMonths)},
      {1113, kFormatYmdhms, ymdhm + "$", with(MakeYmdhms, Seconds::kNone)},
      {1114, kFormatYmdhms, ymdhms + "$", with(MakeYmdhms, Seconds::kWhole)},
      {1115, kFormatYmdhms, ymdhms + R"(((:|\.|\,)\d{1,})$)", with(MakeYmdhms, Seconds::kFraction)},
      {1116, kFormatMTime, minutes + "$", with(MakeMinutesSeconds, false)},
      {1117, kFormatMTime, minutes + R"((:|\.|\,)\d{1,}$)", with(MakeMinutesSeconds, true)},
  };
}

// Changes the case of ASCII letters: `change` is called for each with the letter in lower case.
template <typename Change>
std::string Recased(std::string text, Change change) {
  for (char& c : text) {
    const char lower = static_cast<char>(c | 0x20);
    if (static_cast<signed char>(c) > 0 && lower >= 'a' && lower <= 'z') c = change(lower);
  }
  return text;
}

class Promise : public testing::TestWithParam<const char*> {
 protected:
  static constexpr int kTextsOfALayout = 3000;

  void Check(const LayoutText& made, const std::string& text, int format) {
    const std::optional<double> value = Read(text, format);
    switch (made.outcome()) {
      case LayoutText::Outcome::kValue:
        ASSERT_TRUE(value) << "'" << text << "'";
        ASSERT_EQ(*value, made.value()) << "'" << text << "'";
        break;
      case LayoutText::Outcome::kSomeValue:
        ASSERT_TRUE(value) << "'" << text << "'";
        break;
      case LayoutText::Outcome::kMissing:
        ASSERT_FALSE(value) << "'" << text << "'";
        break;
      case LayoutText::Outcome::kOpen:
        break;
    }
    ++outcomes_[static_cast<std::size_t>(made.outcome())];
  }

  void CheckLayout(const Layout& layout) {
    SCOPED_TRACE(layout.key);
    UErrorCode status = U_ZERO_ERROR;
    icu::RegexMatcher matcher(icu::UnicodeString::fromUTF8(layout.expression), 0, status);
    ASSERT_TRUE(U_SUCCESS(status)) << layout.expression;
    outcomes_ = {};
    for (int i = 0; i < kTextsOfALayout && !HasFatalFailure(); ++i) {
      LayoutText made(random_);
      layout.make(made);
      const icu::UnicodeString unicode = icu::UnicodeString::fromUTF8(made.text());
      ASSERT_TRUE(matcher.reset(unicode).matches(status)) << "not of the layout: " << made.text();
      Check(made, made.text(), layout.format);
      Check(made, Recased(made.text(), [](char lower) { return lower; }), layout.format);
      Check(made, Recased(made.text(), [](char lower) { return static_cast<char>(lower & ~0x20); }),
            layout.format);
      Check(made,
            Recased(made.text(),
                    [this](char lower) {
                      return static_cast<char>(random_() % 2 ? lower : lower & ~0x20);
                    }),
            layout.format);
    }
    const int sure = outcomes_[0] + outcomes_[1];
    EXPECT_GT(sure, kTextsOfALayout) << "too few of the texts had to convert";
  }

  std::mt19937_64 random_{1582};
  std::array<int, 4> outcomes_ = {};
};

TEST_P(Promise, WhatIsRecognisedConverts) {
  const ProcessLocale locale(GetParam());
  const HostEncoding utf8("UTF-8");
  const LocaleNames names = LocaleNames::Current();
  for (const Layout& layout : Layouts(names)) {
    ASSERT_NO_FATAL_FAILURE(CheckLayout(layout));
    const DecimalComma comma;
    ASSERT_NO_FATAL_FAILURE(CheckLayout(layout));
  }
}

INSTANTIATE_TEST_SUITE_P(Locales, Promise,
                         testing::Values("C", "de_DE.UTF-8", "fr_FR.UTF-8", "ru_RU.UTF-8",
                                         "tr_TR.UTF-8", "ja_JP.UTF-8"));

}  // namespace
}  // namespace embedded
