// The rules of the number formats, text by text.
#include <cfloat>
#include <cmath>
#include <limits>
#include <string>

#include "HostFramework/embedded/values/testing/ValueInputTesting.h"

namespace embedded {
namespace {

TEST(NumberInput, PlainDecimalsUnderF) {
  EXPECT_EQ(Read("0", kFormatF), 0.0);
  EXPECT_EQ(Read("5", kFormatF), 5.0);
  EXPECT_EQ(Read("+5", kFormatF), 5.0);
  EXPECT_EQ(Read("-5", kFormatF), -5.0);
  EXPECT_EQ(Read("5.", kFormatF), 5.0);
  EXPECT_EQ(Read("-5.", kFormatF), -5.0);
  EXPECT_EQ(Read(".5", kFormatF), 0.5);
  EXPECT_EQ(Read("-.5", kFormatF), -0.5);
  EXPECT_EQ(Read("+.5", kFormatF), 0.5);
  EXPECT_EQ(Read("0.1", kFormatF), 0.1);
  EXPECT_EQ(Read("3.14159", kFormatF), 3.14159);
  EXPECT_EQ(Read("007", kFormatF), 7.0);
  EXPECT_EQ(Read("1234567", kFormatF), 1234567.0);
  EXPECT_EQ(Read("12345678", kFormatF), 12345678.0);
  EXPECT_EQ(Read("123456789", kFormatF), 123456789.0);
  EXPECT_EQ(Read("1234567.12345678", kFormatF), 1234567.12345678);
}

TEST(NumberInput, TextsThatAreNotNumbers) {
  for (const char* text : {".",
                           "-",
                           "+",
                           "-.",
                           "+.",
                           "..",
                           "1.2.3",
                           "1..2",
                           "--5",
                           "+-5",
                           "-+5",
                           "5-",
                           "5+",
                           "- 5",
                           "1 2",
                           "1 000",
                           "abc",
                           "a5",
                           "5a",
                           "inf",
                           "-inf",
                           "infinity",
                           "INF",
                           "nan",
                           "NaN",
                           "nan(1)",
                           "0x1F",
                           "0x10p3",
                           "1f",
                           "1_000",
                           "1'000",
                           "%",
                           ",",
                           "/",
                           ":",
                           "1:2",
                           "\xC2\xA0"
                           "5",
                           "\xEF\xBC\x95"}) {
    EXPECT_EQ(Read(text, kFormatF), kNoValue) << text;
    EXPECT_EQ(Read(text, kFormatE), kNoValue) << text;
    EXPECT_EQ(Read(text, kFormatN), kNoValue) << text;
    EXPECT_EQ(Read(text, kFormatPct), kNoValue) << text;
    EXPECT_EQ(Read(text, kFormatComma), kNoValue) << text;
    EXPECT_EQ(Read(text, kFormatDollar), kNoValue) << text;
    EXPECT_EQ(Read(text, kFormatDot), kNoValue) << text;
  }
}

TEST(NumberInput, SignsOfMoneyAndPercentBelongToTheirFormats) {
  for (const int format : {kFormatF, kFormatE, kFormatN, kFormatPct, kFormatComma, kFormatDot}) {
    EXPECT_EQ(Read("$5", format), kNoValue);
  }
  for (const int format : {kFormatF, kFormatE, kFormatN, kFormatComma, kFormatDollar, kFormatDot}) {
    EXPECT_EQ(Read("5%", format), kNoValue);
  }
}

TEST(NumberInput, BytesThatAreNoText) {
  EXPECT_EQ(Read(std::string_view("1\0", 2), kFormatF), kNoValue);
  EXPECT_EQ(Read(std::string_view("\0", 1), kFormatF), kNoValue);
  EXPECT_EQ(Read(std::string_view("1\0"
                                  "5",
                                  3),
                 kFormatN),
            kNoValue);
  EXPECT_EQ(Read("1\xFF", kFormatF), kNoValue);
}

TEST(NumberInput, GroupsUnderFAreTheOtherSeparator) {
  EXPECT_EQ(Read("1,234", kFormatF), 1234.0);
  EXPECT_EQ(Read("12,345,678", kFormatF), 12345678.0);
  EXPECT_EQ(Read("-123,456.75", kFormatF), -123456.75);
  EXPECT_EQ(Read("1,234.", kFormatF), 1234.0);
  EXPECT_EQ(Read("0,000", kFormatF), 0.0);
  EXPECT_EQ(Read("1,234E2", kFormatF), 123400.0);
  EXPECT_EQ(Read("1,234", kFormatE), 1234.0);
  EXPECT_EQ(Read("1,234", kFormatPct), 1234.0);
}

TEST(NumberInput, GroupsHaveExactlyThreeDigits) {
  for (const char* text :
       {"1,5", "1,23", "1,2345", "1234,567", "1,234,5", "1,234,56", "1,234,", ",234", "1,,234",
        "1,234.567,890", "1.5,000", "1,", "12,34,567", "1,23a", "1,234,567,8", "0.1,234"}) {
    EXPECT_EQ(Read(text, kFormatF), kNoValue) << text;
    EXPECT_EQ(Read(text, kFormatComma), kNoValue) << text;
    EXPECT_EQ(Read(text, kFormatDollar), kNoValue) << text;
  }
}

TEST(NumberInput, DecimalCommaExchangesTheSeparators) {
  const DecimalComma comma;
  for (const int format : {kFormatF, kFormatE, kFormatPct}) {
    EXPECT_EQ(Read("1,5", format), 1.5);
    EXPECT_EQ(Read("5,", format), 5.0);
    EXPECT_EQ(Read(",5", format), 0.5);
    EXPECT_EQ(Read("1.234", format), 1234.0);
    EXPECT_EQ(Read("1.234,5", format), 1234.5);
    EXPECT_EQ(Read("1.5", format), kNoValue);
    EXPECT_EQ(Read("1,234.5", format), kNoValue);
    EXPECT_EQ(Read(",", format), kNoValue);
  }
  // These formats name their own characters.
  EXPECT_EQ(Read("1,234.5", kFormatComma), 1234.5);
  EXPECT_EQ(Read("$1,234.5", kFormatDollar), 1234.5);
  EXPECT_EQ(Read("1.234,5", kFormatDot), 1234.5);
  EXPECT_EQ(Read("1,5", kFormatComma), kNoValue);
}

TEST(NumberInput, CommaAndDot) {
  EXPECT_EQ(Read("1,234,567.25", kFormatComma), 1234567.25);
  EXPECT_EQ(Read("-1,234.5", kFormatComma), -1234.5);
  EXPECT_EQ(Read("1234.5", kFormatComma), 1234.5);
  EXPECT_EQ(Read("1.234,5", kFormatComma), kNoValue);
  EXPECT_EQ(Read("1.234.567,25", kFormatDot), 1234567.25);
  EXPECT_EQ(Read("-1.234,5", kFormatDot), -1234.5);
  EXPECT_EQ(Read("1234,5", kFormatDot), 1234.5);
  EXPECT_EQ(Read(",5", kFormatDot), 0.5);
  EXPECT_EQ(Read("1.5", kFormatDot), kNoValue);
  EXPECT_EQ(Read("1,234.5", kFormatDot), kNoValue);
}

TEST(NumberInput, DollarSignBeforeTheDigits) {
  EXPECT_EQ(Read("$5", kFormatDollar), 5.0);
  EXPECT_EQ(Read("$1,234.50", kFormatDollar), 1234.5);
  EXPECT_EQ(Read("-$5", kFormatDollar), -5.0);
  EXPECT_EQ(Read("$-5", kFormatDollar), -5.0);
  EXPECT_EQ(Read("+$5", kFormatDollar), 5.0);
  EXPECT_EQ(Read("$+5", kFormatDollar), 5.0);
  EXPECT_EQ(Read("5", kFormatDollar), 5.0);
  EXPECT_EQ(Read("-5", kFormatDollar), -5.0);
  EXPECT_EQ(Read("$.5", kFormatDollar), 0.5);
  EXPECT_EQ(Read("$5E2", kFormatDollar), 500.0);
  for (const char* text : {"$", "-$", "$-", "$$5", "$-$5", "-$-5", "5$", "$ 5", "- $5", "$."}) {
    EXPECT_EQ(Read(text, kFormatDollar), kNoValue) << text;
  }
}

TEST(NumberInput, PercentSignAfterTheDigits) {
  EXPECT_EQ(Read("5", kFormatPct), 5.0);
  EXPECT_EQ(Read("5%", kFormatPct), 5.0);
  EXPECT_EQ(Read("-12.5 %", kFormatPct), -12.5);
  EXPECT_EQ(Read("5    %", kFormatPct), 5.0);
  EXPECT_EQ(Read(" 5 % ", kFormatPct), 5.0);
  EXPECT_EQ(Read("1,234%", kFormatPct), 1234.0);
  EXPECT_EQ(Read("1e2%", kFormatPct), 100.0);
  for (const char* text : {"%", " %", "-%", "5%%", "%5", "5 % %", "5\t%", ".%"}) {
    EXPECT_EQ(Read(text, kFormatPct), kNoValue) << text;
  }
}

TEST(NumberInput, NHasDigitsOnly) {
  EXPECT_EQ(Read("0", kFormatN), 0.0);
  EXPECT_EQ(Read("00042", kFormatN), 42.0);
  EXPECT_EQ(Read("12345678901234567890", kFormatN), 12345678901234567890.0);
  for (const char* text : {"-1", "+1", "1.", "1.5", ".5", "1,234", "1.234", "1E2", "1e2", "1d2"}) {
    EXPECT_EQ(Read(text, kFormatN), kNoValue) << text;
  }
}

TEST(NumberInput, ExponentsInEveryFormatButN) {
  for (const int format : {kFormatF, kFormatE, kFormatPct, kFormatComma, kFormatDollar}) {
    EXPECT_EQ(Read("1E3", format), 1000.0);
    EXPECT_EQ(Read("1e3", format), 1000.0);
    EXPECT_EQ(Read("1D3", format), 1000.0);
    EXPECT_EQ(Read("1d3", format), 1000.0);
    EXPECT_EQ(Read("1.5E+3", format), 1500.0);
    EXPECT_EQ(Read("-1.5d-3", format), -0.0015);
    EXPECT_EQ(Read("5.E2", format), 500.0);
    EXPECT_EQ(Read(".5E1", format), 5.0);
    EXPECT_EQ(Read("1E0000003", format), 1000.0);
    for (const char* text : {"E3", "1E", "1E+", "1E-", "1E1.5", "1EE3", "1E 3", "1 E3", ".E3",
                             "1F3", "1E3E3", "1E+-3", "D", "e", "1E3,000"}) {
      EXPECT_EQ(Read(text, format), kNoValue) << text;
    }
  }
  EXPECT_EQ(Read("1,5E3", kFormatDot), 1500.0);
}

TEST(NumberInput, BlanksAndTabsAroundAreDropped) {
  EXPECT_EQ(Read("  42", kFormatF), 42.0);
  EXPECT_EQ(Read("42 \t ", kFormatF), 42.0);
  EXPECT_EQ(Read("\t42\t", kFormatF), 42.0);
  EXPECT_EQ(Read("42\n", kFormatF), kNoValue);
  EXPECT_EQ(Read("\r42", kFormatF), kNoValue);
}

TEST(NumberInput, DigitsOfAnyScript) {
  const HostEncoding utf8("UTF-8");
  for (const int format : {kFormatF, kFormatE, kFormatPct, kFormatComma, kFormatDollar, kFormatN}) {
    EXPECT_EQ(Read("\uFF15", format), 5.0);
    EXPECT_EQ(Read("\u0661\u0662\u0663", format), 123.0);
    EXPECT_EQ(Read("1\u0968"
                   "3",
                   format),
              123.0);
    // Digits that are not decimal, and characters that only look like parts of numbers.
    for (const char* text : {"\u00B2", "\u2460", "5\u00BD", "\u4E00",
                             "\u2212"
                             "5",
                             "1\uFF0E"
                             "5"}) {
      EXPECT_EQ(Read(text, format), kNoValue) << text;
    }
  }
  for (const int format : {kFormatF, kFormatE, kFormatPct, kFormatComma, kFormatDollar}) {
    EXPECT_EQ(Read("1,\uFF12"
                   "34",
                   format),
              1234.0);
    EXPECT_EQ(Read("-1,\u0662\u0663\u0664.\u0665E\u0661", format), -12345.0);
    EXPECT_EQ(Read(".\u0665", format), 0.5);
    EXPECT_EQ(Read("1,\uFF12"
                   "3",
                   format),
              kNoValue);
  }
  EXPECT_EQ(Read("$\u0665", kFormatDollar), 5.0);
  EXPECT_EQ(Read("\uFF15%", kFormatPct), 5.0);
  EXPECT_EQ(Read("\u0661.\u0662\u0663\u0664,\u0665", kFormatDot), 1234.5);
  // Digits beyond any double decide the rounding, whatever their script.
  EXPECT_EQ(Read("9007199254740993." + std::string(3000, '0') + "\u0661", kFormatF),
            9007199254740994.0);
  EXPECT_EQ(Read("900719925474099\u0663", kFormatF), 9007199254740992.0);
}

TEST(NumberInput, WhiteSpaceBehindAnAmount) {
  const HostEncoding utf8("UTF-8");
  for (const char* blanks :
       {"\u00A0", "\n", "\r\n", "\v", "\f", "\u2009\u3000", " \u00A0 \t", "\u2028"}) {
    EXPECT_EQ(Read(std::string("1234.5") + blanks, kFormatComma), 1234.5);
    EXPECT_EQ(Read(std::string("$5") + blanks, kFormatDollar), 5.0);
    EXPECT_EQ(Read(std::string("5") + blanks, kFormatDollar), 5.0);
    EXPECT_EQ(Read(std::string("1.234,5") + blanks, kFormatDot), 1234.5);
    EXPECT_EQ(Read(std::string("12345678901234567890") + blanks, kFormatComma),
              12345678901234567890.0);
    for (const int format : {kFormatComma, kFormatDollar, kFormatDot}) {
      EXPECT_EQ(Read(blanks + std::string("5"), format), kNoValue);
      EXPECT_EQ(Read(std::string("5") + blanks + "5", format), kNoValue);
    }
  }
  const HostEncoding latin("windows-1252");
  EXPECT_EQ(Read("$5\xA0", kFormatDollar), 5.0);
}

TEST(NumberInput, TheLargestAndTheSmallest) {
  EXPECT_EQ(Read("1.7976931348623157e308", kFormatF), DBL_MAX);
  EXPECT_EQ(Read("-1.7976931348623157e308", kFormatF), -DBL_MAX);
  // The midpoint between the largest double and the next power of two rounds away.
  EXPECT_EQ(Read("1.7976931348623158e308", kFormatF), DBL_MAX);
  EXPECT_EQ(Read("1.7976931348623159e308", kFormatF), kNoValue);
  EXPECT_EQ(Read("1e309", kFormatF), kNoValue);
  EXPECT_EQ(Read("-1e309", kFormatF), kNoValue);
  EXPECT_EQ(Read("1e99999999999999999999999", kFormatF), kNoValue);
  EXPECT_EQ(Read("0e99999999999999999999999", kFormatF), 0.0);
  EXPECT_EQ(Read(std::string(400, '9'), kFormatF), kNoValue);
  EXPECT_EQ(Read("2.2250738585072014e-308", kFormatF), DBL_MIN);
  EXPECT_EQ(Read("4.9406564584124654e-324", kFormatF), std::numeric_limits<double>::denorm_min());
  EXPECT_EQ(Read("2.5e-324", kFormatF), std::numeric_limits<double>::denorm_min());
  EXPECT_EQ(Read("2.4e-324", kFormatF), 0.0);
  EXPECT_EQ(Read("1e-400", kFormatF), 0.0);
  EXPECT_EQ(Read("1e-99999999999999999999999", kFormatF), 0.0);
  EXPECT_EQ(Read("0." + std::string(400, '0') + "1", kFormatF), 0.0);
}

TEST(NumberInput, ZeroKeepsItsSign) {
  EXPECT_TRUE(std::signbit(Read("-0", kFormatF).value()));
  EXPECT_TRUE(std::signbit(Read("-0.00", kFormatF).value()));
  EXPECT_TRUE(std::signbit(Read("-1e-400", kFormatF).value()));
  EXPECT_FALSE(std::signbit(Read("0", kFormatF).value()));
}

TEST(NumberInput, ZerosAndExponentsThatCancel) {
  EXPECT_EQ(Read("1" + std::string(5000, '0') + "e-5000", kFormatF), 1.0);
  EXPECT_EQ(Read("0." + std::string(5000, '0') + "1e5001", kFormatF), 1.0);
  EXPECT_EQ(Read(std::string(5000, '0') + "1", kFormatF), 1.0);
  EXPECT_EQ(Read("1." + std::string(5000, '0'), kFormatF), 1.0);
}

TEST(NumberInput, DigitsBeyondAnyDoubleStillDecideTheRounding) {
  // 2^53 + 1 lies in the middle between two doubles: exactly there the even one is taken, and one
  // digit far behind the point moves it up.
  EXPECT_EQ(Read("9007199254740993", kFormatF), 9007199254740992.0);
  EXPECT_EQ(Read("9007199254740993." + std::string(3000, '0'), kFormatF), 9007199254740992.0);
  EXPECT_EQ(Read("9007199254740993." + std::string(3000, '0') + "1", kFormatF), 9007199254740994.0);
  EXPECT_EQ(Read("9007199254740992." + std::string(3000, '9'), kFormatF), 9007199254740992.0);
  EXPECT_EQ(Read("9,007,199,254,740,993", kFormatF), 9007199254740992.0);
  EXPECT_EQ(Read("9,007,199,254,740,993." + std::string(900, '0') + "1", kFormatComma),
            9007199254740994.0);
}

}  // namespace
}  // namespace embedded
