// The command as a whole: its frame, the checks across subcommands, and the plan that it becomes.
#include "command/TxtWzParser.h"

#include <gtest/gtest.h>

#include "command/testing/CommandTesting.h"
#include "model/FormatCode.h"
#include "plan/TxtWzDlmCount.h"
#include "plan/TxtWzDlmLines.h"
#include "plan/TxtWzFixedLines.h"

namespace textwizard {
namespace {

TEST(Parser, StartsWithItsDefaults) {
  const TxtWzParser parser("", nullptr);
  EXPECT_EQ(parser.GetFile(), nullptr);
  EXPECT_EQ(parser.GetErrorMesID(), 2251u);
  EXPECT_EQ(parser.GetErrorMesToken(), nullptr);
  EXPECT_TRUE(parser.warnings().empty());
}

TEST(Frame, MustBeginWithGetData) {
  for (const char* text : {"", ".", "GET", "GET FILE /TYPE=TXT", "PUT DATA /TYPE=TXT",
                           "GETDATA /TYPE=TXT", "GET DATA/TYPE=TXT"}) {
    ExpectError(ParseText(text), 2263, nullptr);
  }
}

TEST(Frame, TypeTextMustComeFirst) {
  for (const char* text :
       {"GET DATA", "GET DATA .", "GET DATA /TYPE=XLS /FILE=\"x\" /MAP",
        "GET DATA /FILE=\"x\" /TYPE=TXT", "GET DATA /VARIABLES= a F8", "GET DATA /MAP"}) {
    ExpectError(ParseText(text), 2264, nullptr);
  }
}

TEST(Frame, KeywordsAreReadInAnyLetterCase) {
  const Outcome outcome = ParseText(
      "get Data /type = txt /file='x' /delimiters=',' /delcase=line /variables=a f8.2\n.");
  ASSERT_TRUE(outcome.plan) << outcome.error;
  EXPECT_EQ(outcome.file, "x");
  ExpectVariable(outcome, 0, "a", kFormatF, 8, 2);
}

TEST(Frame, ASlashIsExpectedBeforeASubcommand) {
  ExpectError(ParseText("GET DATA TYPE=TXT"), 2267, "/");
  ExpectError(Parse("FILE=\"x\" /FIRSTCASE=2 DELCASE=LINE"), 2255, "/VARIABLES");
}

TEST(Frame, ASlashWithNothingBehindIt) {
  ExpectError(ParseText("GET DATA /TYPE=TXT / /FILE=\"x\""), 2254, "/");
  ExpectError(ParseText("GET DATA /TYPE=TXT //FILE=\"x\""), 2254, "/");
  ExpectError(ParseText("GET DATA /TYPE=TXT /"), 2254, "/");
}

TEST(Frame, AnEqualsSignIsExpected) {
  ExpectError(ParseWith("/FIRSTCASE 2"), 2267, "=");
  ExpectError(Parse("FILE \"x\" /MAP"), 2267, "=");
  // Nothing but the full stop is left, and it is taken for a name.
  ExpectError(Parse(""), 2267, "=");
}

TEST(Frame, ANameIsExpectedBeforeTheEqualsSign) { ExpectError(ParseWith("/ = 5"), 2268, nullptr); }

TEST(Frame, OfALongSubcommandTheFirst1022BytesAreRead) {
  // "FIRSTCASE=3" and blanks up to 1,022 bytes; what follows them stands without a slash.
  const std::string longest = "/FIRSTCASE=3" + std::string(1022 - 11, ' ');
  EXPECT_EQ(ParseWith(longest + std::string(5000, ' ')).Settings().firstCase, 3);
  ExpectError(ParseWith(longest + "x"), 2267, "/");
  const std::string word(5000, '1');
  ExpectError(ParseWith("/IMPORTCASE=" + word), 2262, std::string(1022 - 11, '1').c_str());
}

TEST(GetNextInt, ReadsAnIntegerAndKeepsItsWord) {
  TxtWzParser parser("", nullptr);
  std::int64_t n = -1;
  parser.GetNextInt(" \t-17x next", n);
  EXPECT_EQ(n, -17);
  EXPECT_EQ(parser.scratch(), "-17x");
  parser.GetNextInt("", n);
  EXPECT_EQ(n, 0);
  EXPECT_EQ(parser.scratch(), "");
  parser.GetNextInt((std::string(1022, 'x') + "\xC3\xA9z").c_str(), n);
  EXPECT_EQ(n, 0);
  EXPECT_EQ(parser.scratch(), std::string(1022, 'x')) << "at most 1,023 bytes, whole characters";
}

TEST(Verify, RequiredSubcommands) {
  ExpectError(Parse("FILE=\"x\" /DELIMITERS=\",\" /MAP"), 2255, "/VARIABLES");
  ExpectError(Parse("ARRANGEMENT=FIXED /FILE=\"x\" /FIRSTCASE=1"), 2255, "/VARIABLES");
  ExpectError(Parse("DELIMITERS=\",\" /VARIABLES= a F8"), 2255, "/FILE");
  ExpectError(Parse("FILE=\"x\" /VARIABLES= a F8"), 2255, "/DELIMITERS");
}

TEST(Verify, SubcommandsOfTheOtherArrangement) {
  ExpectError(ParseWith("/FIXCASE=1"), 2252, "/FIXCASE");
  ExpectError(Parse("FILE=x /ARRANGEMENT=FIXED /DELCASE=LINE /VARIABLES= a 0-3 F4"), 2253,
              "/DELCASE");
  ExpectError(Parse("FILE=x /ARRANGEMENT=FIXED /DELIMITERS=\",\" /VARIABLES= a 0-3 F4"), 2253,
              "/DELIMITERS");
}

TEST(Verify, TheChecksHaveAnOrder) {
  ExpectError(Parse("FIXCASE=1 /FIRSTCASE=2"), 2255, "/VARIABLES");
  ExpectError(Parse("FIXCASE=1 /VARIABLES= a F8"), 2255, "/FILE");
  ExpectError(Parse("FILE=x /FIXCASE=1 /VARIABLES= a F8"), 2252, "/FIXCASE");
  ExpectError(Parse("FILE=x /QUALIFIER=\",\" /VARIABLES= a F8"), 2255, "/DELIMITERS");
  ExpectError(Parse("DELIMITERS=\",\" /DELCASE=LINE /ARRANGEMENT=FIXED /VARIABLES= a 0-3 F4"), 2255,
              "/FILE");
  ExpectError(Parse("FILE=x /DELIMITERS=\",\" /DELCASE=LINE /ARRANGEMENT=FIXED /VARIABLES= a Q"),
              2253, "/DELCASE");
  // The list is read after the checks, and its length is compared when it has been read.
  ExpectError(ParseWith("/QUALIFIER=\",\" /DELCASE=VARIABLES 9"), 2275, "");
  ExpectError(Parse("FILE=x /DELIMITERS=\",\" /DELCASE=VARIABLES 9 /VARIABLES= a Q"), 2265,
              nullptr);
}

TEST(Verify, TheFirstErrorEndsTheCommand) {
  const Outcome outcome = ParseWith("/QUALIFIER='||' /FIRSTCASE=0 /ENCODING=LATIN1");
  ExpectError(outcome, 2259, "0");
  // The warning from before is kept, for the entry to drop.
  EXPECT_EQ(outcome.warnings.size(), 1u);
}

TEST(Plan, OfOneCaseALine) {
  PathAdapter adapter;
  const Outcome outcome = Parse(
      "FILE=\"d\" /ENCODING=UTF8 /DELCASE=LINE /DELIMITERS=\";\" /QUALIFIER=\"'\" /FIRSTCASE=2 "
      "/IMPORTCASE=FIRST 9 /LEADINGSPACES IGNORE=YES /DATATYPEMIN PERCENTAGE=80 /MAP "
      "/VARIABLES= a F8.2 b A5",
      &adapter);
  ASSERT_TRUE(outcome.plan) << outcome.error;
  EXPECT_TRUE(dynamic_cast<TxtWzDlmLines*>(outcome.plan.get()));
  EXPECT_EQ(outcome.plan->fileName(), "quoted:d");
  EXPECT_EQ(outcome.plan->errorMonitorHandle, &PathAdapter::Ignore);
  EXPECT_EQ(outcome.plan->errorContext, &adapter);
  const ImportSettings& settings = outcome.Settings();
  EXPECT_EQ(settings.arrangement, kDelimitedLines);
  EXPECT_EQ(settings.encoding, kEncodingUtf8);
  EXPECT_EQ(settings.delimiters, ";");
  EXPECT_TRUE(settings.qualifierSet);
  EXPECT_EQ(settings.qualifier, "'");
  EXPECT_EQ(settings.firstCase, 2);
  EXPECT_EQ(settings.importMode, kImportFirst);
  EXPECT_EQ(settings.caseLimit, 9);
  EXPECT_TRUE(settings.leadingSpaces);
  EXPECT_FALSE(settings.multipleSpaces);
  EXPECT_EQ(settings.dataTypeMinPercentage, 80.0);
  EXPECT_TRUE(settings.mapRequested);
  EXPECT_EQ(outcome.plan->slots().size(), 2u);
}

TEST(Plan, OfACountOfVariables) {
  const Outcome outcome = ParseWith("/DELCASE=VARIABLES 2 /MULTIPLESPACES IGNORE=YES");
  ASSERT_TRUE(outcome.plan) << outcome.error;
  EXPECT_TRUE(dynamic_cast<TxtWzDlmCount*>(outcome.plan.get()));
  EXPECT_EQ(outcome.Settings().arrangement, kDelimitedCount);
  EXPECT_TRUE(outcome.Settings().multipleSpaces);
  EXPECT_EQ(outcome.plan->errorMonitorHandle, nullptr);
}

TEST(Plan, OfFixedColumns) {
  const Outcome outcome = Parse(
      "FILE='d' /LEADINGSPACES IGNORE=YES /ARRANGEMENT=FIXED /FIXCASE=2 /FIRSTCASE=3 "
      "/ENCODING=LOCALE /VARIABLES= /1 a 0-3 F4 /2 b 0-1 A2");
  ASSERT_TRUE(outcome.plan) << outcome.error;
  EXPECT_TRUE(dynamic_cast<TxtWzFixedLines*>(outcome.plan.get()));
  const ImportSettings& settings = outcome.Settings();
  EXPECT_EQ(settings.arrangement, kFixedColumns);
  EXPECT_EQ(settings.recordsPerCase, 2u);
  EXPECT_EQ(settings.firstCase, 3);
  EXPECT_EQ(settings.encoding, kEncodingLocale);
  EXPECT_FALSE(settings.leadingSpaces) << "an option of delimited data";
}

TEST(Plan, MayHaveNoVariables) {
  const Outcome outcome = ParseDelimited("");
  ASSERT_TRUE(outcome.plan) << outcome.error;
  EXPECT_TRUE(outcome.plan->slots().empty());
}

}  // namespace
}  // namespace textwizard
