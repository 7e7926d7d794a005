#include "detection/PatternSyntax.h"

#include <memory>
#include <random>
#include <string>

#include <unicode/regex.h>

#include <gtest/gtest.h>

namespace textwizard {
namespace {

TEST(PatternSyntax, CompilesWhatTheTableUses) {
  for (const char* pattern :
       {"^a$", "^$", "^a|b$", "^(a|)$", "^(?:a|b)?$", "^[0-9a-z|]{2,3}$", "^\\d{1,}\\s\\.\\$$",
        "^x{0}y*z+$", "^janv.|f\xc3\xa9v.$", "^(((a)))$"}) {
    EXPECT_TRUE(CompilePattern(pattern)) << pattern;
  }
}

TEST(PatternSyntax, GivesUpOnWhatItDoesNotKnow) {
  for (const char* pattern :
       {"a",      "^a",       "a$",      "^a$b$",    "^a^$",   "^(?=a)$",     "^(?<n>a)$",
        "^[^a]$", "^[a\\]]$", "^[[a]]$", "^[a&&b]$", "^[-a]$", "^[z-a]$",     "^[]$",
        "^[a$",   "^(a$",     "^a)$",    "^a??$",    "^a*+$",  "^*$",         "^+$",
        "^{2}$",  "^a{$",     "^a{,2}$", "^a{3,2}$", "^a{2$",  "^a{1000}$",   "^\\w$",
        "^\\1$",  "^\\b$",    "^a\\$",   "^]$",      "^}$",    "^\xc3\xa9?$", ""}) {
    EXPECT_FALSE(CompilePattern(pattern)) << pattern;
  }
}

// Nobody asks the library whether it can compile a pattern that is compiled here.
TEST(PatternSyntax, TheLibraryCompilesWhateverIsCompiledHere) {
  static const char* const kPieces[] = {
      "a",   "z",   "0",   "9",         "-",     ".",      "|",        "(",   ")",    "(?:", "[",
      "]",   "?",   "*",   "+",         "{2}",   "{1,}",   "{0,3}",    "{0}", "{60}", "\\d", "\\s",
      "\\.", "\\-", "\\$", "[0-9a-z|]", "(a|b)", "(?:x)?", "\xC3\xA9", " ",   "#",    "&&",  "/",
      ",",   ":",   "$",   "^",         "~",     "\"",     "'",        "<",   "=",    "!",   "\t"};
  std::mt19937 random(24);
  int compiled = 0;
  for (int round = 0; round < 60000; ++round) {
    std::string pattern = "^";
    for (std::size_t pieces = random() % 9; pieces > 0; --pieces) {
      pattern += kPieces[random() % std::size(kPieces)];
    }
    pattern += "$";
    if (!CompilePattern(pattern)) continue;
    ++compiled;
    UErrorCode status = U_ZERO_ERROR;
    UParseError where;
    const std::unique_ptr<icu::RegexPattern> library(
        icu::RegexPattern::compile(icu::UnicodeString::fromUTF8(pattern), 0, where, status));
    ASSERT_TRUE(U_SUCCESS(status)) << pattern << ": " << u_errorName(status);
  }
  EXPECT_GT(compiled, 5000);
}

TEST(PatternSyntax, GivesUpOnDeepNestingAndOnSize) {
  EXPECT_FALSE(CompilePattern("^" + std::string(1000, '(') + "a" + std::string(1000, ')') + "$"));
  EXPECT_FALSE(CompilePattern("^(((a{60}){60}){60}){60}$"));
}

}  // namespace
}  // namespace textwizard
