// Month and day names of the process locale, in any letter case and encoding.
#include <thread>
#include <vector>

#include "HostFramework/embedded/values/testing/ValueInputTesting.h"

namespace embedded {
namespace {

TEST(DateNames, FrenchInAnyLetterCase) {
  const ProcessLocale locale("fr_FR.UTF-8");
  const HostEncoding utf8("UTF-8");
  for (const char* text : {"février", "Février", "FÉVRIER", "fÉvRiEr", "févr.", "FÉVR.", "Feb",
                           "february", "II", "2"}) {
    EXPECT_EQ(Read(text, kFormatMonth), 2.0) << text;
  }
  EXPECT_EQ(Read("août", kFormatMonth), 8.0);
  EXPECT_EQ(Read("AOÛT", kFormatMonth), 8.0);
  EXPECT_EQ(Read("aout", kFormatMonth), kNoValue);
  EXPECT_EQ(Read("févr", kFormatMonth), kNoValue) << "the abbreviation has a point";
  EXPECT_EQ(Read("Dimanche", kFormatWkday), 1.0);
  EXPECT_EQ(Read("sam.", kFormatWkday), 7.0);
  EXPECT_EQ(Read("Saturday", kFormatWkday), 7.0);
  EXPECT_EQ(Read("1 févr. 2020", kFormatDate), Day1970(18293));
  EXPECT_EQ(Read("1févr.2020", kFormatDate), Day1970(18293));
  EXPECT_EQ(Read("1.févr..2020", kFormatDate), Day1970(18293));
  EXPECT_EQ(Read("FÉVRIER 2020", kFormatMoyr), Day1970(18293));
  EXPECT_EQ(Read("1-AOÛT-2020 10:30", kFormatDateTime), Day1970(18475) + 37800);
}

TEST(DateNames, GermanUmlaut) {
  const ProcessLocale locale("de_DE.UTF-8");
  const HostEncoding utf8("UTF-8");
  EXPECT_EQ(Read("MÄRZ", kFormatMonth), 3.0);
  EXPECT_EQ(Read("Mär", kFormatMonth), 3.0);
  EXPECT_EQ(Read("mar", kFormatMonth), 3.0);
  EXPECT_EQ(Read("31. Dezember 2020", kFormatDate), Day1970(18627));
  EXPECT_EQ(Read("31-DEZ-20", kFormatDate), Day1970(18627));
  EXPECT_EQ(Read("mittwoch", kFormatWkday), 4.0);
}

TEST(DateNames, ALocaleWithADecimalCommaDoesNotChangeNumbers) {
  const ProcessLocale locale("de_DE.UTF-8");
  EXPECT_EQ(Read("1.5", kFormatF), 1.5);
  EXPECT_EQ(Read("1,234.5", kFormatF), 1234.5);
  EXPECT_EQ(Read("12345678901234567890.12345", kFormatF), 12345678901234567890.12345);
  EXPECT_EQ(Read("1,5", kFormatF), kNoValue);
  EXPECT_EQ(Read("0:00:00.1234567890123456789", kFormatTime), 0.1234567890123456789);
}

TEST(DateNames, TextInACodePageOfItsOwn) {
  // The locale writes its names in UTF-8; the host's text is in another encoding.
  const ProcessLocale locale("fr_FR.UTF-8");
  const HostEncoding page("windows-1252");
  EXPECT_EQ(Read("f\xE9vrier", kFormatMonth), 2.0);
  EXPECT_EQ(Read("F\xC9VRIER", kFormatMonth), 2.0);
  EXPECT_EQ(Read("f\xC3\xA9vrier", kFormatMonth), kNoValue);
}

TEST(DateNames, RussianWithinDatesAndAlone) {
  const ProcessLocale locale("ru_RU.UTF-8");
  const HostEncoding utf8("UTF-8");
  EXPECT_EQ(Read("31 ЯНВАРЯ 2020", kFormatDate), Day1970(18292));
  EXPECT_EQ(Read("31января2020", kFormatDate), Day1970(18292));
  EXPECT_EQ(Read("Январь", kFormatMonth), 1.0);
  EXPECT_EQ(Read("сентября", kFormatMonth), 9.0);
  EXPECT_EQ(Read("ВОСКРЕСЕНЬЕ", kFormatWkday), 1.0);
}

TEST(DateNames, TurkishDottedAndDotlessLetters) {
  const ProcessLocale locale("tr_TR.UTF-8");
  const HostEncoding utf8("UTF-8");
  for (const char* text : {"Nisan", "NİSAN", "NISAN", "nisan"}) {
    EXPECT_EQ(Read(text, kFormatMonth), 4.0) << text;
  }
  for (const char* text : {"Kasım", "KASIM", "kasım"})
    EXPECT_EQ(Read(text, kFormatMonth), 11.0) << text;
  EXPECT_EQ(Read("APRIL", kFormatMonth), 4.0);
  EXPECT_EQ(Read("FRIDAY", kFormatWkday), 6.0);
}

TEST(DateNames, NamesThatBeginWithDigits) {
  const ProcessLocale locale("ja_JP.UTF-8");
  const HostEncoding utf8("UTF-8");
  EXPECT_EQ(Read("1月", kFormatMonth), 1.0);
  EXPECT_EQ(Read("12月", kFormatMonth), 12.0);
  EXPECT_EQ(Read("12", kFormatMonth), 12.0);
  EXPECT_EQ(Read("1月 2020", kFormatMoyr), Day1970(18262));
  EXPECT_EQ(Read("2020/1月/31", kFormatSDate), Day1970(18292));
  EXPECT_EQ(Read("日曜日", kFormatWkday), 1.0);
  EXPECT_EQ(Read("土", kFormatWkday), 7.0);
}

TEST(DateNames, NamesThatGoOnFromDigitsWithASeparator) {
  const ProcessLocale locale("mn_MN.UTF-8");
  const HostEncoding utf8("UTF-8");
  EXPECT_EQ(Read("1-р сар", kFormatMonth), 1.0);
  EXPECT_EQ(Read("12-Р САР", kFormatMonth), 12.0);
  EXPECT_EQ(Read("31 1-р сар 2020", kFormatDate), Day1970(18292));
  EXPECT_EQ(Read("31-1-2020", kFormatDate), Day1970(18292));
}

TEST(DateNames, FollowTheLocale) {
  const HostEncoding utf8("UTF-8");
  for (int i = 0; i < 3; ++i) {
    {
      const ProcessLocale locale("fr_FR.UTF-8");
      EXPECT_EQ(Read("mai", kFormatMonth), 5.0);
      EXPECT_EQ(Read("juin", kFormatMonth), 6.0);
      EXPECT_EQ(Read("dezember", kFormatMonth), kNoValue);
    }
    {
      const ProcessLocale locale("de_DE.UTF-8");
      EXPECT_EQ(Read("mai", kFormatMonth), 5.0);
      EXPECT_EQ(Read("juin", kFormatMonth), kNoValue);
      EXPECT_EQ(Read("dezember", kFormatMonth), 12.0);
    }
    EXPECT_EQ(Read("mai", kFormatMonth), kNoValue);
    EXPECT_EQ(Read("dezember", kFormatMonth), kNoValue);
    EXPECT_EQ(Read("december", kFormatMonth), 12.0);
  }
}

// Names are decoded by the encoding of the locale's characters, which can change without its names.
TEST(DateNames, FollowTheEncodingOfTheLocale) {
  const HostEncoding utf8("UTF-8");
  const ProcessLocale locale("de_DE.UTF-8");
  for (int i = 0; i < 3; ++i) {
    std::setlocale(LC_CTYPE, "C");
    EXPECT_EQ(Read("märz", kFormatMonth), kNoValue);
    EXPECT_EQ(Read("dezember", kFormatMonth), 12.0);
    std::setlocale(LC_CTYPE, "de_DE.UTF-8");
    EXPECT_EQ(Read("märz", kFormatMonth), 3.0);
  }
}

TEST(DateNames, ManyThreadsReadThemAtOnce) {
  const ProcessLocale locale("fr_FR.UTF-8");
  const HostEncoding utf8("UTF-8");
  std::vector<std::thread> threads;
  std::vector<int> right(4);
  for (int& count : right) {
    threads.emplace_back([&count] {
      for (int i = 0; i < 2000; ++i) {
        double value = 0;
        const std::string_view text = "1-AOÛT-2020";
        if (IocvConvertInput(text.data(), text.size(), kFormatDate, 0, &value) == 0 &&
            value == Day1970(18475)) {
          ++count;
        }
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  for (const int count : right) EXPECT_EQ(count, 2000);
}

}  // namespace
}  // namespace embedded
