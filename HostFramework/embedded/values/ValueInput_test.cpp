// Results, trimming, the decimal character, and what no text may do.
#include "HostFramework/ValueInput.h"

#include <cmath>
#include <random>
#include <string>
#include <vector>

#include "HostFramework/embedded/values/testing/ValueInputTesting.h"

namespace embedded {
namespace {

constexpr int kFormats[] = {
    kFormatComma, kFormatDollar,   kFormatF,     kFormatN,     kFormatE,     kFormatDate,
    kFormatTime,  kFormatDateTime, kFormatADate, kFormatJDate, kFormatDTime, kFormatWkday,
    kFormatMonth, kFormatMoyr,     kFormatQyr,   kFormatWkyr,  kFormatPct,   kFormatDot,
    kFormatEDate, kFormatSDate,    kFormatMTime, kFormatYmdhms};

int Result(std::string_view text, int format) {
  double value = 7;
  const int result = IocvConvertInput(text.data(), text.size(), format, 0, &value);
  if (result != 0) {
    EXPECT_EQ(value, 7.0) << "touched by '" << text << "'";
  }
  return result;
}

TEST(ValueInput, EmptyAndBlankTextsAreOne) {
  for (const int format : kFormats) {
    EXPECT_EQ(Result("", format), 1);
    EXPECT_EQ(Result(" ", format), 1);
    EXPECT_EQ(Result("\t", format), 1);
    EXPECT_EQ(Result(" \t \t ", format), 1);
    EXPECT_EQ(Result(std::string(100'000, ' '), format), 1);
    EXPECT_EQ(Result(std::string_view(), format), 1);
  }
}

TEST(ValueInput, TextsThatAreNoValueAreTwo) {
  for (const int format : kFormats) {
    EXPECT_EQ(Result("nonsense", format), 2) << format;
    EXPECT_EQ(Result("\n", format), 2) << format;
    EXPECT_EQ(Result("?", format), 2) << format;
  }
}

TEST(ValueInput, FormatsThatNoValueIsReadWithAreThree) {
  for (const int format : {0,  1,  2,  6,  7,  8,  9,  10, 11, 12,   13, 14,
                           15, 18, 19, 33, 34, 37, 40, 84, 87, 9999, -1, 2'000'000'000}) {
    EXPECT_EQ(Result("5", format), 3) << format;
    EXPECT_EQ(Result("31-JAN-2020", format), 3) << format;
  }
}

TEST(ValueInput, BlanksAndTabsOnBothSidesAreDroppedForEveryFormat) {
  EXPECT_EQ(Read(" \t31-JAN-2020\t ", kFormatDate), Day1970(18292));
  EXPECT_EQ(Read("\t10:30 ", kFormatTime), 37800.0);
  EXPECT_EQ(Read(" Monday ", kFormatWkday), 2.0);
  EXPECT_EQ(Read("\t\t2020-01-31 10:30  ", kFormatYmdhms), Day1970(18292) + 37800);
}

TEST(ValueInput, OnlyTheGivenLengthIsRead) {
  EXPECT_EQ(Read(std::string_view("12345", 3), kFormatF), 123.0);
  EXPECT_EQ(Read(std::string_view("1e5", 1), kFormatF), 1.0);
  EXPECT_EQ(Read(std::string_view("31-JAN-2020", 9), kFormatDate), Day1970(18292));
}

TEST(ValueInput, DecimalCharacterOfTheProcess) {
  EXPECT_EQ(iocvgetdecchar_(), '.');
  iocvsetdeccharcomma_();
  EXPECT_EQ(iocvgetdecchar_(), ',');
  EXPECT_EQ(Read("1,5", kFormatF), 1.5);
  iocvsetdecchardot_();
  EXPECT_EQ(iocvgetdecchar_(), '.');
  EXPECT_EQ(Read("1,5", kFormatF), kNoValue);
}

// Hostile bytes: a text is copied to memory of exactly its size, so that a sanitizer sees any read
// beyond it.
class HostileText : public testing::Test {
 protected:
  void Check(const std::string& text) {
    const std::vector<char> exact(text.begin(), text.end());
    for (const int format : kFormats) {
      constexpr double kUntouched = -12345.678;
      double value = kUntouched;
      const int result = IocvConvertInput(exact.data(), exact.size(), format, 0, &value);
      if (result == 0) {
        ASSERT_TRUE(std::isfinite(value)) << text;
      } else {
        ASSERT_TRUE(result == 1 || result == 2) << text;
        ASSERT_EQ(value, kUntouched) << text;
      }
      converted_ += result == 0;
    }
  }

  std::size_t Below(std::size_t limit) { return random_() % limit; }

  std::mt19937_64 random_{77};
  int converted_ = 0;
};

TEST_F(HostileText, RandomBytes) {
  for (const char* page : {"UTF-8", "windows-1252", "Shift_JIS"}) {
    const HostEncoding encoding(page);
    for (int i = 0; i < 20'000; ++i) {
      std::string text(Below(40), '\0');
      for (char& c : text) c = static_cast<char>(random_());
      Check(text);
    }
  }
}

TEST_F(HostileText, RandomPiecesOfValues) {
  const HostEncoding encoding("UTF-8");
  const std::string pieces[] = {"1",
                                "2",
                                "0",
                                "31",
                                "12",
                                "2020",
                                "99",
                                "JAN",
                                "xii",
                                "may",
                                "mon",
                                "q",
                                "WK",
                                "T",
                                ":",
                                ".",
                                ",",
                                "-",
                                "/",
                                " ",
                                "\t",
                                "+",
                                "%",
                                "$",
                                "e",
                                "D",
                                "007",
                                "|",
                                "\xC2\xA0",
                                "\xD9\xA1",
                                "\xFF",
                                "\xE3",
                                std::string(1, '\0'),
                                "99999999999999"};
  for (int i = 0; i < 200'000; ++i) {
    std::string text;
    for (std::size_t n = 1 + Below(9); n > 0; --n) text += pieces[Below(std::size(pieces))];
    Check(text);
  }
  EXPECT_GT(converted_, 10'000);
}

TEST_F(HostileText, LongTexts) {
  const HostEncoding encoding("UTF-8");
  for (const std::string piece :
       {"1", " ", ",234", "1,", ".", "e", "-", ":", "jan", "x", "\xC2\xA0", "\xD9\xA1", "\xFF"}) {
    std::string text;
    while (text.size() < 100'000) text += piece;
    Check(text);
    Check("1" + text + "1");
    Check("1:" + text);
    Check("31" + text + "JAN" + text + "2020");
  }
}

}  // namespace
}  // namespace embedded
