// In which order the day and the month of a date in digits can stand.
#include <string>
#include <string_view>

#include <gtest/gtest.h>

#include "detection/ValueClassifier.h"

namespace textwizard {
namespace {

DayAndMonth OrderOf(std::string_view text) {
  static const RegExMappings table;
  static ValueClassifier classifier(table, kDelimitedLines);
  const DayAndMonth order = classifier.OrderOf(text);
  classifier.IsDateTime(text);
  EXPECT_EQ(classifier.order(), order) << text;
  return order;
}

TEST(DayAndMonth, TellsTheOrdersThatADateCanHave) {
  for (const char* const text : {"01/02/2020", "1/2/99", "12.12.12", "5 6 1999", "1-12-00"}) {
    EXPECT_EQ(OrderOf(text), DayAndMonth::kEitherOrder) << text;
  }
  for (const char* const text : {"13/1/20", "31.12.1999", "31 01/99", "20-2-2000"}) {
    EXPECT_EQ(OrderOf(text), DayAndMonth::kDayFirst) << text;
  }
  for (const char* const text : {"1/13/20", "12.31.1999", "01/31 99", "2-20-2000"}) {
    EXPECT_EQ(OrderOf(text), DayAndMonth::kMonthFirst) << text;
  }
}

TEST(DayAndMonth, AnyOtherTextIsNone) {
  for (const char* const text : {"",
                                 "1",
                                 "1/2/3",
                                 "1/2/123",
                                 "1/2/12345",
                                 "01/02/02020",
                                 "001/2/20",
                                 "1/002/20",
                                 "0/1/2000",
                                 "1/0/2000",
                                 "32/1/2000",
                                 "1/32/2000",
                                 "13/13/2000",
                                 "99/99/9999",
                                 "1//2000",
                                 "/1/2000",
                                 "1/2/",
                                 "1/2/20x0",
                                 "1/2/20 ",
                                 " 1/2/20",
                                 "1:2:2000",
                                 "1,2,2000",
                                 "1/2/2000/",
                                 "Jan/2/2000",
                                 "1/Jan/2000",
                                 "2000/1/2",
                                 "1/2/\xC3\xA9\x39\x39",
                                 "\xB1/2/2000",
                                 "1/\xB2/2000",
                                 "1/2\xAF"
                                 "2000",
                                 "1/2/200\xB0",
                                 "123456",
                                 "12345678",
                                 "1234567890",
                                 "1/234567",
                                 "12/345678"}) {
    EXPECT_EQ(OrderOf(text), DayAndMonth::kNone) << text;
  }
}

// Against the rule's words, for every pair of numbers and every pair of separators.
TEST(DayAndMonth, AllNumbers) {
  constexpr char kSeparators[] = "/.- :";
  for (int first = 0; first <= 99; ++first) {
    for (int second = 0; second <= 99; ++second) {
      const bool dayFirst = first >= 1 && first <= 31 && second >= 1 && second <= 12;
      const bool monthFirst = first >= 1 && first <= 12 && second >= 1 && second <= 31;
      for (int form = 0; form < 8; ++form) {
        for (const char* separator = kSeparators; *separator != '\0'; ++separator) {
          const auto part = [](int number, bool wide) {
            return (wide && number < 10 ? "0" : "") + std::to_string(number);
          };
          const std::string text = part(first, (form & 1) != 0) + *separator +
                                   part(second, (form & 2) != 0) + kSeparators[form % 4] +
                                   ((form & 4) != 0 ? "1987" : "87");
          DayAndMonth expected = DayAndMonth::kNone;
          if (*separator == ':') {
          } else if (dayFirst && monthFirst) {
            expected = DayAndMonth::kEitherOrder;
          } else if (dayFirst) {
            expected = DayAndMonth::kDayFirst;
          } else if (monthFirst) {
            expected = DayAndMonth::kMonthFirst;
          }
          ASSERT_EQ(OrderOf(text), expected) << text;
        }
      }
    }
  }
}

}  // namespace
}  // namespace textwizard
