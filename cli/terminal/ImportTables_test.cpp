#include "cli/terminal/ImportTables.h"

#include <sstream>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "HostFramework/embedded/text/HostText.h"
#include "library/testing/TestSource.h"

namespace cli {
namespace {

using testing::HasSubstr;
using testing::Not;

TEST(ImportTables, ListsTheVariables) {
  library::TestSource source;
  source.Number("id", 5, 4, 0).String("town", 20).Number("day", 20, 11, 0);
  EXPECT_EQ(VariableTable(source, 80),
            "Variable  Format  Width\nid        F4          4\ntown      A20        20\n"
            "day       DATE11     11\n");
}

TEST(ImportTables, CutsALongDictionary) {
  library::TestSource source;
  for (int number = 0; number < 250; ++number)
    source.Number(("v" + std::to_string(number)).c_str());
  const std::string text = VariableTable(source, 80);
  EXPECT_THAT(text, HasSubstr("v199 "));
  EXPECT_THAT(text, Not(HasSubstr("v200 ")));
  EXPECT_THAT(text, HasSubstr("and 50 more variables"));
}

// Gives `first` a case that follows `before` cases.
void Give(FirstCases& first, const library::TestCase& one, std::int64_t before = 0) {
  first.Take(first.Make(one.obs(), 1, before));
}

TEST(ImportTables, ShowsTheFirstCases) {
  library::TestSource source;
  source.Number("id").String("town", 12).Number("day", 20, 11, 0);
  FirstCases first(source, library::ValueStyle::kDisplay, 2, 80);
  Give(first, library::TestCase(source).Set(0, 10).Set(1, "Bern").Set(2, 86400));
  Give(first, library::TestCase(source).Set(1, "a\tb"), 1);
  Give(first, library::TestCase(source).Set(0, 3), 2);
  EXPECT_EQ(first.Text(), "id  town         day\n10  Bern  1582-10-15\n .  a\\tb           .\n");
}

TEST(ImportTables, SaysWhichVariablesAreNotShown) {
  library::TestSource source;
  for (int number = 0; number < 500; ++number) source.Number("variable");
  FirstCases first(source, library::ValueStyle::kDisplay, 1, 40);
  Give(first, library::TestCase(source));
  EXPECT_EQ(first.Text(),
            "variable  variable  variable  variable\n       .         .         .         .\n"
            "and 496 more variables\n(--cases writes them all)\n");
}

TEST(ImportTables, NoLineIsWiderThanTheTerminal) {
  library::TestSource source;
  source.Number("a_name_that_is_longer_than_narrow_terminals_are", 22, 20, 0).String("text", 200);
  for (int number = 0; number < 250; ++number) source.Number("v");
  for (const std::size_t width : {31U, 40U, 80U}) {
    FirstCases first(source, library::ValueStyle::kDisplay, 2, width);
    Give(first, library::TestCase(source).Set(0, 86400).Set(1, std::string(200, 'x')));
    std::istringstream lines(VariableTable(source, width) + first.Text());
    for (std::string line; std::getline(lines, line);) EXPECT_LE(line.size(), width + 2) << line;
  }
  // The name gives way, not what stands behind it.
  EXPECT_THAT(VariableTable(source, 40), HasSubstr("\xE2\x80\xA6  DATETIME20     20\n"));
}

TEST(ImportTables, ShowsNothingWhereNothingWasTaken) {
  library::TestSource source;
  source.Number("id");
  FirstCases none(source, library::ValueStyle::kDisplay, 0, 80);
  EXPECT_FALSE(none.wanted());
  Give(none, library::TestCase(source));
  EXPECT_EQ(none.Text(), "");
}

TEST(ImportTables, Counts) {
  EXPECT_EQ(Counts(1, 1), "1 case, 1 variable");
  EXPECT_EQ(Counts(0, 2), "0 cases, 2 variables");
}

}  // namespace
}  // namespace cli
