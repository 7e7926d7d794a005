#include "cli/wizard/worker/PageSettings.h"

#include <gtest/gtest.h>

#include "cli/wizard/WizardServer.h"

namespace cli {
namespace {

using nlohmann::json;

TEST(PageSettings, WhatIsAbsentIsFound) {
  const library::BareImportSettings settings = PageSettings(json::object());
  EXPECT_FALSE(settings.sniff.encoding || settings.sniff.delimiter || settings.sniff.qualifier ||
               settings.sniff.decimal || settings.sniff.firstLine || settings.sniff.header ||
               settings.sniff.fixed);
  EXPECT_TRUE(settings.names.empty());
  EXPECT_TRUE(settings.types.empty());
  EXPECT_FALSE(settings.nulls.empty());
}

TEST(PageSettings, EveryMemberIsTaken) {
  const library::BareImportSettings settings =
      PageSettings({{"encoding", "windows-1252"},
                    {"delimiter", ""},
                    {"qualifier", "'"},
                    {"decimal", "comma"},
                    {"first_line", 3},
                    {"header", false},
                    {"fixed", "1-8,9-20,21-"},
                    {"names", {"a", "b"}},
                    {"types", {{"a", "F8.2"}, {"b", "X"}}}});
  EXPECT_EQ(settings.sniff.encoding, "windows-1252");
  EXPECT_EQ(settings.sniff.delimiter, "");
  EXPECT_EQ(settings.sniff.qualifier, "'");
  EXPECT_EQ(settings.sniff.decimal, library::DecimalCharacter::kComma);
  EXPECT_EQ(settings.sniff.firstLine, 3);
  EXPECT_EQ(settings.sniff.header, false);
  const std::vector<library::CharacterRange> ranges = {{1, 8}, {9, 20}, {21, 0}};
  EXPECT_EQ(settings.sniff.fixed, ranges);
  EXPECT_EQ(settings.names, (std::vector<std::string>{"a", "b"}));
  const std::vector<std::pair<std::string, std::string>> types = {{"a", "F8.2"}, {"b", "X"}};
  EXPECT_EQ(settings.types, types);
}

TEST(PageSettings, WhatCannotBeUsedIsRefused) {
  for (const json& given :
       {json{{"first_line", 0}}, json{{"decimal", "dot"}}, json{{"delimter", ","}}}) {
    EXPECT_THROW(PageSettings(given), RequestRefused) << given;
  }
  EXPECT_THROW(PageSettings({{"header", "yes"}}), json::exception);
  EXPECT_THROW(PageSettings({{"names", "a"}}), json::exception);
}

TEST(PageSettings, RangesAreWrittenAsTheyAreRead) {
  for (const char* text : {"1-8", "1-8,9-20", "2-2,5-9,12-"}) {
    EXPECT_EQ(TextOf(RangesOf(text)), text);
  }
  EXPECT_EQ(TextOf(RangesOf("3,5")), "3-3,5-5");
}

TEST(PageSettings, RangesThatAreNoneAreRefused) {
  for (const char* text : {"", "a", "0-3", "1-8,", "8-1", "1-8,5-9", "1-,2-3", "1--2", "1-2-3",
                           "1-99999999999999999999", " 1-2"}) {
    EXPECT_THROW(RangesOf(text), RequestRefused) << text;
  }
}

}  // namespace
}  // namespace cli
