// The rules of dates with a time of day, text by text.
#include "HostFramework/embedded/values/testing/ValueInputTesting.h"

namespace embedded {
namespace {

constexpr double kJan31Of2020 = Day1970(18292);
constexpr double kHalfPastTen = 37800;

TEST(DateTimeInput, DateThenTime) {
  for (const char* text :
       {"31-JAN-2020 10:30", "31-JAN-2020  10:30", "31-JAN-2020T10:30", "31jan2020t10:30",
        "31.01.2020 10:30", "31 JAN 2020 10:30", "31/I/20 10:30", "31 1 20 10:30",
        "31-JAN-2020\t10:30:00", "31-JAN-2020 10:30:00.000"}) {
    EXPECT_EQ(Read(text, kFormatDateTime), kJan31Of2020 + kHalfPastTen) << text;
  }
  EXPECT_EQ(Read("31-JAN-2020 0:00", kFormatDateTime), kJan31Of2020);
  EXPECT_EQ(Read("31-JAN-2020 23:59:59", kFormatDateTime), kJan31Of2020 + 86399);
  for (const char* text :
       {"31-JAN-2020 23:59:59.25", "31-JAN-2020 23:59:59,25", "31-JAN-2020 23:59:59 25",
        "31-JAN-2020 23:59:59-25", "31-JAN-2020 23:59:59/25"}) {
    EXPECT_EQ(Read(text, kFormatDateTime), kJan31Of2020 + 86399.25) << text;
  }
  // Microseconds of a date have more digits than are scaled exactly; they are rounded all the same.
  EXPECT_EQ(Read("31-JAN-2020 00:00:00.123456", kFormatDateTime), 13799808000.123456);
  EXPECT_EQ(Read("31-JAN-2020 00:00:00.123456789", kFormatDateTime), 13799808000.123456789);
}

TEST(DateTimeInput, TextsThatAreNotDateTimes) {
  for (const char* text :
       {"31-JAN-2020", "10:30", "31-JAN-2020 10", "31-JAN-202010:30", "31-JAN-2020 24:00",
        "31-JAN-2020 10:60", "31-JAN-2020 10:30:60", "31-JAN-2020 -10:30", "31-JAN-2020 +10:30",
        "31-JAN-2020 T 10:30", "31-JAN-2020TT10:30", "31-JAN-2020-10:30", "30-FEB-2020 10:30",
        "31-JAN-2020 10:30:15.", "31-JAN-2020 10:30Z", "2020-01-31 10:30", "JAN-31-2020 10:30",
        "31-JAN-2020 100:00"}) {
    EXPECT_EQ(Read(text, kFormatDateTime), kNoValue) << text;
  }
}

TEST(DateTimeInput, YmdhmsWithSeparators) {
  for (const char* text :
       {"2020-01-31 10:30", "2020/01/31 10:30", "2020.01.31 10.30", "2020,01,31 10,30",
        "2020 01 31 10 30", "2020-01-31T10:30", "2020-01-31t10:30", "2020-1-31 10:30",
        "20-01-31 10:30", "20 01 31 10 30", "2020-JAN-31 10:30", "2020JAN31 10:30",
        "2020-I-31 10:30", "2020-01-31  10:30", "2020-01-31 10:30:00", "2020-01-31 10.30,00",
        "2020 - 01 - 31 10:30:00.0", "2020-01-31 10 30 00", "2020-01-31 10:30:0:0"}) {
    EXPECT_EQ(Read(text, kFormatYmdhms), kJan31Of2020 + kHalfPastTen) << text;
  }
  EXPECT_EQ(Read("2020-01-31 23:59:59.25", kFormatYmdhms), kJan31Of2020 + 86399.25);
  EXPECT_EQ(Read("2020-01-31 23:59:59,25", kFormatYmdhms), kJan31Of2020 + 86399.25);
  EXPECT_EQ(Read("2020-01-31 23:59:59:25", kFormatYmdhms), kJan31Of2020 + 86399.25);
  EXPECT_EQ(Read("2020-1-5 1:05", kFormatYmdhms), Day1970(18266) + 3900);
}

TEST(DateTimeInput, YmdhmsGlued) {
  for (const char* text :
       {"20200131 10:30", "20200131T10:30", "20200131 10 30", "200131 10:30", "200131T10:30",
        "200131 10 30", "2020013110:30", "2020013110 30", "2020013110.30.00", "20013110:30",
        "20013110:30:00", "20013110,30", "20013110 30", "20013110 30 00"}) {
    EXPECT_EQ(Read(text, kFormatYmdhms), kJan31Of2020 + kHalfPastTen) << text;
  }
}

TEST(DateTimeInput, YmdhmsPartlyGlued) {
  for (const char* text :
       {"2020-0131 10:30", "202001-31 10:30", "2020-01-3110:30", "2020-013110:30", "202001-3110:30",
        "20-0131 10:30", "2001-31 10:30", "2001 31 10:30", "2020/JAN/3110:30", "20JAN3110:30"}) {
    EXPECT_EQ(Read(text, kFormatYmdhms), kJan31Of2020 + kHalfPastTen) << text;
  }
}

// A day before its month and a year of four digits would end so: 01/01/2006 00:15 is not 20
// January 2001, six hours and fifteen seconds.
TEST(DateTimeInput, YmdhmsOfATwoDigitYearWithSeparatorsTakesNoGluedHour) {
  for (const char* text :
       {"01/01/2006 00:15", "31-01-2020 10:30", "31.12.2020 10.30", "01 01 2006 00 15",
        "01/01/2006 00:15:30.5", "20-01-3110:30", "20-013110:30", "2001-3110:30", "20/JAN/3110:30",
        "20JAN 3110:30", "20 JAN3110:30"}) {
    EXPECT_EQ(Read(text, kFormatYmdhms), kNoValue) << text;
  }
}

// Where the digits can be cut in two ways, six before the hour are yymmdd and otherwise the year
// has four; a cut that gives no date gives way to the other.
TEST(DateTimeInput, YmdhmsThatCanBeCutTwoWays) {
  const double oct12Of2012 = Day1970(15625);
  const double oct12Of2020 = Day1970(18547);
  EXPECT_EQ(Read("20121012 10 30", kFormatYmdhms), oct12Of2012 + kHalfPastTen);
  EXPECT_EQ(Read("20121012 10 30 15", kFormatYmdhms), oct12Of2012 + kHalfPastTen + 15);
  EXPECT_EQ(Read("201012 10 30 15", kFormatYmdhms), oct12Of2020 + kHalfPastTen + 15);
  EXPECT_EQ(Read("201012 11 12 15", kFormatYmdhms), oct12Of2020 + 11 * 3600 + 12 * 60 + 15);
  EXPECT_EQ(Read("2012 10 12 10 30", kFormatYmdhms), oct12Of2012 + kHalfPastTen);
  EXPECT_EQ(Read("2010 12 10 30", kFormatYmdhms), oct12Of2020 + kHalfPastTen);
  EXPECT_EQ(Read("2012-1012 10:30", kFormatYmdhms), oct12Of2012 + kHalfPastTen);
}

TEST(DateTimeInput, TextsThatAreNotYmdhms) {
  for (const char* text : {"2020-01-31",
                           "20200131",
                           "2020-01-31 10",
                           "2020013110",
                           "202001311030",
                           "2020-01-31 24:00",
                           "2020-01-31 10:60",
                           "2020-01-31 10:30:60",
                           "2020-02-30 10:30",
                           "2020-13-01 10:30",
                           "2020-00-10 10:30",
                           "2020-01-00 10:30",
                           "2020-01-31 10-30",
                           "2020-01-31 10/30",
                           "2020-01-31 10:30:15.",
                           "2020-01-31 10:30:15 5",
                           "2020-01-31 10:30:15-5",
                           "2020-01-31 -10:30",
                           "2020-01-31  T10:30",
                           "2020-01-31TT10:30",
                           "2020-01-31-10:30",
                           "202-01-31 10:30",
                           "2020-131 10:30",
                           "2020131 10:30",
                           "2020-1-3110:30",
                           "20201-31 10:30",
                           "202001-5 10:30",
                           "2020-01-31 10:30Z",
                           "1582-10-14 10:30",
                           "202001311 10:30",
                           "20200131010:30"}) {
    EXPECT_EQ(Read(text, kFormatYmdhms), kNoValue) << text;
  }
}

}  // namespace
}  // namespace embedded
