// The report of a pass's variables.
#include "map/VariableMap.h"

#include <gtest/gtest.h>

#include "model/MessageText.h"
#include "reading/testing/ReadingTesting.h"

namespace textwizard {
namespace {

using namespace testing_support;

// The report on an import of these variables whose longest pass found `cases` cases.
Strings Map(const std::vector<TxtWzVar>& variables, std::int64_t cases = 0) {
  TestImport import("", Delimited(","), variables);
  import.source().NotePassEnd(cases, nullptr);
  MessageKeeper messages;
  EmitMapOutput(&messages, import.source());
  for (const ErrorText& message : messages.messages) {
    EXPECT_EQ(message.kind, kMessageLog);
    EXPECT_EQ(message.value, 0);
  }
  return messages.Texts(kMessageLog);
}

// The line of one variable.
std::string Line(const TxtWzVar& variable) {
  const Strings lines = Map({variable});
  EXPECT_EQ(lines.size(), 5u);
  return lines.size() == 5 ? lines[3] : "";
}

TEST(VariableMap, TheWholeReport) {
  TxtWzVar income = MakeVar("income", kFormatF, 8, 2);
  income.missingStored = true;
  EXPECT_EQ(Map({income, String("city", 12)}, 42),
            (Strings{"\n", "Data written to the working file.", "2 variables and 42 cases written.",
                     "Variable: income             Type: Number  Format : F8.2       "
                     "One or more values were set to system-missing.",
                     "Variable: city               Type: String  Format : A12        ", "\n"}));
}

TEST(VariableMap, ASkippedVariableIsNeitherCountedNorListed) {
  EXPECT_EQ(Map({Skipped("x"), Number("a")}, 1),
            (Strings{"\n", "Data written to the working file.", "1 variables and 1 cases written.",
                     "Variable: a                  Type: Number  Format : F8         ", "\n"}));
  EXPECT_EQ(Map({Skipped("x")})[2], "0 variables and 0 cases written.");
}

TEST(VariableMap, AWidthAbove40IsShownAs40ExceptOfStrings) {
  EXPECT_EQ(Line(String("s", 255)),
            "Variable: s                  Type: String  Format : A255       ");
  EXPECT_EQ(Line(MakeVar("n", kFormatF, 50)),
            "Variable: n                  Type: Number  Format : F40        ");
  EXPECT_EQ(Line(MakeVar("n", kFormatF, 50, 2)),
            "Variable: n                  Type: Number  Format : F40.2      ");
  EXPECT_EQ(Line(MakeVar("n", kFormatF, 40)),
            "Variable: n                  Type: Number  Format : F40        ");
  // AHEX is listed as a number's format but keeps its width.
  EXPECT_EQ(Line(MakeVar("h", kFormatAHex, 64)),
            "Variable: h                  Type: Number  Format : AHEX64     ");
}

TEST(VariableMap, AStringIsListedWithItsStringWidthAndWithoutDecimals) {
  TxtWzVar variable = MakeVar("s", kFormatA, 7, 2);
  variable.maxStringLength = 21;
  EXPECT_EQ(Line(variable), "Variable: s                  Type: String  Format : A21        ");
}

TEST(VariableMap, NotesGoByKindOfVariable) {
  TxtWzVar text = String("s", 3);
  text.missingStored = true;
  EXPECT_EQ(Line(text), "Variable: s                  Type: String  Format : A3         ");
  text.stringTruncated = true;
  EXPECT_EQ(Line(text),
            "Variable: s                  Type: String  Format : A3         "
            "One or more values were truncated.");
  TxtWzVar number = Number("n");
  number.stringTruncated = true;
  EXPECT_EQ(Line(number), "Variable: n                  Type: Number  Format : F8         ");
}

TEST(VariableMap, AnUnknownFormatIsBad) {
  EXPECT_EQ(Line(MakeVar("n", 77, 8)),
            "Variable: n                  Type: Number  Format : badFormat8 ");
}

TEST(VariableMap, LongNamesAndFormatsTakeTheirRoom) {
  EXPECT_EQ(Line(MakeVar("a_name_of_20_letters", kFormatYmdhms, 22, 2)),
            "Variable: a_name_of_20_letters   Type: Number  Format : YMDHMS22.2 ");
  const std::string longest(64, 'n');
  EXPECT_EQ(Line(Number(longest.c_str())),
            "Variable: " + longest + "   Type: Number  Format : F8         ");
}

TEST(VariableMap, WithoutAMonitorAPassCountsAndItsReportIsNotMadeUpFor) {
  ImportSettings settings = Delimited(",");
  settings.mapRequested = true;
  TestImport import("", settings, {Number("A")});
  testing::internal::CaptureStdout();
  testing::internal::CaptureStderr();
  import.source().NotePassEnd(3, nullptr);
  EmitMapOutput(nullptr, import.source());
  ReportLogMessage(nullptr, "text");
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
  EXPECT_EQ(import.source().RowCount(), 3);

  MessageKeeper messages;
  import.source().NotePassEnd(3, &messages);
  EXPECT_TRUE(messages.messages.empty()) << "no more cases than before";
  import.source().NotePassEnd(4, &messages);
  ASSERT_GT(messages.messages.size(), 2u);
  EXPECT_EQ(messages.messages[2].text, "1 variables and 4 cases written.");
}

TEST(VariableMap, ALogLineGoesToTheMonitorAsItIs) {
  MessageKeeper messages;
  ReportLogMessage(&messages, "100% of %s");
  ASSERT_EQ(messages.messages.size(), 1u);
  EXPECT_EQ(messages.messages[0].text, "100% of %s");
  EXPECT_EQ(messages.messages[0].kind, kMessageLog);
}

TEST(VariableMap, APackedFormatHasItsTypeInItsThirdByte) {
  const auto packed = [](std::uint32_t width, std::uint32_t type, std::uint32_t decimals) {
    return width | type << 16 | decimals << 24;
  };
  EXPECT_EQ(FormatName(packed(8, 5, 2)), "F");
  EXPECT_EQ(FormatName(packed(255, 1, 0)), "A");
  EXPECT_EQ(FormatName(packed(22, 86, 2)), "YMDHMS");
  EXPECT_EQ(FormatName(packed(8, 13, 2)), "badFormat");
  EXPECT_EQ(FormatName(packed(8, 0, 0)), "badFormat");
}

TEST(VariableMap, EveryCodeHasItsName) {
  constexpr const char* kNames[] = {
      "badFormat", "A",        "AHEX",  "COMMA", "DOLLAR",    "F",         "IB",
      "PIBHEX",    "P",        "PIB",   "PK",    "RB",        "RBHEX",     "badFormat",
      "badFormat", "Z",        "N",     "E",     "badFormat", "badFormat", "DATE",
      "TIME",      "DATETIME", "ADATE", "JDATE", "DTIME",     "WKDAY",     "MONTH",
      "MOYR",      "QYR",      "WKYR",  "PCT",   "DOT",       "CCA",       "CCB",
      "CCC",       "CCD",      "CCE",   "EDATE", "SDATE",     "G"};
  for (std::uint32_t code = 0; code < 256; ++code) {
    const std::string_view expected = code < std::size(kNames) ? kNames[code]
                                      : code == 85             ? "MTIME"
                                      : code == 86             ? "YMDHMS"
                                                               : "badFormat";
    EXPECT_EQ(FormatName(code << 16), expected) << code;
  }
}

}  // namespace
}  // namespace textwizard
