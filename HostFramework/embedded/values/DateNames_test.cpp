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
    EXPECT_EQ(Read(text, kMonth), 2.0) << text;
  }
  EXPECT_EQ(Read("août", kMonth), 8.0);
  EXPECT_EQ(Read("AOÛT", kMonth), 8.0);
  EXPECT_EQ(Read("aout", kMonth), kNoValue);
  EXPECT_EQ(Read("févr", kMonth), kNoValue) << "the abbreviation has a point";
  EXPECT_EQ(Read("Dimanche", kWkday), 1.0);
  EXPECT_EQ(Read("sam.", kWkday), 7.0);
  EXPECT_EQ(Read("Saturday", kWkday), 7.0);
  EXPECT_EQ(Read("1 févr. 2020", kDate), Day1970(18293));
  EXPECT_EQ(Read("1févr.2020", kDate), Day1970(18293));
  EXPECT_EQ(Read("1.févr..2020", kDate), Day1970(18293));
  EXPECT_EQ(Read("FÉVRIER 2020", kMoyr), Day1970(18293));
  EXPECT_EQ(Read("1-AOÛT-2020 10:30", kDateTime), Day1970(18475) + 37800);
}

TEST(DateNames, GermanUmlaut) {
  const ProcessLocale locale("de_DE.UTF-8");
  const HostEncoding utf8("UTF-8");
  EXPECT_EQ(Read("MÄRZ", kMonth), 3.0);
  EXPECT_EQ(Read("Mär", kMonth), 3.0);
  EXPECT_EQ(Read("mar", kMonth), 3.0);
  EXPECT_EQ(Read("31. Dezember 2020", kDate), Day1970(18627));
  EXPECT_EQ(Read("31-DEZ-20", kDate), Day1970(18627));
  EXPECT_EQ(Read("mittwoch", kWkday), 4.0);
}

TEST(DateNames, ALocaleWithADecimalCommaDoesNotChangeNumbers) {
  const ProcessLocale locale("de_DE.UTF-8");
  EXPECT_EQ(Read("1.5", kF), 1.5);
  EXPECT_EQ(Read("1,234.5", kF), 1234.5);
  EXPECT_EQ(Read("12345678901234567890.12345", kF), 12345678901234567890.12345);
  EXPECT_EQ(Read("1,5", kF), kNoValue);
  EXPECT_EQ(Read("0:00:00.1234567890123456789", kTime), 0.1234567890123456789);
}

TEST(DateNames, TextInACodePageOfItsOwn) {
  // The locale writes its names in UTF-8; the host's text is in another encoding.
  const ProcessLocale locale("fr_FR.UTF-8");
  const HostEncoding page("windows-1252");
  EXPECT_EQ(Read("f\xE9vrier", kMonth), 2.0);
  EXPECT_EQ(Read("F\xC9VRIER", kMonth), 2.0);
  EXPECT_EQ(Read("f\xC3\xA9vrier", kMonth), kNoValue);
}

TEST(DateNames, RussianWithinDatesAndAlone) {
  const ProcessLocale locale("ru_RU.UTF-8");
  const HostEncoding utf8("UTF-8");
  EXPECT_EQ(Read("31 ЯНВАРЯ 2020", kDate), Day1970(18292));
  EXPECT_EQ(Read("31января2020", kDate), Day1970(18292));
  EXPECT_EQ(Read("Январь", kMonth), 1.0);
  EXPECT_EQ(Read("сентября", kMonth), 9.0);
  EXPECT_EQ(Read("ВОСКРЕСЕНЬЕ", kWkday), 1.0);
}

TEST(DateNames, TurkishDottedAndDotlessLetters) {
  const ProcessLocale locale("tr_TR.UTF-8");
  const HostEncoding utf8("UTF-8");
  for (const char* text : {"Nisan", "NİSAN", "NISAN", "nisan"}) {
    EXPECT_EQ(Read(text, kMonth), 4.0) << text;
  }
  for (const char* text : {"Kasım", "KASIM", "kasım"}) EXPECT_EQ(Read(text, kMonth), 11.0) << text;
  EXPECT_EQ(Read("APRIL", kMonth), 4.0);
  EXPECT_EQ(Read("FRIDAY", kWkday), 6.0);
}

TEST(DateNames, NamesThatBeginWithDigits) {
  const ProcessLocale locale("ja_JP.UTF-8");
  const HostEncoding utf8("UTF-8");
  EXPECT_EQ(Read("1月", kMonth), 1.0);
  EXPECT_EQ(Read("12月", kMonth), 12.0);
  EXPECT_EQ(Read("12", kMonth), 12.0);
  EXPECT_EQ(Read("1月 2020", kMoyr), Day1970(18262));
  EXPECT_EQ(Read("2020/1月/31", kSDate), Day1970(18292));
  EXPECT_EQ(Read("日曜日", kWkday), 1.0);
  EXPECT_EQ(Read("土", kWkday), 7.0);
}

TEST(DateNames, NamesThatGoOnFromDigitsWithASeparator) {
  const ProcessLocale locale("mn_MN.UTF-8");
  const HostEncoding utf8("UTF-8");
  EXPECT_EQ(Read("1-р сар", kMonth), 1.0);
  EXPECT_EQ(Read("12-Р САР", kMonth), 12.0);
  EXPECT_EQ(Read("31 1-р сар 2020", kDate), Day1970(18292));
  EXPECT_EQ(Read("31-1-2020", kDate), Day1970(18292));
}

TEST(DateNames, FollowTheLocale) {
  const HostEncoding utf8("UTF-8");
  for (int i = 0; i < 3; ++i) {
    {
      const ProcessLocale locale("fr_FR.UTF-8");
      EXPECT_EQ(Read("mai", kMonth), 5.0);
      EXPECT_EQ(Read("juin", kMonth), 6.0);
      EXPECT_EQ(Read("dezember", kMonth), kNoValue);
    }
    {
      const ProcessLocale locale("de_DE.UTF-8");
      EXPECT_EQ(Read("mai", kMonth), 5.0);
      EXPECT_EQ(Read("juin", kMonth), kNoValue);
      EXPECT_EQ(Read("dezember", kMonth), 12.0);
    }
    EXPECT_EQ(Read("mai", kMonth), kNoValue);
    EXPECT_EQ(Read("dezember", kMonth), kNoValue);
    EXPECT_EQ(Read("december", kMonth), 12.0);
  }
}

// Names are decoded by the encoding of the locale's characters, which can change without its names.
TEST(DateNames, FollowTheEncodingOfTheLocale) {
  const HostEncoding utf8("UTF-8");
  const ProcessLocale locale("de_DE.UTF-8");
  for (int i = 0; i < 3; ++i) {
    std::setlocale(LC_CTYPE, "C");
    EXPECT_EQ(Read("märz", kMonth), kNoValue);
    EXPECT_EQ(Read("dezember", kMonth), 12.0);
    std::setlocale(LC_CTYPE, "de_DE.UTF-8");
    EXPECT_EQ(Read("märz", kMonth), 3.0);
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
        if (IocvConvertInput(text.data(), text.size(), kDate, 0, &value) == 0 &&
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
