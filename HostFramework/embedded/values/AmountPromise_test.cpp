// What is recognised as an amount or a percentage converts: every text of a pattern has a value
// under the pattern's format, unless it has no digit at all. The texts are made from the patterns'
// grammar, and each is matched against its pattern, so that what is tested is what is recognised.
#include <functional>

#include <unicode/regex.h>

#include "HostFramework/embedded/values/testing/LayoutText.h"
#include "HostFramework/embedded/values/testing/ValueInputTesting.h"

namespace embedded {
namespace {

constexpr int kTextsOfAPattern = 20'000;

// (\d{1,3}(\,\d{3})*|(\d+)), the digits without what separates their groups.
std::string MakeWhole(LayoutText& text, std::string_view group) {
  if (text.Maybe()) return text.AnyDigits(text.Below(10) == 0 ? 40 : 9);
  std::string digits = text.AnyDigits(3);
  for (int groups = text.Below(5); groups > 0; --groups) {
    text.Literal(group);
    for (int i = 0; i < 3; ++i) digits += text.AnyDigits(1);
  }
  return digits;
}

// (\-?)(\d{1,3}(\,\d{3})*|(\d+))(\.\d{1,})?\s*$
void MakeAmount(LayoutText& text, std::string_view group, std::string_view point) {
  const bool negative = text.OneOf({"-", ""}) == 0;
  const std::string digits = MakeWhole(text, group);
  std::string fraction;
  if (text.Maybe()) {
    text.Literal(point);
    fraction = text.AnyDigits(20);
  }
  for (int blanks = text.Below(3); blanks > 0; --blanks) text.Space();
  text.IsNumber(negative, digits, fraction);
}

// ^-?\d*(\.\d+)? *%?$, where either the digits or the fraction may lack. The value is read with the
// host's decimal character, so that a fraction is only made where that is the pattern's.
void MakePercentage(LayoutText& text) {
  const bool negative = text.OneOf({"-", ""}) == 0;
  const std::string digits = text.Maybe() ? text.AnyDigits(20) : "";
  std::string fraction;
  if (iocvgetdecchar_() == '.' && text.Maybe()) {
    text.Literal(".");
    fraction = text.AnyDigits(20);
  }
  for (int blanks = text.Below(3); blanks > 0; --blanks) text.Literal(" ");
  text.OneOf({"%", ""});
  if (digits.empty() && fraction.empty()) {
    text.IsMissing();
  } else {
    text.IsNumber(negative, digits.empty() ? "0" : digits, fraction);
  }
}

struct Pattern {
  int format;
  const char* expression;
  std::function<void(LayoutText&)> make;
};

const Pattern kPatterns[] = {
    {kFormatPct, R"(^-?\d*(\.\d+)? *%?$)", MakePercentage},
    {kFormatDollar, R"(^\$(\-?)(\d{1,3}(\,\d{3})*|(\d+))(\.\d{1,})?\s*$)",
     [](LayoutText& text) {
       text.Literal("$");
       MakeAmount(text, ",", ".");
     }},
    {kFormatComma, R"(^(\-?)(\d{1,3}(\,\d{3})*|(\d+))(\.\d{1,})?\s*$)",
     [](LayoutText& text) { MakeAmount(text, ",", "."); }},
    {kFormatDot, R"(^(\-?)(\d{1,3}(\.\d{3})*|(\d+))(\,\d{1,})?\s*$)",
     [](LayoutText& text) { MakeAmount(text, ".", ","); }},
};

// The code that a text without a value gives: 1 for a blank one.
int ResultOf(std::string_view text, int format) {
  double value = 0;
  return IocvConvertInput(text.data(), text.size(), format, 0, &value);
}

void CheckPattern(const Pattern& pattern) {
  SCOPED_TRACE(pattern.expression);
  UErrorCode status = U_ZERO_ERROR;
  icu::RegexMatcher matcher(icu::UnicodeString(pattern.expression), 0, status);
  ASSERT_TRUE(U_SUCCESS(status));
  std::mt19937_64 random(1582);
  int converted = 0;
  for (int i = 0; i < kTextsOfAPattern; ++i) {
    LayoutText made(random);
    pattern.make(made);
    const icu::UnicodeString unicode = icu::UnicodeString::fromUTF8(made.text());
    ASSERT_TRUE(matcher.reset(unicode).matches(status)) << "not of the pattern: " << made.text();
    if (made.outcome() == LayoutText::Outcome::kMissing) {
      ASSERT_NE(ResultOf(made.text(), pattern.format), 0) << "'" << made.text() << "'";
      continue;
    }
    const std::optional<double> value = Read(made.text(), pattern.format);
    ASSERT_TRUE(value) << "'" << made.text() << "'";
    ASSERT_EQ(*value, made.value()) << "'" << made.text() << "'";
    ++converted;
  }
  EXPECT_GT(converted, kTextsOfAPattern / 3) << "too few of the texts had to convert";
}

TEST(AmountPromise, WhatIsRecognisedConverts) {
  const HostEncoding utf8("UTF-8");
  for (const Pattern& pattern : kPatterns) {
    ASSERT_NO_FATAL_FAILURE(CheckPattern(pattern));
    const DecimalComma comma;
    ASSERT_NO_FATAL_FAILURE(CheckPattern(pattern));
  }
}

}  // namespace
}  // namespace embedded
