// The automata against the bare regular expressions: same answer on every text.
#include "detection/PatternAutomaton.h"

#include <array>
#include <cctype>
#include <cstdlib>
#include <random>
#include <string>

#include <gtest/gtest.h>

#include "detection/RegExMappings.h"
#include "detection/ValueClassifier.h"
#include "detection/testing/PatternTexts.h"
#include "detection/testing/TestLocale.h"

namespace textwizard {
namespace {

// Texts per run; TEXTWIZARD_PATTERN_TEXTS asks for more (the proof is ten million).
long TextCount(long everyRun) {
  const char* asked = std::getenv("TEXTWIZARD_PATTERN_TEXTS");
  return asked ? std::atol(asked) : everyRun;
}

// What the library alone says.
class BareExpressions {
 public:
  bool Matches(icu::RegexMatcher* matcher, const std::string& text) {
    text_ = icu::UnicodeString::fromUTF8(text);
    matcher->reset(text_);
    UErrorCode status = U_ZERO_ERROR;
    return matcher->matches(status) && U_SUCCESS(status);
  }

 private:
  icu::UnicodeString text_;
};

std::string LowerCased(std::string text) {
  for (char& c : text) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  return text;
}

class Comparison {
 public:
  Comparison() : classifier_(table_, kDelimitedLines) {}

  // The number of rows and forms that the text matched.
  int Compare(const std::string& text) {
    int matched = 0;
    int first = 0;
    const std::string lower = LowerCased(text);
    for (const auto& [key, row] : table_.regExMappings()) {
      const bool expected = bare_.Matches(row.matcher.get(), lower);
      if (classifier_.MatchesRow(text, key) != expected) {
        ADD_FAILURE() << "row " << key << ", expression " << expected << ": [" << text << "]";
      }
      if (expected && first == 0) first = key;
      matched += expected ? 1 : 0;
    }
    if (classifier_.IsDateTime(text) != first) {
      ADD_FAILURE() << "first row " << first << ": [" << text << "]";
    }
    icu::RegexMatcher* forms[] = {table_.percentMatcher.get(), table_.dollarMatcher.get(),
                                  table_.commaMatcher.get(), table_.dotMatcher.get()};
    for (int i = 0; i < 4; ++i) {
      const bool expected = bare_.Matches(forms[i], text);
      if (classifier_.Is(static_cast<NumberForm>(i), text) != expected) {
        ADD_FAILURE() << "form " << i << ", expression " << expected << ": [" << text << "]";
      }
      matched += expected ? 1 : 0;
    }
    return matched;
  }

  void CompareMany(long count) {
    std::mt19937 random(33);
    long matching = 0;
    for (long i = 0; i < count && !testing::Test::HasFailure(); ++i) {
      matching += Compare(RandomPatternText(random)) > 0 ? 1 : 0;
    }
    // The texts were worth asking about.
    EXPECT_GT(matching, count / 5);
    EXPECT_LT(matching, count * 9 / 10);
  }

 private:
  RegExMappings table_;
  ValueClassifier classifier_;
  BareExpressions bare_;
};

TEST(PatternAutomaton, AnswersAsTheExpressionsDoOnRandomTexts) {
  Comparison().CompareMany(TextCount(150'000));
}

TEST(PatternAutomaton, AnswersAsTheExpressionsDoWithNamesBeyondAscii) {
  const TestLocale names(LC_TIME, "fr_FR.UTF-8");
  Comparison comparison;
  for (const char* text :
       {"janv. 2020", "janvx 2020", "janv\n 2020", "janv\xc2\xa0 2020", "f\xc3\xa9vrier",
        "f\xc3\xa9v. 20", "fevrier", "mars", "ao\xc3\xbbt", "dimanche", "dim.", "DÉC. 20"}) {
    comparison.Compare(text);
  }
  comparison.CompareMany(TextCount(50'000));
}

TEST(PatternAutomaton, AnswersAsTheExpressionsDoUnderGermanNames) {
  const TestLocale names(LC_TIME, "de_DE.UTF-8");
  const TestLocale characters(LC_CTYPE, "de_DE.UTF-8");
  Comparison comparison;
  EXPECT_GT(comparison.Compare("m\xc3\xa4rz"), 0);
  comparison.CompareMany(TextCount(50'000));
}

TEST(PatternAutomaton, AnswersAsTheExpressionsDoOnEveryCharacterAtEveryPlace) {
  Comparison comparison;
  for (const std::string text :
       {"5 12:30", "3q20", "jan 20", "5wk20", "1:00:00 5", "20-01-31 23:59", "5:5", "$1,000.5 ",
        "1.000,5 ", "5 %", "01-jan-20", "01-jan-2020 1:00:00.5", "may", "sat"}) {
    for (std::size_t at = 0; at <= text.size(); ++at) {
      for (int c = 0; c < 256; ++c) {
        const char byte = static_cast<char>(c);
        comparison.Compare(std::string(text).insert(at, 1, byte));
        if (at < text.size()) comparison.Compare(std::string(text).replace(at, 1, 1, byte));
      }
    }
  }
}

TEST(PatternAutomaton, ALongTextGetsTheLibrarysAnswerEvenWhenItGivesUp) {
  Comparison comparison;
  for (const std::size_t length : {1023u, 1025u, 30'000u, 300'000u}) {
    const std::string digits(length, '7');
    comparison.Compare(digits + ":30");
    comparison.Compare(digits + ":30:30.5");
    comparison.Compare(digits + "%");
    comparison.Compare("$" + digits);
    comparison.Compare(digits + "x");
    std::string groups = "1";
    for (std::size_t i = 0; i < length / 4; ++i) groups += ",000";
    comparison.Compare(groups);
    comparison.Compare("$" + groups + ".5");
  }
}

PatternAutomaton::ByteClasses PlainClasses(const PatternAutomaton& automaton) {
  std::array<unsigned char, 256> same{};
  for (std::size_t i = 0; i < same.size(); ++i) same[i] = static_cast<unsigned char>(i);
  return automaton.Classes(same, true);
}

TEST(PatternAutomaton, ReportsEveryMatchingPattern) {
  const PatternAutomaton automaton({"^a+$", "^[a-c]{2}$", "^(?:ab|cd)$"});
  const auto classes = PlainClasses(automaton);
  EXPECT_EQ(automaton.Match("aa", classes).matched, 0b011u);
  EXPECT_EQ(automaton.Match("ab", classes).matched, 0b110u);
  EXPECT_EQ(automaton.Match("cd", classes).matched, 0b100u);
  EXPECT_EQ(automaton.Match("a", classes).matched, 0b001u);
  EXPECT_EQ(automaton.Match("", classes).matched, 0u);
  EXPECT_EQ(automaton.Match("aab", classes).matched, 0u);
}

TEST(PatternAutomaton, LeavesToTheLibraryWhatItCannotCompile) {
  const PatternAutomaton automaton({"^a$", "^(?=b)b$"});
  const auto classes = PlainClasses(automaton);
  EXPECT_EQ(automaton.uncompiled(), 0b10u);
  EXPECT_EQ(automaton.Match("a", classes).matched, 0b01u);
  EXPECT_EQ(automaton.Match("a", classes).undecided, 0b10u);
  EXPECT_EQ(automaton.Match("zzz", classes).undecided, 0b10u);
}

TEST(PatternAutomaton, AsksOnlyForPatternsThatCouldGoOnBeyondAscii) {
  const PatternAutomaton automaton({"^f\xc3\xa9v$", "^fe$", "^\\d{2}$"});
  const auto classes = PlainClasses(automaton);
  EXPECT_EQ(automaton.Match("f\xc3\xa9v", classes).undecided, 0b001u);
  EXPECT_EQ(automaton.Match("fe\xc3\xa9", classes).undecided, 0u);
  EXPECT_EQ(automaton.Match("1\xd9\xa3", classes).undecided, 0b100u);
  EXPECT_EQ(automaton.Match("fe", classes).matched, 0b010u);
}

// The library takes digits and spaces of any script for a digit or a space, and nothing else beyond
// ASCII: only those are worth asking about.
TEST(PatternAutomaton, LettersBeyondAsciiAreNeitherDigitsNorSpaces) {
  const PatternAutomaton automaton({"^\\d$", "^\\s$", "^.$", "^\xc3\xa9$"});
  const auto classes = PlainClasses(automaton);
  for (const char* text : {"\xc5\x81", "\xc3\xa9", "\xd0\x96", "\xe4\xb8\xad", "\xc3", "\xff",
                           "\xe2", "\xe2\x82\xac", "\xc3(", "\x80"}) {
    EXPECT_EQ(automaton.Match(text, classes).undecided, 0b1100u) << text;
  }
  for (const char* text : {"\xd9\xa3", "\xc2\xa0", "\xe2\x80\xa8", "\xe3\x80\x80", "\xef\xbc\x95",
                           "\xf0\x9d\x9f\x97"}) {
    EXPECT_EQ(automaton.Match(text, classes).undecided, 0b1111u) << text;
  }
  // Nothing is known of texts in another encoding.
  std::array<unsigned char, 256> same{};
  for (std::size_t i = 0; i < same.size(); ++i) same[i] = static_cast<unsigned char>(i);
  EXPECT_EQ(automaton.Match("\xc5", automaton.Classes(same, false)).undecided, 0b1111u);
}

TEST(PatternAutomaton, AnswersAsTheExpressionsDoOnEveryCharacterOfTwoAndThreeBytes) {
  const std::vector<std::string> patterns = {"^\\d$", "^\\s$", "^.$"};
  const PatternAutomaton automaton(patterns);
  const auto classes = PlainClasses(automaton);
  UErrorCode status = U_ZERO_ERROR;
  icu::RegexMatcher digit(icu::UnicodeString::fromUTF8(patterns[0]), 0, status);
  icu::RegexMatcher space(icu::UnicodeString::fromUTF8(patterns[1]), 0, status);
  ASSERT_TRUE(U_SUCCESS(status));
  BareExpressions bare;
  int members = 0;
  for (UChar32 c = 0x80; c <= 0xFFFF; ++c) {
    std::string text;
    icu::UnicodeString(c).toUTF8String(text);
    const std::uint64_t undecided = automaton.Match(text, classes).undecided;
    const bool isDigit = bare.Matches(&digit, text), isSpace = bare.Matches(&space, text);
    members += isDigit || isSpace;
    ASSERT_TRUE(!isDigit || (undecided & 1) != 0) << c;
    ASSERT_TRUE(!isSpace || (undecided & 2) != 0) << c;
  }
  EXPECT_GT(members, 300);
}

TEST(PatternAutomaton, OneAutomatonServesAllTables) {
  const std::vector<std::string> patterns = {"^one$", "^two$"};
  EXPECT_EQ(PatternAutomaton::Shared(patterns), PatternAutomaton::Shared(patterns));
}

TEST(PatternAutomaton, GivesUpATableThatWouldGrowTooLarge) {
  // "an a, fourteen and more characters before the end" needs a state per set of places.
  const PatternAutomaton automaton({"^[ab]*a[ab]{18}$", "^b$"});
  const auto classes = PlainClasses(automaton);
  EXPECT_EQ(automaton.uncompiled(), 0b11u);
  EXPECT_EQ(automaton.Match("b", classes).undecided, 0b11u);
}

TEST(PatternAutomaton, WithoutPatternsNothingMatches) {
  const PatternAutomaton automaton(std::vector<std::string>{});
  EXPECT_EQ(automaton.Match("a", PlainClasses(automaton)).matched, 0u);
  EXPECT_EQ(automaton.Match("", PlainClasses(automaton)).matched, 0u);
}

}  // namespace
}  // namespace textwizard
