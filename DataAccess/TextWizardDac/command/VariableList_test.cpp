// The variable list: names, record marks, column ranges and formats.
#include <gtest/gtest.h>

#include "command/testing/CommandTesting.h"
#include "model/FormatCode.h"
#include "plan/TxtWzDlmLines.h"

namespace textwizard {
namespace {

void ExpectBadVariable(const Outcome& outcome) { ExpectError(outcome, 2265, nullptr); }

TEST(Delimited, VariablesInOrder) {
  const Outcome outcome =
      ParseDelimited(" id F5.0\n name\tA20 born ADATE10 x 5 X code 3A\r\n t AUTO");
  ASSERT_TRUE(outcome.plan) << outcome.error;
  ASSERT_EQ(outcome.plan->slots().size(), 6u);
  ExpectVariable(outcome, 0, "id", kFormatF, 5, 0);
  ExpectVariable(outcome, 1, "name", kFormatA, 20, 0);
  ExpectVariable(outcome, 2, "born", kFormatADate, 10, 0);
  ExpectVariable(outcome, 3, "x", kFormatSkip, 5, 0);
  ExpectVariable(outcome, 4, "code", kFormatA, 3, 0);
  ExpectVariable(outcome, 5, "t", kFormatAuto, 1, 0);
  EXPECT_EQ(outcome.Variable(1).upperName, "NAME");
  EXPECT_EQ(outcome.Variable(1).recordNumber, 0u);
  EXPECT_EQ(outcome.Variable(1).startColumn, 0u);
  EXPECT_TRUE(outcome.warnings.empty());
}

TEST(Delimited, FormatsWithoutAWidthTakeTheirDefaults) {
  const struct {
    const char* format;
    std::uint32_t code;
    std::uint32_t width;
    std::int32_t decimals;
  } formats[] = {{"F", kFormatF, 8, 2},           {"f", kFormatF, 8, 2},
                 {"F.2", kFormatF, 8, 2},         {"F0", kFormatF, 8, 2},
                 {"N", kFormatN, 1, 5},           {"A", kFormatA, 255, 0},
                 {"COMMA", kFormatComma, 8, 2},   {"DOT", kFormatDot, 8, 2},
                 {"DOLLAR", kFormatDollar, 8, 2}, {"PCT", kFormatPct, 8, 2},
                 {"X", kFormatSkip, 1, 0},        {"DATE", kFormatDate, 11, 0},
                 {"ADATE", kFormatADate, 10, 0},  {"EDATE", kFormatEDate, 10, 0},
                 {"JDATE", kFormatJDate, 7, 0},   {"SDATE", kFormatSDate, 10, 0},
                 {"QYR", kFormatQyr, 8, 0},       {"MOYR", kFormatMoyr, 8, 0},
                 {"WKYR", kFormatWkyr, 10, 0},    {"DATETIME", kFormatDateTime, 23, 2},
                 {"TIME", kFormatTime, 11, 2},    {"DTIME", kFormatDTime, 15, 2},
                 {"WKDAY", kFormatWkday, 9, 0},   {"MONTH", kFormatMonth, 9, 0},
                 {"MTIME", kFormatMTime, 5, 0},   {"YMDHMS", kFormatYmdhms, 16, 0},
                 {"AUTO", kFormatAuto, 1, 0}};
  for (const auto& entry : formats) {
    const Outcome outcome = ParseDelimited(std::string(" v ") + entry.format);
    ExpectVariable(outcome, 0, "v", entry.code, entry.width, entry.decimals);
  }
}

TEST(Delimited, EWithoutAWidthIsBelowItsMinimum) { ExpectBadVariable(ParseDelimited(" v E")); }

TEST(Delimited, WidthsAtAndBelowTheMinimum) {
  const struct {
    const char* good;
    const char* bad;
  } formats[] = {{"F10.9", "F8.9"},
                 {"F17.16", "F20.17"},
                 {"F2.1", "F1.1"},
                 {"E8", "E7"},
                 {"E9.2", "E8.2"},
                 {"N1", "N0.1"},
                 {"COMMA3.2", "COMMA2.2"},
                 {"DOT3.2", "DOT2.2"},
                 {"DOLLAR2", "DOLLAR1"},
                 {"DOLLAR4.2", "DOLLAR3.2"},
                 {"PCT2", "PCT1"},
                 {"DATE9", "DATE8"},
                 {"ADATE8", "ADATE7"},
                 {"EDATE8", "EDATE7"},
                 {"SDATE8", "SDATE7"},
                 {"JDATE5", "JDATE4"},
                 {"QYR6", "QYR5"},
                 {"MOYR6", "MOYR5"},
                 {"WKYR8", "WKYR7"},
                 {"DATETIME17", "DATETIME16"},
                 {"DATETIME22.1", "DATETIME21.1"},
                 {"TIME5", "TIME4"},
                 {"TIME10.1", "TIME9.1"},
                 {"DTIME9", "DTIME8"},
                 {"DTIME14.1", "DTIME13.1"},
                 {"WKDAY2", "WKDAY1"},
                 {"MONTH3", "MONTH2"},
                 {"MTIME3", "MTIME2"},
                 {"MTIME6.2", "MTIME5.2"},
                 {"YMDHMS12", "YMDHMS11"},
                 {"YMDHMS16.1", "YMDHMS15.1"}};
  for (const auto& entry : formats) {
    EXPECT_TRUE(ParseDelimited(std::string(" v ") + entry.good).plan) << entry.good;
    SCOPED_TRACE(entry.bad);
    ExpectBadVariable(ParseDelimited(std::string(" v ") + entry.bad));
  }
}

TEST(Delimited, WidthsAtAndAboveTheMaximum) {
  ExpectVariable(ParseDelimited(" v A32767"), 0, "v", kFormatA, 32767, 0);
  ExpectVariable(ParseDelimited(" v F40.16"), 0, "v", kFormatF, 40, 16);
  ExpectVariable(ParseDelimited(" v AUTO40"), 0, "v", kFormatAuto, 40, 0);
  ExpectVariable(ParseDelimited(" v 100000X"), 0, "v", kFormatSkip, 100000, 0);
  for (const char* format : {"A32768", "F41", "F40.17", "DATE41", "AUTO41", "A99999999999999999999",
                             "F8.99999999999999999999", "F8.-2", "F4294967304"}) {
    SCOPED_TRACE(format);
    ExpectBadVariable(ParseDelimited(std::string(" v ") + format));
  }
}

TEST(Delimited, WordsThatAreNoFormat) {
  for (const char* format : {"", "Q8", "8", "8 x", "8 F", "5 X5", "8.2", ".2", "F0.2", "AHEX8",
                             "SKIP", "8F8", "FORMAT", "F-8"}) {
    SCOPED_TRACE(format);
    ExpectBadVariable(ParseDelimited(std::string(" v ") + format));
  }
}

TEST(Delimited, AWidthAndXMayStandApart) {
  ExpectVariable(ParseDelimited(" v 5X"), 0, "v", kFormatSkip, 5, 0);
  ExpectVariable(ParseDelimited(" v 12 X"), 0, "v", kFormatSkip, 12, 0);
  ExpectVariable(ParseDelimited(" v 5x"), 0, "v", kFormatSkip, 5, 0);
}

TEST(Names, MustBeFreeInAnyLetterCase) {
  const Outcome outcome = ParseDelimited(" Income F8 INCOME F8");
  EXPECT_EQ(outcome.errorId, 2272u);
  EXPECT_EQ(outcome.error, FilledText(2272, "%d", "64") + " INCOME");
  EXPECT_EQ(ParseDelimited(" a\xC3\xB1o F8 A\xC3\x91O F8").errorId, 2272u);
}

TEST(Names, MustBeValidForTheHost) {
  ExpectError(ParseDelimited(" to F8"), 2277, "to");
  ExpectError(ParseDelimited(" 1st F8"), 2278, "1st");
  ExpectError(ParseDelimited(" a-b F8"), 2278, "a-b");
  ExpectError(ParseDelimited(" a F8 /SHEET F8"), 2278, "/SHEET");
}

TEST(Names, OfSeventyCharactersAreCutTo64) {
  const std::string name(70, 'n');
  const Outcome outcome = ParseDelimited(" " + name + " F8.2 b F8");
  ExpectVariable(outcome, 0, std::string(64, 'n'), kFormatF, 8, 2);
  ASSERT_EQ(outcome.warnings.size(), 1u);
  EXPECT_EQ(outcome.warnings[0].text, FilledText(2273, "%d", "64") + " " + name);
  EXPECT_TRUE(ParseDelimited(" " + std::string(64, 'n') + " F8").warnings.empty());
}

TEST(Names, AreMeasuredInCharacters) {
  TxtWzParser parser("\xC3\xA9\xC3\xA9\xC3\xA9", nullptr);
  std::string accents;
  for (int i = 0; i < 65; ++i) accents += "\xC3\xA9";
  TxtWzParser longer(accents.c_str(), nullptr);
  std::string name;
  parser.GetVarName(name);
  EXPECT_EQ(name, "\xC3\xA9\xC3\xA9\xC3\xA9");
  EXPECT_TRUE(parser.warnings().empty());
  longer.GetVarName(name);
  EXPECT_EQ(name, accents.substr(0, 128));
  EXPECT_EQ(longer.warnings().size(), 1u);
}

TEST(Names, TwoThatDifferOnlyBehindTheCutAreOne) {
  const std::string start(64, 'n');
  EXPECT_EQ(ParseDelimited(" " + start + "1 F8 " + start + "2 F8").errorId, 2272u);
}

TEST(Fixed, ColumnsAndRecords) {
  const Outcome outcome = ParseFixed(" a 0-4 F5.1 b 5-9 A5 /2 c 0-9 ADATE10 /2 d 10-10 F1");
  ExpectVariable(outcome, 0, "a", kFormatF, 5, 1);
  ExpectVariable(outcome, 1, "b", kFormatA, 5, 0);
  ExpectVariable(outcome, 2, "c", kFormatADate, 10, 0);
  ExpectVariable(outcome, 3, "d", kFormatF, 1, 0);
  EXPECT_EQ(outcome.Variable(0).recordNumber, 1u);
  EXPECT_EQ(outcome.Variable(0).startColumn, 0u);
  EXPECT_EQ(outcome.Variable(1).recordNumber, 1u);
  EXPECT_EQ(outcome.Variable(1).startColumn, 5u);
  EXPECT_EQ(outcome.Variable(2).recordNumber, 2u);
  EXPECT_EQ(outcome.Variable(3).recordNumber, 2u);
  EXPECT_EQ(outcome.Variable(3).startColumn, 10u);
}

TEST(Fixed, ASlashAloneMovesTheRecordOnForTheNextVariable) {
  const Outcome outcome = ParseFixed(" /2 a 0-3 F4 / b 0-3 F4 / c 0-3 F4 d 4-7 F4");
  ASSERT_TRUE(outcome.plan) << outcome.error;
  EXPECT_EQ(outcome.Variable(0).recordNumber, 2u);
  EXPECT_EQ(outcome.Variable(1).recordNumber, 2u);
  EXPECT_EQ(outcome.Variable(2).recordNumber, 3u);
  EXPECT_EQ(outcome.Variable(3).recordNumber, 4u);
}

TEST(Fixed, ANameMayStandRightBehindTheSlash) {
  const Outcome outcome = ParseFixed(" /a 0-3 F4 /b 0-3 F4");
  ASSERT_TRUE(outcome.plan) << outcome.error;
  EXPECT_EQ(outcome.Variable(0).name, "a");
  EXPECT_EQ(outcome.Variable(0).recordNumber, 1u);
  EXPECT_EQ(outcome.Variable(1).name, "b");
  EXPECT_EQ(outcome.Variable(1).recordNumber, 2u);
}

TEST(Fixed, RecordNumbersMayNotFall) {
  for (const char* variables : {" /0 a 0-3 F4", " /2 a 0-3 F4 /1 b 0-3 F4", " /-1 a 0-3 F4",
                                " /4294967296 a 0-3 F4", " /99999999999999999999 a 0-3 F4"}) {
    SCOPED_TRACE(variables);
    ExpectBadVariable(ParseFixed(variables));
  }
  EXPECT_EQ(ParseFixed(" /4294967295 a 0-3 F4").Variable(0).recordNumber, 4294967295u);
  ExpectBadVariable(ParseFixed(" /4294967295 a 0-3 F4 / b 0-3 F4 c 0-3 F4"));
}

TEST(Fixed, ColumnRangesThatAreNone) {
  for (const char* range : {"5-4", "5", "-5", "5-", "-", "a-b", "1-x", "1--2", "1-4294967295",
                            "0-99999999999999999999", ""}) {
    SCOPED_TRACE(range);
    ExpectBadVariable(ParseFixed(std::string(" v ") + range + " F4"));
  }
}

TEST(Fixed, ARangeWiderThanTheFormatIsCut) {
  const Outcome outcome = ParseFixed(" v 1-10 A5 w 11-12 F8.2");
  ExpectVariable(outcome, 0, "v", kFormatA, 5, 0);
  EXPECT_EQ(outcome.Variable(0).recordNumber, 1u);
  EXPECT_EQ(outcome.Variable(0).startColumn, 1u);
  // A narrower one stays: the format's width only limits.
  ExpectVariable(outcome, 1, "w", kFormatF, 2, 2);
  ASSERT_EQ(outcome.warnings.size(), 1u);
  EXPECT_EQ(outcome.warnings[0].text, CatalogueText(2266) + " v");
}

TEST(Fixed, FormatsWithoutAWidthTakeTheColumns) {
  const struct {
    const char* variable;
    std::uint32_t width;
    std::int32_t decimals;
  } cases[] = {{"0-9 F", 10, 0},         {"0-9 AUTO", 10, 0},      {"0-7 E", 8, 0},
               {"0-2 N", 3, 0},          {"0-99999 X", 100000, 0}, {"0-32766 A", 32767, 0},
               {"0-21 DATETIME", 22, 0}, {"0-22 DATETIME", 23, 2}, {"0-9 TIME", 10, 0},
               {"0-10 TIME", 11, 2},     {"0-13 DTIME", 14, 0},    {"0-14 DTIME", 15, 2},
               {"0-5 MTIME", 6, 0},      {"0-6 MTIME", 7, 2},      {"0-19 YMDHMS", 20, 0},
               {"0-20 YMDHMS", 21, 2}};
  for (const auto& entry : cases) {
    SCOPED_TRACE(entry.variable);
    const Outcome outcome = ParseFixed(std::string(" v ") + entry.variable);
    ASSERT_TRUE(outcome.plan) << outcome.error;
    EXPECT_EQ(outcome.Variable(0).width, entry.width);
    EXPECT_EQ(outcome.Variable(0).decimals, entry.decimals);
  }
}

TEST(Fixed, ColumnsThatTheFormatCannotHaveAreRefused) {
  for (const char* variable : {"0-40 F", "0-7 DATE", "0-32767 A", "0-6 E", "0-40 AUTO"}) {
    SCOPED_TRACE(variable);
    ExpectBadVariable(ParseFixed(std::string(" v ") + variable));
  }
}

TEST(Fixed, NamesAreCheckedBeforeTheColumns) {
  ExpectError(ParseFixed(" to 5-4 F4"), 2277, "to");
  EXPECT_EQ(ParseFixed(" v 0-3 F4 V 5-4 F4").errorId, 2272u);
}

TEST(AdjustFormat, CutsWidthsThatTheFormatCannotHave) {
  TxtWzParser parser("", nullptr);
  std::uint32_t width = 32768;
  parser.AdjustFormat(kFormatA, width, "v");
  EXPECT_EQ(width, 32767u);
  width = 41;
  parser.AdjustFormat(kFormatF, width, "w");
  EXPECT_EQ(width, 40u);
  ASSERT_EQ(parser.warnings().size(), 2u);
  EXPECT_EQ(parser.warnings()[0].text, FilledText(2271, "%d", "32767") + " v");
  EXPECT_EQ(parser.warnings()[1].text, FilledText(2274, "%d", "40") + " w");
  for (const std::uint32_t fits : {1u, 40u}) {
    width = fits;
    parser.AdjustFormat(kFormatF, width, "w");
    EXPECT_EQ(width, fits);
  }
  width = 41;
  parser.AdjustFormat(kFormatDate, width, "w");
  EXPECT_EQ(width, 41u);
  EXPECT_EQ(parser.warnings().size(), 2u);
}

TEST(ParseFormat, CutsAWordIntoNameAndNumbers) {
  const struct {
    const char* word;
    const char* name;
    std::uint32_t width;
    std::uint32_t decimals;
  } cases[] = {{"F8.2", "F", 8, 2},      {"F8", "F", 8, 0},  {"F8.", "F", 8, 0},
               {"F.2", "F", 0, 0},       {"F", "F", 0, 0},   {"5X", "X", 5, 0},
               {"5", "", 5, 0},          {".5", ".5", 0, 0}, {"", "", 0, 0},
               {"DATE11", "DATE", 11, 0}};
  for (const auto& entry : cases) {
    std::string word = entry.word;
    std::uint32_t width = 99;
    std::uint32_t decimals = 99;
    TxtWzParser::ParseFormat(word, width, decimals);
    EXPECT_EQ(word, entry.name) << entry.word;
    EXPECT_EQ(width, entry.width) << entry.word;
    EXPECT_EQ(decimals, entry.decimals) << entry.word;
  }
}

TEST(ParseVariable, TellsHowTheListEnded) {
  TxtWzDlmLines plan;
  TxtWzParser added("v F8 w F8", nullptr);
  EXPECT_EQ(added.ParseVariable(&plan), 0);
  EXPECT_EQ(added.ParseVariable(&plan), 0);
  EXPECT_EQ(added.ParseVariable(&plan), 1);
  TxtWzParser stop(" \n. x F8", nullptr);
  EXPECT_EQ(stop.ParseVariable(&plan), 1);
  TxtWzParser bad("x Q", nullptr);
  EXPECT_EQ(bad.ParseVariable(&plan), 2);
  TxtWzParser map("/Map", nullptr);
  EXPECT_EQ(map.ParseVariable(&plan), 10);
  EXPECT_EQ(plan.variableCount(), 2u);
}

}  // namespace
}  // namespace textwizard
