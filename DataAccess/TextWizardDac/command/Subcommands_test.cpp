// One subcommand at a time: what it sets and what it refuses.
#include <gtest/gtest.h>

#include "command/testing/CommandTesting.h"
#include "model/FormatCode.h"

namespace textwizard {
namespace {

TEST(File, QuotedAndUnquotedPathsAreTold) {
  PathAdapter adapter;
  const std::string rest = " /DELIMITERS=\",\" /VARIABLES= a F8.2";
  EXPECT_EQ(Parse("FILE=\"my data.txt\"" + rest, &adapter).file, "quoted:my data.txt");
  EXPECT_EQ(Parse("FILE='my \"data\".txt'" + rest, &adapter).file, "quoted:my \"data\".txt");
  EXPECT_EQ(Parse("FILE=/tmp/data.txt" + rest, &adapter).file, "plain:/tmp/data.txt");
  EXPECT_EQ(Parse("FILE = \n data.txt\t" + rest).file, "data.txt");
}

TEST(File, OnlyTheFileGoesThroughTheAdapter) {
  PathAdapter adapter;
  const Outcome outcome =
      Parse("FILE=x /DELIMITERS=\";\" /QUALIFIER='\"' /VARIABLES= a F8.2", &adapter);
  ASSERT_TRUE(outcome.plan) << outcome.error;
  EXPECT_EQ(outcome.plan->fileName(), "plain:x");
  EXPECT_EQ(outcome.Settings().delimiters, ";");
  EXPECT_EQ(outcome.Settings().qualifier, "\"");
}

TEST(File, AnEmptyPathHasNoValue) {
  ExpectError(Parse("FILE=\"\" /DELIMITERS=\",\" /VARIABLES= a F8.2"), 2256, "FILE");
}

TEST(File, GivenTwice) { ExpectError(ParseWith("/FILE=\"x\""), 2257, "/FILE"); }

TEST(QuotedValues, MustBeFollowedByASubcommand) {
  ExpectError(Parse("FILE=\"data.txt\""), 2256, "FILE");
  ExpectError(Parse("FILE=data.txt"), 2256, "FILE");
  ExpectError(Parse("file=\"data.txt\" x /MAP"), 2256, "file");
  ExpectError(Parse("FILE=\"x\" /DELIMITERS=\",\" "), 2256, "DELIMITERS");
  ExpectError(Parse("FILE=\"x\" /QUALIFIER=\"'\" "), 2256, "QUALIFIER");
}

TEST(QuotedValues, OneNeverClosedRunsToTheEndAndIsRefused) {
  ExpectError(Parse("FILE=\"data.txt /DELIMITERS=, /VARIABLES= a F8.2"), 2256, "FILE");
  ExpectError(Parse("FILE='data.txt /DELIMITERS=, /VARIABLES= a F8.2"), 2256, "FILE");
  ExpectError(Parse("FILE=x /DELIMITERS=\", /VARIABLES= a F8.2"), 2256, "DELIMITERS");
}

TEST(QuotedValues, ARunOfDoubleQuotesStandsForItselfLessItsLast) {
  EXPECT_EQ(ParseWith("/QUALIFIER=\"\"\"").Settings().qualifier, "\"");
  EXPECT_EQ(Parse("FILE=x /DELIMITERS=\"\"\"\" /VARIABLES= a F8.2").Settings().delimiters, "\"\"");
  EXPECT_EQ(Parse("FILE=x /DELIMITERS=\";\"\" /VARIABLES= a F8.2").Settings().delimiters, "\"");
}

TEST(QuotedValues, SlashesAndEqualsSignsInsideAreText) {
  EXPECT_EQ(Parse("FILE=\"/a=b/c\" /DELIMITERS=\"/\" /VARIABLES= a F8.2").file, "/a=b/c");
}

TEST(Encoding, EveryNameHasItsCode) {
  const struct {
    const char* name;
    FileEncoding encoding;
  } names[] = {{"LOCALE", kEncodingLocale},
               {"utf8", kEncodingUtf8},
               {"UTF-8", kEncodingUtf8},
               {"UTF16", kEncodingUtf16LittleEndian},
               {"UTF-16", kEncodingUtf16LittleEndian},
               {"UTF16LE", kEncodingUtf16LittleEndian},
               {"utf-16le", kEncodingUtf16LittleEndian},
               {"UTF16BE", kEncodingUtf16BigEndian},
               {"UTF-16BE", kEncodingUtf16BigEndian}};
  for (const auto& entry : names) {
    const Outcome outcome = ParseWith(std::string("/ENCODING = ") + entry.name);
    ASSERT_TRUE(outcome.plan) << entry.name << outcome.error;
    EXPECT_EQ(outcome.Settings().encoding, entry.encoding) << entry.name;
  }
  EXPECT_EQ(ParseWith("").Settings().encoding, kEncodingNone);
}

TEST(Encoding, TheLastOfSeveralCounts) {
  EXPECT_EQ(ParseWith("/ENCODING=UTF8 /ENCODING=LOCALE").Settings().encoding, kEncodingLocale);
}

TEST(Encoding, AnotherNameIsRefused) { ExpectError(ParseWith("/ENCODING=LATIN1"), 2280, ""); }

TEST(ArrangementSubcommand, NamesAndRepetition) {
  EXPECT_EQ(ParseWith("/ARRANGEMENT=delimited").Settings().arrangement, kDelimitedLines);
  ExpectError(ParseWith("/ARRANGEMENT=LOOSE"), 2258, "LOOSE");
  ExpectError(ParseWith("/ARRANGEMENT=DELIMITED /ARRANGEMENT=DELIMITED"), 2257, "/ARRANGEMENT");
}

TEST(FirstCase, IsALineNumberOfAtLeastOne) {
  EXPECT_EQ(ParseWith("").Settings().firstCase, 1);
  EXPECT_EQ(ParseWith("/FIRSTCASE=12").Settings().firstCase, 12);
  EXPECT_EQ(ParseWith("/FIRSTCASE=99999999999999999999").Settings().firstCase, 4294967295);
  ExpectError(ParseWith("/FIRSTCASE=0"), 2259, "0");
  ExpectError(ParseWith("/FIRSTCASE=-2"), 2259, "-2");
  ExpectError(ParseWith("/FIRSTCASE=two"), 2259, "two");
  ExpectError(ParseWith("/FIRSTCASE=2 /FIRSTCASE=2"), 2257, "/FIRSTCASE");
  ExpectError(ParseWith("/FIRSTCASE="), 2256, "FIRSTCASE");
}

TEST(DelCase, LineOrACountOfVariables) {
  EXPECT_EQ(ParseWith("/DELCASE=LINE").Settings().arrangement, kDelimitedLines);
  EXPECT_EQ(ParseWith("/DELCASE=VARIABLES 2").Settings().arrangement, kDelimitedCount);
  ExpectError(ParseWith("/DELCASE=COLUMN"), 2260, "COLUMN");
  ExpectError(ParseWith("/DELCASE=VARIABLES 0"), 2260, "0");
  ExpectError(ParseWith("/DELCASE=VARIABLES two"), 2260, "two");
  ExpectError(ParseWith("/DELCASE=VARIABLES"), 2260, "");
  ExpectError(ParseWith("/DELCASE=LINE /DELCASE=LINE"), 2257, "/DELCASE");
}

TEST(DelCase, TheCountMustBeThatOfTheVariables) {
  ExpectError(ParseWith("/DELCASE=VARIABLES 3"), 2270, "");
  ExpectError(ParseWith("/DELCASE=VARIABLES 1"), 2270, "");
}

TEST(FixCase, IsACountOfAtLeastOne) {
  const std::string fixed = "FILE=x /ARRANGEMENT=FIXED ";
  EXPECT_EQ(Parse(fixed + "/VARIABLES= a 0-3 F4").Settings().recordsPerCase, 1u);
  EXPECT_EQ(Parse(fixed + "/FIXCASE=3 /VARIABLES= a 0-3 F4").Settings().recordsPerCase, 3u);
  ExpectError(Parse(fixed + "/FIXCASE=0 /VARIABLES= a 0-3 F4"), 2261, "0");
  ExpectError(Parse(fixed + "/FIXCASE=2 /FIXCASE=2 /VARIABLES= a 0-3 F4"), 2257, "/FIXCASE");
}

TEST(ImportCase, AllFirstOrPercent) {
  EXPECT_EQ(ParseWith("").Settings().importMode, kImportAll);
  EXPECT_EQ(ParseWith("/IMPORTCASE=ALL").Settings().importMode, kImportAll);
  const Outcome first = ParseWith("/IMPORTCASE=first 250");
  EXPECT_EQ(first.Settings().importMode, kImportFirst);
  EXPECT_EQ(first.Settings().caseLimit, 250);
  const Outcome percent = ParseWith("/IMPORTCASE=PERCENT 25");
  EXPECT_EQ(percent.Settings().importMode, kImportPercent);
  EXPECT_EQ(percent.Settings().sampleFraction, 0.25);
  EXPECT_EQ(percent.Settings().caseLimit, 0);
  EXPECT_EQ(ParseWith("/IMPORTCASE=PERCENT 100").Settings().sampleFraction, 1.0);
  EXPECT_EQ(ParseWith("/IMPORTCASE=PERCENT 1").Settings().sampleFraction, 0.01);
}

TEST(ImportCase, NumbersOutOfRangeAndOtherWords) {
  ExpectError(ParseWith("/IMPORTCASE=PERCENT 0"), 2262, "0");
  ExpectError(ParseWith("/IMPORTCASE=PERCENT 101"), 2262, "101");
  ExpectError(ParseWith("/IMPORTCASE=FIRST 0"), 2262, "0");
  ExpectError(ParseWith("/IMPORTCASE=FIRST ten"), 2262, "ten");
  ExpectError(ParseWith("/IMPORTCASE=LAST 10"), 2262, "LAST");
  ExpectError(ParseWith("/IMPORTCASE=ALL /IMPORTCASE=ALL"), 2257, "/IMPORTCASE");
}

TEST(Delimiters, EscapesAreResolvedAtTheStartOnly) {
  const struct {
    const char* value;
    const char* delimiters;
  } cases[] = {{"", ""},         {",;", ",;"},           {"\\t", "\t"},         {"\\T,", "\t,"},
               {"\\\\", "\\"},   {"\\\\t", "\\t"},       {"\\t\\\\,", "\t\\,"}, {"\\t\\t", "\t\\t"},
               {",\\t", ",\\t"}, {"\\\\\\\\", "\\\\\\"}, {"\\", "\\"},          {"\\n", "\\n"}};
  for (const auto& entry : cases) {
    const Outcome outcome =
        Parse(std::string("FILE=x /DELIMITERS=\"") + entry.value + "\" /VARIABLES= a F8.2");
    ASSERT_TRUE(outcome.plan) << entry.value << outcome.error;
    EXPECT_EQ(outcome.Settings().delimiters, entry.delimiters) << entry.value;
  }
}

TEST(Delimiters, GivenTwice) {
  ExpectError(ParseWith("/DELIMITERS=\";\""), 2257, "/DELIMITERS");
  ExpectError(Parse("FILE=x /DELIMITERS=\"\" /DELIMITERS=\"\" /VARIABLES= a F8"), 2257,
              "/DELIMITERS");
}

TEST(Qualifier, AnEmptyValueSetsNone) {
  const Outcome outcome = ParseWith("/QUALIFIER=\"\" /QUALIFIER=''");
  ASSERT_TRUE(outcome.plan) << outcome.error;
  EXPECT_FALSE(outcome.Settings().qualifierSet);
  EXPECT_TRUE(outcome.warnings.empty());
}

TEST(Qualifier, OneCharacterIsKept) {
  const Outcome one = ParseWith("/QUALIFIER='\"'");
  EXPECT_TRUE(one.Settings().qualifierSet);
  EXPECT_EQ(one.Settings().qualifier, "\"");
  const Outcome wide = ParseWith("/QUALIFIER='\xC2\xAB'");
  EXPECT_EQ(wide.Settings().qualifier, "\xC2\xAB");
  EXPECT_TRUE(wide.warnings.empty());
}

TEST(Qualifier, MoreThanOneCharacterIsAWarning) {
  const Outcome outcome = ParseWith("/QUALIFIER='\xC2\xAB|'");
  ASSERT_TRUE(outcome.plan) << outcome.error;
  EXPECT_EQ(outcome.Settings().qualifier, "\xC2\xAB");
  ASSERT_EQ(outcome.warnings.size(), 1u);
  EXPECT_EQ(outcome.warnings[0].text, CatalogueText(2276) + " ");
  EXPECT_EQ(outcome.warnings[0].kind, kMessageWarning);
}

TEST(Qualifier, GivenTwice) {
  ExpectError(ParseWith("/QUALIFIER='|' /QUALIFIER='|'"), 2257, "/QUALIFIER");
}

TEST(Qualifier, MustNotBeADelimiter) {
  ExpectError(Parse("FILE=x /DELIMITERS=\";|\" /QUALIFIER='|' /VARIABLES= a F8"), 2275, "");
  ExpectError(Parse("FILE=x /DELIMITERS=\";\xC2\xAB\" /QUALIFIER='\xC2\xAB' /VARIABLES= a F8"),
              2275, "");
  // The two characters share a byte and are not the same.
  EXPECT_TRUE(Parse("FILE=x /DELIMITERS=\"\xC2\xBB\" /QUALIFIER='\xC2\xAB' /VARIABLES= a F8").plan);
  EXPECT_TRUE(Parse("FILE=x /DELIMITERS=\"\" /QUALIFIER='|' /VARIABLES= a F8").plan);
}

// In this code page the second byte of a character may be a letter, a backslash or a bar.
TEST(InShiftJis, SecondBytesAreNotTakenForCharacters) {
  const InCodePage host("Shift_JIS");
  const std::string so = "\x83\x5C";  // ends with the byte of a backslash
  const std::string po = "\x83\x7C";  // ends with the byte of a bar
  const Outcome outcome = Parse("FILE=\"" + so + so + "\" /DELIMITERS=\"" + so + po +
                                "\" /QUALIFIER='|' /VARIABLES= " + so + " A5 " + po + " F8");
  ASSERT_TRUE(outcome.plan) << outcome.error;
  EXPECT_EQ(outcome.file, so + so);
  EXPECT_EQ(outcome.Settings().delimiters, so + po);
  EXPECT_EQ(outcome.Settings().qualifier, "|");
  ExpectVariable(outcome, 0, so, kFormatA, 5, 0);
  ExpectVariable(outcome, 1, po, kFormatF, 8, 0);
  EXPECT_EQ(ParseWith("/QUALIFIER='" + po + "'").Settings().qualifier, po);
  ExpectError(Parse("FILE=x /DELIMITERS=\"," + po + "\" /QUALIFIER='" + po + "' /VARIABLES= a F8"),
              2275, "");
}

TEST(SpaceOptions, YesAndNo) {
  const Outcome yes = ParseWith("/LEADINGSPACES IGNORE=YES /MULTIPLESPACES IGNORE = yes");
  EXPECT_TRUE(yes.Settings().leadingSpaces);
  EXPECT_TRUE(yes.Settings().multipleSpaces);
  const Outcome no = ParseWith("/LEADINGSPACES IGNORE=NO /MULTIPLESPACES IGNORE=no");
  EXPECT_FALSE(no.Settings().leadingSpaces);
  EXPECT_FALSE(no.Settings().multipleSpaces);
}

TEST(SpaceOptions, OtherValuesFillTheText) {
  ExpectFilledError(ParseWith("/LEADINGSPACES IGNORE=MAYBE"), 2284, "MAYBE");
  ExpectFilledError(ParseWith("/MULTIPLESPACES IGNORE=MAYBE"), 2288, "MAYBE");
}

TEST(SpaceOptions, NeedTheWordIgnoreInCapitals) {
  ExpectError(ParseWith("/LEADINGSPACES=YES"), 2286, nullptr);
  ExpectError(ParseWith("/LEADINGSPACES ignore=YES"), 2286, nullptr);
  ExpectError(ParseWith("/LEADINGSPACES YES"), 2286, nullptr);
  ExpectError(ParseWith("/MULTIPLESPACES=YES"), 2290, nullptr);
  ExpectError(ParseWith("/MULTIPLESPACES ignore=YES"), 2290, nullptr);
  ExpectError(ParseWith("/MULTIPLESPACES YES"), 2290, nullptr);
}

TEST(SpaceOptions, NeedAnEqualsSign) {
  ExpectFilledError(ParseWith("/LEADINGSPACES IGNORE YES"), 2287, "LEADINGSPACES IGNORE YES ");
  ExpectFilledError(ParseWith("/MULTIPLESPACES IGNORE YES"), 2291, "MULTIPLESPACES IGNORE YES ");
}

TEST(SpaceOptions, GivenTwice) {
  ExpectError(ParseWith("/LEADINGSPACES IGNORE=NO /LEADINGSPACES IGNORE=NO"), 2257,
              "/LEADINGSPACES");
  ExpectError(ParseWith("/MULTIPLESPACES IGNORE=NO /MULTIPLESPACES IGNORE=NO"), 2257,
              "/MULTIPLESPACES");
}

TEST(DataTypeMin, IsAboveHalfAndAtMostAll) {
  EXPECT_EQ(ParseWith("").Settings().dataTypeMinPercentage, 95.0);
  EXPECT_EQ(ParseWith("/DATATYPEMIN PERCENTAGE=100").Settings().dataTypeMinPercentage, 100.0);
  EXPECT_EQ(ParseWith("/DATATYPEMIN PERCENTAGE = 50.5").Settings().dataTypeMinPercentage, 50.5);
  for (const char* value : {"50", "100.01", "0", "-60", "95%", "most", "nan", "inf", "0x60"}) {
    ExpectFilledError(ParseWith(std::string("/DATATYPEMIN PERCENTAGE=") + value), 2297, value);
  }
}

TEST(DataTypeMin, FormAndRepetition) {
  ExpectError(ParseWith("/DATATYPEMIN=95"), 2295, nullptr);
  ExpectError(ParseWith("/DATATYPEMIN 95"), 2295, nullptr);
  ExpectFilledError(ParseWith("/DATATYPEMIN PERCENTAGE 95"), 2296, "DATATYPEMIN PERCENTAGE 95 ");
  ExpectError(ParseWith("/DATATYPEMIN PERCENTAGE=95 /DATATYPEMIN PERCENTAGE=95"), 2257,
              "/DATATYPEMIN");
}

TEST(Map, IsAskedForBeforeTheVariablesOrAtTheirEnd) {
  EXPECT_FALSE(ParseWith("").Settings().mapRequested);
  EXPECT_TRUE(ParseWith("/MAP").Settings().mapRequested);
  const Outcome last = ParseDelimited(" a F8.2 b A5 /map");
  ASSERT_TRUE(last.plan) << last.error;
  EXPECT_TRUE(last.Settings().mapRequested);
  EXPECT_EQ(last.plan->slots().size(), 2u);
  // Before and at the end is not twice: the list is no subcommand.
  EXPECT_TRUE(Parse("FILE=x /DELIMITERS=\",\" /MAP /VARIABLES= a F8 /MAP").plan);
}

TEST(Map, TakesNoWord) { ExpectError(ParseWith("/MAP YES"), 2267, "/"); }

TEST(Map, GivenTwice) { ExpectError(ParseWith("/MAP /MAP"), 2257, "/MAP"); }

TEST(Map, IsSeenWithTheValueOfTheSubcommandBefore) {
  EXPECT_TRUE(Parse("MAP /FILE=x /DELIMITERS=\",\" /VARIABLES= a F8").plan);
  // ... which is nothing when that one was given nothing.
  ExpectError(Parse("FILE=x /DELIMITERS=\"\" /MAP /VARIABLES= a F8"), 2256, "MAP");
}

TEST(WithFixedColumns, OptionsOfDelimitedDataAreRefusedBehindTheArrangementOnly) {
  const struct {
    const char* option;
    const char* token;
  } options[] = {{"/LEADINGSPACES IGNORE=YES ", "/LEADINGSPACES"},
                 {"/MULTIPLESPACES IGNORE=YES ", "/MULTIPLESPACES"},
                 {"/MAP ", "/MAP"}};
  for (const auto& entry : options) {
    const std::string option = entry.option;
    ExpectError(Parse("FILE=x /ARRANGEMENT=FIXED " + option + "/VARIABLES= a 0-3 F4"), 2292,
                entry.token);
    const Outcome before = Parse("FILE=x " + option + "/ARRANGEMENT=FIXED /VARIABLES= a 0-3 F4");
    EXPECT_TRUE(before.plan) << before.error;
  }
}

TEST(WithFixedColumns, RepetitionIsFoundFirstAndABadValueLast) {
  const std::string twice = "FILE=x /MAP /LEADINGSPACES IGNORE=YES /MULTIPLESPACES IGNORE=YES ";
  const std::string fixed = "/ARRANGEMENT=FIXED ";
  const std::string list = " /VARIABLES= a 0-3 F4";
  ExpectError(Parse(twice + fixed + "/LEADINGSPACES IGNORE=MAYBE" + list), 2257, "/LEADINGSPACES");
  ExpectError(Parse(twice + fixed + "/MULTIPLESPACES IGNORE=MAYBE" + list), 2257,
              "/MULTIPLESPACES");
  ExpectError(Parse(twice + fixed + "/MAP" + list), 2257, "/MAP");
  ExpectError(Parse("FILE=x " + fixed + "/LEADINGSPACES IGNORE=MAYBE" + list), 2292,
              "/LEADINGSPACES");
  ExpectError(Parse("FILE=x " + fixed + "/MULTIPLESPACES IGNORE=MAYBE" + list), 2292,
              "/MULTIPLESPACES");
}

TEST(UnknownSubcommand, IsNamed) {
  ExpectError(ParseWith("/SHEET=2"), 2256, "SHEET");
  ExpectError(ParseWith("/TYPE=TXT"), 2256, "TYPE");
}

}  // namespace
}  // namespace textwizard
