// The characters that cut, decoded.
#include "reading/FieldRules.h"

#include <gtest/gtest.h>

#include "HostFramework/embedded/text/testing/TextTest.h"

namespace textwizard {
namespace {

ImportSettings Settings(const char* delimiters, const char* qualifier) {
  ImportSettings settings;
  settings.delimiters = delimiters;
  settings.qualifierSet = qualifier != nullptr;
  if (qualifier) settings.qualifier = qualifier;
  return settings;
}

TEST(FieldRules, KeepAtMostTenDelimiters) {
  FieldRules rules;
  EXPECT_EQ(rules.SetWideDelimiters("abcdefghijk"), 10);
  EXPECT_TRUE(rules.IsDelimiter('j'));
  EXPECT_FALSE(rules.IsDelimiter('k'));
  EXPECT_EQ(rules.SetWideDelimiters(nullptr), 0);
  EXPECT_FALSE(rules.IsDelimiter('a'));
}

TEST(FieldRules, BytesThatAreNoCharacterEndTheDelimiters) {
  FieldRules rules;
  EXPECT_EQ(rules.SetWideDelimiters("a\xFFz"), 2);
  EXPECT_TRUE(rules.IsDelimiter('a'));
  EXPECT_FALSE(rules.IsDelimiter('z'));
  EXPECT_FALSE(rules.IsDelimiter(0));
}

TEST(FieldRules, WithoutAQualifierNothingIsOne) {
  const FieldRules rules(Settings(",", nullptr));
  EXPECT_FALSE(rules.IsQualifier(0));
  EXPECT_FALSE(rules.IsQualifier('"'));
  const FieldRules quoted(Settings(",", "\""));
  EXPECT_TRUE(quoted.IsQualifier('"'));
  EXPECT_FALSE(quoted.IsQualifier(0));
}

TEST(HoldsCharacter, ComparesWholeCharacters) {
  EXPECT_TRUE(HoldsCharacter(";,|", ","));
  EXPECT_FALSE(HoldsCharacter(";,|", "x"));
  EXPECT_FALSE(HoldsCharacter("", ","));
  // U+00A6 and U+00AB share their first byte, and the other's last one is no character.
  EXPECT_TRUE(HoldsCharacter("\xC2\xAB\xC2\xA6", "\xC2\xA6"));
  EXPECT_FALSE(HoldsCharacter("\xC2\xAB", "\xC2\xA6"));
  EXPECT_FALSE(HoldsCharacter("\xA6", "\xA6"));
}

TEST(HoldsCharacter, PassesBytesOfTheSetThatAreNoCharacter) {
  EXPECT_TRUE(HoldsCharacter("\xFF,", ","));
}

TEST(HoldsCharacter, ReadsTheHostsCodePage) {
  const embedded::InCodePage page("windows-1252");
  EXPECT_TRUE(HoldsCharacter(";\xA6", "\xA6"));
}

}  // namespace
}  // namespace textwizard
