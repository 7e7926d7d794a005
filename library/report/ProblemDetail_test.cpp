#include "library/report/ProblemDetail.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "HostFramework/ValueInput.h"
#include "HostFramework/embedded/text/testing/TextTest.h"
#include "library/report/testing/ReportTesting.h"

namespace library {
namespace {

using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;
using Kind = ImportProblemKind;

class ProblemDetailTest : public testing::Test {
 protected:
  const embedded::InCodePage inUtf8_{nullptr};
  void SetUp() override { iocvsetdecchardot_(); }
  std::string Of(Kind kind, std::int32_t variable, std::string_view text, std::int64_t amount = 0) {
    return std::string(detail_.Of(Problem(kind, variable, text, amount)));
  }

  const ReportVariables variables_ = {
      {"fee", "F8.2", 5, 0}, {"visited", "ADATE10", 23, 0}, {"town", "A5", 1, 5}};
  ProblemDetail detail_{variables_};
};

TEST_F(ProblemDetailTest, AnUnreadableTextIsOfferedTheFormatsThatReadIt) {
  EXPECT_EQ(Of(Kind::kUnreadable, 0, "$1,234.50"),
            "F8.2 cannot read this text, so the value is missing; DOLLAR would read it");
  EXPECT_THAT(Of(Kind::kUnreadable, 1, "31.12.2019"), HasSubstr("EDATE10"));
  EXPECT_THAT(Of(Kind::kUnreadable, 0, "Monday"), HasSubstr("WKDAY9 would read it"));
}

TEST_F(ProblemDetailTest, ATextThatNothingReadsIsOfferedAsANullText) {
  EXPECT_EQ(Of(Kind::kUnreadable, 0, "none"),
            "F8.2 cannot read this text, so the value is missing; no other format reads it: mend "
            "it, give --null 'none' if it means missing, or read the variable as a string");
  // Not what would have to be quoted, or is no word.
  EXPECT_THAT(Of(Kind::kUnreadable, 0, "it's"),
              EndsWith("mend it, or read the variable as a string"));
  EXPECT_THAT(Of(Kind::kUnreadable, 0, std::string(50, 'x')),
              EndsWith("mend it, or read the variable as a string"));
}

TEST_F(ProblemDetailTest, TheOtherDecimalCharacterIsNamed) {
  EXPECT_THAT(Of(Kind::kUnreadable, 0, "1,5"),
              HasSubstr("--decimal comma would read it, if the comma is its decimal character"));
  iocvsetdeccharcomma_();
  EXPECT_THAT(Of(Kind::kUnreadable, 1, "2.75x"), EndsWith("read the variable as a string"));
  EXPECT_THAT(Of(Kind::kUnreadable, 0, "2.75"),
              HasSubstr("--decimal point would read it, if the point is its decimal character"));
  iocvsetdecchardot_();
}

TEST_F(ProblemDetailTest, TheSameTextOfAnotherVariableIsExplainedAnew) {
  EXPECT_THAT(Of(Kind::kUnreadable, 0, "none"), StartsWith("F8.2 "));
  EXPECT_THAT(Of(Kind::kUnreadable, 1, "none"), StartsWith("ADATE10 "));
  EXPECT_THAT(Of(Kind::kUnreadable, 1, "never"), HasSubstr("'never'"));
}

TEST_F(ProblemDetailTest, FormatsAreThoseWhoseReaderTakesTheText) {
  EXPECT_THAT(FormatsThatRead("12.5%", 5), ElementsAre("PCT"));
  EXPECT_THAT(FormatsThatRead("2 q 2004", 1), ElementsAre("QYR8"));
  EXPECT_THAT(FormatsThatRead("abc", 5), IsEmpty());
  EXPECT_THAT(FormatsThatRead("", 5), IsEmpty());
  // The tenth month, but no name that a person would write.
  EXPECT_THAT(FormatsThatRead("x", 5), IsEmpty());
  EXPECT_THAT(FormatsThatRead("oct", 5), ElementsAre("MONTH9"));
}

TEST_F(ProblemDetailTest, EveryKindSaysWhatHappenedAndWhatHelps) {
  EXPECT_EQ(Of(Kind::kRounded, 0, "1234567890123456789"),
            "the number has more digits than a double keeps, so the value is the nearest double; "
            "read as a string (A19) it keeps every digit");
  EXPECT_EQ(Of(Kind::kCut, 2, "Graubuenden"),
            "the text is longer than the 5 bytes of A5, and what did not fit was cut off; A11 or "
            "wider keeps it");
  EXPECT_THAT(Of(Kind::kCut, 2, "cut in the report", 3000), HasSubstr("A3000 or wider keeps it"));
  EXPECT_THAT(Of(Kind::kShortRecord, 2, "1"), HasSubstr("so the value is blank"));
  EXPECT_THAT(Of(Kind::kShortRecord, 0, "1"), HasSubstr("so the value is missing"));
  EXPECT_THAT(Of(Kind::kUndecodable, 2, "a", 1), StartsWith("1 byte is no character"));
  EXPECT_THAT(Of(Kind::kUndecodable, 2, "a", 2), StartsWith("2 bytes are no character"));
  EXPECT_THAT(Of(Kind::kFewFields, -1, "1,2", 1), HasSubstr("1 field is missing"));
  EXPECT_THAT(Of(Kind::kFewFields, -1, "1,2", 7), HasSubstr("7 fields are missing"));
  EXPECT_THAT(Of(Kind::kSurplus, -1, "x,y"), HasSubstr("more fields than there are variables"));
  EXPECT_THAT(Of(Kind::kOpenQuote, 2, "x"), HasSubstr("--join-quoted-lines"));
  EXPECT_THAT(Of(Kind::kStrayQuote, 2, "x"), HasSubstr("--keep-stray-qualifiers"));
  EXPECT_THAT(Of(Kind::kIncompleteCase, -1, "1"), StartsWith("the file ends inside a case"));
  EXPECT_THAT(Of(Kind::kNul, -1, "1", 1), StartsWith("1 NUL byte was dropped"));
  EXPECT_THAT(Of(Kind::kNul, -1, "1", 8), StartsWith("8 NUL bytes were dropped"));
}

TEST_F(ProblemDetailTest, ANewSentenceReplacesTheLast) {
  Of(Kind::kNul, -1, "1", 8);
  EXPECT_THAT(Of(Kind::kSurplus, -1, "x"), StartsWith("the record has more fields"));
}

}  // namespace
}  // namespace library
