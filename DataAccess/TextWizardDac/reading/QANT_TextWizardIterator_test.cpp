// The life of an iterator: first case, seeking, the end of the data, limits, failures, the decimal
// character.
#include "reading/QANT_TextWizardIterator.h"

#include <gtest/gtest.h>
#include "HostFramework/ValueInput.h"
#include "HostFramework/embedded/messages/Catalogue.h"

#include "reading/testing/ReadingTesting.h"

namespace textwizard {
namespace {

using namespace testing_support;

constexpr char kThreeCases[] = "1\n2\n3\n";

// What Next and then Case give.
std::string NextCase(QANT_TextWizardIterator& iterator, TestImport& import) {
  return iterator.Next() ? import.Case() : "end";
}

TEST(TextWizardIterator, DeliversOneCaseAfterAnother) {
  TestImport import(kThreeCases, Delimited(","), {Number("A")});
  QANT_TextWizardIterator iterator(import.source(), import.obs());
  EXPECT_TRUE(iterator.IsSeekOK());
  EXPECT_EQ(iterator.Tell(), 0);
  EXPECT_EQ(NextCase(iterator, import), "1");
  EXPECT_EQ(iterator.Tell(), 1);
  EXPECT_EQ(NextCase(iterator, import), "2");
  EXPECT_EQ(NextCase(iterator, import), "3");
  EXPECT_EQ(NextCase(iterator, import), "end");
  EXPECT_EQ(iterator.Tell(), 3);
  iterator.Commit();
}

TEST(TextWizardIterator, AfterTheEndNextIsFalseAgainInEveryArrangement) {
  for (const Arrangement arrangement : {kDelimitedLines, kDelimitedCount, kFixedColumns}) {
    for (const char* file : {kThreeCases, "", "7"}) {
      const ImportSettings settings = Delimited(",", arrangement);
      TestImport import(file, settings, {MakeFixedVar("A", kFormatF, 1, 0, 8)});
      QANT_TextWizardIterator iterator(import.source(), import.obs());
      while (iterator.Next()) {
      }
      const long long end = iterator.Tell();
      const std::string last = import.Case();
      for (int again = 0; again < 3; ++again) {
        EXPECT_FALSE(iterator.Next());
        EXPECT_EQ(iterator.Tell(), end);
        EXPECT_EQ(import.Case(), last);
      }
    }
  }
}

TEST(TextWizardIterator, TheNumberOfCasesIsKnownAtTheEndOfAPass) {
  TestImport import(kThreeCases, Delimited(","), {Number("A")});
  QANT_TextWizardIterator iterator(import.source(), import.obs());
  EXPECT_EQ(import.source().RowCount(), -1);
  ASSERT_TRUE(iterator.Next());
  EXPECT_EQ(import.source().RowCount(), -1);
  while (iterator.Next()) {
  }
  EXPECT_EQ(import.source().RowCount(), 3);
}

TEST(TextWizardIterator, ASeekAfterAPassDeliversThatCase) {
  TestImport import("10\n11\n12\n13\n14\n", Delimited(","), {Number("A")});
  QANT_TextWizardIterator iterator(import.source(), import.obs());
  while (iterator.Next()) {
  }
  EXPECT_TRUE(iterator.Seek(3));
  EXPECT_EQ(NextCase(iterator, import), "13");
  EXPECT_EQ(iterator.Tell(), 4);
  EXPECT_EQ(NextCase(iterator, import), "14");
  EXPECT_EQ(NextCase(iterator, import), "end");
  iterator.Seek(0);
  EXPECT_EQ(NextCase(iterator, import), "10");
}

TEST(TextWizardIterator, ASeekAheadReadsUpToThatCase) {
  TestImport import("10\n11\n12\n13\n", Delimited(","), {Number("A")});
  QANT_TextWizardIterator iterator(import.source(), import.obs());
  iterator.Seek(2);
  EXPECT_EQ(NextCase(iterator, import), "12");
  EXPECT_EQ(iterator.Tell(), 3);
  EXPECT_EQ(NextCase(iterator, import), "13");
}

TEST(TextWizardIterator, ASeekBehindTheLastCaseEndsTheData) {
  TestImport import(kThreeCases, Delimited(","), {Number("A")});
  QANT_TextWizardIterator iterator(import.source(), import.obs());
  iterator.Seek(100);
  EXPECT_EQ(NextCase(iterator, import), "end");
  EXPECT_EQ(iterator.Tell(), 3);
  EXPECT_EQ(import.source().RowCount(), 3);
  iterator.Seek(100);
  EXPECT_EQ(NextCase(iterator, import), "end");
}

TEST(TextWizardIterator, WithoutAnEntryOfTheIndexTheStreamStays) {
  TestImport import(kThreeCases, Delimited(","), {Number("A")});
  QANT_TextWizardIterator iterator(import.source(), import.obs());
  // Nothing was read yet: reading starts at the first case.
  iterator.Seek(1);
  EXPECT_EQ(NextCase(iterator, import), "2");
}

TEST(TextWizardIterator, IteratorsShareTheIndexButNotTheirPlace) {
  TestImport import("10\n11\n12\n", Delimited(","), {Number("A")});
  QANT_TextWizardIterator first(import.source(), import.obs());
  QANT_TextWizardIterator second(import.source(), import.obs());
  EXPECT_EQ(NextCase(first, import), "10");
  EXPECT_EQ(NextCase(first, import), "11");
  EXPECT_EQ(NextCase(second, import), "10");
  EXPECT_EQ(NextCase(first, import), "12");
  second.Seek(2);
  EXPECT_EQ(NextCase(second, import), "12");
}

TEST(TextWizardIterator, SeekingWorksInEncodedFiles) {
  std::string file = "\xFF\xFE";
  for (const char ch : std::string("1\r\n22\r\n333\r\n")) file.append({ch, '\0'});
  TestImport import(file, Delimited(","), {Number("A")});
  QANT_TextWizardIterator iterator(import.source(), import.obs());
  while (iterator.Next()) {
  }
  iterator.Seek(1);
  EXPECT_EQ(NextCase(iterator, import), "22");
  EXPECT_EQ(NextCase(iterator, import), "333");
}

TEST(TextWizardIterator, ARepositioningSeekForgetsARecordThatWasCutInPart) {
  const ImportSettings settings = Delimited(" ", kDelimitedCount);
  TestImport import("1 2 3 4\n5 6 7 8\n", settings, {Number("A"), Number("B")});
  QANT_TextWizardIterator iterator(import.source(), import.obs());
  EXPECT_EQ(NextCase(iterator, import), "1 2");
  EXPECT_EQ(NextCase(iterator, import), "3 4");
  EXPECT_EQ(NextCase(iterator, import), "5 6");
  // Cases are found again where the last record that was read for them began.
  iterator.Seek(1);
  EXPECT_EQ(NextCase(iterator, import), "1 2");
  EXPECT_EQ(NextCase(iterator, import), "3 4");
  EXPECT_EQ(NextCase(iterator, import), "5 6");
  EXPECT_EQ(NextCase(iterator, import), "7 8");
  EXPECT_EQ(NextCase(iterator, import), "end");
  // And the flag that the data is used up is forgotten.
  iterator.Seek(2);
  EXPECT_EQ(NextCase(iterator, import), "5 6");
}

TEST(TextWizardIterator, ACaseIsFoundAgainAtTheLastRecordReadForIt) {
  const ImportSettings settings = Delimited(" ", kDelimitedCount);
  TestImport import("1 2\n3 4 5\n6\n", settings, {Number("A"), Number("B"), Number("C")});
  QANT_TextWizardIterator iterator(import.source(), import.obs());
  EXPECT_EQ(NextCase(iterator, import), "1 2 3");
  EXPECT_EQ(NextCase(iterator, import), "4 5 6");
  iterator.Seek(0);
  EXPECT_EQ(NextCase(iterator, import), "3 4 5");
}

TEST(TextWizardIterator, FirstNDeliversNCases) {
  ImportSettings settings = Delimited(",");
  settings.importMode = kImportFirst;
  settings.caseLimit = 5;
  TestImport import("0\n1\n2\n3\n4\n5\n6\n7\n8\n9\n", settings, {Number("A")});
  EXPECT_EQ(import.Cases(), (Strings{"0", "1", "2", "3", "4"}));
  EXPECT_EQ(import.source().RowCount(), 5);
}

TEST(TextWizardIterator, FirstNOfFewerCasesDeliversThoseThereAre) {
  ImportSettings settings = Delimited(",");
  settings.importMode = kImportFirst;
  settings.caseLimit = 5;
  TestImport import(kThreeCases, settings, {Number("A")});
  EXPECT_EQ(import.Cases(), (Strings{"1", "2", "3"}));
  EXPECT_EQ(import.source().RowCount(), 3);
}

TEST(TextWizardIterator, PercentDeliversEveryCase) {
  ImportSettings settings = Delimited(",");
  settings.importMode = kImportPercent;
  settings.sampleFraction = 0.01;
  TestImport import(kThreeCases, settings, {Number("A")});
  EXPECT_EQ(import.Cases().size(), 3u);
}

TEST(TextWizardIterator, TheSamplingRuleKeepsItsShare) {
  const auto kept = [](ImportMode mode, double fraction) {
    ImportSettings settings = Delimited(",");
    settings.importMode = mode;
    settings.sampleFraction = fraction;
    TestImport import("", settings, {Number("A")});
    QANT_TextWizardIterator iterator(import.source(), import.obs());
    int count = 0;
    for (int i = 0; i < 10000; ++i) count += iterator.SampleCase() ? 1 : 0;
    return count;
  };
  EXPECT_EQ(kept(kImportAll, 0.0), 10000);
  EXPECT_EQ(kept(kImportPercent, 1.0), 10000);
  // Twenty standard deviations on each side.
  EXPECT_NEAR(kept(kImportPercent, 0.5), 5000, 1000);
  EXPECT_LT(kept(kImportPercent, 0.01), 400);
}

TEST(TextWizardIterator, StartingLinesAreSkipped) {
  const auto first = [](Arrangement arrangement, std::int64_t firstCase) {
    ImportSettings settings = Delimited(",", arrangement);
    settings.firstCase = firstCase;
    TestImport import("1\n2\n3\n4\n", settings, {MakeFixedVar("A", kFormatF, 1, 0, 8)});
    const Strings cases = import.Cases();
    return cases.empty() ? std::string("end") : cases.front();
  };
  EXPECT_EQ(first(kDelimitedLines, 1), "1");
  EXPECT_EQ(first(kDelimitedLines, 3), "3");
  EXPECT_EQ(first(kFixedColumns, 2), "2");
  // Where values are counted, one record more is read; the first case begins in it.
  EXPECT_EQ(first(kDelimitedCount, 0), "1");
  EXPECT_EQ(first(kDelimitedCount, 1), "1");
  EXPECT_EQ(first(kDelimitedCount, 2), "2");
  EXPECT_EQ(first(kDelimitedCount, 5), "end");
  EXPECT_EQ(first(kDelimitedLines, 5), "end");
  EXPECT_EQ(first(kDelimitedLines, 1000000), "end");
}

TEST(TextWizardIterator, AMapIsWrittenAfterTheFirstWholePassOnly) {
  ImportSettings settings = Delimited(",");
  settings.mapRequested = true;
  TestImport import("1\nx\n", settings, {Number("A")});
  MessageKeeper first;
  EXPECT_EQ(import.Cases(&first).size(), 2u);
  const Strings lines = first.Texts(kMessageLog);
  ASSERT_EQ(lines.size(), 5u);
  EXPECT_EQ(lines[2], "1 variables and 2 cases written.");
  EXPECT_EQ(lines[3],
            "Variable: A                  Type: Number  Format : F8         "
            "One or more values were set to system-missing.");
  MessageKeeper second;
  EXPECT_EQ(import.Cases(&second).size(), 2u);
  EXPECT_TRUE(second.messages.empty());
}

TEST(TextWizardIterator, TheBufferStartsMissingAndBlank) {
  TestImport import("1,ab\n", Delimited(","), {Number("A"), String("B", 3)});
  const double one = 1;
  std::memcpy(import.obs(), &one, sizeof one);
  const QANT_TextWizardIterator iterator(import.source(), import.obs());
  EXPECT_EQ(import.Case(), ". |   |");
}

TEST(TextWizardIterator, WithoutABufferCasesAreCountedAndNothingIsStored) {
  TestImport import("1,x\n2,y\n", Delimited(","), {Number("A"), Number("B")});
  QANT_TextWizardIterator iterator(import.source(), nullptr);
  int cases = 0;
  while (iterator.Next()) ++cases;
  EXPECT_EQ(cases, 2);
  EXPECT_FALSE(import.variable(1).missingStored);
}

TEST(TextWizardIterator, TheDecimalCharacterIsTheSourcesWhileTheIteratorLives) {
  iocvsetdeccharcomma_();
  TestImport import("1,5\n", Delimited(";"), {Number("A")});
  iocvsetdecchardot_();
  {
    QANT_TextWizardIterator iterator(import.source(), import.obs());
    EXPECT_EQ(iocvgetdecchar_(), ',');
    EXPECT_EQ(NextCase(iterator, import), "1.5");
  }
  EXPECT_EQ(iocvgetdecchar_(), '.');
}

TEST(TextWizardIterator, TheDecimalCharacterFoundIsPutBack) {
  TestImport import("1.5\n", Delimited(";"), {Number("A")});
  iocvsetdeccharcomma_();
  {
    const QANT_TextWizardIterator iterator(import.source(), import.obs());
    EXPECT_EQ(iocvgetdecchar_(), '.');
  }
  EXPECT_EQ(iocvgetdecchar_(), ',');
  iocvsetdecchardot_();
}

TEST(TextWizardIterator, AReadErrorIsPostedOnceAndEndsTheDataWithoutACount) {
  const auto faults = std::make_shared<embedded::StreamFaults>();
  TestImport import(kThreeCases, Delimited(","), {Number("A")}, faults);
  faults->failAt = 4;
  MessageKeeper messages;
  QANT_TextWizardIterator iterator(import.source(), import.obs());
  iterator.SetErrorMonitor(&messages);
  EXPECT_EQ(NextCase(iterator, import), "1");
  EXPECT_EQ(NextCase(iterator, import), "2");
  EXPECT_EQ(NextCase(iterator, import), "end");
  EXPECT_TRUE(iterator.readFailed());
  EXPECT_EQ(NextCase(iterator, import), "end");
  ASSERT_EQ(messages.messages.size(), 1u);
  EXPECT_EQ(messages.messages[0].kind, kMessageError);
  EXPECT_NE(messages.messages[0].text.find("[2269]"), std::string::npos);
  EXPECT_NE(messages.messages[0].text.find(kPath), std::string::npos);
  EXPECT_EQ(import.source().RowCount(), -1);
}

TEST(TextWizardIterator, AReadErrorWithoutAMonitorEndsTheDataToo) {
  const auto faults = std::make_shared<embedded::StreamFaults>();
  TestImport import(kThreeCases, Delimited(","), {Number("A")}, faults);
  faults->failAt = 0;
  EXPECT_TRUE(import.Cases().empty());
  EXPECT_EQ(import.source().RowCount(), -1);
}

TEST(TextWizardIterator, AFileThatCannotBeOpenedAgainIsAReadError) {
  const auto faults = std::make_shared<embedded::StreamFaults>();
  TestImport import(kThreeCases, Delimited(","), {Number("A")}, faults);
  faults->duplicatesLeft = 0;
  MessageKeeper messages;
  EXPECT_TRUE(import.Cases(&messages).empty());
  EXPECT_EQ(messages.Texts(kMessageError).size(), 1u);
}

TEST(TextWizardIterator, UndecodableBytesAreWarnedOfWithCaseAndPosition) {
  TestImport import("a,b\nc,d\xFF\n\xFE,e\n", Delimited(","), {String("A", 4), String("B", 4)});
  MessageKeeper messages;
  EXPECT_EQ(import.Cases(&messages).size(), 3u);
  const Strings warnings = messages.Texts(kMessageWarning);
  ASSERT_EQ(warnings.size(), 2u);
  const auto warning = [](int caseNumber, int position) {
    char text[256];
    const QantServerErrorText format("lorvane.err", 2279);
    std::snprintf(text, sizeof text, format.GetText(), caseNumber, position);
    return std::string(text);
  };
  EXPECT_EQ(warnings[0], warning(2, 3));
  EXPECT_EQ(warnings[1], warning(3, 0));
}

TEST(TextWizardIterator, NextBufferCountsAsNextDoesAndReadsNoCase) {
  ImportSettings settings = Delimited(",");
  settings.importMode = kImportFirst;
  settings.caseLimit = 2;
  settings.firstCase = 2;
  TestImport import("head\n1\n2\n", settings, {Number("A")});
  QANT_TextWizardIterator iterator(import.source(), import.obs());
  EXPECT_TRUE(iterator.NextBuffer());
  EXPECT_EQ(iterator.Tell(), 1);
  // The starting lines were skipped; the caller reads the record.
  EXPECT_EQ(iterator.ProcessDlmLinesBuffer(), "1");
  EXPECT_TRUE(iterator.NextBuffer());
  EXPECT_EQ(iterator.Tell(), 2);
  EXPECT_EQ(iterator.ProcessDlmLinesBuffer(), "2");
  EXPECT_FALSE(iterator.NextBuffer());
  EXPECT_EQ(iterator.Tell(), 2);
  EXPECT_EQ(import.Case(), ".");
}

TEST(TextWizardIterator, ALogLineGoesToItsOwnMonitor) {
  TestImport import("", Delimited(","), {Number("A")});
  QANT_TextWizardIterator iterator(import.source(), import.obs());
  iterator.ReportLogMessage("nobody hears");
  MessageKeeper messages;
  iterator.SetErrorMonitor(&messages);
  iterator.ReportLogMessage("line");
  EXPECT_EQ(messages.Texts(kMessageLog), Strings{"line"});
}

TEST(TextWizardIterator, AnImportWithoutValuesOrLinesHasNoCases) {
  TestImport noVariables("1\n2\n", Delimited(",", kDelimitedCount), {});
  EXPECT_TRUE(noVariables.Cases().empty());
  ImportSettings settings = Delimited(",", kFixedColumns);
  settings.recordsPerCase = 0;
  TestImport noLines("1\n2\n", settings, {Number("A")});
  EXPECT_TRUE(noLines.Cases().empty());
}

}  // namespace
}  // namespace textwizard
