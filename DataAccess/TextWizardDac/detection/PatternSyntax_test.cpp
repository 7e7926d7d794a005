#include "detection/PatternSyntax.h"

#include <string>

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

TEST(PatternSyntax, GivesUpOnDeepNestingAndOnSize) {
  EXPECT_FALSE(CompilePattern("^" + std::string(1000, '(') + "a" + std::string(1000, ')') + "$"));
  EXPECT_FALSE(CompilePattern("^(((a{60}){60}){60}){60}$"));
}

}  // namespace
}  // namespace textwizard
