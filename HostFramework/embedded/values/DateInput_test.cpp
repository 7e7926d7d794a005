// The rules of the date formats, text by text.
#include "HostFramework/embedded/values/testing/ValueInputTesting.h"

namespace embedded {
namespace {

constexpr double kJan31Of2020 = Day1970(18292);
constexpr double kDec31Of1999 = Day1970(10956);

TEST(DateInput, DayMonthYear) {
  for (const int format : {kFormatDate, kFormatEDate}) {
    for (const char* text : {"31-JAN-2020",     "31/JAN/2020",   "31.JAN.2020",     "31,JAN,2020",
                             "31 JAN 2020",     "31JAN2020",     "31-JAN2020",      "31JAN-2020",
                             "31-jan-2020",     "31-Jan-2020",   "31-January-2020", "31JANUARY2020",
                             "31 - JAN - 2020", "31  JAN  2020", "31 -JAN- 2020",   "31/1/2020",
                             "31.01.2020",      "31-1-2020",     "31,01,2020",      "31 01 2020",
                             "31/1-2020",       "31-I-2020",     "31-i-2020",       "31I2020",
                             "31-JAN-20",       "31JAN20",       "31.01.20",        "31 1 20",
                             " 31-JAN-2020\t",  "31\tJAN\t2020"}) {
      EXPECT_EQ(Read(text, format), kJan31Of2020) << text;
    }
    EXPECT_EQ(Read("1-FEB-2020", format), Day1970(18293));
    EXPECT_EQ(Read("01-FEB-2020", format), Day1970(18293));
    EXPECT_EQ(Read("31.12.99", format), kDec31Of1999);
    EXPECT_EQ(Read("31.XII.1999", format), kDec31Of1999);
    EXPECT_EQ(Read("31xii99", format), kDec31Of1999);
    EXPECT_EQ(Read("29-FEB-2020", format), Day1970(18321));
    EXPECT_EQ(Read("29.2.2000", format), Day1970(11016));
    EXPECT_EQ(Read("15-OCT-1582", format), 86400.0);
    EXPECT_EQ(Read("31-DEC-9999", format), Day1970(2932896));
  }
}

TEST(DateInput, EveryMonthByNumberNameAndNumeral) {
  struct Month {
    const char* name;
    const char* numeral;
    const char* digits;
    int firstDay;  // of 2019, since 1970-01-01
  };
  for (const Month& month :
       {Month{"January", "I", "1", 17897}, Month{"February", "II", "2", 17928},
        Month{"March", "III", "3", 17956}, Month{"April", "IV", "4", 17987},
        Month{"May", "V", "5", 18017}, Month{"June", "VI", "6", 18048},
        Month{"July", "VII", "7", 18078}, Month{"August", "VIII", "8", 18109},
        Month{"September", "IX", "9", 18140}, Month{"October", "X", "10", 18170},
        Month{"November", "XI", "11", 18201}, Month{"December", "XII", "12", 18231}}) {
    const std::string name = month.name;
    for (const std::string& written : {name, name.substr(0, 3), std::string(month.numeral)}) {
      EXPECT_EQ(Read("1-" + written + "-2019", kFormatDate), Day1970(month.firstDay)) << written;
      EXPECT_EQ(Read("1" + written + "2019", kFormatDate), Day1970(month.firstDay)) << written;
      EXPECT_EQ(Read("2019" + written + "1", kFormatSDate), Day1970(month.firstDay)) << written;
      EXPECT_EQ(Read(written + "1/2019", kFormatADate), Day1970(month.firstDay)) << written;
      EXPECT_EQ(Read(written + "2019", kFormatMoyr), Day1970(month.firstDay)) << written;
    }
    EXPECT_EQ(Read("1-" + std::string(month.digits) + "-2019", kFormatDate),
              Day1970(month.firstDay));
  }
}

TEST(DateInput, DatesThatAreNotWrittenRight) {
  for (const char* text : {"31-JAN",
                           "JAN-2020",
                           "31",
                           "31012020",
                           "310120",
                           "31-01",
                           "31-01-",
                           "-31-01-2020",
                           "31--01-2020",
                           "31-/01-2020",
                           "31:01:2020",
                           "31_01_2020",
                           "31-01-202",
                           "31-01-20200",
                           "31-01-2",
                           "031-01-2020",
                           "31-001-2020",
                           "31-13-2020",
                           "31-0-2020",
                           "31-00-2020",
                           "0-1-2020",
                           "00-01-2020",
                           "32-JAN-2020",
                           "31-JA-2020",
                           "31-JANU-2020",
                           "31-XIII-2020",
                           "31-IIII-2020",
                           "31-IIX-2020",
                           "31-XYZ-2020",
                           "31-JAN-2020x",
                           "31-JAN-2020 10:30",
                           "31-JAN--2020",
                           "3|-JAN-2020",
                           "31-JAN-MMXX",
                           "31 JAN 20 20",
                           "1-2-3-2020",
                           "31/1/+2020",
                           "31-JAN-2020-",
                           "31.JAN.2020.",
                           "x",
                           "-",
                           "2020-01-31"}) {
    EXPECT_EQ(Read(text, kFormatDate), kNoValue) << text;
    EXPECT_EQ(Read(text, kFormatEDate), kNoValue) << text;
  }
}

TEST(DateInput, DatesThatDoNotExist) {
  for (const char* text : {"30-FEB-2020", "29-FEB-2019", "29-FEB-1900", "31-APR-2020",
                           "31-JUN-2020", "31-SEP-2020", "31-NOV-2020"}) {
    EXPECT_EQ(Read(text, kFormatDate), kNoValue) << text;
  }
  EXPECT_EQ(Read("14-OCT-1582", kFormatDate), kNoValue);
  EXPECT_EQ(Read("31-DEC-1581", kFormatDate), kNoValue);
  EXPECT_EQ(Read("01-JAN-0000", kFormatDate), kNoValue);
  EXPECT_EQ(Read("01-JAN-0001", kFormatDate), kNoValue);
}

TEST(DateInput, TwoDigitYears) {
  EXPECT_EQ(Read("31-12-68", kFormatDate), Day1970(36159));
  EXPECT_EQ(Read("01-01-69", kFormatDate), Day1970(-365));
  EXPECT_EQ(Read("01-01-00", kFormatDate), Day1970(10957));
}

TEST(DateInput, MonthDayYear) {
  for (const char* text : {"01/31/2020", "1/31/2020", "1-31-2020", "1.31.2020", "1,31,2020",
                           "1 31 2020", "01/31/20", "JAN/31/2020", "JAN 31 2020", "Jan31 2020",
                           "January 31, 2020", "I/31/20", "1 / 31 / 2020"}) {
    EXPECT_EQ(Read(text, kFormatADate), kJan31Of2020) << text;
  }
  EXPECT_EQ(Read("12/31/1999", kFormatADate), kDec31Of1999);
  for (const char* text : {"31/01/2020", "13/01/2020", "0/31/2020", "01312020", "JAN312020",
                           "01/31", "01/31/", "02/30/2020", "2020/01/31", "1/31/2020/"}) {
    EXPECT_EQ(Read(text, kFormatADate), kNoValue) << text;
  }
}

TEST(DateInput, YearMonthDay) {
  for (const char* text :
       {"2020/01/31", "2020-01-31", "2020.1.31", "2020,1,31", "2020 1 31", "20/01/31", "2020JAN31",
        "2020-jan-31", "2020/I/31", "20jan31", "2020 - 1 - 31"}) {
    EXPECT_EQ(Read(text, kFormatSDate), kJan31Of2020) << text;
  }
  EXPECT_EQ(Read("1999/12/31", kFormatSDate), kDec31Of1999);
  for (const char* text : {"20200131", "200131", "2020/31/01", "31/01/2020", "2020/01", "202/01/31",
                           "2020/02/30", "2020/01/031", "2020/01/31T"}) {
    EXPECT_EQ(Read(text, kFormatSDate), kNoValue) << text;
  }
}

TEST(DateInput, DayOfYear) {
  EXPECT_EQ(Read("2020031", kFormatJDate), kJan31Of2020);
  EXPECT_EQ(Read("20031", kFormatJDate), kJan31Of2020);
  EXPECT_EQ(Read("1999365", kFormatJDate), kDec31Of1999);
  EXPECT_EQ(Read("99365", kFormatJDate), kDec31Of1999);
  EXPECT_EQ(Read("2020001", kFormatJDate), Day1970(18262));
  EXPECT_EQ(Read("2020366", kFormatJDate), Day1970(18627));
  EXPECT_EQ(Read("1582288", kFormatJDate), 86400.0);
  EXPECT_EQ(Read("9999365", kFormatJDate), Day1970(2932896));
  for (const char* text :
       {"2019366", "2020000", "2020367", "2020999", "20000", "1582287", "202031", "031", "20200311",
        "2020-031", "2020 031", "+20031", "2003a", "0000001"}) {
    EXPECT_EQ(Read(text, kFormatJDate), kNoValue) << text;
  }
}

TEST(DateInput, QuarterOfYear) {
  EXPECT_EQ(Read("1Q2020", kFormatQyr), Day1970(18262));
  EXPECT_EQ(Read("2 Q 2020", kFormatQyr), Day1970(18353));
  EXPECT_EQ(Read("3q20", kFormatQyr), Day1970(18444));
  EXPECT_EQ(Read("4 q 20", kFormatQyr), Day1970(18536));
  EXPECT_EQ(Read("4  Q2020", kFormatQyr), Day1970(18536));
  EXPECT_EQ(Read("1Q1583", kFormatQyr),
            86400.0 * 79);  // 17 days of October, 30, 31, and the day itself
  for (const char* text : {"0Q2020", "5Q2020", "Q2020", "q3 2020", "1-Q-2020", "1Q", "1Q202",
                           "01Q2020", "1Q20200", "1QQ2020", "4Q1582", "1R2020", "1 2020"}) {
    EXPECT_EQ(Read(text, kFormatQyr), kNoValue) << text;
  }
}

TEST(DateInput, MonthOfYear) {
  for (const char* text : {"JAN 2020", "jan 20", "January 2020", "JAN2020", "JAN/2020", "1/2020",
                           "01-20", "1 2020", "I 2020", "i.20", "JAN , 2020"}) {
    EXPECT_EQ(Read(text, kFormatMoyr), Day1970(18262)) << text;
  }
  EXPECT_EQ(Read("NOV 1582", kFormatMoyr), 86400.0 * 18);
  for (const char* text : {"12020", "13/2020", "0/2020", "JAN", "JAN 202", "2020 JAN", "OCT 1582",
                           "JAN//2020", "1:2020", "JAN 1 2020"}) {
    EXPECT_EQ(Read(text, kFormatMoyr), kNoValue) << text;
  }
}

TEST(DateInput, WeekOfYear) {
  EXPECT_EQ(Read("1WK2020", kFormatWkyr), Day1970(18262));
  EXPECT_EQ(Read("01 WK 20", kFormatWkyr), Day1970(18262));
  EXPECT_EQ(Read("2wk2020", kFormatWkyr), Day1970(18269));
  EXPECT_EQ(Read("53 Wk 2020", kFormatWkyr), Day1970(18262 + 364));
  EXPECT_EQ(Read("53WK1582", kFormatWkyr), 86400.0 * 78);
  for (const char* text : {"0WK2020", "54WK2020", "99WK2020", "WK2020", "1W2020", "1 W K 2020",
                           "001WK2020", "1WK", "1WK202", "1-WK-2020", "1WK1582", "1KW2020"}) {
    EXPECT_EQ(Read(text, kFormatWkyr), kNoValue) << text;
  }
}

TEST(DateInput, DayOfTheWeek) {
  int number = 0;
  for (const std::string name :
       {"Sunday", "Monday", "Tuesday", "Wednesday", "Thursday", "Friday", "Saturday"}) {
    ++number;
    EXPECT_EQ(Read(name, kFormatWkday), number);
    EXPECT_EQ(Read(name.substr(0, 3), kFormatWkday), number);
    EXPECT_EQ(Read(std::to_string(number), kFormatWkday), number);
  }
  EXPECT_EQ(Read("SUNDAY", kFormatWkday), 1.0);
  EXPECT_EQ(Read("sat", kFormatWkday), 7.0);
  EXPECT_EQ(Read(" sAt ", kFormatWkday), 7.0);
  for (const char* text :
       {"0", "8", "11", "1.", "+1", "Su", "Sunda", "Sundays", "Jan", "Sun day"}) {
    EXPECT_EQ(Read(text, kFormatWkday), kNoValue) << text;
  }
}

TEST(DateInput, Month) {
  EXPECT_EQ(Read("January", kFormatMonth), 1.0);
  EXPECT_EQ(Read("DEC", kFormatMonth), 12.0);
  EXPECT_EQ(Read("may", kFormatMonth), 5.0);
  EXPECT_EQ(Read("8", kFormatMonth), 8.0);
  EXPECT_EQ(Read("08", kFormatMonth), 8.0);
  EXPECT_EQ(Read("12", kFormatMonth), 12.0);
  EXPECT_EQ(Read("VIII", kFormatMonth), 8.0);
  EXPECT_EQ(Read("ix", kFormatMonth), 9.0);
  for (const char* text : {"0", "13", "008", "Sept", "J", "Januar", "XIII", "IVI", "VX", "1.5",
                           "Monday", "I.", "xx"}) {
    EXPECT_EQ(Read(text, kFormatMonth), kNoValue) << text;
  }
}

// Texts are recognised as dates by what Unicode calls digits and white space, so they are read so.
TEST(DateInput, DigitsAndBlanksOfOtherScripts) {
  const HostEncoding utf8("UTF-8");
  EXPECT_EQ(Read("31-JAN-\u0662\u0660\u0662\u0660", kFormatDate), kJan31Of2020);
  EXPECT_EQ(Read("31\u00A0JAN\u30002020", kFormatDate), kJan31Of2020);
  EXPECT_EQ(Read("31\u2028JAN\u00852020", kFormatDate), kJan31Of2020);
  EXPECT_EQ(Read("31-JAN-\u00B2020", kFormatDate), kNoValue)
      << "a superscript is not a decimal digit";
  EXPECT_EQ(Read("31-JAN-202\xD9", kFormatDate), kNoValue) << "half a digit";
}

TEST(DateInput, BlanksOfACodePage) {
  const HostEncoding page("windows-1252");
  EXPECT_EQ(Read("31\xA0JAN\xA0"
                 "2020",
                 kFormatDate),
            kJan31Of2020);
  EXPECT_EQ(Read("31\xC2\xA0JAN 2020", kFormatDate), kNoValue) << "a letter and a blank here";
}

}  // namespace
}  // namespace embedded
