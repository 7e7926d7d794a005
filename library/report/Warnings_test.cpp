#include "library/report/Warnings.h"

#include <map>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "HostFramework/ValueInput.h"
#include "HostFramework/embedded/text/testing/TextTest.h"
#include "library/report/testing/ReportTesting.h"

namespace library {
namespace {

using testing::AllOf;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;
using Kind = ImportProblemKind;
using Class = ImportValueClass;

constexpr int kF = 5;
constexpr int kADate = 23;
constexpr int kEDate = 38;
constexpr int kSDate = 39;
constexpr int kComma = 3;
constexpr int kDollar = 4;

ImportWitness Seen(std::int64_t count, std::int64_t line, std::string text) {
  return {count, line, std::move(text)};
}

// A variable "v" in an import of 200 cases.
class WarningsTest : public testing::Test {
 protected:
  const embedded::InCodePage inUtf8_{nullptr};
  void SetUp() override {
    iocvsetdecchardot_();
    account_.cases = 200;
  }
  void TearDown() override { iocvsetdecchardot_(); }

  void Declare(const char* format, int type, int bytes = 0) {
    variables_ = {{"v", format, type, bytes}};
  }
  ImportEvidence& Auto(const char* format, int type, Class winner, int bytes = 0) {
    Declare(format, type, bytes);
    evidence_.emplace();
    evidence_->classes[static_cast<std::size_t>(winner)] = Seen(200, 1, "1");
    evidence_->longest = Seen(10, 1, "1234567890");
    return *evidence_;
  }
  void Unreadable(std::int64_t count, std::string_view text) {
    account_.problems.Add(Problem(Kind::kUnreadable, 0, text));
    account_.problems.SetCount({Kind::kUnreadable, 0, count});
  }
  std::vector<std::string> Warnings() const {
    return WarningsOf(account_, variables_,
                      [this](std::size_t) { return evidence_ ? &*evidence_ : nullptr; });
  }

  PassAccount account_;
  ReportVariables variables_;
  std::optional<ImportEvidence> evidence_;
};

TEST_F(WarningsTest, ThereAreNoneOfACleanImport) {
  Auto("F8.2", kF, Class::kNumber);
  EXPECT_THAT(Warnings(), IsEmpty());
}

TEST_F(WarningsTest, ValuesThatAutoFoundAndItsFormatCannotReadAreTold) {
  Auto("ADATE10", kADate, Class::kDate);
  Unreadable(70, "31.12.2019");
  EXPECT_THAT(
      Warnings(),
      ElementsAre(
          "v: 35 % of its values (70 of 200) are missing: AUTO chose ADATE10, which cannot "
          "read them, the first \"31.12.2019\" in line 2; EDATE10 or DATE11 reads that one: "
          "declare it in place of AUTO"));
}

TEST_F(WarningsTest, WithoutAFormatThatReadsThemAStringIsTheWayOut) {
  Auto("ADATE10", kADate, Class::kDate);
  Unreadable(3, "nonsense");
  EXPECT_THAT(Warnings(), ElementsAre(AllOf(HasSubstr("1.5 % of its values"),
                                            HasSubstr("declare the variable as A10 to keep it"))));
}

TEST_F(WarningsTest, NumbersOfTheOtherDecimalCharacterAreReadByThatOption) {
  Auto("F3.1", kF, Class::kNumber).decimalComma = Seen(200, 1, "1,5");
  Unreadable(200, "1,5");
  EXPECT_THAT(Warnings(), ElementsAre(EndsWith("; --decimal comma reads that one")));
  iocvsetdeccharcomma_();
  Auto("F3.1", kF, Class::kNumber);
  account_.problems = ProblemLog();
  Unreadable(200, "1.5");
  EXPECT_THAT(Warnings(), ElementsAre(EndsWith("; --decimal point reads that one")));
}

TEST_F(WarningsTest, OnePercentIsNotYetTold) {
  Auto("F8.2", kF, Class::kNumber);
  Unreadable(2, "x");
  EXPECT_THAT(Warnings(), IsEmpty());
}

TEST_F(WarningsTest, ADeclaredVariableIsNotSaidToBeAuto) {
  Declare("F8.2", kF);
  Unreadable(100, "x");
  EXPECT_THAT(Warnings(), IsEmpty());
}

TEST_F(WarningsTest, DatesThatCanBeEitherAreTold) {
  Auto("ADATE10", kADate, Class::kDate).eitherOrder = Seen(200, 4, "01/02/2020");
  EXPECT_THAT(Warnings(), ElementsAre(AllOf(HasSubstr("the first \"01/02/2020\" in line 4"),
                                            HasSubstr("read month first (ADATE10)"),
                                            HasSubstr("declare EDATE10"))));
  Auto("EDATE10", kEDate, Class::kDate).eitherOrder = Seen(200, 4, "01.02.2020");
  EXPECT_THAT(Warnings(),
              ElementsAre(AllOf(HasSubstr("read day first"), HasSubstr("declare ADATE10"))));
}

TEST_F(WarningsTest, DatesThatAreDecidedOrBeginWithTheYearAreNot) {
  ImportEvidence& decided = Auto("ADATE10", kADate, Class::kDate);
  decided.eitherOrder = Seen(199, 4, "01/02/2020");
  decided.monthFirst = Seen(1, 9, "12/31/2020");
  EXPECT_THAT(Warnings(), IsEmpty());
  Auto("SDATE10", kSDate, Class::kDate).eitherOrder = Seen(200, 4, "2020/01/02");
  EXPECT_THAT(Warnings(), IsEmpty());
}

TEST_F(WarningsTest, MixedDatesAreTold) {
  ImportEvidence& mixed = Auto("ADATE10", kADate, Class::kDate);
  mixed.dayFirst = Seen(3, 9, "31/12/2020");
  mixed.monthFirst = Seen(5, 11, "12/31/2020");
  EXPECT_THAT(Warnings(),
              ElementsAre(AllOf(HasSubstr("day first (the first \"31/12/2020\" in line 9)"),
                                HasSubstr("month first (the first \"12/31/2020\" in line 11)"))));
}

TEST_F(WarningsTest, MixedDatesThatStayTextAreTold) {
  ImportEvidence& mixed = Auto("A10", 1, Class::kString, 10);
  mixed.dayFirst = Seen(3, 9, "31/12/2020");
  mixed.monthFirst = Seen(5, 11, "12/31/2020");
  // No date by any layout: numbers that only look like days and months.
  EXPECT_THAT(Warnings(), IsEmpty());
  mixed.layouts = {{"MM/dd/yyyy", "ADATE10", Seen(5, 11, "12/31/2020")}};
  EXPECT_THAT(Warnings(), ElementsAre(EndsWith("(the first \"12/31/2020\" in line 11); it stays "
                                               "text (A10)")));
}

TEST_F(WarningsTest, ACommaThatCanBeEitherIsTold) {
  Auto("F5.3", kF, Class::kNumber).eitherComma = Seen(200, 2, "1,234");
  EXPECT_THAT(Warnings(),
              ElementsAre(AllOf(HasSubstr("read as grouping"), HasSubstr("--decimal comma"))));
  iocvsetdeccharcomma_();
  EXPECT_THAT(Warnings(), ElementsAre(AllOf(HasSubstr("read as decimal characters"),
                                            HasSubstr("--decimal point"))));
}

TEST_F(WarningsTest, CommasOfDollarsAreNeverDecimal) {
  Auto("DOLLAR6", kDollar, Class::kDollar).eitherComma = Seen(200, 2, "$1,234");
  EXPECT_THAT(Warnings(), IsEmpty());
  iocvsetdeccharcomma_();
  EXPECT_THAT(Warnings(), IsEmpty());
}

TEST_F(WarningsTest, CommasOfBothUsesAreTold) {
  ImportEvidence& mixed = Auto("F7.2", kF, Class::kNumber);
  mixed.decimalComma = Seen(3, 7, "1,5");
  mixed.groupingComma = Seen(9, 4, "1,234,567");
  EXPECT_THAT(Warnings(), ElementsAre("v: some of its commas are decimal characters (the first "
                                      "\"1,5\" in line 7), others group digits (the first "
                                      "\"1,234,567\" in line 4); all were read as grouping"));
  // A format with a use of its own.
  iocvsetdeccharcomma_();
  ImportEvidence& amounts = Auto("COMMA8.2", kComma, Class::kComma);
  amounts.decimalComma = Seen(1, 7, "1,5");
  amounts.groupingComma = Seen(200, 4, "1,234.5");
  EXPECT_THAT(Warnings(), ElementsAre(EndsWith("all were read as grouping")));
}

TEST_F(WarningsTest, CommasOfTextsAreNot) {
  Auto("A20", 1, Class::kString, 20).eitherComma = Seen(100, 2, "1,234");
  EXPECT_THAT(Warnings(), IsEmpty());
}

TEST_F(WarningsTest, LeadingZerosThatANumberLosesAreTold) {
  Auto("F5", kF, Class::kNumber).leadingZeros = Seen(120, 2, "00501");
  EXPECT_THAT(Warnings(), ElementsAre("v: 120 values begin with a zero that the number does not "
                                      "keep, the first \"00501\" in line 2: declare the "
                                      "variable as A10 to keep them"));
  Auto("A5", 1, Class::kString, 5).leadingZeros = Seen(120, 2, "00501");
  EXPECT_THAT(Warnings(), IsEmpty());
}

TEST_F(WarningsTest, RoundedNumbersAreToldOfDeclaredVariablesToo) {
  Declare("F20", kF);
  account_.problems.Add(Problem(Kind::kRounded, 0, "1234567890123456789"));
  EXPECT_THAT(Warnings(), ElementsAre("v: 1 number has more digits than a double keeps, the first "
                                      "\"1234567890123456789\" in line 2: declare the "
                                      "variable as A19 to keep every digit"));
}

TEST_F(WarningsTest, TheStringThatKeepsEveryDigitHoldsTheLongestValue) {
  Auto("F20", kF, Class::kNumber).longest = Seen(22, 9, "1234567890123456789012");
  account_.problems.Add(Problem(Kind::kRounded, 0, "1234567890123456789"));
  EXPECT_THAT(Warnings(), ElementsAre(HasSubstr("as A22 to keep every digit")));
}

TEST_F(WarningsTest, AColumnThatEveryTextOverrunsIsTold) {
  Declare("A5", 1, 5);
  account_.textsBeyondColumn = {199};
  EXPECT_THAT(Warnings(), IsEmpty());
  account_.textsBeyondColumn = {200};
  EXPECT_THAT(Warnings(), ElementsAre(StartsWith("v: in every case the text goes on behind")));
}

TEST_F(WarningsTest, RecordsThatEndInsideQuotesAreToldOnceForTheFile) {
  variables_ = {{"v", "A5", 1, 5}, {"w", "A5", 1, 5}};
  ImportProblem problem = Problem(Kind::kOpenQuote, 1, "x");
  problem.line = 7;
  account_.problems.Add(problem);
  problem.line = 9;
  problem.variable = 0;
  account_.problems.Add(problem);
  EXPECT_THAT(Warnings(), ElementsAre(StartsWith("2 records end inside quotes, the first in line "
                                                 "7: this file has line breaks within quotes")));
}

TEST_F(WarningsTest, DroppedNulBytesAreTold) {
  Declare("A5", 1, 5);
  account_.problems.Add(Problem(Kind::kNul, -1, "x", 3));
  account_.ledger.AddSpan({ImportSpan::kRecords, 0, 100, 5, 5, 3});
  account_.ledger.SetCounts({.bytes = 100});
  EXPECT_THAT(Warnings(), ElementsAre("3 NUL bytes were dropped, the first in line 2"));
}

TEST_F(WarningsTest, AFileFullOfNulBytesLooksLikeUtf16) {
  Declare("A5", 1, 5);
  account_.problems.Add(Problem(Kind::kNul, -1, "x", 50));
  account_.ledger.AddSpan({ImportSpan::kRecords, 0, 100, 5, 5, 47});
  account_.ledger.SetCounts({.bytes = 100});
  EXPECT_THAT(Warnings(), ElementsAre(HasSubstr("looks like UTF-16 without a byte-order mark")));
}

}  // namespace
}  // namespace library
