#include "cli/terminal/TerminalTable.h"

#include <sstream>
#include <string>

#include <gtest/gtest.h>

#include "cli/terminal/VisibleText.h"

namespace cli {
namespace {

using Align = TerminalTable::Align;
constexpr char kEllipsis[] = "\xE2\x80\xA6";

TEST(TerminalTable, NumbersStandRightAndTextsLeft) {
  TerminalTable table;
  table.AddColumn("id", Align::kRight);
  table.AddColumn("name", Align::kLeft);
  table.AddColumn("n", Align::kRight);
  table.AddRow({"1", "Ann", "10"});
  table.AddRow({"200", "Bo", "."});
  std::size_t shown = 0;
  EXPECT_EQ(table.Text(80, &shown), " id  name   n\n  1  Ann   10\n200  Bo     .\n");
  EXPECT_EQ(shown, 3U);
}

TEST(TerminalTable, LinesHaveNoBlanksAtTheirEnd) {
  TerminalTable table;
  table.AddColumn("a", Align::kLeft);
  table.AddRow({"long"});
  table.AddRow({""});
  std::size_t shown = 0;
  EXPECT_EQ(table.Text(80, &shown), "a\nlong\n\n");
}

TEST(TerminalTable, ColumnsThatDoNotFitAreLeftOut) {
  TerminalTable table;
  for (const char* title : {"aaaa", "bbbb", "cccc"}) table.AddColumn(title, Align::kLeft);
  std::size_t shown = 0;
  EXPECT_EQ(table.Text(10, &shown), "aaaa  bbbb\n");
  EXPECT_EQ(shown, 2U);
  EXPECT_EQ(table.Text(9, &shown), "aaaa\n");
  EXPECT_EQ(table.Text(3, &shown), std::string("aa") + kEllipsis + "\n");
  EXPECT_EQ(table.Text(1, &shown), std::string(kEllipsis) + "\n");
  EXPECT_EQ(shown, 1U);
}

TEST(TerminalTable, NoLineIsWiderThanItMayBe) {
  TerminalTable table;
  table.AddColumn("a number with a long title", Align::kRight);
  table.AddColumn("\xE4\xB8\x87\xE5\xB9\xB4\xE4\xB8\x87\xE5\xB9\xB4\xE4\xB8\x87\xE5\xB9\xB4",
                  Align::kLeft);
  table.AddColumn("n", Align::kRight);
  table.AddRow({"123456.75", "\xF0\x9F\x98\x80 and a text", "1"});
  for (std::size_t width = 1; width <= 60; ++width) {
    std::size_t shown = 0;
    std::istringstream lines(table.Text(width, &shown));
    for (std::string line; std::getline(lines, line);) EXPECT_LE(DisplayWidth(line), width) << line;
    EXPECT_GE(shown, 1U);
  }
}

TEST(TerminalTable, AColumnMayBeKeptNarrow) {
  TerminalTable table;
  table.AddColumn("text", Align::kLeft, 6);
  table.AddRow({"abcdefgh"});
  std::size_t shown = 0;
  EXPECT_EQ(table.Text(80, &shown), std::string("text\nabcde") + kEllipsis + "\n");
}

TEST(TerminalTable, TextsAreNarrowedToWhatIsLeft) {
  TerminalTable table;
  table.AddColumn("n", Align::kRight);
  table.AddColumn("text", Align::kLeft);
  table.AddColumn("more", Align::kLeft);
  table.AddRow({"1", "abcdefghijklmnopqrstuvwxyz", "x"});
  std::size_t shown = 0;
  EXPECT_EQ(table.Text(15, &shown), std::string("n  text\n1  abcdefghijk") + kEllipsis + "\n");
  EXPECT_EQ(shown, 2U);
  EXPECT_EQ(table.Text(14, &shown), "n\n1\n");
}

TEST(TerminalTable, WideCellsAreCut) {
  TerminalTable table;
  table.AddColumn("text", Align::kLeft);
  table.AddRow({std::string(200, 'x')});
  std::size_t shown = 0;
  EXPECT_EQ(table.Text(1000, &shown),
            "text\n" + std::string(TerminalTable::kWidestCell - 1, 'x') + kEllipsis + "\n");
}

TEST(TerminalTable, WideCharactersTakeTwoColumns) {
  TerminalTable table;
  table.AddColumn("city", Align::kLeft);
  table.AddColumn("n", Align::kRight);
  table.AddRow({"\xE4\xB8\x87\xE5\xB9\xB4", "1"});
  table.AddRow({"Z\xC3\xBCri", "2"});
  std::size_t shown = 0;
  EXPECT_EQ(table.Text(80, &shown), "city  n\n\xE4\xB8\x87\xE5\xB9\xB4  1\nZ\xC3\xBCri  2\n");
}

TEST(TerminalTable, ControlCharactersAreVisible) {
  TerminalTable table;
  table.AddColumn("s", Align::kLeft);
  table.AddRow({"a\tb\x1B[31m"});
  std::size_t shown = 0;
  EXPECT_EQ(table.Text(80, &shown), "s\na\\tb\\x1B[31m\n");
}

// Ten columns of numbers, four wide each.
TerminalTable TenColumns() {
  TerminalTable table;
  for (int column = 1; column <= 10; ++column) {
    table.AddColumn("n" + std::to_string(column), Align::kRight);
  }
  table.AddRow(std::vector<std::string_view>(10, "1234"));
  return table;
}

TEST(TerminalTable, OfEndsAllColumnsAreShownWhereTheyFit) {
  std::size_t shown = 0;
  EXPECT_EQ(TenColumns().TextOfEnds(58, 0, &shown), TenColumns().Text(58, &shown));
  EXPECT_EQ(shown, 10U);
}

TEST(TerminalTable, OfEndsTheFirstAndTheLastColumnsAreShownAndHowManyAreBetween) {
  std::size_t shown = 0;
  EXPECT_EQ(TenColumns().TextOfEnds(37, 0, &shown),
            "  n1    n2    n3    n4  5 more   n10\n1234  1234  1234  1234          1234\n");
  EXPECT_EQ(shown, 5U);
  EXPECT_EQ(TenColumns().TextOfEnds(57, 0, &shown),
            "  n1    n2    n3    n4    n5    n6  2 more    n9   n10\n"
            "1234  1234  1234  1234  1234  1234          1234  1234\n");
  // Others were never added.
  const std::string text = TenColumns().TextOfEnds(60, 90, &shown);
  EXPECT_NE(text.find(std::to_string(100 - shown) + " more"), std::string::npos) << text;
}

TEST(TerminalTable, OfEndsTextsAreNarrowedBeforeColumnsAreLeftOut) {
  TerminalTable table;
  table.AddColumn("a", Align::kLeft);
  table.AddColumn("n", Align::kRight);
  table.AddRow({std::string(40, 'x'), "1"});
  std::size_t shown = 0;
  EXPECT_EQ(table.TextOfEnds(30, 0, &shown),
            "a                     n\n" + std::string(19, 'x') + "\xE2\x80\xA6  1\n");
  EXPECT_EQ(shown, 2U);
}

TEST(TerminalTable, WithoutColumnsThereIsNoText) {
  const TerminalTable table;
  std::size_t shown = 7;
  EXPECT_EQ(table.Text(80, &shown), "");
  EXPECT_EQ(shown, 0U);
}

}  // namespace
}  // namespace cli
