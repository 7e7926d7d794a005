#include "detection/NumericRule.h"

#include <clocale>
#include <cstdlib>
#include <random>
#include <string>
#include <string_view>

#include <gtest/gtest.h>

#include "detection/testing/TestLocale.h"

namespace textwizard {
namespace {

// The rule in its plainest form: strtod, and once more behind a comma.
bool IsNumericByTheRule(std::string text) {
  while (!text.empty() && text.back() == ' ') text.pop_back();
  if (text == "," || text == ".") return false;
  char* stop = nullptr;
  std::strtod(text.c_str(), &stop);
  const std::size_t parsed = static_cast<std::size_t>(stop - text.c_str());
  if (parsed < text.size() && text[parsed] == ',') {
    return parsed + 1 == text.size() || IsNumericByTheRule(text.substr(parsed + 1));
  }
  return parsed == text.size();
}

bool IsNumeric(std::string_view text) { return NumericRule().Accepts(text); }

TEST(NumericRule, ATrailingCommaBelongsToANumber) {
  EXPECT_TRUE(IsNumeric("12,"));
  EXPECT_TRUE(IsNumeric("12,  "));
  EXPECT_FALSE(IsNumeric("12,,"));
}

TEST(NumericRule, ANumberMayBeginWithAComma) {
  EXPECT_TRUE(IsNumeric(",5"));
  EXPECT_FALSE(IsNumeric(" ,5"));
  EXPECT_FALSE(IsNumeric(",,"));
}

TEST(NumericRule, EveryPieceBetweenCommasIsANumber) {
  EXPECT_TRUE(IsNumeric("1,5"));
  EXPECT_TRUE(IsNumeric("1,000,000"));
  EXPECT_TRUE(IsNumeric("1, 2,+3.5e2,0x1F,-inf"));
  EXPECT_FALSE(IsNumeric("1,2,x"));
  EXPECT_FALSE(IsNumeric("1,2,."));
}

TEST(NumericRule, ALoneCommaOrPointIsNoNumber) {
  EXPECT_FALSE(IsNumeric(","));
  EXPECT_FALSE(IsNumeric("."));
  EXPECT_FALSE(IsNumeric(".  "));
}

TEST(NumericRule, LeadingWhiteSpaceIsParsedAndTrailingBlanksAreTrimmed) {
  EXPECT_TRUE(IsNumeric(" 42"));
  EXPECT_TRUE(IsNumeric("\t 42"));
  EXPECT_TRUE(IsNumeric("42  "));
  EXPECT_FALSE(IsNumeric("42\t"));
}

TEST(NumericRule, EmptyAndBlankTextsAreNumbers) {
  EXPECT_TRUE(IsNumeric(""));
  EXPECT_TRUE(IsNumeric("   "));
  EXPECT_FALSE(IsNumeric("\t"));
}

TEST(NumericRule, TakesEveryFormOfTheParser) {
  for (const char* text : {"+1", "-1", "1.", ".5", "1e5", "1E+05", "1.5e-3", "0x1A", "0X.8p3",
                           "inf", "-Infinity", "nan", "NAN(123)", "007"}) {
    EXPECT_TRUE(IsNumeric(text)) << text;
  }
  for (const char* text : {"1e", "1e+", "+", "-", "--1", "1-", "1.2.3", "0x", "infi", "nane", "1 2",
                           "e5", "1d5", "$1", "1%", "abc", "\xc3\xa9", "1\xc2\xa0"}) {
    EXPECT_FALSE(IsNumeric(text)) << text;
  }
}

TEST(NumericRule, ANulEndsTheNumber) {
  EXPECT_FALSE(IsNumeric(std::string_view("1\0", 2)));
  EXPECT_FALSE(IsNumeric(std::string_view("0x1\0", 4)));
  EXPECT_FALSE(IsNumeric(std::string_view("\0", 1)));
}

TEST(NumericRule, ReadsByTheNumericLocale) {
  const TestLocale comma(LC_NUMERIC, "de_DE.UTF-8");
  EXPECT_TRUE(IsNumeric("1,5"));
  EXPECT_TRUE(IsNumeric(",5"));
  EXPECT_TRUE(IsNumeric("1,5,2,5,"));
  EXPECT_FALSE(IsNumeric("1.5"));
  EXPECT_FALSE(IsNumeric("5,x"));
  EXPECT_TRUE(IsNumeric("5,,"));
  EXPECT_FALSE(IsNumeric(","));
}

TEST(NumericRule, ALongRowOfCommasTakesTimeLinearInItsLength) {
  // A million pieces, most of them for strtod: an implementation that copies the rest for each of
  // them moves 10^12 bytes here.
  std::string text;
  for (int i = 0; i < 500'000; ++i) text += "7,0xF,";
  NumericRule test;
  EXPECT_TRUE(test.Accepts(text));
  EXPECT_FALSE(test.Accepts(text + "z"));
}

// Texts of the characters that a number is made of, with a few that it is not.
std::string RandomNumberLike(std::mt19937& random) {
  static constexpr std::string_view kAlphabet =
      "00123456789999...,,,,++--eEeExXpPaAfFiInNtTyY() \t\n\v\f\r$%z_\x01";
  static constexpr std::string_view kWords[] = {"inf", "Infinity", "nan",  "nan(",     "nan(1a_)",
                                                "0x",  "0x1.8p3",  "1e5",  "\xc3\xa9", "\xa0",
                                                "1,0", "12.5",     "1.5,", ".,",       "  "};
  std::string text;
  for (auto left = random() % 9; left > 0; --left) {
    if (random() % 5 == 0) {
      text += kWords[random() % std::size(kWords)];
    } else {
      text += kAlphabet[random() % kAlphabet.size()];
    }
  }
  return text;
}

void CompareWithTheRule(int count) {
  std::mt19937 random(20'261'120);
  NumericRule test;
  int accepted = 0;
  int plain = 0;
  for (int i = 0; i < count; ++i) {
    const std::string text = RandomNumberLike(random);
    const bool expected = IsNumericByTheRule(text);
    ASSERT_EQ(test.Accepts(text), expected) << "[" << text << "]";
    accepted += expected ? 1 : 0;
    ASSERT_TRUE(!expected || text.empty() || test.MayBegin(text.front())) << "[" << text << "]";
    std::size_t point = 0;
    if (!test.AcceptsPlain(text, &point)) continue;
    ASSERT_TRUE(expected) << "[" << text << "]";
    ASSERT_EQ(point, text.find_last_of(".,")) << "[" << text << "]";
    ASSERT_EQ(text.find_first_of("eE, "), std::string::npos) << "[" << text << "]";
    ++plain;
  }
  // Both answers were there to be told apart.
  EXPECT_GT(accepted, count / 50);
  EXPECT_LT(accepted, count * 9 / 10);
  EXPECT_EQ(plain > 0, *std::localeconv()->decimal_point == '.');
}

TEST(NumericRule, PlainNumbersOfEveryLength) {
  const NumericRule rule;
  std::size_t point = 7;
  for (const std::string sign : {"", "-", "+"}) {
    EXPECT_FALSE(rule.AcceptsPlain(sign, &point));
    for (std::size_t length = 1; length <= 40; ++length) {
      const std::string digits = sign + std::string(length, '5');
      ASSERT_TRUE(rule.AcceptsPlain(digits, &point)) << digits;
      ASSERT_EQ(point, std::string::npos) << digits;
      for (std::size_t at = 0; at < length; ++at) {
        std::string text = digits;
        text[sign.size() + at] = '.';
        // A digit stands before the point.
        ASSERT_EQ(rule.AcceptsPlain(text, &point), at > 0) << text;
        if (at > 0) {
          ASSERT_EQ(point, sign.size() + at) << text;
        }
        for (std::size_t other = 0; other < length; ++other) {
          for (const char c : {'.', ',', '-', '/', ':', 'e', ' ', '\0', '\x80', '\x8A', '\xFF'}) {
            if (c == '.' && other == at) continue;
            if (c == '-' && other == 0 && sign.empty()) continue;
            std::string changed = text;
            changed[sign.size() + other] = c;
            ASSERT_FALSE(rule.AcceptsPlain(changed, &point)) << changed;
          }
        }
      }
    }
  }
}

TEST(NumericRule, SaysWhatTheRuleSaysOnRandomTexts) { CompareWithTheRule(1'000'000); }

TEST(NumericRule, SaysWhatTheRuleSaysUnderACommaLocale) {
  const TestLocale comma(LC_NUMERIC, "de_DE.UTF-8");
  CompareWithTheRule(1'000'000);
}

TEST(NumericRule, SaysWhatTheRuleSaysUnderAnotherCharacterLocale) {
  const TestLocale characters(LC_CTYPE, "fr_FR.UTF-8");
  CompareWithTheRule(200'000);
}

}  // namespace
}  // namespace textwizard
