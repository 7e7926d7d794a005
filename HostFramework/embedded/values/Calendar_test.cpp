// The calendar against one that counts day by day, and the window of two-digit years.
#include "HostFramework/embedded/values/Calendar.h"

#include <chrono>
#include <string>

#include "HostFramework/embedded/values/ValueSettings.h"
#include "HostFramework/embedded/values/testing/ValueInputTesting.h"

namespace embedded {
namespace {

TEST(Calendar, CountsFromTheDayBeforeItsFirst) {
  EXPECT_EQ(Midnight(1582, 10, 15), 86'400);
  EXPECT_EQ(Midnight(1970, 1, 1), 12'219'379'200);
  EXPECT_EQ(Midnight(9999, 12, 31), 12'219'379'200 + 2'932'896LL * 86'400);
}

// Every day of the calendar in turn is one day after the one before.
TEST(Calendar, EveryDayFollowsTheOneBefore) {
  std::int64_t seconds = 86'400;
  int day = 15;
  int month = 10;
  for (int year = 1582; year <= 9999; ++year) {
    const bool leap = (year % 4 == 0 && year % 100 != 0) || year % 400 == 0;
    int dayOfYear = year == 1582 ? 287 : 0;  // days before 15 October
    for (; month <= 12; ++month, day = 1) {
      const int last = month == 2                                              ? 28 + leap
                       : month == 4 || month == 6 || month == 9 || month == 11 ? 30
                                                                               : 31;
      for (; day <= last; ++day, ++dayOfYear, seconds += 86'400) {
        ASSERT_EQ(Midnight(year, month, day), seconds) << year << '-' << month << '-' << day;
        ASSERT_EQ(MidnightAfterNewYear(year, dayOfYear), seconds) << year << ' ' << dayOfYear;
      }
      ASSERT_EQ(Midnight(year, month, last + 1), std::nullopt) << year << '-' << month;
      ASSERT_EQ(Midnight(year, month, 0), std::nullopt);
    }
    ASSERT_EQ(Midnight(year, 13, 1), std::nullopt);
    ASSERT_EQ(Midnight(year, 0, 1), std::nullopt);
    month = 1;
  }
}

TEST(Calendar, NothingLiesOutsideIt) {
  EXPECT_EQ(Midnight(1582, 10, 14), std::nullopt);
  EXPECT_EQ(Midnight(1582, 1, 1), std::nullopt);
  EXPECT_EQ(Midnight(1581, 12, 31), std::nullopt);
  EXPECT_EQ(Midnight(0, 1, 1), std::nullopt);
  EXPECT_EQ(Midnight(10000, 1, 1), std::nullopt);
  EXPECT_EQ(MidnightAfterNewYear(1582, 286), std::nullopt);
  EXPECT_EQ(MidnightAfterNewYear(9999, 365), std::nullopt);
  EXPECT_EQ(MidnightAfterNewYear(0, 10), std::nullopt);
}

TEST(Calendar, GivesADayItsDateAgain) {
  using namespace std::chrono;
  EXPECT_EQ(calendar::kDay1970, 141'428);
  EXPECT_EQ(calendar::DateOf(0), year(1582) / 10 / 14);
  EXPECT_EQ(calendar::DateOf(calendar::kLastDay), year(9999) / 12 / 31);
  for (std::int64_t day = calendar::kFirstDay; day <= calendar::kLastDay; ++day) {
    const year_month_day date = calendar::DateOf(day);
    const auto midnight = Midnight(static_cast<int>(date.year()),
                                   static_cast<int>(static_cast<unsigned>(date.month())),
                                   static_cast<int>(static_cast<unsigned>(date.day())));
    ASSERT_EQ(midnight, day * 86'400) << day;
  }
}

TEST(TwoDigitYears, BelowSixtyNineAreOfThisCentury) {
  EXPECT_EQ(YearOfTwoDigits(0), 2000);
  EXPECT_EQ(YearOfTwoDigits(20), 2020);
  EXPECT_EQ(YearOfTwoDigits(68), 2068);
  EXPECT_EQ(YearOfTwoDigits(69), 1969);
  EXPECT_EQ(YearOfTwoDigits(99), 1999);
}

class TwoDigitYearWindow : public testing::Test {
 protected:
  ~TwoDigitYearWindow() override { SetTwoDigitYearStart(kDefaultTwoDigitYearStart); }
};

TEST_F(TwoDigitYearWindow, IsMovedByTheHost) {
  EXPECT_EQ(TwoDigitYearStart(), 1969);
  ASSERT_TRUE(SetTwoDigitYearStart(1950));
  EXPECT_EQ(TwoDigitYearStart(), 1950);
  EXPECT_EQ(YearOfTwoDigits(49), 2049);
  EXPECT_EQ(YearOfTwoDigits(50), 1950);
  EXPECT_EQ(Read("31.12.49", kFormatEDate), Midnight(2049, 12, 31));
  ASSERT_TRUE(SetTwoDigitYearStart(2000));
  EXPECT_EQ(YearOfTwoDigits(0), 2000);
  EXPECT_EQ(YearOfTwoDigits(99), 2099);
  ASSERT_TRUE(SetTwoDigitYearStart(9900));
  EXPECT_EQ(YearOfTwoDigits(99), 9999);
}

TEST_F(TwoDigitYearWindow, StaysInsideTheCalendar) {
  for (const int year : {-1, 0, 1582, 9901, 2'000'000'000}) {
    EXPECT_FALSE(SetTwoDigitYearStart(year)) << year;
    EXPECT_EQ(TwoDigitYearStart(), 1969);
  }
}

}  // namespace
}  // namespace embedded
