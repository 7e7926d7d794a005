#include "cli/import/ImportOptions.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace cli {
namespace {

using testing::ElementsAre;
using testing::Pair;

TEST(ImportOptions, ADelimiterIsAWordOrTextWithEscapes) {
  const std::pair<const char*, const char*> texts[] = {
      {";", ";"},   {"::", "::"},      {"tab", "\t"},       {"blank", " "},
      {"none", ""}, {"", ""},          {"\\t", "\t"},       {"\\\\", "\\"},
      {"\\", "\\"}, {"\\x1F", "\x1F"}, {"\\x1f,", "\x1F,"}, {"\xC2\xA6", "\xC2\xA6"}};
  for (const auto& [text, expected] : texts) {
    std::string delimiter = "before";
    std::string error;
    EXPECT_TRUE(ReadDelimiter(text, &delimiter, &error)) << text << error;
    EXPECT_EQ(delimiter, expected) << text;
  }
  for (const char* text : {"\\q", "\\x1", "\\x00", "\\xFF", "\\xZZ", "\\n", "\\x0A", "a\nb"}) {
    std::string delimiter;
    std::string error;
    EXPECT_FALSE(ReadDelimiter(text, &delimiter, &error)) << text;
    EXPECT_NE(error, "") << text;
  }
}

TEST(ImportOptions, AQualifierIsOneCharacterOrNone) {
  std::string qualifier;
  std::string error;
  for (const char* text : {"\"", "'", "\xC2\xAB"}) {
    EXPECT_TRUE(ReadQualifier(text, &qualifier, &error));
    EXPECT_EQ(qualifier, text);
  }
  for (const char* text : {"none", ""}) {
    EXPECT_TRUE(ReadQualifier(text, &qualifier, &error));
    EXPECT_EQ(qualifier, "");
  }
  EXPECT_FALSE(ReadQualifier("''", &qualifier, &error));
  EXPECT_NE(error, "");
}

TEST(ImportOptions, TypesAreOfNamesThatMayHoldEqualsSigns) {
  std::vector<std::pair<std::string, std::string>> types;
  std::string error;
  EXPECT_TRUE(ReadTypes("visited=EDATE10,a=b=F8.2", &types, &error));
  EXPECT_THAT(types, ElementsAre(Pair("visited", "EDATE10"), Pair("a=b", "F8.2")));
  EXPECT_TRUE(ReadTypes("c=A5", &types, &error));
  EXPECT_EQ(types.size(), 3U) << "given twice, both count";
  for (const char* text : {"", "a", "a=", "=F8", "a=F8,", "a=F8,,b=F8"}) {
    EXPECT_FALSE(ReadTypes(text, &types, &error)) << text;
  }
}

TEST(ImportOptions, NamesAreNotEmpty) {
  std::vector<std::string> names;
  std::string error;
  EXPECT_TRUE(ReadNames("a,b c,d", &names, &error));
  EXPECT_THAT(names, ElementsAre("a", "b c", "d"));
  for (const char* text : {"", "a,", ",a", "a,,b"}) {
    EXPECT_FALSE(ReadNames(text, &names, &error)) << text;
  }
}

}  // namespace
}  // namespace cli
