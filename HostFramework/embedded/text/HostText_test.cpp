#include "HostFramework/embedded/text/HostText.h"

#include <atomic>
#include <clocale>
#include <cstdlib>
#include <thread>
#include <vector>

#include <gmock/gmock.h>
#include <unicode/ucnv.h>

#include "HostFramework/Text.h"
#include "HostFramework/embedded/text/testing/TextTest.h"

namespace embedded {
namespace {

using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;

// The defaults are decided once in a process, so these run in processes of their own.
class HostTextDefault : public testing::Test {
 protected:
  HostTextDefault() { GTEST_FLAG_SET(death_test_style, "threadsafe"); }
};

void ExitWith(bool asExpected) { std::exit(asExpected ? 0 : 1); }

std::string LocaleToU8(std::string_view text) {
  std::string out;
  QANTMBCodePageToU8(nullptr, out, text);
  return out;
}

TEST_F(HostTextDefault, Utf8WhenTheLocaleIs) {
  EXPECT_EXIT(
      {
        const bool set = std::setlocale(LC_ALL, "C.UTF-8") != nullptr;
        ExitWith(set && qUTF8mode() && LocaleToU8("\xC3\xA9\xFF") == "\xC3\xA9\xEF\xBF\xBD");
      },
      testing::ExitedWithCode(0), "");
}

TEST_F(HostTextDefault, TheLocalesPageOtherwise) {
  // The codeset of the locale "C" is US-ASCII.
  EXPECT_EXIT(
      {
        const bool set = std::setlocale(LC_ALL, "C") != nullptr;
        std::uint32_t ch = 0;
        ExitWith(set && !qUTF8mode() && QANTMBU32Get_A(&ch, "A", 0, 8) == 1 &&
                 QANTMBU32Get_A(&ch, "\xE9", 0, 8) <= 0);
      },
      testing::ExitedWithCode(0), "");
}

TEST_F(HostTextDefault, IsDecidedAtTheFirstUseAndKept) {
  EXPECT_EXIT(
      {
        std::setlocale(LC_ALL, "C.UTF-8");
        const bool before = qUTF8mode();
        std::setlocale(LC_ALL, "C");
        ExitWith(before && qUTF8mode());
      },
      testing::ExitedWithCode(0), "");
}

TEST_F(HostTextDefault, TheLocalesPageInUtf8ModeIsItsCodeset) {
  EXPECT_EXIT(
      {
        std::setlocale(LC_ALL, "C");
        SetCodePage(nullptr);
        ExitWith(qUTF8mode() && LocaleToU8("a\xC3\xA9") == "a\xEF\xBF\xBD\xEF\xBF\xBD");
      },
      testing::ExitedWithCode(0), "");
}

TEST(HostText, SettingsSelectTheMode) {
  const InCodePage restored(nullptr);
  EXPECT_TRUE(qUTF8mode());
  EXPECT_TRUE(SetCodePage("windows-1252"));
  EXPECT_FALSE(qUTF8mode());
  EXPECT_TRUE(SetCodePage(nullptr));
  EXPECT_TRUE(qUTF8mode());
  EXPECT_TRUE(SetCodePage("Shift_JIS"));
  EXPECT_FALSE(qUTF8mode());
  EXPECT_TRUE(SetCodePage("utf8"));
  EXPECT_TRUE(qUTF8mode());
}

TEST(HostText, PagesThatHostTextCanBeIn) {
  const InCodePage restored(nullptr);
  for (const char* name : {"windows-1252", "ISO-8859-1", "latin1", "cp1251", "KOI8-R", "US-ASCII",
                           "ANSI_X3.4-1968", "Shift_JIS", "windows-31j", "GBK", "Big5", "EUC-KR",
                           "EUC-JP", "GB18030", "cp437", "ISO-8859-15", "UTF-8"}) {
    EXPECT_TRUE(SetCodePage(name)) << name;
    EXPECT_TRUE(SetLocaleCodePage(name)) << name;
  }
}

TEST(HostText, PagesByTheNamesInCommonUse) {
  const InCodePage restored(nullptr);
  struct Case {
    const char* name;
    std::string_view bytes;
    const char* utf8;
  };
  for (const Case& tried : {Case{"cp949", "\\\x81\x41", "\\\uAC02"},
                            Case{"949", "\x81\x41", "\uAC02"},
                            Case{"uhc", "\x81\x41", "\uAC02"},
                            Case{"UHC", "\x81\x41", "\uAC02"},
                            Case{"ks_c_5601-1987", "\xB0\xA1", "\uAC00"},
                            Case{"ibm-943", "\\\x82\xA0", "\\\u3042"},
                            Case{"win1252", "\x80", "\u20AC"},
                            Case{"win-1252", "\x80", "\u20AC"},
                            Case{"1252", "\x80", "\u20AC"},
                            Case{"cp-1252", "\x80", "\u20AC"},
                            Case{"CP1257", "\xE0", "\u0105"},
                            Case{"936", "\xB0\xA1", "\u554A"},
                            Case{"cp932", "\x87\x40", "\u2460"},
                            Case{"dos-850", "\x9B", "\u00F8"},
                            Case{"oem437", "\x81", "\u00FC"},
                            Case{"latin", "\xE9", "\u00E9"},
                            Case{"latin-1", "\xE9", "\u00E9"},
                            Case{"l1", "\xE9", "\u00E9"},
                            Case{"latin7", "\xE0", "\u0105"},
                            Case{"koi", "\xC1", "\u0430"},
                            Case{"thai", "\xA1", "\u0E01"},
                            Case{"chinese", "\xB0\xA1", "\u554A"},
                            Case{"gb_2312-80", "\xB0\xA1", "\u554A"},
                            Case{"866", "\x80", "\u0410"}}) {
    ASSERT_TRUE(SetLocaleCodePage(tried.name)) << tried.name;
    EXPECT_EQ(LocaleToU8(tried.bytes), tried.utf8) << tried.name;
  }
}

// Whatever ICU calls a page that host text can be in, so may a command.
TEST(HostText, EveryNameThatIcuHasForAPageItCanBeIn) {
  const InCodePage restored(nullptr);
  int names = 0;
  for (std::int32_t i = 0; i < ucnv_countAvailable(); ++i) {
    const char* page = ucnv_getAvailableName(i);
    if (!SetLocaleCodePage(page)) continue;
    UErrorCode error = U_ZERO_ERROR;
    const std::uint16_t count = ucnv_countAliases(page, &error);
    for (std::uint16_t alias = 0; alias < count; ++alias, ++names) {
      EXPECT_TRUE(SetLocaleCodePage(ucnv_getAlias(page, alias, &error))) << page << ' ' << alias;
    }
  }
  EXPECT_GT(names, 300);
}

TEST(HostText, ARefusalNamesWhatMayBeMeant) {
  EXPECT_EQ(CodePageRefusal("no-such-page"), "unknown code page no-such-page");
  EXPECT_EQ(CodePageRefusal(""), "unknown code page ");
  EXPECT_EQ(CodePageRefusal("latni1"), "unknown code page latni1; near ones: latin1");
  EXPECT_THAT(CodePageRefusal("windows1522"), EndsWith("; near ones: windows-1252"));
  EXPECT_THAT(CodePageRefusal("Shift_JS"), HasSubstr("Shift_JIS"));
  EXPECT_THAT(CodePageRefusal("koi8-x"), HasSubstr("KOI8-R"));
  EXPECT_THAT(CodePageRefusal("utf-9"), HasSubstr("UTF-8"));
  // What is not to be had is not offered.
  EXPECT_THAT(CodePageRefusal("utf-61"), Not(HasSubstr("UTF-16")));
  for (const char* page : {"UTF-16LE", "ISO-2022-JP", "ibm-37"}) {
    EXPECT_EQ(CodePageRefusal(page),
              "code page " + std::string(page) +
                  " cannot be worked in: it has shift states or is no superset of ASCII");
  }
}

TEST(HostText, PagesThatItCannotBeInChangeNothing) {
  const InCodePage in("windows-1252");
  for (const char* name : {"no-such-page", "", " ", "UTF-16", "UTF-16LE", "UTF-32", "UTF-7",
                           "ISO-2022-JP", "HZ-GB-2312", "SCSU", "ibm-37", "ibm-1047",
                           // A yen sign and an overline stand where ASCII has \ and ~.
                           "ibm-943_P130-1999"}) {
    EXPECT_FALSE(SetCodePage(name)) << name;
    EXPECT_FALSE(SetLocaleCodePage(name)) << name;
  }
  EXPECT_FALSE(qUTF8mode());
  EXPECT_EQ(LocaleToU8("\x80"), "\xE2\x82\xAC");
}

TEST(HostText, ControlCharactersAreAsciiInEveryPage) {
  for (const char* name : {"Shift_JIS", "cp437"}) {
    const InCodePage in(name);
    EXPECT_EQ(LocaleToU8("\x1A\x1C\x7F"), "\x1A\x1C\x7F");
    std::string out;
    QANTMBU8ToCodePage(nullptr, out, "\x1A\x1C\x7F");
    EXPECT_EQ(out, "\x1A\x1C\x7F");
  }
}

TEST(HostText, TheLocalesPageIsASettingOfItsOwnInUtf8ModeOnly) {
  const InCodePage restored(nullptr);
  ASSERT_TRUE(SetLocaleCodePage("windows-1252"));
  EXPECT_EQ(LocaleToU8("\xE9"), "\xC3\xA9");
  ASSERT_TRUE(SetCodePage("KOI8-R"));
  EXPECT_EQ(LocaleToU8("\xC1"), "\xD0\xB0");
  ASSERT_TRUE(SetCodePage(nullptr));
  EXPECT_EQ(LocaleToU8("\xE9"), "\xC3\xA9");
}

// Threads start with nothing of their own; a page with codes that need ICU gives each its
// converter.
TEST(HostText, ThreadsConvertIndependently) {
  struct Case {
    const char* page;
    std::string text;
  };
  for (const Case& tried : {Case{nullptr, "\x94\x39\xFC\x36"}, Case{"windows-1252", "\xE9"},
                            Case{"GB18030", "a\x94\x39\xFC\x36"}}) {
    const InCodePage in(tried.page, "GB18030");
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i) {
      threads.emplace_back([&tried] {
        std::string utf8, back;
        for (int round = 0; round < 500; ++round) {
          QANTMBCodePageToU8(nullptr, utf8, tried.text);
          QANTMBU8ToCodePage(nullptr, back, utf8);
          EXPECT_EQ(back, tried.text);
        }
      });
    }
    for (std::thread& thread : threads) thread.join();
  }
}

// The first reads may come from several threads at once.
TEST_F(HostTextDefault, AnyThreadMayBeTheFirstToAsk) {
  EXPECT_EXIT(
      {
        std::setlocale(LC_ALL, "C.UTF-8");
        std::atomic<int> utf8{0};
        std::vector<std::thread> threads;
        for (int i = 0; i < 4; ++i) threads.emplace_back([&utf8] { utf8 += qUTF8mode() ? 1 : 0; });
        for (std::thread& thread : threads) thread.join();
        ExitWith(utf8 == 4);
      },
      testing::ExitedWithCode(0), "");
}

}  // namespace
}  // namespace embedded
