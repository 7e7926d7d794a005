#include "TxtWzMultiThreadMgr/QANT_TextWizardMultiThreadedIterator.h"

#include <memory>
#include <string>

#include <gtest/gtest.h>

#include "HostFramework/ValueInput.h"
#include "TxtWzMultiThreadMgr/testing/EngineTest.h"

namespace textwizard {
namespace {

using namespace engine_test;

// Reads a file of one number a line and expects 1, 2, ..., `cases`.
void ExpectNumbered(QANT_InputCaseIterator& iterator, const CaseBuffer& buffer,
                    std::int64_t cases) {
  for (std::int64_t i = 1; i <= cases; ++i) {
    ASSERT_TRUE(iterator.Next()) << "case " << i;
    ASSERT_EQ(buffer.Number(0), static_cast<double>(i));
  }
  EXPECT_FALSE(iterator.Next());
}

TEST(MultiThreadedIterator, DelimitedLinesAreReadByThisIterator) {
  const DataFile file("1\n");
  const auto source = MakeSource(file.path(), 2, Numbers(1), CommaSettings());
  CaseBuffer buffer(*source);
  const std::unique_ptr<QANT_InputCaseIterator> iterator(source->MakeIterator(buffer.obs()));
  EXPECT_NE(dynamic_cast<QANT_TextWizardMultiThreadedIterator*>(iterator.get()), nullptr);
}

TEST(MultiThreadedIterator, CasesComeInTheOrderOfTheFile) {
  // About 1.3 MB: every slot of a small ring is filled several times.
  const DataFile file(NumberedLines(1, 200000));
  for (const int workers : {2, 3, 8}) {
    const auto source = MakeSource(file.path(), workers, Numbers(1), CommaSettings());
    CaseBuffer buffer(*source);
    QANT_TextWizardMultiThreadedIterator iterator(*source, buffer.obs(), false);
    ExpectNumbered(iterator, buffer, 200000);
    EXPECT_EQ(source->RowCount(), 200000);
    EXPECT_EQ(iterator.Tell(), 200000);
  }
}

TEST(MultiThreadedIterator, WorkerCountBelowOneIsOnePerProcessor) {
  const DataFile file(NumberedLines(1, 60000));
  for (const int workers : {0, -5, 1}) {
    const auto source = MakeSource(file.path(), workers, Numbers(1), CommaSettings());
    CaseBuffer buffer(*source);
    QANT_TextWizardMultiThreadedIterator iterator(*source, buffer.obs(), false);
    ExpectNumbered(iterator, buffer, 60000);
  }
}

TEST(MultiThreadedIterator, FileWithoutRecordsEndsAtOnce) {
  for (const char* const text : {"", "\n\n\r\n\r", "\xEF\xBB\xBF", "\xEF\xBB\xBF\n\n"}) {
    const DataFile file(text);
    const auto source = MakeSource(file.path(), 3, Numbers(1), CommaSettings());
    CaseBuffer buffer(*source);
    QANT_TextWizardMultiThreadedIterator iterator(*source, buffer.obs(), false);
    EXPECT_FALSE(iterator.Next());
    EXPECT_FALSE(iterator.Next());
    EXPECT_EQ(iterator.Tell(), 0);
    EXPECT_EQ(source->RowCount(), 0);
  }
}

TEST(MultiThreadedIterator, LastRecordNeedsNoLineEnd) {
  const DataFile file("7");
  const auto source = MakeSource(file.path(), 2, Numbers(1), CommaSettings());
  CaseBuffer buffer(*source);
  QANT_TextWizardMultiThreadedIterator iterator(*source, buffer.obs(), false);
  ASSERT_TRUE(iterator.Next());
  EXPECT_EQ(buffer.Number(0), 7);
  EXPECT_FALSE(iterator.Next());
}

TEST(MultiThreadedIterator, FewerBatchesThanSlotsComeInFileOrder) {
  // Six digits and a line feed: 17,857 records fill a batch, so this is three of them.
  std::string text;
  for (int i = 100001; i <= 145000; ++i) text += std::to_string(i) + "\n";
  const DataFile file(text);
  const auto source = MakeSource(file.path(), 64, Numbers(1), CommaSettings());
  CaseBuffer buffer(*source);
  QANT_TextWizardMultiThreadedIterator iterator(*source, buffer.obs(), false);
  for (int i = 100001; i <= 145000; ++i) {
    ASSERT_TRUE(iterator.Next());
    ASSERT_EQ(buffer.Number(0), i);
  }
  EXPECT_FALSE(iterator.Next());
}

TEST(MultiThreadedIterator, FirstCasesEndThePassThoughMoreWasRead) {
  const DataFile file(NumberedLines(1, 100000));
  for (const std::int64_t limit : {1, 5, 30000}) {
    ImportSettings settings = CommaSettings();
    settings.importMode = kImportFirst;
    settings.caseLimit = limit;
    const auto source = MakeSource(file.path(), 2, Numbers(1), settings);
    CaseBuffer buffer(*source);
    QANT_TextWizardMultiThreadedIterator iterator(*source, buffer.obs(), false);
    ExpectNumbered(iterator, buffer, limit);
    EXPECT_EQ(source->RowCount(), limit);
    EXPECT_FALSE(iterator.Next());
  }
}

TEST(MultiThreadedIterator, FirstCasesBeyondTheFileEndWithTheFile) {
  const DataFile file(NumberedLines(1, 10));
  ImportSettings settings = CommaSettings();
  settings.importMode = kImportFirst;
  settings.caseLimit = 11;
  const auto source = MakeSource(file.path(), 2, Numbers(1), settings);
  CaseBuffer buffer(*source);
  QANT_TextWizardMultiThreadedIterator iterator(*source, buffer.obs(), false);
  ExpectNumbered(iterator, buffer, 10);
}

TEST(MultiThreadedIterator, SamplingByPercentDeliversEveryCase) {
  const DataFile file(NumberedLines(1, 1000));
  ImportSettings settings = CommaSettings();
  settings.importMode = kImportPercent;
  settings.sampleFraction = 0.01;
  const auto source = MakeSource(file.path(), 2, Numbers(1), settings);
  CaseBuffer buffer(*source);
  QANT_TextWizardMultiThreadedIterator iterator(*source, buffer.obs(), false);
  ExpectNumbered(iterator, buffer, 1000);
}

TEST(MultiThreadedIterator, SeekAheadSkipsCases) {
  const DataFile file(NumberedLines(1, 100000));
  const auto source = MakeSource(file.path(), 2, Numbers(1), CommaSettings());
  CaseBuffer buffer(*source);
  QANT_TextWizardMultiThreadedIterator iterator(*source, buffer.obs(), false);
  EXPECT_TRUE(iterator.IsSeekOK());
  for (const long long target : {3LL, 50000LL, 50001LL, 99999LL}) {
    EXPECT_TRUE(iterator.Seek(target));
    ASSERT_TRUE(iterator.Next());
    EXPECT_EQ(buffer.Number(0), static_cast<double>(target + 1));
    EXPECT_EQ(iterator.Tell(), target + 1);
  }
  EXPECT_FALSE(iterator.Next());
}

TEST(MultiThreadedIterator, SeekBeyondTheEndEndsThePass) {
  const DataFile file(NumberedLines(1, 10));
  const auto source = MakeSource(file.path(), 2, Numbers(1), CommaSettings());
  CaseBuffer buffer(*source);
  QANT_TextWizardMultiThreadedIterator iterator(*source, buffer.obs(), false);
  iterator.Seek(10);
  EXPECT_FALSE(iterator.Next());
  EXPECT_EQ(iterator.Tell(), 10);
  EXPECT_EQ(source->RowCount(), 10);
}

TEST(MultiThreadedIterator, SeekBehindAnswersTrueOnceWithoutReading) {
  const DataFile file(NumberedLines(1, 10));
  const auto source = MakeSource(file.path(), 2, Numbers(1), CommaSettings());
  CaseBuffer buffer(*source);
  QANT_TextWizardMultiThreadedIterator iterator(*source, buffer.obs(), false);
  for (int i = 0; i < 5; ++i) ASSERT_TRUE(iterator.Next());
  iterator.Seek(1);
  EXPECT_TRUE(iterator.Next());
  EXPECT_EQ(buffer.Number(0), 5);
  EXPECT_EQ(iterator.Tell(), 5);
  EXPECT_TRUE(iterator.Next());
  EXPECT_EQ(buffer.Number(0), 6);
}

TEST(MultiThreadedIterator, SeekBehindAfterTheEndAnswersTrueOnceToo) {
  const DataFile file(NumberedLines(1, 10));
  const auto source = MakeSource(file.path(), 2, Numbers(1), CommaSettings());
  CaseBuffer buffer(*source);
  QANT_TextWizardMultiThreadedIterator iterator(*source, buffer.obs(), false);
  ExpectNumbered(iterator, buffer, 10);
  iterator.Seek(3);
  EXPECT_TRUE(iterator.Next());
  EXPECT_EQ(iterator.Tell(), 10);
  EXPECT_FALSE(iterator.Next());
}

TEST(MultiThreadedIterator, StartingLinesAreSkippedEmptyOnesToo) {
  const DataFile file("head\n\n\n1\n\n2\n");
  ImportSettings settings = CommaSettings();
  settings.firstCase = 4;
  const auto source = MakeSource(file.path(), 2, Numbers(1), settings);
  CaseBuffer buffer(*source);
  QANT_TextWizardMultiThreadedIterator iterator(*source, buffer.obs(), false);
  ExpectNumbered(iterator, buffer, 2);
}

TEST(MultiThreadedIterator, StartingLinesBeyondTheFileLeaveNoCase) {
  const DataFile file("1\n2\n");
  ImportSettings settings = CommaSettings();
  settings.firstCase = 1000000;
  const auto source = MakeSource(file.path(), 2, Numbers(1), settings);
  CaseBuffer buffer(*source);
  QANT_TextWizardMultiThreadedIterator iterator(*source, buffer.obs(), false);
  EXPECT_FALSE(iterator.Next());
}

TEST(MultiThreadedIterator, EveryLineEndEndsARecord) {
  const DataFile file("1\r\n2\r3\n\r\n4\r");
  const auto source = MakeSource(file.path(), 2, Numbers(1), CommaSettings());
  CaseBuffer buffer(*source);
  QANT_TextWizardMultiThreadedIterator iterator(*source, buffer.obs(), false);
  ExpectNumbered(iterator, buffer, 4);
}

TEST(MultiThreadedIterator, MarkIsSkippedAndPartOfAMarkIsData) {
  {
    const DataFile file(
        "\xEF\xBB\xBF"
        "1\n");
    const auto source = MakeSource(file.path(), 2, Numbers(1), CommaSettings());
    CaseBuffer buffer(*source);
    QANT_TextWizardMultiThreadedIterator iterator(*source, buffer.obs(), false);
    ExpectNumbered(iterator, buffer, 1);
  }
  {
    ImportSettings settings = CommaSettings();
    settings.encoding = kEncodingNone;
    const DataFile file(
        "\xEF\xBB"
        "A\n");
    const auto source = MakeSource(file.path(), 2, {{kFormatA, 8}}, settings);
    CaseBuffer buffer(*source);
    QANT_TextWizardMultiThreadedIterator iterator(*source, buffer.obs(), false);
    ASSERT_TRUE(iterator.Next());
    // Two bytes that are no character, each taken as it is.
    EXPECT_EQ(buffer.Text(0, 8),
              "\xEF\xBB"
              "A     ");
  }
}

TEST(MultiThreadedIterator, Utf16RecordsAreConvertedOnce) {
  // "é,1" and "€,2"; a second conversion would garble the letters.
  std::string little = "\xFF\xFE";
  little += std::string(
                "\xE9\0,\0"
                "1\0\r\0\n\0",
                10) +
            std::string(
                "\xAC\x20,\0"
                "2\0\n\0",
                8);
  std::string big = "\xFE\xFF";
  big += std::string(
             "\0\xE9\0,\0"
             "1\0\r\0\n",
             10) +
         std::string(
             "\x20\xAC\0,\0"
             "2\0\n",
             8);
  for (const std::string& bytes : {little, big}) {
    for (const FileEncoding encoding : {kEncodingLocale, kEncodingUtf8, kEncodingNone}) {
      ImportSettings settings = CommaSettings();
      settings.encoding = encoding;
      const DataFile file(bytes);
      const auto source = MakeSource(file.path(), 2, {{kFormatA, 4}, {kFormatF, 8}}, settings);
      CaseBuffer buffer(*source);
      QANT_TextWizardMultiThreadedIterator iterator(*source, buffer.obs(), false);
      ASSERT_TRUE(iterator.Next());
      EXPECT_EQ(buffer.Text(0, 4), "\xC3\xA9  ");
      EXPECT_EQ(buffer.Number(1), 1);
      ASSERT_TRUE(iterator.Next());
      EXPECT_EQ(buffer.Text(0, 4), "\xE2\x82\xAC ");
      EXPECT_EQ(buffer.Number(1), 2);
      EXPECT_FALSE(iterator.Next());
    }
  }
}

TEST(MultiThreadedIterator, DecimalCharacterIsPinnedAndRestored) {
  const DataFile file("1.5\n");
  iocvsetdecchardot_();
  const auto source = MakeSource(file.path(), 2, Numbers(1), CommaSettings());
  iocvsetdeccharcomma_();
  {
    CaseBuffer buffer(*source);
    QANT_TextWizardMultiThreadedIterator iterator(*source, buffer.obs(), false);
    EXPECT_EQ(iocvgetdecchar_(), '.');
    ASSERT_TRUE(iterator.Next());
    EXPECT_EQ(buffer.Number(0), 1.5);
  }
  EXPECT_EQ(iocvgetdecchar_(), ',');
  iocvsetdecchardot_();
}

TEST(MultiThreadedIterator, CommaOfTheSourceIsPinnedToo) {
  const DataFile file("1,5\n");
  iocvsetdeccharcomma_();
  ImportSettings settings = CommaSettings();
  settings.delimiters = ";";
  const auto source = MakeSource(file.path(), 2, Numbers(1), settings);
  iocvsetdecchardot_();
  {
    CaseBuffer buffer(*source);
    QANT_TextWizardMultiThreadedIterator iterator(*source, buffer.obs(), false);
    EXPECT_EQ(iocvgetdecchar_(), ',');
    ASSERT_TRUE(iterator.Next());
    EXPECT_EQ(buffer.Number(0), 1.5);
  }
  EXPECT_EQ(iocvgetdecchar_(), '.');
}

TEST(MultiThreadedIterator, MapIsWrittenAfterTheFirstCompletePassOnly) {
  const DataFile file("1\nx\n");
  ImportSettings settings = CommaSettings();
  settings.mapRequested = true;
  const auto source = MakeSource(file.path(), 2, Numbers(1), settings);
  CaseBuffer buffer(*source);
  MessageKeeper monitor;
  {
    QANT_TextWizardMultiThreadedIterator iterator(*source, buffer.obs(), false);
    iterator.SetErrorMonitor(&monitor);
    ASSERT_TRUE(iterator.Next());
    ASSERT_TRUE(iterator.Next());
    EXPECT_TRUE(monitor.messages.empty());
    EXPECT_EQ(source->RowCount(), -1);
    EXPECT_FALSE(iterator.Next());
  }
  const std::size_t lines = monitor.Texts(kMessageLog).size();
  EXPECT_GT(lines, 0u);
  {
    QANT_TextWizardMultiThreadedIterator iterator(*source, buffer.obs(), false);
    iterator.SetErrorMonitor(&monitor);
    while (iterator.Next()) {
    }
  }
  EXPECT_EQ(monitor.messages.size(), lines);
}

TEST(MultiThreadedIterator, FlagsSpeakOfDeliveredCasesOnly) {
  // The bad values stand in the second case, which was converted together with the first.
  const DataFile file("1,ab\nx,abcdef\n");
  const auto source = MakeSource(file.path(), 2, {{kFormatF, 8}, {kFormatA, 2}}, CommaSettings());
  CaseBuffer buffer(*source);
  QANT_TextWizardMultiThreadedIterator iterator(*source, buffer.obs(), false);
  const auto& variables = source->variables();
  ASSERT_TRUE(iterator.Next());
  EXPECT_FALSE(variables[0]->missingStored);
  EXPECT_FALSE(variables[1]->stringTruncated);
  ASSERT_TRUE(iterator.Next());
  EXPECT_TRUE(variables[0]->missingStored);
  EXPECT_TRUE(variables[1]->stringTruncated);
  EXPECT_FALSE(variables[0]->stringTruncated);
  EXPECT_FALSE(variables[1]->missingStored);
}

TEST(MultiThreadedIterator, CasesThatAreNotDeliveredLeaveNeitherFlagsNorWarnings) {
  const DataFile file("1,ab\nx,a\xFF\n");
  ImportSettings settings = CommaSettings();
  settings.encoding = kEncodingNone;
  settings.importMode = kImportFirst;
  settings.caseLimit = 1;
  const auto source = MakeSource(file.path(), 2, {{kFormatF, 8}, {kFormatA, 2}}, settings);
  const Pass pass = ReadAll(*source);
  EXPECT_EQ(pass.cases.size(), 1u);
  EXPECT_TRUE(pass.warnings.empty());
  EXPECT_EQ(pass.flags, std::vector<bool>(4));
}

TEST(MultiThreadedIterator, PassesOfOneSourceAreIndependent) {
  const DataFile file(NumberedLines(1, 50000));
  const auto source = MakeSource(file.path(), 2, Numbers(1), CommaSettings());
  CaseBuffer first(*source), second(*source);
  QANT_TextWizardMultiThreadedIterator one(*source, first.obs(), false);
  QANT_TextWizardMultiThreadedIterator two(*source, second.obs(), false);
  for (int i = 1; i <= 50000; ++i) {
    ASSERT_TRUE(one.Next());
    ASSERT_TRUE(two.Next());
    ASSERT_EQ(first.Number(0), i);
    ASSERT_EQ(second.Number(0), i);
  }
}

TEST(MultiThreadedIterator, CommitDoesNothing) {
  const DataFile file(NumberedLines(1, 3));
  const auto source = MakeSource(file.path(), 2, Numbers(1), CommaSettings());
  CaseBuffer buffer(*source);
  QANT_TextWizardMultiThreadedIterator iterator(*source, buffer.obs(), false);
  iterator.Commit();
  ExpectNumbered(iterator, buffer, 3);
}

}  // namespace
}  // namespace textwizard
