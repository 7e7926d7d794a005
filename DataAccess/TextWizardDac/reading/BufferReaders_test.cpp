// The record and field operations that dictionary building drives.
#include <gtest/gtest.h>

#include "reading/testing/ReadingTesting.h"

namespace textwizard {
namespace {

using namespace testing_support;

const std::string kEnd(kEndOfDataText);

ImportSettings Fixed(std::uint32_t recordsPerCase) {
  ImportSettings settings;
  settings.arrangement = kFixedColumns;
  settings.recordsPerCase = recordsPerCase;
  return settings;
}

// An iterator at the start of a file's data, without a case buffer.
struct Reading {
  Reading(const std::string& file, const ImportSettings& settings,
          const std::vector<TxtWzVar>& variables)
      : import(file, settings, variables), iterator(import.source(), nullptr) {
    iterator.SeekBegin();
    iterator.HandleByteOrderMark();
  }
  TestImport import;
  QANT_TextWizardIterator iterator;
};

TEST(BufferReaders, TheEndOfDataText) { EXPECT_EQ(kEnd, "%_%_EOF_%_%"); }

TEST(BufferReaders, OneCasePerLineIsTheRecord) {
  Reading reading("a,b\n\nc\n", Delimited(","), {String("A", 1)});
  EXPECT_EQ(reading.iterator.ProcessDlmLinesBuffer(), "a,b");
  EXPECT_EQ(reading.iterator.record(), "a,b");
  EXPECT_EQ(reading.iterator.ProcessDlmLinesBuffer(), "c");
  EXPECT_EQ(reading.iterator.ProcessDlmLinesBuffer(), kEnd);
  EXPECT_EQ(reading.iterator.ProcessDlmLinesBuffer(), kEnd);
}

TEST(BufferReaders, FixedColumnsJoinTheLinesOfACase) {
  Reading reading("ab\n\ncd\ne\n", Fixed(3), {String("A", 1)});
  EXPECT_EQ(reading.iterator.ProcessFixedLinesBuffer(), "abcd");
  EXPECT_EQ(reading.iterator.ProcessFixedLinesBuffer(), "e");
  EXPECT_EQ(reading.iterator.ProcessFixedLinesBuffer(), kEnd);
  Reading none("ab\n", Fixed(0), {String("A", 1)});
  EXPECT_EQ(none.iterator.ProcessFixedLinesBuffer(), "");
}

TEST(BufferReaders, CountedValuesStandBehindTheRecordsReadForThem) {
  Reading reading("1 2\n3 4\n5\n", Delimited(" ", kDelimitedCount),
                  {Number("A"), Number("B"), Number("C")});
  // Read: the empty record and the new one; then two fields; then the used-up record and the next.
  EXPECT_EQ(reading.iterator.ProcessDlmCountBuffer(), "1 21 2 1 23 43 ");
  // The rest of the line, then the used-up one and the next, and the data ends inside the case.
  EXPECT_EQ(reading.iterator.ProcessDlmCountBuffer(), "4 3 455 5");
  EXPECT_EQ(reading.iterator.ProcessDlmCountBuffer(), kEnd);
  EXPECT_EQ(reading.iterator.ProcessDlmCountBuffer(), kEnd);
}

TEST(BufferReaders, CountedValuesOfNoVariablesAreTheEnd) {
  Reading reading("1\n", Delimited(" ", kDelimitedCount), {});
  EXPECT_EQ(reading.iterator.ProcessDlmCountBuffer(), kEnd);
}

TEST(BufferReaders, EmptyFieldsOfCountedValuesAddNothing) {
  Reading reading(",1,\n", Delimited(",", kDelimitedCount), {Number("A"), Number("B")});
  EXPECT_EQ(reading.iterator.ProcessDlmCountBuffer(), ",1,1,");
}

TEST(BufferReaders, Utf16RecordsAreReadByTheMark) {
  std::string file = "\xFE\xFF";
  for (const char ch : std::string("ab\ncd")) file.append({'\0', ch});
  Reading reading(file, Delimited(","), {String("A", 1)});
  EXPECT_EQ(reading.iterator.ProcessDlmLinesBuffer(), "ab");
  EXPECT_EQ(reading.iterator.ProcessDlmLinesBuffer(), "cd");
}

TEST(BufferReaders, FieldsOfTheIteratorsOwnRecord) {
  ImportSettings settings = Delimited(",");
  settings.qualifierSet = true;
  settings.qualifier = "'";
  Reading reading("a,'b''c',d\n", settings, {String("A", 1)});
  ASSERT_TRUE(reading.iterator.GetRecord(false));
  const char* const record = reading.iterator.record().data();
  const char* cursor = record;
  std::string field = "old";
  EXPECT_TRUE(reading.iterator.GetNextVar(field, cursor));
  EXPECT_EQ(field, "a");
  EXPECT_EQ(cursor - record, 2);
  EXPECT_TRUE(reading.iterator.GetNextVar(field, cursor));
  EXPECT_EQ(field, "b'c");
  EXPECT_TRUE(reading.iterator.GetNextVar(field, cursor));
  EXPECT_EQ(field, "d");
  EXPECT_EQ(cursor - record, 10);
  EXPECT_FALSE(reading.iterator.GetNextVar(field, cursor));
  EXPECT_EQ(field, "");
  // The cursor is the caller's: it may go back.
  cursor = record + 2;
  EXPECT_TRUE(reading.iterator.GetNextVar(field, cursor));
  EXPECT_EQ(field, "b'c");
}

TEST(BufferReaders, FieldsOfASuppliedRecordDifferInTheRuleOfLeadingSpaces) {
  ImportSettings settings = Delimited(" ");
  settings.leadingSpaces = true;
  Reading reading("1  2\n", settings, {Number("A")});
  const auto next = [&](const char*& cursor, const std::string* record) {
    std::string field;
    const bool found = record ? reading.iterator.GetNextVar(field, cursor, *record)
                              : reading.iterator.GetNextVar(field, cursor);
    return found ? field : "none";
  };
  const std::string supplied = "1  2";
  const char* cursor = supplied.data();
  EXPECT_EQ(next(cursor, &supplied), "1");
  EXPECT_EQ(next(cursor, &supplied), "");
  EXPECT_EQ(next(cursor, &supplied), "2");
  EXPECT_EQ(next(cursor, &supplied), "none");
  ASSERT_TRUE(reading.iterator.GetRecord(false));
  cursor = reading.iterator.record().data();
  EXPECT_EQ(next(cursor, nullptr), "1");
  EXPECT_EQ(next(cursor, nullptr), "2");
  EXPECT_EQ(next(cursor, nullptr), "none");
}

TEST(BufferReaders, ASuppliedRecordMayChangeBetweenWalksAndItsOwnRecordKeepsItsPlace) {
  Reading reading("x,y\n", Delimited(","), {String("A", 1)});
  ASSERT_TRUE(reading.iterator.GetRecord(false));
  const char* own = reading.iterator.record().data();
  std::string field;
  ASSERT_TRUE(reading.iterator.GetNextVar(field, own));
  std::string supplied = "a,b";
  const char* cursor = supplied.data();
  ASSERT_TRUE(reading.iterator.GetNextVar(field, cursor, supplied));
  EXPECT_EQ(field, "a");
  supplied = "cd,";
  cursor = supplied.data();
  ASSERT_TRUE(reading.iterator.GetNextVar(field, cursor, supplied));
  EXPECT_EQ(field, "cd");
  ASSERT_TRUE(reading.iterator.GetNextVar(field, own));
  EXPECT_EQ(field, "y");
}

TEST(BufferReaders, TheTextOfAFixedColumn) {
  Reading reading("", Fixed(1), {});
  std::string field = "old";
  const TxtWzVar variable = MakeFixedVar("A", kFormatF, 1, 2, 3);
  EXPECT_TRUE(reading.iterator.GetVarBuffer(field, &variable, "abcdef"));
  EXPECT_EQ(field, "cde");
  EXPECT_TRUE(reading.iterator.GetVarBuffer(field, &variable, "ab"));
  EXPECT_EQ(field, "");
  EXPECT_FALSE(reading.iterator.GetVarBuffer(field, &variable, "a"));
  EXPECT_EQ(field, "");
}

TEST(BufferReaders, DelimitersMayBeSetAgain) {
  ImportSettings settings = Delimited(",");
  settings.qualifierSet = true;
  settings.qualifier = "'";
  Reading reading("a;b,c\n", settings, {String("A", 1)});
  EXPECT_TRUE(reading.iterator.IsDelimiter(','));
  EXPECT_TRUE(reading.iterator.IsQualifier('\''));
  EXPECT_FALSE(reading.iterator.IsQualifier(0));
  EXPECT_EQ(reading.iterator.SetWideDelimiters(";"), 1);
  EXPECT_FALSE(reading.iterator.IsDelimiter(','));
  ASSERT_TRUE(reading.iterator.GetRecord(false));
  const char* cursor = reading.iterator.record().data();
  std::string field;
  EXPECT_TRUE(reading.iterator.GetNextVar(field, cursor));
  EXPECT_EQ(field, "a");
  EXPECT_TRUE(reading.iterator.GetNextVar(field, cursor));
  EXPECT_EQ(field, "b,c");
}

}  // namespace
}  // namespace textwizard
