#include "library/report/Ledger.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace library {
namespace {

using testing::HasSubstr;
using testing::Not;

// A UTF-8 mark, a title line, an empty line, three records (one with a NUL in it), and a line that
// a limit left.
Ledger Balanced() {
  Ledger ledger;
  ledger.AddSpan({ImportSpan::kMark, 0, 3, 0, 0, 0});
  ledger.AddSpan({ImportSpan::kPreamble, 3, 10, 0, 0, 0});
  ledger.AddSpan({ImportSpan::kSkipped, 13, 1, 0, 0, 0});
  ledger.AddSpan({ImportSpan::kRecords, 14, 30, 3, 3, 1});
  ledger.AddSpan({ImportSpan::kUnread, 44, 6, 0, 0, 0});
  ledger.AddCells({.read = 7, .empty = 2, .null = 1, .unreadable = 1, .absent = 1});
  ledger.SetCounts({.bytes = 50, .cases = 3, .variables = 4, .recordsInCases = 3});
  return ledger;
}

TEST(Ledger, BalancesWhenEveryByteRecordAndCellIsAccountedFor) {
  EXPECT_EQ(Balanced().Imbalance(), "");
}

TEST(Ledger, IsWrittenWithTheContractsNames) {
  const auto json = Balanced().Json();
  const nlohmann::json expected = {{"bytes", 50},
                                   {"mark", 3},
                                   {"skipped", 11},
                                   {"records", 26},
                                   {"line_ends", 3},
                                   {"dropped", 1},
                                   {"unread", 6},
                                   {"records_read", 3},
                                   {"records_in_cases", 3},
                                   {"records_without_case", 0},
                                   {"cases", 3},
                                   {"variables", 4},
                                   {"cells", 12},
                                   {"read", 7},
                                   {"empty", 2},
                                   {"null", 1},
                                   {"unreadable", 1},
                                   {"absent", 1}};
  EXPECT_EQ(nlohmann::json(json), expected);
}

TEST(Ledger, CellsOfFurtherVariablesAreReadOrAbsent) {
  Ledger ledger = Balanced();
  ledger.AddVariables(2, 1);
  EXPECT_EQ(ledger.Imbalance(), "");
  EXPECT_EQ(ledger.Json()["variables"], 7);
  EXPECT_EQ(ledger.Json()["cells"], 21);
  EXPECT_EQ(ledger.Json()["read"], 10);
  EXPECT_EQ(ledger.Json()["absent"], 7);
}

TEST(Ledger, IsALineForAPersonWithoutWhatIsZero) {
  EXPECT_EQ(Balanced().Line(),
            "ledger: 50 bytes = 3 mark + 11 skipped + 26 records + 3 line ends + 1 dropped + 6 "
            "unread; 3 records; 12 cells = 7 read + 2 empty + 1 null + 1 unreadable + 1 absent");
  Ledger empty;
  EXPECT_EQ(empty.Line(), "ledger: 0 bytes = 0; 0 records; 0 cells = 0");
}

TEST(Ledger, SaysWhichBytesAreMissing) {
  Ledger ledger = Balanced();
  ledger.SetCounts({.bytes = 51, .cases = 3, .variables = 4, .recordsInCases = 3});
  EXPECT_EQ(ledger.Imbalance(),
            "ledger does not balance: 51 bytes in the file, but 3 mark + 11 skipped + 26 records + "
            "3 line ends + 1 dropped + 6 unread = 50");
}

TEST(Ledger, SaysWhenStretchesDoNotJoin) {
  Ledger ledger;
  ledger.AddSpan({ImportSpan::kRecords, 0, 5, 1, 1, 0});
  ledger.AddSpan({ImportSpan::kRecords, 4, 5, 1, 1, 0});
  ledger.SetCounts({.bytes = 10, .recordsInCases = 2});
  EXPECT_EQ(ledger.Imbalance(),
            "ledger does not balance: 1 stretch of the file that does not join the one before");
}

TEST(Ledger, SaysWhenRecordsAreInNoCase) {
  Ledger ledger = Balanced();
  ledger.SetCounts(
      {.bytes = 50, .cases = 3, .variables = 4, .recordsInCases = 1, .recordsWithoutCase = 1});
  EXPECT_EQ(ledger.Imbalance(),
            "ledger does not balance: 3 records read, but 1 in cases + 1 without a case = 2");
}

TEST(Ledger, SaysWhenCellsAreLost) {
  Ledger ledger = Balanced();
  ledger.AddCells({.read = 1});
  EXPECT_EQ(ledger.Imbalance(),
            "ledger does not balance: 3 cases of 4 variables have 12 cells, but 8 read + 2 empty + "
            "1 null + 1 unreadable + 1 absent = 13");
}

TEST(Ledger, OfPartsIsThatOfTheWhole) {
  Ledger whole = Balanced();
  Ledger first;
  first.AddSpan({ImportSpan::kMark, 0, 3, 0, 0, 0});
  first.AddSpan({ImportSpan::kPreamble, 3, 10, 0, 0, 0});
  first.AddSpan({ImportSpan::kSkipped, 13, 1, 0, 0, 0});
  first.AddSpan({ImportSpan::kRecords, 14, 10, 1, 1, 0});
  first.AddCells({.read = 3, .empty = 1});
  first.SetCounts({.bytes = 24, .cases = 1, .variables = 4, .recordsInCases = 1});
  Ledger second;
  second.AddSpan({ImportSpan::kRecords, 24, 20, 2, 2, 1});
  second.AddSpan({ImportSpan::kUnread, 44, 6, 0, 0, 0});
  second.AddCells({.read = 4, .empty = 1, .null = 1, .unreadable = 1, .absent = 1});
  second.SetCounts({.bytes = 26, .cases = 2, .variables = 4, .recordsInCases = 2});
  EXPECT_FALSE(first == whole);
  first += second;
  EXPECT_TRUE(first == whole);
  EXPECT_EQ(first.Imbalance(), "");
}

}  // namespace
}  // namespace library
