#include "detection/PatternMatcher.h"

#include <gtest/gtest.h>

namespace textwizard {
namespace {

bool Matches(const PatternMatcher& matcher, const char* text) {
  const icu::UnicodeString unicode = icu::UnicodeString::fromUTF8(text);
  matcher->reset(unicode);
  UErrorCode status = U_ZERO_ERROR;
  return matcher->matches(status) && U_SUCCESS(status);
}

TEST(PatternMatcher, IsCompiledOnceForAllItsCopies) {
  const PatternMatcher matcher("^a+$");
  const PatternMatcher copy = matcher;
  EXPECT_FALSE(copy.compiled());
  ASSERT_TRUE(copy);
  EXPECT_TRUE(matcher.compiled());
  EXPECT_EQ(copy.get(), matcher.get());
  EXPECT_EQ(copy, matcher);
  EXPECT_TRUE(Matches(matcher, "aaa"));
  EXPECT_FALSE(Matches(matcher, "ab"));
}

TEST(PatternMatcher, TwoOfTheSamePatternHaveAMatcherEach) {
  const PatternMatcher one("^b$"), other("^b$");
  EXPECT_NE(one, other);
  EXPECT_NE(one.get(), other.get());
  EXPECT_EQ(&one->pattern(), &other->pattern());
}

TEST(PatternMatcher, APatternThatDoesNotCompileHasNone) {
  const PatternMatcher broken("^(a$");
  EXPECT_FALSE(broken);
  EXPECT_EQ(broken.get(), nullptr);
  EXPECT_EQ(PatternMatcher().get(), nullptr);
}

}  // namespace
}  // namespace textwizard
