// What `textwizard import` and `textwizard sniff` look like: colours, explanations, many columns.

#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/program/Program.h"

namespace program {
namespace {

using testing::HasSubstr;
using testing::Not;

constexpr char kTowns[] =
    "id,visited,town,income\n"
    "1,2020-01-02,Rome,1200.50\n"
    "2,2020-01-03,Oslo,NA\n"
    "3,2020-02-28,Bern,800.25\n";

class ImportScreen : public ProgramTest {};

TEST_F(ImportScreen, ColoursAreOnlyOnATerminalAndNotWhereNobodyWantsThem) {
  folder_.Write("towns.csv", kTowns);
  environment_ = {{"TERM", "xterm"}, {"NO_COLOR", ""}};
  for (const char* command : {"import", "sniff"}) {
    EXPECT_THAT(OnTerminal({command, "towns.csv"}), HasSubstr("\x1B[1mtowns.csv\x1B[0m"));
    EXPECT_THAT(Run({command, "towns.csv"}).out, Not(HasSubstr("\x1B[1m")));
  }
  environment_ = {{"TERM", "xterm"}, {"NO_COLOR", "1"}};
  EXPECT_THAT(OnTerminal({"import", "towns.csv", "--no-progress"}), Not(HasSubstr("\x1B")));
  EXPECT_THAT(OnTerminal({"sniff", "towns.csv"}), Not(HasSubstr("\x1B")));
  environment_ = {{"TERM", "dumb"}, {"NO_COLOR", ""}};
  EXPECT_THAT(OnTerminal({"sniff", "towns.csv"}), Not(HasSubstr("\x1B")));
}

TEST_F(ImportScreen, ExplainsWhyTypesWereChosen) {
  folder_.Write("towns.csv", kTowns);
  const Ended ended = Run({"import", "towns.csv", "--explain"});
  EXPECT_EQ(ended.status, 0) << ended.err;
  EXPECT_THAT(ended.out, HasSubstr("visited: SDATE10, reads 3 of 3 values; longest 10 bytes, "
                                   "line 2\n"));
  EXPECT_THAT(ended.out, HasSubstr("income: F7.2, reads 2 of 2 values; 1 null, first NA in line 3; "
                                   "longest 7 bytes, line 2\n"));
  EXPECT_THAT(Run({"import", "towns.csv"}).out, Not(HasSubstr("reads 3 of 3")));
}

TEST_F(ImportScreen, TheDecimalCharacterIsTheWholeFiles) {
  // What is looked at first holds whole numbers only.
  std::string text = "n;x\n";
  for (int i = 0; i < 400000; ++i) text += "1234567;12345\n";
  text.insert(text.find('\n', text.size() / 3) + 1, "1;2,5\n");
  folder_.Write("late.csv", text);
  const Ended ended = Run({"import", "late.csv", "--show", "1"});
  EXPECT_EQ(ended.status, 0) << ended.err;
  EXPECT_THAT(ended.out, HasSubstr("  decimal     comma              found  2,5 in line "));
  EXPECT_THAT(ended.out, HasSubstr("\n0 problems\n"));
}

TEST_F(ImportScreen, ManyColumnsAreImported) {
  std::string names = "c1";
  std::string values = "1";
  for (int i = 2; i <= 100000; ++i) {
    names += ",c" + std::to_string(i);
    values += "," + std::to_string(i % 7);
  }
  folder_.Write("wide.csv", names + "\n" + values + "\n" + values + "\n");
  const Ended ended = Run({"import", "wide.csv"});
  EXPECT_EQ(ended.status, 0) << ended.err;
  EXPECT_THAT(ended.out, HasSubstr("2 cases, 100000 variables\n"));
  EXPECT_THAT(ended.out, HasSubstr(" more "));
}

}  // namespace
}  // namespace program
