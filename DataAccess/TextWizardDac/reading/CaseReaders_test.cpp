// One case of each arrangement: fields to values, short records, missing lines.
#include <gtest/gtest.h>

#include "reading/testing/ReadingTesting.h"

namespace textwizard {
namespace {

using namespace testing_support;

constexpr std::size_t kBlockSizes[] = {1, 2, 3, 7, 64, 0};

// The cases of a file, which are the same in blocks of any size.
Strings Cases(const std::string& file, const ImportSettings& settings,
              const std::vector<TxtWzVar>& variables) {
  TestImport whole(file, settings, variables);
  const Strings cases = whole.Cases();
  for (const std::size_t blockSize : kBlockSizes) {
    const embedded::ScopedBlockSize blocks(blockSize);
    TestImport import(file, settings, variables);
    EXPECT_EQ(import.Cases(), cases) << "block size " << blockSize;
  }
  return cases;
}

ImportSettings Counted(const char* delimiters) { return Delimited(delimiters, kDelimitedCount); }

ImportSettings Fixed(std::uint32_t recordsPerCase) {
  ImportSettings settings;
  settings.arrangement = kFixedColumns;
  settings.recordsPerCase = recordsPerCase;
  return settings;
}

TEST(ProcessDlmLines, FieldsBecomeColumns) {
  EXPECT_EQ(Cases("1,ab\n2,c\n", Delimited(","), {Number("A"), String("B", 2)}),
            (Strings{"1 |ab|", "2 |c |"}));
}

TEST(ProcessDlmLines, MissingTrailingFieldsAreEmpty) {
  EXPECT_EQ(Cases("1\n2,b\n", Delimited(","), {Number("A"), String("B", 1), Number("C")}),
            (Strings{"1 | | .", "2 |b| ."}));
}

TEST(ProcessDlmLines, FieldsBehindTheLastVariableAreIgnored) {
  EXPECT_EQ(Cases("1,2,3,4\n5,6\n", Delimited(","), {Number("A"), Number("B")}),
            (Strings{"1 2", "5 6"}));
  EXPECT_EQ(Cases("1" + std::string(10000, ',') + "\n", Delimited(","),
                  {Number("A"), Number("B"), Number("C")}),
            Strings{"1 . ."});
}

TEST(ProcessDlmLines, ASkippedVariableTakesAFieldAndNoColumn) {
  EXPECT_EQ(Cases("1,x,3\n", Delimited(","), {Number("A"), Skipped("B"), Number("C")}),
            Strings{"1 3"});
  EXPECT_EQ(Cases("x,2\n", Delimited(","), {Skipped("A"), Number("B")}), Strings{"2"});
}

TEST(ProcessDlmLines, EmptyLinesAreNoCases) {
  EXPECT_EQ(Cases("\n1\n\n\r\n2\n\n", Delimited(","), {Number("A")}), (Strings{"1", "2"}));
}

TEST(ProcessDlmLines, AnEmptyFileHasNoCases) {
  EXPECT_EQ(Cases("", Delimited(","), {Number("A")}), Strings{});
  EXPECT_EQ(Cases("\xEF\xBB\xBF", Delimited(","), {Number("A")}), Strings{});
  EXPECT_EQ(Cases("\xFF\xFE", Delimited(","), {Number("A")}), Strings{});
}

TEST(ProcessDlmLines, QualifiedTextDoesNotGoOnInTheNextLine) {
  ImportSettings settings = Delimited(",");
  settings.qualifierSet = true;
  settings.qualifier = "\"";
  EXPECT_EQ(Cases("\"a,b\nc,d\n", settings, {String("A", 3), String("B", 3)}),
            (Strings{"|a,b| |   |", "|c  | |d  |"}));
}

TEST(ProcessDlmLines, NulBytesAreDropped) {
  EXPECT_EQ(Cases(std::string("1\0002,\0x\n", 7), Delimited(","), {Number("A"), String("B", 2)}),
            Strings{"12 |x |"});
}

TEST(ProcessDlmLines, Utf16FilesGiveTheSameCases) {
  std::string little = "\xFF\xFE";
  std::string big = "\xFE\xFF";
  for (const char ch : std::string("1,ab\r\n\r\n2,c")) {
    little.append({ch, '\0'});
    big.append({'\0', ch});
  }
  const std::vector<TxtWzVar> variables = {Number("A"), String("B", 2)};
  EXPECT_EQ(Cases(little, Delimited(","), variables), (Strings{"1 |ab|", "2 |c |"}));
  EXPECT_EQ(Cases(big, Delimited(","), variables), (Strings{"1 |ab|", "2 |c |"}));
}

TEST(ProcessDlmLines, StringsAreCutToWholeCharactersAndFlagged) {
  TestImport import("abc\xC3\xA9\n", Delimited(","), {String("A", 4)});
  EXPECT_EQ(import.Cases(), Strings{"|abc |"});
  EXPECT_TRUE(import.variable(0).stringTruncated);
  EXPECT_FALSE(import.variable(0).missingStored);
}

TEST(ProcessDlmLines, TheCellsAndNotAWiderFormatDecideAboutTruncation) {
  TestImport import("abcde\nabc\n", Delimited(","), {String("A", 4)});
  import.variable(0).maxStringLength = 12;
  EXPECT_EQ(import.Cases(), (Strings{"|abcd|", "|abc |"}));
  EXPECT_TRUE(import.variable(0).stringTruncated);
  TestImport whole("abcd\nabc\n", Delimited(","), {String("A", 4)});
  whole.variable(0).maxStringLength = 12;
  EXPECT_EQ(whole.Cases(), (Strings{"|abcd|", "|abc |"}));
  EXPECT_FALSE(whole.variable(0).stringTruncated);
}

TEST(ProcessDlmLines, AFieldThatIsNoValueIsMissingAndFlagged) {
  TestImport import("1,1\nx,2\n", Delimited(","), {Number("A"), Number("B")});
  EXPECT_EQ(import.Cases(), (Strings{"1 1", ". 2"}));
  EXPECT_TRUE(import.variable(0).missingStored);
  EXPECT_FALSE(import.variable(1).missingStored);
}

TEST(ProcessDlmLines, CompactDatesAreRead) {
  TestImport compact("01312024\n1312024\n", Delimited(","), {MakeVar("D", kFormatADate, 10)});
  TestImport separated("01/31/2024\n", Delimited(","), {MakeVar("D", kFormatADate, 10)});
  const Strings cases = compact.Cases();
  ASSERT_EQ(cases.size(), 2u);
  EXPECT_EQ(cases[0], separated.Cases().at(0));
  EXPECT_EQ(cases[1], ".");
}

TEST(ProcessDlmCount, ACaseRunsAcrossLinesAndALineHoldsSeveralCases) {
  const std::vector<TxtWzVar> variables = {Number("A"), Number("B"), Number("C")};
  EXPECT_EQ(Cases("1 2\n3 4 5\n6\n", Counted(" "), variables), (Strings{"1 2 3", "4 5 6"}));
  EXPECT_EQ(Cases("1 2 3 4 5 6", Counted(" "), variables), (Strings{"1 2 3", "4 5 6"}));
  EXPECT_EQ(Cases("1\n\n2\n3\n", Counted(" "), variables), Strings{"1 2 3"});
}

TEST(ProcessDlmCount, TheEndOfTheDataInsideACaseLeavesValuesMissing) {
  TestImport import("1 2\n3", Counted(" "),
                    {Number("A"), Number("B"), String("C", 2), Number("D")});
  EXPECT_EQ(import.Cases(), (Strings{"1 2 |3 | ."}));
  EXPECT_FALSE(import.variable(0).missingStored);
  EXPECT_TRUE(import.variable(3).missingStored);
  EXPECT_EQ(
      Cases("1 2 x y 5", Counted(" "), {Number("A"), Number("B"), String("C", 2), String("D", 1)}),
      (Strings{"1 2 |x | |y|", "5 . |  | | |"}));
}

TEST(ProcessDlmCount, ASkippedVariableTakesAValueAndNoColumn) {
  EXPECT_EQ(Cases("1 2 3\n4", Counted(" "), {Skipped("A"), Number("B")}), (Strings{"2", "4"}));
  EXPECT_EQ(Cases("1 2 3\n", Counted(" "), {Number("A"), Skipped("B")}), (Strings{"1", "3"}));
}

TEST(ProcessDlmCount, WithoutVariablesOrMoreDataItIsTrueAndReadsNothing) {
  TestImport none("1\n", Counted(" "), {});
  QANT_TextWizardIterator without(none.source(), none.obs());
  EXPECT_TRUE(without.ProcessDlmCount());
  TestImport import("7\n", Counted(" "), {Number("A")});
  QANT_TextWizardIterator iterator(import.source(), import.obs());
  EXPECT_TRUE(iterator.ProcessDlmCount());
  EXPECT_FALSE(iterator.ProcessDlmCount());
  EXPECT_TRUE(iterator.ProcessDlmCount());
  EXPECT_EQ(import.Case(), "7");
}

// The wider format shows the columns behind, which are no part of the value.
TEST(ProcessFixedLines, AColumnIsNotTruncatedByTheColumnsBehindIt) {
  ImportSettings settings = Fixed(1);
  settings.leadingSpaces = true;
  TestImport import("  abcdef\n", settings,
                    {MakeFixedVar("A", kFormatA, 1, 0, 4), MakeFixedVar("B", kFormatA, 1, 4, 4)});
  import.variable(0).maxStringLength = 12;
  EXPECT_EQ(import.Cases(), Strings{"|  ab| |cdef|"});
  EXPECT_FALSE(import.variable(0).stringTruncated);
}

TEST(ProcessFixedLines, ColumnsAreCutByPosition) {
  EXPECT_EQ(Cases("12ab\n345c\n", Fixed(1),
                  {MakeFixedVar("A", kFormatF, 1, 0, 2), MakeFixedVar("B", kFormatA, 1, 2, 2)}),
            (Strings{"12 |ab|", "34 |5c|"}));
}

TEST(ProcessFixedLines, AFileThatEndsInsideACaseLeavesItsLastLinesMissing) {
  const std::vector<TxtWzVar> variables = {MakeFixedVar("A", kFormatF, 1, 0, 1),
                                           MakeFixedVar("B", kFormatF, 2, 0, 1),
                                           MakeFixedVar("C", kFormatA, 2, 0, 2)};
  EXPECT_EQ(Cases("1\n2\n3\n", Fixed(2), variables), (Strings{"1 2 |2 |", "3 . |  |"}));
}

TEST(ProcessFixedLines, EveryCaseTakesItsLinesWhetherNamedOrNot) {
  EXPECT_EQ(Cases("1\nx\n\n2\ny\nz\n", Fixed(3), {MakeFixedVar("A", kFormatF, 1, 0, 1)}),
            (Strings{"1", "2"}));
  EXPECT_EQ(Cases("x\n1\n", Fixed(2), {MakeFixedVar("A", kFormatF, 2, 0, 1)}), Strings{"1"});
}

TEST(ProcessFixedLines, AnEmptyLineIsARecord) {
  EXPECT_EQ(Cases("1\n\n3\n", Fixed(1), {MakeFixedVar("A", kFormatF, 1, 0, 1)}),
            (Strings{"1", ".", "3"}));
}

TEST(ProcessFixedLines, AShortRecordLeavesItsLastColumnsMissing) {
  EXPECT_EQ(Cases("1\n", Fixed(1),
                  {MakeFixedVar("A", kFormatF, 1, 0, 1), MakeFixedVar("B", kFormatF, 1, 2, 1),
                   MakeFixedVar("C", kFormatA, 1, 2, 2)}),
            Strings{"1 . |  |"});
}

TEST(ProcessFixedLines, VariablesMayBeNamedInAnyOrderOfTheirLines) {
  EXPECT_EQ(Cases("1\n2\n", Fixed(2),
                  {MakeFixedVar("B", kFormatF, 2, 0, 1), MakeFixedVar("A", kFormatF, 1, 0, 1)}),
            Strings{"2 1"});
}

TEST(ProcessFixedLines, ASkippedVariableHasNoColumn) {
  EXPECT_EQ(Cases("123\n", Fixed(1),
                  {MakeFixedVar("A", kFormatF, 1, 0, 1), MakeFixedVar("B", kFormatSkip, 1, 1, 1),
                   MakeFixedVar("C", kFormatF, 1, 2, 1)}),
            Strings{"1 3"});
}

TEST(ProcessFixedLines, AVariableOnARecordAboveTheCasesLinesKeepsTheStartingValue) {
  EXPECT_EQ(Cases("1\n2\n", Fixed(1),
                  {MakeFixedVar("A", kFormatF, 1, 0, 1), MakeFixedVar("B", kFormatF, 2, 0, 1),
                   MakeFixedVar("C", kFormatA, 3, 0, 2)}),
            (Strings{"1 . |  |", "2 . |  |"}));
}

TEST(ProcessFixedLines, TheFlagOfAMissingNumberLandsByItsLine) {
  // The number that is missing is the third variable; the line is the case's second.
  TestImport import("1\n\n", Fixed(2),
                    {MakeFixedVar("A", kFormatF, 1, 0, 1), MakeFixedVar("B", kFormatF, 1, 0, 1),
                     MakeFixedVar("C", kFormatF, 2, 3, 1)});
  EXPECT_EQ(import.Cases(), Strings{"1 1 ."});
  EXPECT_FALSE(import.variable(0).missingStored);
  EXPECT_TRUE(import.variable(1).missingStored);
  EXPECT_FALSE(import.variable(2).missingStored);
}

TEST(ProcessFixedLines, TheFlagOfALineWithoutSuchAVariableIsNobodys) {
  TestImport import("1\n2\n3\n", Fixed(3), {MakeFixedVar("A", kFormatF, 3, 5, 1)});
  EXPECT_EQ(import.Cases(), Strings{"."});
  EXPECT_FALSE(import.variable(0).missingStored);
}

TEST(ProcessFixedLines, AFieldThatIsNoValueFlagsItsOwnVariable) {
  TestImport import("1x\n", Fixed(1),
                    {MakeFixedVar("A", kFormatF, 1, 0, 1), MakeFixedVar("B", kFormatF, 1, 1, 1)});
  EXPECT_EQ(import.Cases(), Strings{"1 ."});
  EXPECT_FALSE(import.variable(0).missingStored);
  EXPECT_TRUE(import.variable(1).missingStored);
}

TEST(ProcessFixedLines, ADateIsReadFromTheColumnsItWasGiven) {
  TestImport import("013124rest\n", Fixed(1), {MakeFixedVar("D", kFormatADate, 1, 0, 6)});
  TestImport whole("01/31/24\n", Fixed(1), {MakeFixedVar("D", kFormatADate, 1, 0, 8)});
  EXPECT_EQ(import.Cases(), whole.Cases());
}

TEST(ProcessFixedLines, MoreLinesPerCaseThanAnyFileHasEndWithTheFile) {
  EXPECT_EQ(Cases("1\n2\n", Fixed(0xFFFFFFFF), {MakeFixedVar("A", kFormatF, 2, 0, 1)}),
            Strings{"2"});
}

TEST(ProcessFixedLines, WithoutLinesItIsTrueAndReadsNothing) {
  TestImport import("1\n", Fixed(0), {MakeFixedVar("A", kFormatF, 1, 0, 1)});
  QANT_TextWizardIterator iterator(import.source(), import.obs());
  EXPECT_TRUE(iterator.ProcessFixedLines());
  EXPECT_EQ(import.Case(), ".");
}

}  // namespace
}  // namespace textwizard
